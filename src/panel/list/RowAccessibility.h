// SPDX-License-Identifier: GPL-3.0-or-later
//
// What a screen reader says for the rows of the panel: the label and value
// of a note row, the label of its done control, and the label of a section
// header.

#pragma once

#include "library/Library.h"

namespace Vesko {

struct PanelSectionRow;

namespace RowAccessibility {

//! The longest note text, in characters, that a row's label carries whole.
inline constexpr qsizetype labelTextLimit = 120;

//! What the reader of a rendered note takes in from its Markdown: the
//! visible text, without what is struck through ("Email ~~Bob~~ Alice" is
//! "Email Alice"); all of the visible text when everything is struck through.
QString spokenText(const QString &markdown);
//! The note's spoken text, trimmed and cut to 120 characters with an ellipsis, and
//! its attachments' file names: "text. Attachments: a, b", or either part
//! alone when the other is empty.
QString noteLabel(const Note &note);
//! "Done" or "Not done".
QString noteValue(const Note &note);
//! What pressing the done control does: "Mark as not done" on a done note,
//! "Mark as done" otherwise.
QString doneControlLabel(bool isDone);
//! "Title section, N remaining".
QString sectionLabel(const PanelSectionRow &section);

} // namespace RowAccessibility
} // namespace Vesko
