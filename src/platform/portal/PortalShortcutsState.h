// SPDX-License-Identifier: GPL-3.0-or-later
//
// Where the desktop's global shortcuts stand, as the portal client finds it;
// the Capture tab words it.

#pragma once

namespace Vesko {

enum class PortalShortcutsState {
    //! The portal has not answered yet whether it offers global shortcuts.
    Probing,
    //! No portal, or one without global shortcuts.
    Absent,
    //! Making the session or binding the shortcuts.
    Connecting,
    Bound,
    //! The desktop (or the user in its dialog) said no.
    Refused,
    //! The desktop closed the session.
    Closed,
    //! The portal did not answer in time.
    NoAnswer,
};

} // namespace Vesko
