// SPDX-License-Identifier: GPL-3.0-or-later
//
// The accessibility bus (AT-SPI 2) as one worker thread reads it, over a
// connection of its own: the application whose top-level frame is active,
// the frame's title, the application's name and its process. Every call
// waits a bounded time and the walk visits a bounded number of applications
// and windows, asking them all at once: an application that does not answer
// costs one time-out, never a hang. Blocking; made, used and destroyed on
// one worker thread.

#pragma once

#include <QDBusConnection>
#include <QString>

#include <optional>

namespace Vesko {

struct ActiveFrame
{
    //! The application's unique name on the accessibility bus.
    QString service;
    //! The application's accessible name (GTK: its program name).
    QString applicationName;
    //! The frame's accessible name, its title.
    QString title;
    qint64 processID = 0;
};

class AtspiBus
{
public:
    //! How long any one call may wait for its answer.
    static constexpr int callTimeoutMilliseconds = 250;
    //! How long finding (or starting) the accessibility bus may take.
    static constexpr int addressTimeoutMilliseconds = 1000;
    static constexpr int maxApplications = 64;
    static constexpr int maxWindows = 16;

    AtspiBus();
    ~AtspiBus();

    AtspiBus(const AtspiBus &) = delete;
    AtspiBus &operator=(const AtspiBus &) = delete;

    //! Connects to the accessibility bus the session bus names, unless
    //! connected already; false when there is none.
    bool connect();
    //! The active frame, or nothing when no application has one (or the bus
    //! is out of reach). Connects first when needed.
    std::optional<ActiveFrame> activeFrame();

private:
    void disconnect();

    QString m_connectionName;
    std::optional<QDBusConnection> m_bus;
};

} // namespace Vesko
