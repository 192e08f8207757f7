// SPDX-License-Identifier: GPL-3.0-or-later
//
// What a process's start says about the application it is: the desktop
// entry the launcher named in its environment, and the application id in
// the name of the systemd unit the desktop started it in. Read from /proc,
// which never waits.

#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace Vesko {

//! The desktop entry ids the start of \a processID names, the surest first:
//! GIO_LAUNCHED_DESKTOP_FILE where it was set for this very process (a child
//! inherits its parent's), then the application id of its unit.
QStringList launchedDesktopEntries(qint64 processID);

//! The application id in a systemd unit name as desktops start programs:
//! app[-LAUNCHER]-ID-RANDOM.scope or app[-LAUNCHER]-ID[@RANDOM].service,
//! dashes inside ID escaped as \x2d. Nothing for any other unit.
std::optional<QString> applicationIDOfUnit(const QString &unit);

} // namespace Vesko
