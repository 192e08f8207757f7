// SPDX-License-Identifier: GPL-3.0-or-later
//
// Which kind of desktop session Vesko runs in, as the session manager tells
// its programs through the environment.

#pragma once

namespace Vesko {

//! A Wayland session: XDG_SESSION_TYPE is "wayland", or WAYLAND_DISPLAY is
//! set. X11 programs run there under XWayland, where a global key grab fires
//! only while an X11 window has the focus, and other clients' keys and
//! selections are out of reach.
bool isWaylandSession();

} // namespace Vesko
