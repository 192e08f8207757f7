// SPDX-License-Identifier: GPL-3.0-or-later
//
// "Export as Markdown…": asks where to save the document (suggesting
// "Vesko Notes.md"), writes it atomically on a worker thread, and answers
// with the toast "Exported" or a message saying what went wrong. Nothing here
// waits on the main thread.

#pragma once

#include <QString>

#include <optional>

class QWidget;

namespace Vesko {

//! Asks for a file beside \a parent and writes \a text there as UTF-8.
void exportMarkdown(QWidget *parent, const QString &text);

//! Writes \a text to \a path atomically: a private temporary file beside it,
//! flushed, then renamed over it. Returns the failure text.
std::optional<QString> writeMarkdownFile(const QString &path, const QString &text);

} // namespace Vesko
