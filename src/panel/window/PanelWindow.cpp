// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/window/PanelWindow.h"

#include "platform/x11/X11Window.h"
#include "shell/Theme.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QWindow>

namespace Vesko {

namespace {

constexpr int resizeRim = 4;

//! A transparent strip along one edge: a press moves the window, or resizes
//! it when the press is on the outer rim.
class DragStrip : public QWidget
{
public:
    DragStrip(Qt::Edge edge, QWidget *parent)
        : QWidget(parent)
        , m_edge(edge)
    {
        setMouseTracking(true);
        setAttribute(Qt::WA_NoSystemBackground);
    }

    Qt::Edge edge() const { return m_edge; }

protected:
    void mouseMoveEvent(QMouseEvent *event) override
    {
        setCursor(resizeEdges(event->position().toPoint())
                ? cursorFor(resizeEdges(event->position().toPoint()))
                : Qt::ArrowCursor);
    }

    void mousePressEvent(QMouseEvent *event) override
    {
        if (event->button() != Qt::LeftButton)
            return;
        QWindow *window = this->window()->windowHandle();
        if (!window)
            return;
        const Qt::Edges edges = resizeEdges(event->position().toPoint());
        if (edges)
            window->startSystemResize(edges);
        else
            window->startSystemMove();
    }

private:
    //! The window edges under \a point when it lies on the outer rim.
    Qt::Edges resizeEdges(QPoint point) const
    {
        const QPoint inWindow = mapTo(window(), point);
        const QSize size = window()->size();
        Qt::Edges edges;
        const int corner = PanelWindow::cornerRadius;
        if (inWindow.x() < resizeRim || (inWindow.x() < corner && inWindow.y() < resizeRim)
            || (inWindow.x() < corner && inWindow.y() >= size.height() - resizeRim))
            edges |= Qt::LeftEdge;
        if (inWindow.x() >= size.width() - resizeRim
            || (inWindow.x() >= size.width() - corner
                && (inWindow.y() < resizeRim || inWindow.y() >= size.height() - resizeRim)))
            edges |= Qt::RightEdge;
        if (inWindow.y() < resizeRim)
            edges |= Qt::TopEdge;
        if (inWindow.y() >= size.height() - resizeRim)
            edges |= Qt::BottomEdge;
        return edges;
    }

    static Qt::CursorShape cursorFor(Qt::Edges edges)
    {
        const bool horizontal = edges & (Qt::LeftEdge | Qt::RightEdge);
        const bool vertical = edges & (Qt::TopEdge | Qt::BottomEdge);
        if (horizontal && vertical) {
            const bool falling = (edges & Qt::LeftEdge && edges & Qt::TopEdge)
                || (edges & Qt::RightEdge && edges & Qt::BottomEdge);
            return falling ? Qt::SizeFDiagCursor : Qt::SizeBDiagCursor;
        }
        return horizontal ? Qt::SizeHorCursor : Qt::SizeVerCursor;
    }

    Qt::Edge m_edge;
};

} // namespace

PanelWindow::PanelWindow(Qt::WindowFlags flags)
    : QWidget(nullptr, flags)
{
    setObjectName(QStringLiteral("VeskoPanel"));
    setWindowTitle(QStringLiteral("Vesko"));
    setAttribute(Qt::WA_TranslucentBackground);
    setMinimumSize(280, 320);
    setMaximumSize(640, 1600);
    for (Qt::Edge edge : {Qt::TopEdge, Qt::BottomEdge, Qt::LeftEdge, Qt::RightEdge})
        m_strips.append(new DragStrip(edge, this));
}

void PanelWindow::setContent(QWidget *content)
{
    delete m_content;
    m_content = content;
    m_content->setParent(this);
    m_content->setGeometry(rect());
    m_content->show();
    placeStrips();
}

void PanelWindow::refreshMaterial()
{
    m_composited = X11Window::hasCompositingManager();
    m_glass = m_composited && X11Window::setBlurBehind(windowHandle(), roundedRegion());
    updateMask();
    update();
}

QRegion PanelWindow::roundedRegion() const
{
    QPainterPath path;
    path.addRoundedRect(QRectF(rect()), cornerRadius, cornerRadius);
    return QRegion(path.toFillPolygon().toPolygon());
}

void PanelWindow::requestFrame()
{
    m_frameRequested = true;
    update();
}

void PanelWindow::placeStrips()
{
    const int w = width();
    const int h = height();
    const int s = dragStripWidth;
    for (QWidget *widget : m_strips) {
        auto *strip = static_cast<DragStrip *>(widget);
        switch (strip->edge()) {
        case Qt::TopEdge:
            strip->setGeometry(0, 0, w, s);
            break;
        case Qt::BottomEdge:
            strip->setGeometry(0, h - s, w, s);
            break;
        case Qt::LeftEdge:
            strip->setGeometry(0, s, s, h - 2 * s);
            break;
        case Qt::RightEdge:
            strip->setGeometry(w - s, s, s, h - 2 * s);
            break;
        }
        strip->raise();
    }
}

void PanelWindow::updateMask()
{
    if (m_glass)
        X11Window::setBlurBehind(windowHandle(), roundedRegion());
    if (m_composited)
        clearMask();
    else
        setMask(roundedRegion());
}

void PanelWindow::paintEvent(QPaintEvent *)
{
    const ThemeColors colors = Theme::currentColors();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.fillRect(rect(), Qt::transparent);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    QPainterPath path;
    path.addRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius, cornerRadius);
    QColor surface = colors.panelSurface;
    if (!m_glass)
        surface.setAlpha(255);
    painter.fillPath(path, surface);
    painter.setPen(QPen(colors.panelStroke, 1));
    painter.drawPath(path);
    if (m_frameRequested) {
        m_frameRequested = false;
        Q_EMIT framePainted();
    }
}

void PanelWindow::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    if (m_content)
        m_content->setGeometry(rect());
    placeStrips();
    updateMask();
    Q_EMIT resized();
}

void PanelWindow::moveEvent(QMoveEvent *event)
{
    QWidget::moveEvent(event);
    Q_EMIT moved();
}

void PanelWindow::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape && event->modifiers() == Qt::NoModifier) {
        Q_EMIT cancelOperationRequested();
        return;
    }
    QWidget::keyPressEvent(event);
}

void PanelWindow::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::ActivationChange) {
        if (isActiveWindow())
            Q_EMIT becameActive();
        else
            Q_EMIT becameInactive();
    }
}

} // namespace Vesko
