// SPDX-License-Identifier: GPL-3.0-or-later
//
// Notes as text for other applications: a plain copy, a copy as a list, and
// one Markdown document of the whole library. The functions here are pure;
// the Store picks the notes (the visible ones, in row order) and the
// preferences, and the clipboard takes the result.

#pragma once

#include "library/Library.h"
#include "shell/Preferences.h"

#include <QtGlobal>

#include <optional>

namespace Vesko {

//! The short messages that confirm a copy or an export, shown for 1.1 s
//! beside the pointer with the named symbol. Translated where shown.
namespace TextOutMessages {
inline constexpr const char copiedAsList[] = QT_TRANSLATE_NOOP("TextOut", "Copied as List");
inline constexpr const char copiedAsListSymbol[] = "list.number";
inline constexpr const char copied[] = QT_TRANSLATE_NOOP("TextOut", "Copied");
inline constexpr const char copiedSymbol[] = "doc.on.doc";
inline constexpr const char exported[] = QT_TRANSLATE_NOOP("TextOut", "Exported");
inline constexpr const char exportedSymbol[] = "square.and.arrow.up";
//! The name the save dialog suggests for an export.
inline constexpr const char exportFileName[] = "Vesko Notes.md";
} // namespace TextOutMessages

//! A note's text is long, so that its row can be expanded: four lines or
//! more, or more than 120 characters as the reader counts them (graphemes).
bool isLongNoteText(const QString &text);

//! A note's text as copied: as typed, or without its inline Markdown markers.
QString copiedText(const Note &note, bool includesMarkdown);

//! The texts of \a notes joined by a blank line.
QString plainCopyText(const QList<Note> &notes, bool includesMarkdown);

//! One list item: the style's prefix ("1. ", "- " or nothing) before the
//! first line, three spaces before every further line.
QString listItemText(qsizetype index, const Note &note, ListStyle style, bool includesMarkdown);

//! The items of \a notes, numbered from 1, one line feed between them.
QString listText(const QList<Note> &notes, ListStyle style, bool includesMarkdown);

//! The whole library as a Markdown document: a heading per project and
//! section, a task line per note, a link line per attachment.
QString markdownExportText(const Library &library);

//! Writes \a text as UTF-8 to \a path atomically, through a temporary file of
//! a fresh name beside it; the export is private (0600), like everything that
//! holds the user's notes. Returns the failure text.
std::optional<QString> writeMarkdownExport(const QString &text, const QString &path);

} // namespace Vesko
