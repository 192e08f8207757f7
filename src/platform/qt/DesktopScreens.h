// SPDX-License-Identifier: GPL-3.0-or-later
//
// The screens of the running session, for the placement functions.

#pragma once

#include "platform/ScreenArea.h"

#include <QList>

namespace Vesko {

//! Every screen, the primary one first.
QList<ScreenArea> currentScreenAreas();

} // namespace Vesko
