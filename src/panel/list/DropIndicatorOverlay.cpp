// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/list/DropIndicatorOverlay.h"

#include "panel/list/EaseOut.h"
#include "shell/Theme.h"

#include <QPainter>
#include <QPainterPath>
#include <QVariantAnimation>

namespace Vesko {

namespace {

constexpr int dropIndicatorMilliseconds = 100;
constexpr int dropIndicatorPadding = 6;

} // namespace

DropIndicatorOverlay::DropIndicatorOverlay(QWidget *parent)
    : QWidget(parent)
    , m_fade(new QVariantAnimation(this))
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    m_fade->setDuration(dropIndicatorMilliseconds);
    m_fade->setEasingCurve(easeOut());
    QObject::connect(m_fade, &QVariantAnimation::valueChanged, this, [this](const QVariant &v) {
        m_opacity = v.toReal();
        update();
    });
}

void DropIndicatorOverlay::setLines(const QList<int> &lines)
{
    if (!lines.isEmpty())
        raise(); // above row widgets made since
    if (lines == m_lines)
        return;
    const bool appearing = m_lines.isEmpty() && !lines.isEmpty();
    m_lines = lines;
    if (appearing) {
        m_fade->stop();
        m_fade->setStartValue(0.0);
        m_fade->setEndValue(1.0);
        m_fade->start();
    }
    update();
}

void DropIndicatorOverlay::paintEvent(QPaintEvent *)
{
    if (m_lines.isEmpty())
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(m_opacity);
    const QColor accent = Theme::currentColors().accent;
    for (int y : m_lines) {
        QPainterPath capsule;
        capsule.addRoundedRect(
            QRectF(dropIndicatorPadding, y, width() - 2 * dropIndicatorPadding, lineHeight), 1, 1);
        painter.fillPath(capsule, accent);
    }
}

} // namespace Vesko
