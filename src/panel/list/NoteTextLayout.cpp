// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/list/NoteTextLayout.h"

#include "panel/list/HighlightedText.h"
#include "panel/text/MarkdownFormat.h"

#include <QPainter>
#include <QTextCharFormat>

#include <cmath>

namespace Vesko {

namespace {

//! Line feeds as the line separators a QTextLayout breaks at; the length stays.
QString withLineSeparators(QString text)
{
    text.replace(u'\n', QChar::LineSeparator);
    text.replace(u'\r', QChar::LineSeparator);
    return text;
}

} // namespace

void NoteTextLayout::setContent(const MarkdownText &text, const QFont &font, bool struckThrough)
{
    m_content = text;
    m_content.text = withLineSeparators(text.text);
    m_font = font;
    m_struckThrough = struckThrough;
    m_width = -1;
    m_layout.reset();
}

int NoteTextLayout::layout(int width, int maximumLines)
{
    if (m_layout && width == m_width && maximumLines == m_maximumLines)
        return m_height;
    m_width = width;
    m_maximumLines = maximumLines;
    m_truncated = false;
    if (m_content.text.isEmpty()) {
        m_layout.reset();
        m_height = 0;
        return 0;
    }
    build(m_content.text, m_content.runs, width, 0);
    if (maximumLines > 0 && m_layout->lineCount() > maximumLines) {
        // Cut the last line that may stay where an ellipsis still fits.
        const QTextLine last = m_layout->lineAt(maximumLines - 1);
        const qreal ellipsisWidth = QFontMetricsF(m_font).horizontalAdvance(QChar(0x2026));
        int cut = last.xToCursor(
            std::max<qreal>(0, width - ellipsisWidth), QTextLine::CursorOnCharacter);
        cut = std::clamp(cut, last.textStart(), last.textStart() + last.textLength());
        while (cut > last.textStart() && m_content.text.at(cut - 1).isSpace())
            --cut;
        QList<MarkdownRun> runs;
        for (MarkdownRun run : m_content.runs) {
            if (run.start >= cut)
                break;
            run.length = std::min(run.length, cut - run.start);
            runs.append(run);
        }
        build(m_content.text.left(cut) + QChar(0x2026), runs, width, maximumLines);
        m_truncated = true;
    }
    return m_height;
}

void NoteTextLayout::build(
    const QString &text, const QList<MarkdownRun> &runs, qreal width, int maximumLines)
{
    m_layout = std::make_unique<QTextLayout>(text, m_font);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    m_layout->setTextOption(option);
    m_laidOutRuns = runs;

    QList<QTextLayout::FormatRange> formats;
    formats.reserve(runs.size());
    const MarkdownFormatColors markdownColors {m_colors.link, m_colors.codeBackground};
    for (const MarkdownRun &run : runs) {
        QTextCharFormat format = markdownRunFormat(run, markdownColors);
        if (run.attributes & highlightedAttribute)
            format.setBackground(m_colors.highlight);
        formats.append({int(run.start), int(run.length), format});
    }
    m_layout->setFormats(formats);

    m_layout->beginLayout();
    qreal y = 0;
    int lines = 0;
    while (true) {
        QTextLine line = m_layout->createLine();
        if (!line.isValid())
            break;
        line.setLineWidth(width);
        line.setPosition(QPointF(0, y));
        y += line.height() + lineGap;
        if (maximumLines > 0 && ++lines >= maximumLines)
            break;
    }
    m_layout->endLayout();
    m_height = int(std::ceil(std::max<qreal>(0, y - lineGap)));
}

void NoteTextLayout::draw(QPainter &painter, const QPointF &topLeft) const
{
    if (!m_layout)
        return;
    painter.save();
    painter.setPen(m_colors.text);
    m_layout->draw(&painter, topLeft);
    if (m_struckThrough) {
        // A line through each line of text, in its own colour.
        const qreal through = QFontMetricsF(m_font).strikeOutPos();
        painter.setPen(QPen(m_colors.strike, std::max<qreal>(1, m_font.pixelSize() / 13.0)));
        for (int i = 0; i < m_layout->lineCount(); ++i) {
            const QTextLine line = m_layout->lineAt(i);
            if (line.naturalTextWidth() <= 0)
                continue;
            const qreal y = topLeft.y() + line.y() + line.ascent() - through;
            painter.drawLine(QPointF(topLeft.x() + line.x(), y),
                QPointF(topLeft.x() + line.x() + line.naturalTextWidth(), y));
        }
    }
    painter.restore();
}

std::optional<QString> NoteTextLayout::linkAt(const QPointF &position) const
{
    if (!m_layout)
        return std::nullopt;
    for (int i = 0; i < m_layout->lineCount(); ++i) {
        const QTextLine line = m_layout->lineAt(i);
        if (position.y() < line.y() || position.y() >= line.y() + line.height())
            continue;
        if (position.x() > line.x() + line.naturalTextWidth())
            return std::nullopt;
        const int cursor = line.xToCursor(position.x(), QTextLine::CursorOnCharacter);
        for (const MarkdownRun &run : m_laidOutRuns) {
            if (cursor >= run.start && cursor < run.start + run.length
                && (run.attributes & MarkdownRun::Link) && !run.destination.isEmpty()) {
                return run.destination;
            }
        }
        return std::nullopt;
    }
    return std::nullopt;
}

} // namespace Vesko
