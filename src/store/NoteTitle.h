// SPDX-License-Identifier: GPL-3.0-or-later
//
// A note's text as a short title on one line: the title of its note window
// and its entry in the tray's menu. The text loses its inline Markdown
// markers, its line breaks become spaces, and a long text is cut with an
// ellipsis. Lengths count characters as the reader sees them (graphemes).

#pragma once

#include <QString>

namespace Vesko {

//! \a text without its inline Markdown markers, each line feed a space,
//! trimmed of white space at both ends.
QString oneLineText(const QString &text);

//! The first \a limit characters of \a text and "…" when it has more than
//! \a limit; with \a trimsCut, white space at the end of the cut goes
//! before the ellipsis. A text of at most \a limit characters stays whole.
QString cutTitle(const QString &text, qsizetype limit, bool trimsCut);

//! The title of a note's window: the one-line text, cut after 45
//! characters with trailing white space removed.
QString noteWindowTitle(const QString &noteText);

//! A note's entry in the tray's menu: the one-line text, cut to 44
//! characters and "…" from 45 characters on.
QString dashboardNoteTitle(const QString &noteText);

} // namespace Vesko
