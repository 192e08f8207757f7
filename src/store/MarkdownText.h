// SPDX-License-Identifier: GPL-3.0-or-later
//
// The one inline Markdown parse of the program, shared by copying, note rows
// and the note window: CommonMark's inline syntax with strikethrough.
// Emphasis, strong emphasis, strikethrough, code spans, backslash escapes,
// entity and numeric character references, inline links and images, and
// autolinks become attributes of runs of the visible text. Block syntax is
// not interpreted: heading, list and quote markers stay as typed, and line
// breaks and runs of spaces are kept. The parse takes time linear in the text.

#pragma once

#include <QList>
#include <QString>

namespace Vesko {

struct MarkdownRun
{
    enum Attribute {
        Emphasis = 0x1,
        Strong = 0x2,
        Strikethrough = 0x4,
        Code = 0x8,
        Link = 0x10,
        Image = 0x20,
    };

    qsizetype start = 0;
    qsizetype length = 0;
    int attributes = 0;
    //! The target of a link or image run.
    QString destination;

    bool operator==(const MarkdownRun &) const = default;
};

struct MarkdownText
{
    //! The visible characters: the text without its inline markers.
    QString text;
    //! Runs of text that carry attributes, in order, not overlapping.
    QList<MarkdownRun> runs;
};

MarkdownText markdownAttributedString(const QString &source);

//! The visible characters of \a source: markdownAttributedString(source).text.
QString strippedMarkdown(const QString &source);

} // namespace Vesko
