// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/wayland/WaylandGlobals.h"

#include "platform/Logging.h"

#include <QGuiApplication>
#include <qpa/qplatformnativeinterface.h>

#include <wayland-client.h>

#include <algorithm>

namespace Vesko {

bool WaylandGlobals::isWaylandPlatform()
{
    return QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
}

namespace {

wl_display *qtDisplay()
{
    if (!WaylandGlobals::isWaylandPlatform())
        return nullptr;
    QPlatformNativeInterface *native = QGuiApplication::platformNativeInterface();
    if (!native)
        return nullptr;
    return static_cast<wl_display *>(
        native->nativeResourceForIntegration(QByteArrayLiteral("wl_display")));
}

} // namespace

WaylandGlobals::WaylandGlobals(QObject *parent)
    : WaylandGlobals(qtDisplay(), parent)
{ }

WaylandGlobals::WaylandGlobals(wl_display *display, QObject *parent)
    : QObject(parent)
    , m_display(display)
{
    if (!m_display)
        return;
    static const wl_registry_listener registryListener = {
        &WaylandGlobals::announce,
        &WaylandGlobals::withdraw,
    };
    m_registry = wl_display_get_registry(m_display);
    wl_registry_add_listener(m_registry, &registryListener, this);
    // One round trip: every global is announced before anything binds.
    wl_display_roundtrip(m_display);
}

WaylandGlobals::~WaylandGlobals()
{
    if (m_seat)
        wl_seat_destroy(m_seat);
    if (m_registry)
        wl_registry_destroy(m_registry);
    flush();
}

void WaylandGlobals::announce(
    void *data, wl_registry *registry, quint32 name, const char *interface, quint32 version)
{
    auto *self = static_cast<WaylandGlobals *>(data);
    const QByteArray key(interface);
    self->m_globals.insert(key, Global {name, version});
    if (key == "wl_seat" && !self->m_seat) {
        self->m_seat = static_cast<wl_seat *>(
            wl_registry_bind(registry, name, &wl_seat_interface, std::min(version, 1u)));
        self->m_seatName = name;
    }
    Q_EMIT self->announced(key);
}

void WaylandGlobals::withdraw(void *data, wl_registry *, quint32 name)
{
    auto *self = static_cast<WaylandGlobals *>(data);
    for (auto it = self->m_globals.begin(); it != self->m_globals.end(); ++it) {
        if (it->name == name) {
            qCInfo(lcCapture, "The compositor withdrew %s", it.key().constData());
            self->m_globals.erase(it);
            break;
        }
    }
    // The users let go of their objects first: they were made on this seat.
    Q_EMIT self->withdrawn(name);
    if (name == self->m_seatName && self->m_seat) {
        wl_seat_destroy(self->m_seat);
        self->m_seat = nullptr;
        self->m_seatName = 0;
    }
}

wl_proxy *WaylandGlobals::bind(const wl_interface *interface, quint32 version, quint32 *name) const
{
    const auto found = m_globals.constFind(QByteArray(interface->name));
    if (!m_registry || found == m_globals.constEnd())
        return nullptr;
    if (name)
        *name = found->name;
    return static_cast<wl_proxy *>(
        wl_registry_bind(m_registry, found->name, interface, std::min(version, found->version)));
}

void WaylandGlobals::flush() const
{
    if (m_display)
        wl_display_flush(m_display);
}

} // namespace Vesko
