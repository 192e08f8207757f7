// SPDX-License-Identifier: GPL-3.0-or-later
//
// A note's text as a row shows it: the Markdown runs of its text, with each
// occurrence of the search query marked on the rendered characters.

#pragma once

#include "store/MarkdownText.h"

namespace Vesko {

//! The attribute of a run that lies on an occurrence of the search query.
//! Such a run is also strong, so the match reads as bold.
inline constexpr int highlightedAttribute = 0x100;

//! Parses \a text with markdownAttributedString() and marks every occurrence
//! of \a query, trimmed, in the visible characters, from the start and
//! without overlaps, ignoring case and without any locale. The marked runs
//! carry highlightedAttribute and MarkdownRun::Strong beside their own
//! attributes; runs are split where a mark begins or ends. A blank query
//! leaves the parse as it is.
MarkdownText highlightedText(const QString &text, const QString &query);

} // namespace Vesko
