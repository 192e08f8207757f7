// SPDX-License-Identifier: GPL-3.0-or-later
//
// The text of a note row laid out for painting: the runs of the Markdown
// parse (emphasis, strong, strikethrough, code, links) and the search marks
// as character formats, wrapped to a width, cut after a number of lines with
// an ellipsis at the tail, with 1.5 px between lines.

#pragma once

#include "store/MarkdownText.h"

#include <QColor>
#include <QFont>
#include <QTextLayout>

#include <memory>
#include <optional>

namespace Vesko {

class NoteTextLayout
{
public:
    static constexpr qreal lineGap = 1.5;

    struct Colors
    {
        QColor text;
        QColor link;
        QColor highlight;
        QColor codeBackground;
        //! The line through a done note's text.
        QColor strike;
    };

    //! Sets what to show; the layout is made again at the next layout().
    void setContent(const MarkdownText &text, const QFont &font, bool struckThrough);
    void setColors(const Colors &colors) { m_colors = colors; }

    //! Lays the text out in \a width, at most \a maximumLines lines (0 for
    //! any number), and returns the height it takes.
    int layout(int width, int maximumLines);
    int height() const { return m_height; }
    bool isTruncated() const { return m_truncated; }
    bool isEmpty() const { return m_content.text.isEmpty(); }

    void draw(QPainter &painter, const QPointF &topLeft) const;
    //! The target of the link at \a position, relative to the text's top left.
    std::optional<QString> linkAt(const QPointF &position) const;

private:
    void build(const QString &text, const QList<MarkdownRun> &runs, qreal width, int maximumLines);

    MarkdownText m_content;
    QFont m_font;
    bool m_struckThrough = false;
    Colors m_colors;
    std::unique_ptr<QTextLayout> m_layout;
    //! The runs of the text laid out (cut when truncated).
    QList<MarkdownRun> m_laidOutRuns;
    int m_width = -1;
    int m_maximumLines = -1;
    int m_height = 0;
    bool m_truncated = false;
};

} // namespace Vesko
