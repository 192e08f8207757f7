// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/window/PanelSurface.h"

#include "shell/Theme.h"

#include <QPainter>
#include <QPainterPath>
#include <QVariantAnimation>
#include <QWidget>

namespace Vesko {

QColor blendedColor(const QColor &from, const QColor &to, double amount)
{
    const double a = std::clamp(amount, 0.0, 1.0);
    auto mix = [a](double x, double y) { return x + (y - x) * a; };
    QColor color;
    color.setRgbF(float(mix(from.redF(), to.redF())), float(mix(from.greenF(), to.greenF())),
        float(mix(from.blueF(), to.blueF())), float(mix(from.alphaF(), to.alphaF())));
    return color;
}

void paintElevatedSurface(QPainter &painter, const QRectF &rect, double radius,
    const ThemeColors &colors, double emphasis)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath path;
    path.addRoundedRect(rect.adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    // The bars float over rows that scroll beneath them. Nothing blurs those
    // rows here, so the surface stands on the panel's own colour, opaque, and
    // the text beneath never reads through the search field or the composer.
    QColor base = colors.panelSurface;
    base.setAlpha(255);
    painter.fillPath(path, base);
    painter.fillPath(path, blendedColor(colors.surfaceFill, colors.surfaceHoverFill, emphasis));
    painter.setPen(QPen(colors.surfaceStroke, 1));
    painter.drawPath(path);
    painter.restore();
}

EaseOutValue::EaseOutValue(QWidget *widget, int milliseconds)
    : QObject(widget)
    , m_widget(widget)
    , m_animation(new QVariantAnimation(this))
{
    m_animation->setDuration(milliseconds);
    m_animation->setEasingCurve(QEasingCurve::OutCubic);
    connect(m_animation, &QVariantAnimation::valueChanged, this, [this](const QVariant &value) {
        m_value = value.toDouble();
        m_widget->update();
        Q_EMIT valueChanged(m_value);
    });
}

void EaseOutValue::setTarget(bool on)
{
    if (on == m_target)
        return;
    m_target = on;
    m_animation->stop();
    if (!m_widget->isVisible()) {
        // Nothing on screen to animate: the state is taken at once.
        m_value = on ? 1.0 : 0.0;
        m_widget->update();
        Q_EMIT valueChanged(m_value);
        return;
    }
    m_animation->setStartValue(m_value);
    m_animation->setEndValue(on ? 1.0 : 0.0);
    m_animation->start();
}

} // namespace Vesko
