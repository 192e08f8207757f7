// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/layers/PanelLayerView.h"

#include "panel/window/PanelWindow.h"
#include "shell/Theme.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QPointer>
#include <QTimer>

namespace Vesko {

namespace {

constexpr float dimOpacity = 0.16f;
constexpr double shadowOpacity = 0.22;
constexpr int shadowOffset = 6;
constexpr int shadowBlur = 12;

//! The card: an opaque rounded surface of the panel's colour with a hairline.
//! It stands over the panel's own rows, which no compositor blurs, so
//! nothing of them shows through it.
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
        surface.setAlpha(255);
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

void PanelLayerView::focusWhenShown(QLineEdit *field, const std::function<void(QLineEdit *)> &then)
{
    QTimer::singleShot(focusDelayMilliseconds, this, [field = QPointer<QLineEdit>(field), then] {
        if (!field)
            return;
        field->setFocus(Qt::OtherFocusReason);
        if (then)
            then(field);
    });
}

bool PanelLayerView::handleAnswerKey(
    QEvent *event, const std::function<void()> &accept, const std::function<void()> &reject)
{
    if (event->type() != QEvent::KeyPress)
        return false;
    switch (static_cast<QKeyEvent *>(event)->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        accept();
        return true;
    case Qt::Key_Escape:
        reject();
        return true;
    default:
        return false;
    }
}

void PanelLayerView::paintDim(QPainter &painter, const QRect &rect)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath path;
    // The dim follows the panel's rounded surface.
    path.addRoundedRect(QRectF(rect), PanelWindow::cornerRadius, PanelWindow::cornerRadius);
    painter.fillPath(path, QColor::fromRgbF(0, 0, 0, dimOpacity));
    painter.restore();
}

void PanelLayerView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    paintDim(painter, rect());
    if (m_card->isVisible())
        paintShadow(painter, QRectF(m_card->geometry()));
}

void PanelLayerView::paintShadow(QPainter &painter, const QRectF &card)
{
    // Rings of black that fade outwards, 6 px below the card (painted here,
    // since the layer fades with an opacity effect of its own).
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const QRectF below = card.translated(0, shadowOffset);
    for (int ring = shadowBlur; ring >= 1; --ring) {
        const double alpha
            = shadowOpacity * (1.0 - double(ring) / (shadowBlur + 1)) / shadowBlur * 2.4;
        painter.setBrush(QColor(0, 0, 0, int(std::min(1.0, alpha) * 255)));
        painter.drawRoundedRect(
            below.adjusted(-ring, -ring, ring, ring), cardRadius + ring, cardRadius + ring);
    }
    painter.restore();
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
