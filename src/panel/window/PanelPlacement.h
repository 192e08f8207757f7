// SPDX-License-Identifier: GPL-3.0-or-later
//
// Where the panel and the toast go, as pure functions of the screens, the
// pointer and the preferences. Coordinates are Qt's: device-independent
// pixels with the origin at the top left of the virtual desktop.

#pragma once

#include "platform/ScreenArea.h"
#include "shell/Preferences.h"

#include <QList>
#include <QPointF>
#include <QRectF>
#include <QSizeF>

#include <optional>

namespace Vesko {

//! The screen whose frame contains \a point, else the primary one (the first),
//! else none.
std::optional<ScreenArea> screenAt(const QList<ScreenArea> &screens, const QPointF &point);

//! The panel's place by its edge preference on a screen with \a available
//! area: \a inset from the chosen edge (or centred), centred vertically, its
//! height no taller than the area less two insets. Without a screen, \a current.
QRectF presetPanelFrame(const std::optional<QRectF> &available, PanelEdge edge, double width,
    double height, double inset, const QRectF &current);

//! The frame for a panel coming on screen: the stored one, as it stands, when
//! it overlaps the available area of any screen; otherwise \a preset.
QRectF presentationFrame(
    const std::optional<QRectF> &stored, const QList<ScreenArea> &screens, const QRectF &preset);

//! "Reset Window Size": the default size (340 × 560) limited to the area less
//! two insets, centred where \a current was centred and kept inside the area.
QRectF resetPanelSizeFrame(const QRectF &available, const QRectF &current, double inset);

//! The toast's top-left corner: 14 to the right of and 14 below the pointer,
//! kept 8 inside the available area of the pointer's screen.
QPointF toastOrigin(const QPointF &pointer, const QSizeF &size, const QList<ScreenArea> &screens);

} // namespace Vesko
