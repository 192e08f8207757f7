// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/text/MarkdownFormat.h"

#include "shell/Theme.h"

#include <QFontDatabase>
#include <QTextCursor>
#include <QTextDocument>

namespace Vesko {

MarkdownFormatColors markdownFormatColors()
{
    const ThemeColors colors = Theme::currentColors();
    QColor code = colors.greyLight;
    code.setAlphaF(0.12f);
    return {colors.accent, code};
}

QTextCharFormat markdownRunFormat(const MarkdownRun &run, const MarkdownFormatColors &colors)
{
    QTextCharFormat format;
    if (run.attributes & MarkdownRun::Emphasis)
        format.setFontItalic(true);
    if (run.attributes & MarkdownRun::Strong)
        format.setFontWeight(QFont::Bold);
    if (run.attributes & MarkdownRun::Strikethrough)
        format.setFontStrikeOut(true);
    if (run.attributes & MarkdownRun::Code) {
        format.setFontFamilies({QFontDatabase::systemFont(QFontDatabase::FixedFont).family()});
        format.setBackground(colors.codeBackground);
    }
    if (run.attributes & (MarkdownRun::Link | MarkdownRun::Image)) {
        format.setForeground(colors.link);
        format.setFontUnderline(true);
        if (!run.destination.isEmpty()) {
            format.setAnchor(true);
            format.setAnchorHref(run.destination);
        }
    }
    return format;
}

void setMarkdownDocument(
    QTextDocument &document, const MarkdownText &text, const MarkdownFormatColors &colors)
{
    document.clear();
    QTextCursor cursor(&document);
    cursor.beginEditBlock();
    const QTextCharFormat plain;
    qsizetype position = 0;
    for (const MarkdownRun &run : text.runs) {
        if (run.start > position)
            cursor.insertText(text.text.mid(position, run.start - position), plain);
        cursor.insertText(text.text.mid(run.start, run.length), markdownRunFormat(run, colors));
        position = run.start + run.length;
    }
    if (position < text.text.size())
        cursor.insertText(text.text.mid(position), plain);
    cursor.endEditBlock();
}

} // namespace Vesko
