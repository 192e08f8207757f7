// SPDX-License-Identifier: GPL-3.0-or-later
//
// What keeps capture from working in this session, as the desktop layer
// finds it; Settings words it for the user.

#pragma once

namespace Vesko {

enum class CaptureObstacle {
    None,
    //! A Wayland session, where other clients' keys and selections are out of reach.
    WaylandSession,
    //! A Wayland session with Qt on XWayland, which reaches no other client.
    XWayland,
    //! Not on an X server at all (another windowing system, or none).
    NoXServer,
    NoXInput2,
    NoXTest,
    NoXResource,
};

} // namespace Vesko
