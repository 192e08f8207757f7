// SPDX-License-Identifier: GPL-3.0-or-later

#include "shell/DesktopCapture.h"

#include "capture/AccessibilityPermission.h"
#include "capture/CaptureEngine.h"
#include "capture/DoubleShiftMonitor.h"
#include "capture/HotKeyCenter.h"
#include "capture/SelectionReader.h"
#include "panel/window/PanelController.h"
#include "platform/HotKeyRegistrar.h"
#include "platform/Logging.h"
#include "platform/SessionType.h"
#include "platform/ShiftTaps.h"
#include "platform/atspi/AtspiFrontApplication.h"
#include "platform/portal/PortalGlobalShortcuts.h"
#include "platform/portal/ShortcutTrigger.h"
#include "platform/qt/QtClipboard.h"
#include "platform/wayland/FocusSelectionReader.h"
#include "platform/wayland/FocusSelectionSession.h"
#include "platform/wayland/WaylandClipboard.h"
#include "platform/wayland/WaylandDataControl.h"
#include "platform/wayland/WaylandGlobals.h"
#include "platform/wayland/WaylandSession.h"
#include "platform/x11/X11Clipboard.h"
#include "platform/x11/X11HotKeys.h"
#include "platform/x11/X11KeyLayout.h"
#include "platform/x11/X11KeyMonitor.h"
#include "platform/x11/X11Session.h"
#include "shell/CaptureStatus.h"
#include "shell/Preferences.h"
#include "shell/SessionCapabilities.h"
#include "shell/Toast.h"

#include <QDBusConnection>
#include <QFile>
#include <QGuiApplication>
#include <QStandardPaths>
#include <QTimer>

namespace Vesko {

namespace {

//! The session of Qt on XWayland: an X11 client there reaches no other
//! client, so nothing is read and no key is sent.
class UnreachableSession : public DesktopSession
{
public:
    void frontApplication(std::function<void(std::optional<FrontApplication>)> done) override
    {
        done(FrontApplication {});
    }
    void readPrimarySelection(qint64, std::function<void(std::optional<QString>)> done) override
    {
        done(std::nullopt);
    }
    void sendCopy(int, std::function<void(bool)> done) override { done(false); }
    bool sendsCopy() const override { return false; }
};

//! KWin's configuration file, small: read whole, at once.
QString kwinConfiguration()
{
    QFile file(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
        + QStringLiteral("/kwinrc"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(file.read(1 << 20));
}

// Under Xwayland an X key grab fires only for X11 windows: a Wayland
// session is one whatever platform Qt runs on.
bool onWayland()
{
    return WaylandGlobals::isWaylandPlatform() || isWaylandSession();
}

std::unique_ptr<HotKeyRegistrar> makeRegistrar(PortalGlobalShortcuts *&portal)
{
    if (!onWayland())
        return std::make_unique<X11HotKeys>();
    auto shortcuts = std::make_unique<PortalGlobalShortcuts>(
        QDBusConnection::sessionBus(), QGuiApplication::desktopFileName());
    shortcuts->setShortcutNames([](int id) {
        const std::optional<HotKeyAction> action = hotKeyActionFromID(id);
        return action ? PortalGlobalShortcuts::Shortcut {rawValue(*action), title(*action)}
                      : PortalGlobalShortcuts::Shortcut {QString::number(id), QString()};
    });
    portal = shortcuts.get();
    return shortcuts;
}

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
    , m_panel(panel)
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
    } else if (onWayland()) {
        // Qt on XWayland: the X11 code is never asked for in a Wayland session.
        m_clipboard = std::make_unique<QtClipboard>();
    } else {
        m_clipboard = std::make_unique<X11Clipboard>();
    }
    m_registrar = makeRegistrar(m_portal);
    m_hotKeys = std::make_unique<HotKeyCenter>(*m_registrar);
    if (m_wayland)
        makeWaylandSession();
    m_permission = std::make_unique<AccessibilityPermission>([this] {
        // Capture works once the selected text can be read; what else is
        // missing only needs setting up.
        return onWayland() ? canCaptureAtAll(capabilities()) : X11Session::isCaptureAvailable();
    });
}

DesktopCapture::~DesktopCapture() = default;

void DesktopCapture::makeWaylandSession()
{
    m_accessibleFront = std::make_unique<AtspiFrontApplication>();
    AtspiFrontApplication *accessibleFront = m_accessibleFront.get();
    auto session = std::make_unique<WaylandSession>(
        *m_wayland, *m_dataControl, [accessibleFront](auto done) {
            // No active frame on the bus (an application that keeps off it,
            // or no bus) still captures, under "Unknown".
            accessibleFront->frontApplicationOrUnknown(std::move(done));
        });
    if (PortalGlobalShortcuts *portal = m_portal) {
        // With the desktop's shortcuts the portal says when their keys are
        // up, sooner than the session's fixed wait; never later, since its
        // word may not come.
        session->setKeyReleaseWait([portal](std::function<void()> then) {
            if (portal->state() != PortalShortcutsState::Bound) {
                QTimer::singleShot(
                    WaylandSession::keyReleaseWaitMilliseconds, portal, std::move(then));
                return;
            }
            if (!portal->areKeysHeld()) {
                then();
                return;
            }
            auto pending = std::make_shared<std::function<void()>>(std::move(then));
            auto connection = std::make_shared<QMetaObject::Connection>();
            auto finish = [pending, connection] {
                QObject::disconnect(*connection);
                if (*pending)
                    std::exchange(*pending, nullptr)();
            };
            *connection = QObject::connect(portal, &PortalGlobalShortcuts::keysReleased, portal, finish);
            QTimer::singleShot(WaylandSession::keyReleaseWaitMilliseconds, portal, finish);
        });
    }
    m_waylandSession = std::move(session);
    if (m_dataControl->isAvailable())
        return;
    // No data control (GNOME): the selection is read as the panel takes the
    // focus, the front application as the compositor's session finds it.
    PanelController *panel = &m_panel;
    m_focusSelection = std::make_unique<FocusSelectionReader>(
        FocusSelectionReader::Panel {[panel] { return panel->isPanelShown(); },
            [panel] { panel->show(true, false); }, [panel] { panel->hide(); }},
        *m_wayland);
    WaylandSession *front = m_waylandSession.get();
    m_session = std::make_unique<FocusSelectionSession>(
        [front](auto done) { front->frontApplication(std::move(done)); }, *m_focusSelection);
}

DesktopSession &DesktopCapture::session()
{
    if (m_session)
        return *m_session;
    return *m_waylandSession;
}

CaptureEngine &DesktopCapture::engine()
{
    if (!m_engine) {
        if (onWayland()) {
            // Listening only where the compositor can pass Shift taps at all.
            auto taps = std::make_unique<ShiftTaps>(std::function<double()> {}, [this] {
                return m_shiftTapArrived
                    || capabilities().doubleShift != CaptureCapabilities::DoubleShift::None;
            });
            m_shiftTaps = taps.get();
            m_keys = std::move(taps);
            if (!m_wayland)
                m_session = std::make_unique<UnreachableSession>();
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
            session(), *m_clipboard, [permission] { return permission->isTrusted(); });
        m_engine = std::make_unique<CaptureEngine>(CaptureEngine::Services {m_store, m_preferences,
            *m_hotKeys, *m_doubleShift, *m_reader, *m_permission, *m_feedback, *m_clipboard});
    }
    return *m_engine;
}

CaptureCapabilities DesktopCapture::capabilities() const
{
    using W = SessionFindings::Windowing;
    SessionFindings found;
    if (m_waylandSession) {
        found.windowing = W::Wayland;
        found.compositor = m_waylandSession->capabilities();
        found.accessibilityBus = m_accessibleFront->isAvailable();
        found.dataControl = m_dataControl->isAvailable();
        found.readsOnPanelFocus = m_focusSelection && m_focusSelection->isAvailable();
        found.kwinPassesShiftTaps = shortcutDesktop(currentDesktopNames()) == ShortcutDesktop::Kde
            && kwinPassesShiftTaps(kwinConfiguration());
        found.shiftTapArrived = m_shiftTapArrived;
    } else if (onWayland()) {
        found.windowing = W::XWayland;
    } else {
        found.x11CaptureAvailable = X11Session::isCaptureAvailable();
    }
    found.portal = portalState();
    return sessionCapabilities(found);
}

std::optional<PortalShortcutsState> DesktopCapture::portalState() const
{
    if (!m_portal)
        return std::nullopt;
    return m_portal->state();
}

void DesktopCapture::shiftTapped()
{
    if (m_shiftTaps) {
        noteShiftTap();
        m_shiftTaps->tap();
    }
    else
        qCInfo(lcDoubleShift,
            "A Shift tap from the command line, where the keys are heard directly: ignored");
}

void DesktopCapture::shiftPressed()
{
    if (m_shiftTaps) {
        noteShiftTap();
        m_shiftTaps->press();
    }
}

void DesktopCapture::noteShiftTap()
{
    // The compositor passes Shift taps after all (its configuration changed
    // since the listener was last asked to start): listen from this tap on.
    m_shiftTapArrived = true;
    if (m_engine && !m_shiftTaps->isRunning())
        m_engine->refreshDoubleShift();
}

const KeyLayout *DesktopCapture::keyLayout()
{
    if (!m_keyLayout && QGuiApplication::platformName() == QLatin1String("xcb") && !onWayland()) {
        auto layout = std::make_unique<X11KeyLayout>();
        if (layout->isValid())
            m_keyLayout = std::move(layout);
    }
    if (!m_keyLayout && onWayland())
        m_keyLayout = std::make_unique<DefaultKeyLayout>();
    return m_keyLayout.get();
}

AppDelegate::Hooks DesktopCapture::launchHooks()
{
    AppDelegate::Hooks hooks;
    hooks.refreshTrust = [this] { m_permission->refresh(); };
    hooks.isTrusted = [this] { return m_permission->isTrusted(); };
    hooks.requestAccess = [this] {
        if (onWayland() && !m_wayland)
            qCInfo(lcCapture,
                "Capture is not available: Vesko runs on XWayland, which reaches no other "
                "application; start it with QT_QPA_PLATFORM=wayland");
        else if (onWayland())
            qCInfo(lcCapture,
                "Capture is not available: this desktop does not let Vesko read "
                "the selected text");
        else
            qCInfo(lcCapture,
                "Capture is not available: this session has no X server with the "
                "XInput 2, XTEST and X-Resource extensions");
        m_permission->requestAccess();
    };
    hooks.startCapture = [this] {
        // The portal is asked first; the shortcuts are bound once it answers.
        if (m_portal)
            m_portal->start();
        engine().start();
    };
    hooks.unregisterHotKeys = [this] { m_hotKeys->unregisterAll(); };
    return hooks;
}

} // namespace Vesko
