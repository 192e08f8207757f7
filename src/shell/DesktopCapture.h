// SPDX-License-Identifier: GPL-3.0-or-later
//
// Capture as the running program has it: the key monitor, hot keys, session
// and clipboard of the windowing system Qt runs on (X11, or a Wayland
// compositor's protocols, where the compositor reports Shift taps through
// `vesko shift` and the hot keys come from the desktop's global-shortcuts
// portal; without data control the selection is read as the panel takes the
// focus and the front application comes from the accessibility bus), and the
// capture logic over them, answering with the panel and the toast. Made once,
// after the Store and the Preferences.

#pragma once

#include "platform/CaptureCapabilities.h"
#include "platform/portal/PortalShortcutsState.h"
#include "shell/AppDelegate.h"

#include <QObject>

#include <memory>
#include <optional>

namespace Vesko {

class AccessibilityPermission;
class AtspiFrontApplication;
class CaptureEngine;
class Clipboard;
class DesktopSession;
class DoubleShiftMonitor;
class FocusSelectionReader;
class HotKeyCenter;
class HotKeyRegistrar;
class KeyLayout;
class KeyMonitor;
class PanelController;
class PortalGlobalShortcuts;
class Preferences;
class SelectionReader;
class ShiftTaps;
class Store;
class ToastPresenter;
class WaylandDataControl;
class WaylandGlobals;
class WaylandSession;

class DesktopCapture : public QObject
{
    Q_OBJECT

public:
    DesktopCapture(Store &store, Preferences &preferences, PanelController &panel,
        ToastPresenter &toasts, QObject *parent = nullptr);
    ~DesktopCapture() override;

    HotKeyCenter &hotKeys() { return *m_hotKeys; }
    //! The keyboard layout that names keys on screen, following the
    //! desktop's layout as it changes on X11; elsewhere the default layout.
    const KeyLayout *keyLayout();
    AccessibilityPermission &permission() { return *m_permission; }
    //! What capture can do in this session, each capability found on its own.
    CaptureCapabilities capabilities() const;
    //! Where the desktop's global shortcuts stand; nothing off Wayland.
    std::optional<PortalShortcutsState> portalState() const;
    //! The global-shortcuts portal client on a Wayland session, else null.
    PortalGlobalShortcuts *portal() const { return m_portal; }
    //! Made on first use, at launch.
    CaptureEngine &engine();

    //! One lone Shift tap the compositor reported (`vesko shift`, or KWin
    //! calling ShiftTapped on the bus): fed to the double-Shift gesture
    //! where no key monitor runs; ignored elsewhere.
    void shiftTapped();
    //! A Shift press the compositor reported (`vesko shift-press`), so that
    //! the next tap's hold is known.
    void shiftPressed();

    //! The launch and termination steps that belong to capture.
    AppDelegate::Hooks launchHooks();

private:
    class Feedback;

    //! A tap or press came from the compositor: it passes them.
    void noteShiftTap();

    void makeWaylandSession();
    //! The session capture reads from: X11's, the compositor's, or the
    //! panel's focus over the compositor's.
    DesktopSession &session();

    Store &m_store;
    Preferences &m_preferences;
    PanelController &m_panel;
    std::unique_ptr<WaylandGlobals> m_wayland;
    std::unique_ptr<WaylandDataControl> m_dataControl;
    //! On Qt's wayland platform: the front application from the
    //! accessibility bus, where the compositor keeps its windows to itself.
    std::unique_ptr<AtspiFrontApplication> m_accessibleFront;
    //! On Qt's wayland platform, made with the data control.
    std::unique_ptr<WaylandSession> m_waylandSession;
    //! On Qt's wayland platform without data control.
    std::unique_ptr<FocusSelectionReader> m_focusSelection;
    //! X11's session, or the focus reader's over the compositor's.
    std::unique_ptr<DesktopSession> m_session;
    std::unique_ptr<Clipboard> m_clipboard;
    //! Set with the registrar on a Wayland session.
    PortalGlobalShortcuts *m_portal = nullptr;
    std::unique_ptr<HotKeyRegistrar> m_registrar;
    std::unique_ptr<HotKeyCenter> m_hotKeys;
    std::unique_ptr<AccessibilityPermission> m_permission;
    std::unique_ptr<KeyMonitor> m_keys;
    ShiftTaps *m_shiftTaps = nullptr; //!< m_keys on Wayland
    //! A Shift tap or press came from the compositor in this session.
    bool m_shiftTapArrived = false;
    std::unique_ptr<DoubleShiftMonitor> m_doubleShift;
    std::unique_ptr<SelectionReader> m_reader;
    std::unique_ptr<Feedback> m_feedback;
    std::unique_ptr<CaptureEngine> m_engine;
    std::unique_ptr<KeyLayout> m_keyLayout;
};

} // namespace Vesko
