// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/x11/X11Session.h"

#include "platform/SessionType.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11FrontWindow.h"
#include "platform/x11/X11Keyboard.h"
#include "platform/x11/X11PrimarySelection.h"
#include "platform/x11/X11SelectionConverter.h"
#include "platform/x11/X11SyntheticKeys.h"

#include <QGuiApplication>

namespace Vesko {

X11Session::X11Session()
    : m_connection(std::make_unique<X11Connection>())
    , m_keyboard(std::make_unique<X11Keyboard>(m_connection->get()))
    , m_converter(std::make_unique<X11SelectionConverter>(*m_connection))
    , m_front(std::make_unique<X11FrontWindow>(*m_connection))
    , m_primary(std::make_unique<X11PrimarySelection>(*m_connection, *m_converter))
    , m_keys(std::make_unique<X11SyntheticKeys>(*m_connection, *m_keyboard))
{
    m_connection->setEventHandler([this](xcb_generic_event_t *event) {
        if ((event->response_type & 0x7F) == XCB_MAPPING_NOTIFY)
            m_keyboard->reload();
        else
            m_converter->handleEvent(event);
    });
}

X11Session::~X11Session() = default;

bool X11Session::isCaptureAvailable()
{
    return captureObstacle() == CaptureObstacle::None;
}

CaptureObstacle X11Session::captureObstacle()
{
    // Under Xwayland the X server only knows its own clients: a Wayland
    // session is one whatever platform Qt runs on.
    if (QGuiApplication::platformName().startsWith(u"wayland"))
        return CaptureObstacle::WaylandSession;
    if (isWaylandSession())
        return CaptureObstacle::XWayland;
    if (QGuiApplication::platformName() != QLatin1String("xcb"))
        return CaptureObstacle::NoXServer;
    X11Connection connection;
    if (!connection.isValid())
        return CaptureObstacle::NoXServer;
    if (!connection.extensionOpcode("XInputExtension"))
        return CaptureObstacle::NoXInput2;
    if (!connection.extensionOpcode("XTEST"))
        return CaptureObstacle::NoXTest;
    if (!connection.extensionOpcode("X-Resource"))
        return CaptureObstacle::NoXResource;
    return CaptureObstacle::None;
}

void X11Session::frontApplication(std::function<void(std::optional<FrontApplication>)> done)
{
    m_front->frontApplication(std::move(done));
}

void X11Session::readPrimarySelection(
    qint64 processID, std::function<void(std::optional<QString>)> done)
{
    m_primary->read(processID, std::move(done));
}

void X11Session::sendCopy(int attempt, std::function<void(bool)> done)
{
    m_keys->sendCopy(attempt == 1 ? m_front->activeWindow() : 0, std::move(done));
}

} // namespace Vesko
