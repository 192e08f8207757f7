// SPDX-License-Identifier: GPL-3.0-or-later
//
// Why capture is not available in this session, in the words the Capture
// tab of Settings uses: the reason, and what the user can do instead.

#pragma once

#include "platform/CaptureSupport.h"

#include <QString>
#include <QStringList>

namespace Vesko {

//! The reason, in a sentence; empty for None.
QString captureObstacleReason(CaptureObstacle obstacle);
//! What the user can do instead; empty for None.
QString captureObstacleAdvice(CaptureObstacle obstacle);

//! The program and arguments that open the keyboard-shortcut settings of
//! the desktop named by \a currentDesktop (XDG_CURRENT_DESKTOP, a list
//! separated by colons); empty for a desktop without such a page.
QStringList keyboardShortcutSettingsCommand(const QString &currentDesktop);

} // namespace Vesko
