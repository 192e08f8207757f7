// SPDX-License-Identifier: GPL-3.0-or-later
//
// Why capture is not available in this session, in the words the Capture
// tab of Settings uses: the reason, and what the user can do instead.

#pragma once

#include "platform/CaptureSupport.h"

#include <QString>

namespace Vesko {

//! The reason, in a sentence; empty for None.
QString captureObstacleReason(CaptureObstacle obstacle);
//! What the user can do instead; empty for None.
QString captureObstacleAdvice(CaptureObstacle obstacle);

} // namespace Vesko
