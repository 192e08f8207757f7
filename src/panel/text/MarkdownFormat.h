// SPDX-License-Identifier: GPL-3.0-or-later
//
// How the runs of the inline Markdown parse look on screen: emphasis in
// italics, strong in bold, strikethrough struck out, code in the fixed font
// on a faint ground, links in the accent colour and underlined. Note rows
// and the note window's preview both format their text through here.

#pragma once

#include "store/MarkdownText.h"

#include <QColor>
#include <QTextCharFormat>

class QTextDocument;

namespace Vesko {

struct MarkdownFormatColors
{
    QColor link;
    QColor codeBackground;
};

//! The colours of the application's present appearance.
MarkdownFormatColors markdownFormatColors();

//! The character format of one run; a link's format carries its target.
QTextCharFormat markdownRunFormat(const MarkdownRun &run, const MarkdownFormatColors &colors);

//! Replaces the content of \a document by the visible text of \a text with
//! the format of each run. Line breaks and runs of spaces stay as they are.
void setMarkdownDocument(
    QTextDocument &document, const MarkdownText &text, const MarkdownFormatColors &colors);

} // namespace Vesko
