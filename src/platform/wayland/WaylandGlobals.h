// SPDX-License-Identifier: GPL-3.0-or-later
//
// The compositor's globals as the registry of Qt's own wl_display announces
// them, and the seat. The pieces of capture bind what they use themselves,
// so that their listeners are set before the first event; their events are
// dispatched with Qt's, on the main thread. A global the compositor
// withdraws is reported, and its users let go of it.

#pragma once

#include <QHash>
#include <QObject>

#include <optional>

struct wl_display;
struct wl_interface;
struct wl_proxy;
struct wl_registry;
struct wl_seat;

namespace Vesko {

class WaylandGlobals : public QObject
{
    Q_OBJECT

public:
    //! Reads the registry of Qt's wayland platform; nothing elsewhere.
    explicit WaylandGlobals(QObject *parent = nullptr);
    //! Reads the registry of \a display, whose default queue its owner dispatches.
    explicit WaylandGlobals(wl_display *display, QObject *parent = nullptr);
    ~WaylandGlobals() override;

    //! Qt runs its wayland platform: this is a Wayland session.
    static bool isWaylandPlatform();

    bool isValid() const { return m_display != nullptr; }
    wl_display *display() const { return m_display; }
    wl_seat *seat() const { return m_seat; }
    //! The seat's global name, by which its withdrawal is reported.
    quint32 seatName() const { return m_seatName; }

    //! Whether the compositor offers \a interface now.
    bool has(const char *interface) const { return m_globals.contains(QByteArray(interface)); }
    //! A new object of the global \a interface at the lower of \a version and
    //! the compositor's, or null when it is not offered; \a name learns the
    //! global's name, by which its withdrawal is reported.
    wl_proxy *bind(const wl_interface *interface, quint32 version, quint32 *name = nullptr) const;
    //! Sends what is queued to the compositor now.
    void flush() const;

Q_SIGNALS:
    void announced(const QByteArray &interface);
    void withdrawn(quint32 name);

private:
    struct Global
    {
        quint32 name = 0;
        quint32 version = 0;
    };

    static void announce(
        void *data, wl_registry *registry, quint32 name, const char *interface, quint32 version);
    static void withdraw(void *data, wl_registry *registry, quint32 name);

    wl_display *m_display = nullptr;
    wl_registry *m_registry = nullptr;
    wl_seat *m_seat = nullptr;
    quint32 m_seatName = 0;
    QHash<QByteArray, Global> m_globals;
};

} // namespace Vesko
