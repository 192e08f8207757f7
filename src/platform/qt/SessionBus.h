// SPDX-License-Identifier: GPL-3.0-or-later
//
// Keeps libdbus from starting a session bus of its own. Where the session
// announces no bus (no DBUS_SESSION_BUS_ADDRESS, nothing at
// $XDG_RUNTIME_DIR/bus), libdbus would "autolaunch" one for the X display
// the first time anything asks for the session bus: Qt's tray icon, its
// theme, Vesko's own name on the bus. It forks from a thread of the process
// and holds the caller until that bus answers. Vesko goes without a bus
// instead, and its local socket serves.

#pragma once

namespace Vesko {

//! Points DBUS_SESSION_BUS_ADDRESS at the session's usual place for its bus
//! when the session announces none, so that every connection to the session
//! bus fails at once instead. Called first thing, before any thread starts.
void keepDBusFromStartingABus();

} // namespace Vesko
