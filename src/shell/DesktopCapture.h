// SPDX-License-Identifier: GPL-3.0-or-later
//
// Capture as the running program has it: the key monitor, hot keys, session
// and clipboard of the windowing system Qt runs on (X11, or a Wayland
// compositor's protocols, where the compositor reports Shift taps through
// `vesko shift`), and the capture logic over them, answering with the panel
// and the toast. Made once, after the Store and the Preferences.

#pragma once

#include "shell/AppDelegate.h"

#include <QObject>

#include <memory>

namespace Vesko {

class AccessibilityPermission;
class Clipboard;
class DesktopSession;
class HotKeyRegistrar;
class KeyLayout;
class KeyMonitor;
class ShiftTaps;
class WaylandDataControl;
class WaylandGlobals;
class CaptureEngine;
class DoubleShiftMonitor;
class HotKeyCenter;
class PanelController;
class Preferences;
class SelectionReader;
class Store;
class ToastPresenter;
class X11KeyLayout;

class DesktopCapture : public QObject
{
    Q_OBJECT

public:
    DesktopCapture(Store &store, Preferences &preferences, PanelController &panel,
        ToastPresenter &toasts, QObject *parent = nullptr);
    ~DesktopCapture() override;

    HotKeyCenter &hotKeys() { return *m_hotKeys; }
    //! The keyboard layout that names keys on screen, following the
    //! desktop's layout as it changes; none off X11.
    const KeyLayout *keyLayout();
    AccessibilityPermission &permission() { return *m_permission; }
    //! Made on first use, at launch.
    CaptureEngine &engine();

    //! One lone Shift tap the compositor reported (`vesko shift`): fed to
    //! the double-Shift gesture where no key monitor runs; ignored elsewhere.
    void shiftTapped();

    //! The launch and termination steps that belong to capture.
    AppDelegate::Hooks launchHooks();

private:
    class Feedback;

    Store &m_store;
    Preferences &m_preferences;
    std::unique_ptr<WaylandGlobals> m_wayland;
    std::unique_ptr<WaylandDataControl> m_dataControl;
    std::unique_ptr<Clipboard> m_clipboard;
    std::unique_ptr<HotKeyRegistrar> m_registrar;
    std::unique_ptr<HotKeyCenter> m_hotKeys;
    std::unique_ptr<AccessibilityPermission> m_permission;
    std::unique_ptr<KeyMonitor> m_keys;
    ShiftTaps *m_shiftTaps = nullptr; //!< m_keys on Wayland
    std::unique_ptr<DesktopSession> m_session;
    std::unique_ptr<DoubleShiftMonitor> m_doubleShift;
    std::unique_ptr<SelectionReader> m_reader;
    std::unique_ptr<Feedback> m_feedback;
    std::unique_ptr<CaptureEngine> m_engine;
    std::unique_ptr<X11KeyLayout> m_keyLayout;
};

} // namespace Vesko
