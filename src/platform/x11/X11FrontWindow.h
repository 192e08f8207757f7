// SPDX-License-Identifier: GPL-3.0-or-later
//
// The application in front of an X11 desktop: the window named by
// _NET_ACTIVE_WINDOW (or holding the input focus), its process, its title,
// and its application's name and id from the desktop entry its properties
// or window class point to. Terminal emulators are told apart: no synthetic
// key is ever typed into one.

#pragma once

#include "platform/DesktopSession.h"
#include "platform/x11/X11DesktopEntries.h"

#include <xcb/xcb.h>

namespace Vesko {

class X11Connection;

class X11FrontWindow
{
public:
    explicit X11FrontWindow(X11Connection &connection);

    //! The active window, or 0 when the desktop has none.
    xcb_window_t activeWindow();
    std::optional<FrontApplication> frontApplication();

private:
    std::optional<QString> windowTitle(xcb_window_t window);

    X11Connection &m_connection;
    X11DesktopEntries m_entries;
};

} // namespace Vesko
