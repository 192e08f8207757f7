// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/list/DoneControl.h"

#include "panel/list/RowAccessibility.h"
#include "shell/Theme.h"

#include <QPainter>
#include <QPainterPath>

namespace Vesko {

DoneControl::DoneControl(QWidget *parent)
    : QAbstractButton(parent)
{
    setFocusPolicy(Qt::NoFocus);
    setCursor(Qt::PointingHandCursor);
    setAccessibleName(RowAccessibility::doneControlLabel(false));
}

void DoneControl::setDone(bool done)
{
    if (m_done == done)
        return;
    m_done = done;
    setAccessibleName(RowAccessibility::doneControlLabel(done));
    update();
}

void DoneControl::paintEvent(QPaintEvent *)
{
    const ThemeColors colors = Theme::currentColors();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF circle = QRectF(0, 0, diameter, diameter).adjusted(0.6, 0.6, -0.6, -0.6);
    if (m_done) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(colors.accent);
        painter.drawEllipse(circle);
        // The check mark, heavy, at 8 px.
        QPainterPath check;
        const QPointF c = circle.center();
        check.moveTo(c + QPointF(-3.4, 0.2));
        check.lineTo(c + QPointF(-1.0, 2.6));
        check.lineTo(c + QPointF(3.6, -2.4));
        painter.setPen(QPen(Qt::white, 1.9, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.setBrush(Qt::NoBrush);
        painter.drawPath(check);
    } else {
        painter.setPen(QPen(underMouse() ? colors.accent : colors.greyLight, 1.2));
        painter.setBrush(Qt::NoBrush);
        painter.drawEllipse(circle);
    }
}

} // namespace Vesko
