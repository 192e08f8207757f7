// SPDX-License-Identifier: GPL-3.0-or-later

#include "shell/DesktopCapture.h"

#include "capture/AccessibilityPermission.h"
#include "capture/CaptureEngine.h"
#include "capture/DoubleShiftMonitor.h"
#include "capture/HotKeyCenter.h"
#include "capture/SelectionReader.h"
#include "panel/PanelController.h"
#include "platform/HotKeyRegistrar.h"
#include "platform/Logging.h"
#include "platform/ShiftTaps.h"
#include "platform/qt/QtClipboard.h"
#include "platform/wayland/WaylandClipboard.h"
#include "platform/wayland/WaylandDataControl.h"
#include "platform/wayland/WaylandGlobals.h"
#include "platform/wayland/WaylandSession.h"
#include "platform/x11/X11Clipboard.h"
#include "platform/x11/X11HotKeys.h"
#include "platform/x11/X11KeyLayout.h"
#include "platform/x11/X11KeyMonitor.h"
#include "platform/x11/X11Session.h"
#include "shell/Preferences.h"
#include "shell/Toast.h"

#include <QGuiApplication>

namespace Vesko {

namespace {

//! Hot keys where a program cannot have global keys: the desktop binds
//! `vesko` commands instead.
class NoHotKeys : public HotKeyRegistrar
{
public:
    bool isAvailable() const override { return false; }
    void installHandler(std::function<void(int)>) override { }
    void removeHandler() override { }
    int registerKey(int, quint16, quint64) override { return -1; }
    void unregisterKey(int) override { }
};

} // namespace

class DesktopCapture::Feedback : public CaptureFeedback
{
public:
    Feedback(PanelController &panel, ToastPresenter &toasts)
        : m_panel(panel)
        , m_toasts(toasts)
    { }

    void showPanel(bool activate, bool focusComposer) override
    {
        m_panel.show(activate, focusComposer);
    }
    void togglePanel() override { m_panel.toggle(); }
    void toast(const QString &message, const QString &symbol) override
    {
        m_toasts.present(message, symbol, ToastPresenter::standardDurationMilliseconds);
    }

private:
    PanelController &m_panel;
    ToastPresenter &m_toasts;
};

DesktopCapture::DesktopCapture(Store &store, Preferences &preferences, PanelController &panel,
    ToastPresenter &toasts, QObject *parent)
    : QObject(parent)
    , m_store(store)
    , m_preferences(preferences)
    , m_feedback(std::make_unique<Feedback>(panel, toasts))
{
    if (WaylandGlobals::isWaylandPlatform()) {
        // No X11 object at all: XWayland knows only its own clients.
        m_wayland = std::make_unique<WaylandGlobals>();
        m_dataControl = std::make_unique<WaylandDataControl>(*m_wayland);
        if (m_dataControl->isAvailable())
            m_clipboard = std::make_unique<WaylandClipboard>(*m_dataControl);
        else
            m_clipboard = std::make_unique<QtClipboard>();
        m_registrar = std::make_unique<NoHotKeys>();
        WaylandDataControl *dataControl = m_dataControl.get();
        m_permission = std::make_unique<AccessibilityPermission>(
            [dataControl] { return dataControl->hasPrimarySelection(); });
    } else {
        m_clipboard = std::make_unique<X11Clipboard>();
        m_registrar = std::make_unique<X11HotKeys>();
        m_permission = std::make_unique<AccessibilityPermission>(&X11Session::isCaptureAvailable);
    }
    m_hotKeys = std::make_unique<HotKeyCenter>(*m_registrar);
}

DesktopCapture::~DesktopCapture() = default;

CaptureEngine &DesktopCapture::engine()
{
    if (!m_engine) {
        if (m_wayland) {
            auto taps = std::make_unique<ShiftTaps>();
            m_shiftTaps = taps.get();
            m_keys = std::move(taps);
            m_session = std::make_unique<WaylandSession>(*m_wayland, *m_dataControl);
        } else {
            m_keys = std::make_unique<X11KeyMonitor>();
            m_session = std::make_unique<X11Session>();
        }
        AccessibilityPermission *permission = m_permission.get();
        Preferences *preferences = &m_preferences;
        m_doubleShift = std::make_unique<DoubleShiftMonitor>(
            *m_keys, [preferences] { return preferences->doubleShiftInterval(); },
            [permission] { return permission->isTrusted(); });
        m_reader = std::make_unique<SelectionReader>(
            *m_session, *m_clipboard, [permission] { return permission->isTrusted(); });
        m_engine = std::make_unique<CaptureEngine>(CaptureEngine::Services {m_store, m_preferences,
            *m_hotKeys, *m_doubleShift, *m_reader, *m_permission, *m_feedback, *m_clipboard});
    }
    return *m_engine;
}

void DesktopCapture::shiftTapped()
{
    if (m_shiftTaps)
        m_shiftTaps->tap();
    else
        qCInfo(lcDoubleShift,
            "A Shift tap from the command line, where the keys are heard directly: ignored");
}

const KeyLayout *DesktopCapture::keyLayout()
{
    if (!m_keyLayout && QGuiApplication::platformName() == QLatin1String("xcb")) {
        m_keyLayout = std::make_unique<X11KeyLayout>();
        if (!m_keyLayout->isValid())
            m_keyLayout.reset();
    }
    return m_keyLayout.get();
}

AppDelegate::Hooks DesktopCapture::launchHooks()
{
    AppDelegate::Hooks hooks;
    hooks.refreshTrust = [this] { m_permission->refresh(); };
    hooks.isTrusted = [this] { return m_permission->isTrusted(); };
    hooks.requestAccess = [this] {
        if (m_wayland)
            qCInfo(lcCapture,
                "Capture is not available: the compositor offers no data control "
                "for the primary selection");
        else
            qCInfo(lcCapture,
                "Capture is not available: this session has no X server with the "
                "XInput 2, XTEST and X-Resource extensions");
        m_permission->requestAccess();
    };
    hooks.startCapture = [this] { engine().start(); };
    hooks.unregisterHotKeys = [this] { m_hotKeys->unregisterAll(); };
    return hooks;
}

} // namespace Vesko
