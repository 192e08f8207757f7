// SPDX-License-Identifier: GPL-3.0-or-later
//
// The tray's menu as a small dashboard: show or hide the panel, capture, add
// a note, tick off one of the project's first open notes, copy them all as a
// list, choose the section or the project, Settings and Quit. Filled afresh
// from the Store each time it opens; the panel's "More options" menu shows
// the same entries, so that nothing depends on a tray being there.

#pragma once

#include <functional>

class QMenu;

namespace Vesko {

class PanelState;
class Store;

//! What the menu's entries call beyond the Store and the panel's state.
struct MenuBarCommands
{
    //! The panel is on screen.
    std::function<bool()> isPanelShown;
    std::function<void()> hidePanel;
    //! Hides a panel that is on screen and active; brings it forward with the
    //! composer focused in every other case.
    std::function<void()> togglePanel;
    //! Brings the panel forward; with \a focusComposer the composer takes the keys.
    std::function<void(bool focusComposer)> showPanel;
    std::function<void()> captureSelection;
    std::function<void()> openSettings;
    std::function<void()> quit;
};

//! Empties \a menu, its submenus and groups included, and fills it again.
void rebuildMenuBarMenu(
    QMenu &menu, Store &store, PanelState &state, const MenuBarCommands &commands);

} // namespace Vesko
