// SPDX-License-Identifier: GPL-3.0-or-later

#include "store/NoteTitle.h"

#include "store/MarkdownText.h"

#include <QTextBoundaryFinder>

#include <optional>

namespace Vesko {

namespace {

constexpr qsizetype windowTitleLength = 45;
constexpr qsizetype dashboardTitleLength = 44;
constexpr QChar ellipsis(0x2026);

//! The end, in code units, of the first \a count graphemes of \a text, or
//! nothing when the text has no more than \a count of them.
std::optional<qsizetype> endOfGraphemes(const QString &text, qsizetype count)
{
    // Every grapheme takes at least one code unit.
    if (text.size() <= count)
        return std::nullopt;
    QTextBoundaryFinder graphemes(QTextBoundaryFinder::Grapheme, text);
    qsizetype seen = 0;
    qsizetype end = 0;
    while (seen < count) {
        end = graphemes.toNextBoundary();
        if (end < 0)
            return std::nullopt;
        ++seen;
    }
    if (end >= text.size())
        return std::nullopt;
    return end;
}

} // namespace

QString oneLineText(const QString &text)
{
    QString line = strippedMarkdown(text);
    line.replace(u'\n', u' ');
    return line.trimmed();
}

QString cutTitle(const QString &text, qsizetype limit, bool trimsCut)
{
    const std::optional<qsizetype> end = endOfGraphemes(text, limit);
    if (!end)
        return text;
    QString cut = text.left(*end);
    if (trimsCut) {
        qsizetype length = cut.size();
        while (length > 0 && cut.at(length - 1).isSpace())
            --length;
        cut.truncate(length);
    }
    return cut + ellipsis;
}

QString noteWindowTitle(const QString &noteText)
{
    return cutTitle(oneLineText(noteText), windowTitleLength, true);
}

QString dashboardNoteTitle(const QString &noteText)
{
    return cutTitle(oneLineText(noteText), dashboardTitleLength, false);
}

} // namespace Vesko
