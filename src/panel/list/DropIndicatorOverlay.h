// SPDX-License-Identifier: GPL-3.0-or-later
//
// The drop lines over the rows of the panel's list: at the top of the note
// row under a drag, at the top of the header a dragged section would land
// before, at the bottom of the last header for the end. They fade in over
// 0.1 s.

#pragma once

#include <QList>
#include <QWidget>

class QVariantAnimation;

namespace Vesko {

class DropIndicatorOverlay : public QWidget
{
public:
    //! The thickness of a line.
    static constexpr int lineHeight = 2;

    explicit DropIndicatorOverlay(QWidget *parent);

    //! The lines to show, by their tops in the overlay's coordinates.
    void setLines(const QList<int> &lines);
    const QList<int> &lines() const { return m_lines; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QVariantAnimation *m_fade;
    QList<int> m_lines;
    qreal m_opacity = 1;
};

} // namespace Vesko
