// SPDX-License-Identifier: GPL-3.0-or-later
//
// The program's launch, reopen and termination, in their order. The capture
// services that launch starts and termination releases are reached through
// hooks, so that the order stands here while those services live elsewhere.

#pragma once

#include <QObject>

#include <functional>

namespace Vesko {

class PanelController;
class Preferences;
class Store;

class AppDelegate : public QObject
{
    Q_OBJECT

public:
    //! What launch and termination call besides the Store and the panel. An
    //! empty hook does nothing; without isTrusted, capture counts as available.
    struct Hooks
    {
        std::function<void()> refreshTrust;
        std::function<bool()> isTrusted;
        std::function<void()> requestAccess;
        std::function<void()> showSettings;
        std::function<void()> startCapture;
        std::function<void()> unregisterHotKeys;
        //! The windows besides the panel (Settings, the note windows) take
        //! the application's new appearance.
        std::function<void()> refreshWindows;
    };

    AppDelegate(Store &store, Preferences &preferences, PanelController &panel, Hooks hooks,
        QObject *parent = nullptr);

    //! Appearance, taskbar presence, trust, capture, then the panel with the
    //! composer focused.
    void didFinishLaunching();
    //! A second launch: the panel with the composer focused.
    void handleReopen();
    //! Writes the library and releases the hot keys; runs once, whichever way
    //! the program ends.
    void willTerminate();
    //! Shows the panel in the taskbar or keeps it out, by showsInDock.
    void applyActivationPolicy();
    //! The appearance preference, applied to the application and then to
    //! every window, rebuilt in its colours: the panel's content, Settings
    //! and the note windows.
    void applyAppearance();
    //! Off for a start in the background (by a command or the bus): the
    //! launch then leaves the panel hidden until something asks for it.
    void setShowsPanelAtLaunch(bool shows) { m_showsPanelAtLaunch = shows; }

private:
    Store &m_store;
    Preferences &m_preferences;
    PanelController &m_panel;
    Hooks m_hooks;
    bool m_terminated = false;
    bool m_showsPanelAtLaunch = true;
};

} // namespace Vesko
