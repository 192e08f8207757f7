// SPDX-License-Identifier: GPL-3.0-or-later
//
// The few window properties of an X11 desktop that Qt has no call for: being
// on all virtual desktops, activation on the user's behalf, and whether a
// compositing manager runs (without one, translucent windows are drawn solid
// and shaped). Away from X11 the first two do nothing, and the last answers
// yes, as Wayland always composites.

#pragma once

class QWindow;

namespace Vesko::X11Window {

//! Puts \a window on every virtual desktop, or back on the current one.
void setOnAllDesktops(QWindow *window, bool onAll);

//! Asks the window manager to activate \a window as a pager or task bar
//! does, for a window the user asked for, where the application's own
//! request was not followed.
void requestActivation(QWindow *window);

//! A compositing manager runs on the session's screen.
bool hasCompositingManager();

} // namespace Vesko::X11Window
