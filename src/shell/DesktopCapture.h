// SPDX-License-Identifier: GPL-3.0-or-later
//
// Capture as the running program has it: the X11 key monitor, hot keys,
// session and clipboard, and the capture logic over them, answering with the
// panel and the toast. Made once, after the Store and the Preferences.

#pragma once

#include "shell/AppDelegate.h"

#include <QObject>

#include <memory>

namespace Vesko {

class AccessibilityPermission;
class AtspiFrontApplication;
class DesktopSession;
class FocusSelectionReader;
class KeyLayout;
class CaptureEngine;
class DoubleShiftMonitor;
class HotKeyCenter;
class PanelController;
class Preferences;
class SelectionReader;
class Store;
class ToastPresenter;
class X11Clipboard;
class X11HotKeys;
class X11KeyLayout;
class X11KeyMonitor;
class X11Session;

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

    //! The launch and termination steps that belong to capture.
    AppDelegate::Hooks launchHooks();

private:
    class Feedback;

    static bool onWaylandPlatform();
    //! Capture where the compositor offers no data control.
    std::unique_ptr<DesktopSession> makeFocusSelectionSession();

    Store &m_store;
    Preferences &m_preferences;
    PanelController &m_panel;
    std::unique_ptr<X11Clipboard> m_clipboard;
    std::unique_ptr<X11HotKeys> m_registrar;
    std::unique_ptr<HotKeyCenter> m_hotKeys;
    std::unique_ptr<AccessibilityPermission> m_permission;
    std::unique_ptr<X11KeyMonitor> m_keys;
    std::unique_ptr<FocusSelectionReader> m_focusSelection;
    std::unique_ptr<AtspiFrontApplication> m_accessibleFront;
    std::unique_ptr<DesktopSession> m_session;
    std::unique_ptr<DoubleShiftMonitor> m_doubleShift;
    std::unique_ptr<SelectionReader> m_reader;
    std::unique_ptr<Feedback> m_feedback;
    std::unique_ptr<CaptureEngine> m_engine;
    std::unique_ptr<X11KeyLayout> m_keyLayout;
};

} // namespace Vesko
