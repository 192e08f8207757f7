// SPDX-License-Identifier: GPL-3.0-or-later
//
// The two text cleanings of a capture: the window title loses the browser's
// or editor's name at its end, and the selected text loses Windows line ends,
// non-breaking spaces and runs of blank lines, keeping its indentation.

#pragma once

#include <QString>

namespace Vesko {

//! Removes the first suffix of the table that \a title ends with, then trims.
QString cleanWindowTitle(const QString &title);
//! CRLF to LF, NBSP to space, at most one blank line in a row, trimmed.
QString normalizeCapturedText(const QString &text);

} // namespace Vesko
