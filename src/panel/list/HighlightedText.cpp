// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/list/HighlightedText.h"

#include <map>

namespace Vesko {

MarkdownText highlightedText(const QString &text, const QString &query)
{
    MarkdownText parsed = markdownAttributedString(text);
    const QString needle = query.trimmed();
    if (needle.isEmpty())
        return parsed;

    QList<std::pair<qsizetype, qsizetype>> marks; // start, end
    for (qsizetype at = parsed.text.indexOf(needle, 0, Qt::CaseInsensitive); at >= 0;
         at = parsed.text.indexOf(needle, at + needle.size(), Qt::CaseInsensitive)) {
        marks.append({at, at + needle.size()});
    }
    if (marks.isEmpty())
        return parsed;

    // Cut the text at every boundary of a Markdown run or a mark, and give
    // each piece the attributes of what covers it.
    std::map<qsizetype, int> cuts;
    for (const MarkdownRun &run : parsed.runs) {
        cuts.emplace(run.start, 0);
        cuts.emplace(run.start + run.length, 0);
    }
    for (const auto &[start, end] : marks) {
        cuts.emplace(start, 0);
        cuts.emplace(end, 0);
    }

    QList<MarkdownRun> runs;
    qsizetype lastMark = -1; // the mark that the last run lies on, or -1
    qsizetype runIndex = 0;
    qsizetype markIndex = 0;
    for (auto cut = cuts.begin(); cut != cuts.end(); ++cut) {
        const auto next = std::next(cut);
        if (next == cuts.end())
            break;
        const qsizetype start = cut->first;
        const qsizetype end = next->first;
        while (runIndex < parsed.runs.size()
            && parsed.runs[runIndex].start + parsed.runs[runIndex].length <= start) {
            ++runIndex;
        }
        while (markIndex < marks.size() && marks[markIndex].second <= start)
            ++markIndex;
        MarkdownRun piece;
        piece.start = start;
        piece.length = end - start;
        if (runIndex < parsed.runs.size() && parsed.runs[runIndex].start <= start) {
            piece.attributes = parsed.runs[runIndex].attributes;
            piece.destination = parsed.runs[runIndex].destination;
        }
        const bool marked = markIndex < marks.size() && marks[markIndex].first <= start;
        if (marked)
            piece.attributes |= highlightedAttribute | MarkdownRun::Strong;
        if (piece.attributes == 0)
            continue;
        // Neighbouring pieces alike stay one run, unless they lie on two
        // occurrences of the query, which stay apart.
        const qsizetype mark = marked ? markIndex : -1;
        if (!runs.isEmpty() && runs.last().start + runs.last().length == start
            && runs.last().attributes == piece.attributes
            && runs.last().destination == piece.destination && mark == lastMark) {
            runs.last().length += piece.length;
            continue;
        }
        runs.append(piece);
        lastMark = mark;
    }
    parsed.runs = runs;
    return parsed;
}

} // namespace Vesko
