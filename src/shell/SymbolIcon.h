// SPDX-License-Identifier: GPL-3.0-or-later
//
// The icons of the program's symbol names ("checkmark", "paperclip", …): the
// desktop's icon theme where it has the symbol under its freedesktop name,
// else the program's own line drawing of it, shipped in its resources. Either
// is drawn as a silhouette in the colour the caller asks for, so that icons
// follow the light and the dark appearance.

#pragma once

#include <QColor>
#include <QIcon>
#include <QStringList>

namespace Vesko {

//! The icon of \a symbol in \a color, \a size pixels square at most (less
//! where a view asks for less), crisp at any device pixel ratio; fainter
//! while disabled. A null icon for a symbol
//! the program has no drawing of.
QIcon symbolIcon(const QString &symbol, const QColor &color, int size);

namespace SymbolIcons {

//! The symbol names the program draws itself, each a resource.
QStringList bundledSymbols();
//! The resource path of the program's own drawing of \a symbol, or empty.
QString bundledPath(const QString &symbol);
//! The freedesktop icon name asked of the desktop's theme for \a symbol, or
//! empty where no name of the naming specification means the same.
QString themeName(const QString &symbol);

} // namespace SymbolIcons

} // namespace Vesko
