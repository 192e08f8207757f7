// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/PanelLayerView.h"

#include "panel/PanelWindow.h"
#include "shell/Theme.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

namespace Vesko {

namespace {

constexpr float dimOpacity = 0.16f;

//! The card: a rounded surface in the panel's material with a hairline.
class LayerCard : public QWidget
{
public:
    using QWidget::QWidget;

protected:
    void paintEvent(QPaintEvent *) override
    {
        const ThemeColors colors = Theme::currentColors();
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        QPainterPath path;
        path.addRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5),
            PanelLayerView::cardRadius, PanelLayerView::cardRadius);
        QColor surface = colors.panelSurface;
        surface.setAlpha(250);
        painter.fillPath(path, surface);
        painter.setPen(QPen(colors.surfaceStroke, 1));
        painter.drawPath(path);
    }
};

} // namespace

PanelLayerView::PanelLayerView(QWidget *parent)
    : QWidget(parent)
    , m_card(new LayerCard(this))
{ }

void PanelLayerView::placeCard()
{
    m_card->setGeometry(cardGeometry());
}

void PanelLayerView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath path;
    // The dim follows the panel's rounded surface.
    path.addRoundedRect(QRectF(rect()), PanelWindow::cornerRadius, PanelWindow::cornerRadius);
    painter.fillPath(path, QColor::fromRgbF(0, 0, 0, dimOpacity));
}

void PanelLayerView::mousePressEvent(QMouseEvent *event)
{
    if (!m_card->geometry().contains(event->position().toPoint())) {
        dismiss();
        return;
    }
    QWidget::mousePressEvent(event);
}

void PanelLayerView::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    placeCard();
}

} // namespace Vesko
