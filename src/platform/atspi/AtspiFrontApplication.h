// SPDX-License-Identifier: GPL-3.0-or-later
//
// The application in front as the accessibility bus (AT-SPI) tells it, where
// the compositor keeps its windows to itself (GNOME, KDE Plasma): the
// application whose frame is active, the frame's title, and the desktop
// entry its process was started from, named as on X11. The bus is read on a
// worker thread with bounded waits; answers come on the main thread.

#pragma once

#include "platform/DesktopSession.h"
#include "platform/x11/X11DesktopEntries.h"

#include <QObject>

#include <functional>
#include <memory>
#include <optional>

namespace Vesko {

class SerialQueue;

class AtspiFrontApplication : public QObject
{
    Q_OBJECT

public:
    using Done = std::function<void(std::optional<FrontApplication>)>;

    //! How long a capture waits for the bus before it goes on under "Unknown".
    static constexpr int captureDeadlineMilliseconds = 1500;

    //! Starts looking for the accessibility bus at once, off the main thread.
    explicit AtspiFrontApplication(QObject *parent = nullptr);
    ~AtspiFrontApplication() override;

    //! The accessibility bus answered the last time it was asked; false
    //! until the first look for it has ended.
    bool isAvailable() const { return m_available; }

    //! Hands \a done, on the main thread, the application whose frame is
    //! active, or nothing when none is (or the bus is out of reach). Within
    //! about a second even when an application does not answer.
    void frontApplication(Done done);
    //! For a capture: as above, but an empty application ("Unknown") where
    //! no frame is active, the bus is out of reach, or it has not answered
    //! within captureDeadlineMilliseconds (a later answer is dropped). The
    //! bus is asked each time, so one that was not up yet at first is found later.
    void frontApplicationOrUnknown(Done done);

Q_SIGNALS:
    void availableChanged();

private:
    struct Worker;
    struct Found;

    void setAvailable(bool available);
    void answer(const std::optional<Found> &found, Done done);

    std::shared_ptr<Worker> m_worker;
    std::unique_ptr<SerialQueue> m_queue;
    X11DesktopEntries m_entries;
    bool m_available = false;
};

} // namespace Vesko
