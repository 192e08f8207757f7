// SPDX-License-Identifier: GPL-3.0-or-later
//
// The decisions of the Storage tab in Settings, apart from its widgets:
// whether the library lies away from its default place, and the counts the
// tab shows.

#pragma once

#include <QString>

namespace Vesko {

class Store;

namespace LibraryLocation {

//! The library file at \a libraryPath is not the default one, so "Use Default
//! Location" is offered. Paths are compared cleaned and absolute.
bool differsFromDefault(const QString &libraryPath);

//! The notes of the active project, over all its sections.
qsizetype activeProjectNoteCount(const Store &store);
qsizetype projectCount(const Store &store);

} // namespace LibraryLocation

} // namespace Vesko
