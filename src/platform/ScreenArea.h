// SPDX-License-Identifier: GPL-3.0-or-later
//
// One screen as placement sees it: its whole frame and the part of it that
// windows may cover (without panels and docks of the desktop).

#pragma once

#include <QRectF>

namespace Vesko {

struct ScreenArea
{
    QRectF frame;
    QRectF available;
};

} // namespace Vesko
