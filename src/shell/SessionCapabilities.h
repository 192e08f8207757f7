// SPDX-License-Identifier: GPL-3.0-or-later
//
// What capture can do in a session, from what was found there: the X
// server's extensions, or on Wayland what the compositor's protocols give,
// the accessibility bus, the panel's own focus read, the desktop's
// shortcuts portal and whether KWin passes Shift taps to Vesko.

#pragma once

#include "platform/CaptureCapabilities.h"
#include "platform/portal/PortalShortcutsState.h"

#include <optional>

namespace Vesko {

struct SessionFindings
{
    enum class Windowing {
        X11,
        //! Qt on the compositor's own protocol.
        Wayland,
        //! A Wayland session with Qt on XWayland: no other client is reached.
        XWayland,
    };
    Windowing windowing = Windowing::X11;
    //! X11: the server has what capture needs.
    bool x11CaptureAvailable = false;
    //! Wayland: what the compositor's protocols give.
    CaptureCapabilities compositor;
    //! Wayland: the accessibility bus answers.
    bool accessibilityBus = false;
    //! Wayland: the compositor offers data control.
    bool dataControl = false;
    //! Wayland without data control: the selection can be read as the
    //! panel takes the focus.
    bool readsOnPanelFocus = false;
    //! Where Vesko asked the desktop for its shortcuts.
    std::optional<PortalShortcutsState> portal;
    //! KWin calls Vesko on each lone Shift release (kwinrc).
    bool kwinPassesShiftTaps = false;
    //! A Shift tap from the compositor has come in this session.
    bool shiftTapArrived = false;
};

CaptureCapabilities sessionCapabilities(const SessionFindings &found);

} // namespace Vesko
