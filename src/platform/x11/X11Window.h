// SPDX-License-Identifier: GPL-3.0-or-later
//
// The few window properties of an X11 desktop that Qt has no call for: being
// on all virtual desktops, activation on the user's behalf, whether a
// compositing manager runs (without one, translucent windows are drawn solid
// and shaped), and whether it blurs what lies behind a window that asks for
// it (KWin's blur effect). Away from X11 the first two do nothing, the third
// answers yes, as Wayland always composites, and no blur is offered.

#pragma once

class QRegion;
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

//! Asks the compositor to blur what lies behind \a window within \a region
//! (in the window's pixels), or to stop with an empty region. True when the
//! compositor offers the blur, so that the window may let its background
//! through; false, and nothing asked, otherwise.
bool setBlurBehind(QWindow *window, const QRegion &region);

} // namespace Vesko::X11Window
