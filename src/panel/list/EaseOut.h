// SPDX-License-Identifier: GPL-3.0-or-later
//
// The curve the list's own motions follow (scrolling, row fills, the drop
// line, a section folding): CSS's ease-out, quick at first and settling.

#pragma once

#include <QEasingCurve>

namespace Vesko {

inline QEasingCurve easeOut()
{
    QEasingCurve curve(QEasingCurve::BezierSpline);
    curve.addCubicBezierSegment(QPointF(0, 0), QPointF(0.58, 1), QPointF(1, 1));
    return curve;
}

} // namespace Vesko
