// SPDX-License-Identifier: GPL-3.0-or-later

#include "shell/DesktopCapture.h"

#include "capture/AccessibilityPermission.h"
#include "capture/CaptureEngine.h"
#include "capture/DoubleShiftMonitor.h"
#include "capture/HotKeyCenter.h"
#include "capture/SelectionReader.h"
#include "panel/PanelController.h"
#include "platform/Logging.h"
#include "platform/atspi/AtspiFrontApplication.h"
#include "platform/qt/FocusSelectionReader.h"
#include "platform/qt/FocusSelectionSession.h"
#include "platform/x11/X11Clipboard.h"
#include "platform/x11/X11HotKeys.h"
#include "platform/x11/X11KeyLayout.h"
#include "platform/x11/X11KeyMonitor.h"
#include "platform/x11/X11Session.h"
#include "shell/Preferences.h"
#include "shell/Toast.h"

#include <QGuiApplication>

namespace Vesko {

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
    , m_panel(panel)
    , m_clipboard(std::make_unique<X11Clipboard>())
    , m_registrar(std::make_unique<X11HotKeys>())
    , m_hotKeys(std::make_unique<HotKeyCenter>(*m_registrar))
    , m_permission(std::make_unique<AccessibilityPermission>(onWaylandPlatform()
              ? &FocusSelectionReader::isAvailable
              : &X11Session::isCaptureAvailable))
    , m_feedback(std::make_unique<Feedback>(panel, toasts))
{ }

DesktopCapture::~DesktopCapture() = default;

CaptureEngine &DesktopCapture::engine()
{
    if (!m_engine) {
        m_keys = std::make_unique<X11KeyMonitor>();
        if (onWaylandPlatform())
            m_session = makeFocusSelectionSession();
        else
            m_session = std::make_unique<X11Session>();
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

bool DesktopCapture::onWaylandPlatform()
{
    return QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
}

std::unique_ptr<DesktopSession> DesktopCapture::makeFocusSelectionSession()
{
    // No data control (GNOME): the selection is read as the panel takes the
    // focus, the front application from the accessibility bus.
    PanelController *panel = &m_panel;
    m_focusSelection = std::make_unique<FocusSelectionReader>(
        FocusSelectionReader::Panel {[panel] { return panel->isPanelShown(); },
            [panel] { panel->show(true, false); }, [panel] { panel->hide(); }});
    m_accessibleFront = std::make_unique<AtspiFrontApplication>();
    AtspiFrontApplication *front = m_accessibleFront.get();
    return std::make_unique<FocusSelectionSession>(
        [front](auto done) { front->frontApplication(std::move(done)); }, *m_focusSelection);
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
