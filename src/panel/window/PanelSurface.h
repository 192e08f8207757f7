// SPDX-License-Identifier: GPL-3.0-or-later
//
// The look shared by the panel's cards and bars: the elevated surface (a
// rounded fill with a hairline, lighter while hovered or emphasised), and a
// small animator that eases a widget's state in and out over the durations
// the panel uses.

#pragma once

#include <QColor>
#include <QObject>
#include <QRectF>

class QPainter;
class QVariantAnimation;
class QWidget;

namespace Vesko {

struct ThemeColors;

//! Paints the elevated surface of a bar floating over the list, of corner
//! \a radius in \a rect, on an opaque base of the panel's colour; \a emphasis
//! (0 to 1) blends the fill towards the hover fill.
void paintElevatedSurface(QPainter &painter, const QRectF &rect, double radius,
    const ThemeColors &colors, double emphasis);

//! \a from blended towards \a to by \a amount (0 to 1), alpha included.
QColor blendedColor(const QColor &from, const QColor &to, double amount);

//! A value between 0 and 1 that follows a target with an ease-out and
//! repaints \a widget on every step.
class EaseOutValue : public QObject
{
    Q_OBJECT

public:
    EaseOutValue(QWidget *widget, int milliseconds);

    double value() const { return m_value; }
    //! Moves to 1 (\a on) or 0; the same target again changes nothing.
    void setTarget(bool on);
    bool target() const { return m_target; }

Q_SIGNALS:
    void valueChanged(double value);

private:
    QWidget *m_widget;
    QVariantAnimation *m_animation;
    double m_value = 0;
    bool m_target = false;
};

} // namespace Vesko
