// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/window/PanelPlacement.h"

#include <algorithm>

namespace Vesko {

namespace {

constexpr double defaultPanelWidth = 340;
constexpr double defaultPanelHeight = 560;
constexpr double toastOffset = 14;
constexpr double toastMargin = 8;

//! At least \a low, then at most \a high: the upper bound wins when they cross.
double clampUpperWins(double value, double low, double high)
{
    return std::min(std::max(value, low), high);
}

} // namespace

std::optional<ScreenArea> screenAt(const QList<ScreenArea> &screens, const QPointF &point)
{
    for (const ScreenArea &screen : screens) {
        if (screen.frame.contains(point))
            return screen;
    }
    if (!screens.isEmpty())
        return screens.first();
    return std::nullopt;
}

QRectF presetPanelFrame(const std::optional<QRectF> &available, PanelEdge edge, double width,
    double height, double inset, const QRectF &current)
{
    if (!available)
        return current;
    const QRectF &area = *available;
    height = std::min(height, area.height() - 2 * inset);
    double x = 0;
    switch (edge) {
    case PanelEdge::Left:
        x = area.left() + inset;
        break;
    case PanelEdge::Center:
        x = area.center().x() - width / 2;
        break;
    case PanelEdge::Right:
        x = area.left() + area.width() - width - inset;
        break;
    }
    const double y = area.center().y() - height / 2;
    return QRectF(x, y, width, height);
}

QRectF presentationFrame(
    const std::optional<QRectF> &stored, const QList<ScreenArea> &screens, const QRectF &preset)
{
    if (stored) {
        for (const ScreenArea &screen : screens) {
            if (stored->intersects(screen.available))
                return *stored;
        }
    }
    return preset;
}

QRectF resetPanelSizeFrame(const QRectF &available, const QRectF &current, double inset)
{
    const double width = std::min(defaultPanelWidth, available.width() - 2 * inset);
    const double height = std::min(defaultPanelHeight, available.height() - 2 * inset);
    const QPointF centre = current.center();
    const double x = clampUpperWins(
        centre.x() - width / 2, available.left(), available.left() + available.width() - width);
    const double y = clampUpperWins(
        centre.y() - height / 2, available.top(), available.top() + available.height() - height);
    return QRectF(x, y, width, height);
}

QPointF toastOrigin(const QPointF &pointer, const QSizeF &size, const QList<ScreenArea> &screens)
{
    QPointF origin(pointer.x() + toastOffset, pointer.y() + toastOffset);
    const std::optional<ScreenArea> screen = screenAt(screens, pointer);
    if (!screen)
        return origin;
    const QRectF &area = screen->available;
    origin.setX(clampUpperWins(origin.x(), area.left() + toastMargin,
        area.left() + area.width() - size.width() - toastMargin));
    origin.setY(clampUpperWins(origin.y(), area.top() + toastMargin,
        area.top() + area.height() - size.height() - toastMargin));
    return origin;
}

} // namespace Vesko
