// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/wayland/WaylandSession.h"

#include "platform/FrontApplicationNames.h"
#include "platform/Logging.h"
#include "platform/wayland/WaylandDataControl.h"
#include "platform/wayland/WaylandToplevels.h"
#include "platform/wayland/WaylandVirtualKeyboard.h"

#include <QPointer>
#include <QTimer>

namespace Vesko {

WaylandSession::WaylandSession(
    WaylandGlobals &globals, WaylandDataControl &dataControl, FrontLookup fallback)
    : m_dataControl(dataControl)
    , m_context(std::make_unique<QObject>())
    , m_toplevels(std::make_unique<WaylandToplevels>(globals))
    , m_keyboard(std::make_unique<WaylandVirtualKeyboard>(globals))
    , m_fallback(std::move(fallback))
{
    QObject *context = m_context.get();
    m_keyReleaseWait = [context](std::function<void()> then) {
        QTimer::singleShot(keyReleaseWaitMilliseconds, context, std::move(then));
    };
}

WaylandSession::~WaylandSession() = default;

bool WaylandSession::knowsFrontWindow() const
{
    return m_toplevels->isAvailable();
}

bool WaylandSession::readsSelection() const
{
    return m_dataControl.hasPrimarySelection();
}

bool WaylandSession::sendsCopy() const
{
    return m_keyboard->isAvailable();
}

CaptureCapabilities WaylandSession::capabilities() const
{
    CaptureCapabilities capabilities;
    if (readsSelection())
        capabilities.selection = CaptureCapabilities::Selection::PrimarySelection;
    if (knowsFrontWindow())
        capabilities.source = CaptureCapabilities::Source::ForeignToplevel;
    if (sendsCopy())
        capabilities.copy = CaptureCapabilities::Copy::SyntheticKeys;
    // Only sway runs a command on a lone Shift release (bindsym --release),
    // once its configuration says so.
    if (qEnvironmentVariableIsSet("SWAYSOCK"))
        capabilities.doubleShift = CaptureCapabilities::DoubleShift::CompositorCanBind;
    return capabilities;
}

void WaylandSession::setKeyReleaseWait(std::function<void(std::function<void()>)> wait)
{
    m_keyReleaseWait = std::move(wait);
}

void WaylandSession::frontApplication(std::function<void(std::optional<FrontApplication>)> done)
{
    if (!m_toplevels->isAvailable()) {
        if (m_fallback)
            m_fallback(std::move(done));
        else
            done(FrontApplication {}); // "Unknown", and the selection still read
        return;
    }
    const std::optional<WaylandToplevels::Toplevel> window = m_toplevels->activated();
    if (!window) {
        done(std::nullopt);
        return;
    }
    FrontApplication front;
    if (!window->title.isEmpty())
        front.windowTitle = window->title;
    const QString appID = window->appID;
    QStringList candidates;
    if (!appID.isEmpty())
        candidates.append(appID);
    m_entries.find(candidates, appID,
        [front, appID, done = std::move(done)](
            std::optional<X11DesktopEntries::Entry> entry) mutable {
            nameFrontApplication(front, entry, appID);
            done(front);
        });
}

void WaylandSession::readPrimarySelection(qint64, std::function<void(std::optional<QString>)> done)
{
    // The compositor does not say which client owns the selection: it is
    // read whoever set it.
    const QString format = WaylandDataControl::textFormat(
        m_dataControl.formats(WaylandDataControl::Selection::Primary));
    if (!m_dataControl.hasPrimarySelection() || format.isEmpty()) {
        done(std::nullopt);
        return;
    }
    m_dataControl.read(WaylandDataControl::Selection::Primary, format,
        [done = std::move(done)](std::optional<QByteArray> bytes) {
            if (bytes)
                done(QString::fromUtf8(*bytes));
            else
                done(std::nullopt);
        });
}

void WaylandSession::sendCopy(int attempt, std::function<void(bool)> done)
{
    // Never into a terminal, where the keys could mean something else.
    if (const auto window = m_toplevels->activated();
        window && X11DesktopEntries::isTerminalClass(window->appID)) {
        done(false);
        return;
    }
    if (!m_keyboard->isAvailable()) {
        done(false);
        return;
    }
    QPointer<QObject> context(m_context.get());
    WaylandVirtualKeyboard *keyboard = m_keyboard.get();
    auto send = [context, keyboard, done = std::move(done)] {
        if (context)
            done(keyboard->sendCopy());
    };
    if (attempt == 1)
        m_keyReleaseWait(std::move(send));
    else
        send();
}

} // namespace Vesko
