// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/atspi/AtspiFrontApplication.h"

#include "platform/FrontApplicationNames.h"
#include "platform/Logging.h"
#include "platform/SerialQueue.h"
#include "platform/atspi/AtspiBus.h"
#include "platform/atspi/ProcessLaunch.h"

#include <QCoreApplication>
#include <QPointer>
#include <QTimer>

#include <atomic>
#include <utility>

namespace Vesko {

//! What the worker thread keeps: the bus, made and destroyed there.
struct AtspiFrontApplication::Worker
{
    std::unique_ptr<AtspiBus> bus;
    //! Set as the owner goes: the reads still queued end at once.
    std::atomic_bool stopping = false;

    AtspiBus &reader()
    {
        if (!bus)
            bus = std::make_unique<AtspiBus>();
        return *bus;
    }
};

//! The active frame and the desktop entries its process was started from.
struct AtspiFrontApplication::Found
{
    ActiveFrame frame;
    QStringList launchedEntries;
};

AtspiFrontApplication::AtspiFrontApplication(QObject *parent)
    : QObject(parent)
    , m_worker(std::make_shared<Worker>())
    // Never waited for: an application that does not answer keeps the read
    // under way for its bounds, and Vesko's end waits for no application.
    , m_queue(std::make_unique<SerialQueue>(QStringLiteral("com.vesko.vesko.accessibility"),
          QThread::InheritPriority, SerialQueue::End::Detached))
{
    QPointer<AtspiFrontApplication> self(this);
    std::shared_ptr<Worker> worker = m_worker;
    m_queue->async([self, worker] {
        if (worker->stopping)
            return;
        const bool connected = worker->reader().connect();
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [self, connected] {
                if (self)
                    self->setAvailable(connected);
            },
            Qt::QueuedConnection);
    });
}

AtspiFrontApplication::~AtspiFrontApplication()
{
    m_worker->stopping = true;
    std::shared_ptr<Worker> worker = m_worker;
    // The bus goes on the thread that made it, after the read under way, if
    // any, has ended within its bounds; nothing here waits for either.
    m_queue->async([worker] { worker->bus.reset(); });
    m_queue.reset();
}

void AtspiFrontApplication::setAvailable(bool available)
{
    if (available == m_available)
        return;
    m_available = available;
    Q_EMIT availableChanged();
}

void AtspiFrontApplication::frontApplication(Done done)
{
    QPointer<AtspiFrontApplication> self(this);
    std::shared_ptr<Worker> worker = m_worker;
    m_queue->async([self, worker, done = std::move(done)]() mutable {
        if (worker->stopping)
            return;
        AtspiBus &bus = worker->reader();
        std::optional<Found> found;
        if (const std::optional<ActiveFrame> frame = bus.activeFrame())
            found = Found {*frame, launchedDesktopEntries(frame->processID)};
        const bool connected = bus.connect();
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [self, connected, found, done = std::move(done)]() mutable {
                if (!self)
                    return;
                self->setAvailable(connected);
                self->answer(found, std::move(done));
            },
            Qt::QueuedConnection);
    });
}

void AtspiFrontApplication::frontApplicationOrUnknown(Done done)
{
    // Whichever comes first answers: the bus, or the deadline with
    // "Unknown" (a bus that hangs holds its thread far longer). The other
    // finds the answer given and is dropped.
    auto pending = std::make_shared<Done>(std::move(done));
    QTimer::singleShot(captureDeadlineMilliseconds, this, [pending] {
        if (!*pending)
            return;
        qCInfo(lcCapture, "The accessibility bus did not answer within %d ms: the source is unknown",
            captureDeadlineMilliseconds);
        // Not known not to be a terminal: no copy keys go out to it.
        FrontApplication unknown;
        unknown.isTerminal = true;
        std::exchange(*pending, nullptr)(unknown);
    });
    frontApplication([pending](std::optional<FrontApplication> front) {
        if (*pending)
            std::exchange(*pending, nullptr)(front ? std::move(front) : FrontApplication {});
    });
}

void AtspiFrontApplication::answer(const std::optional<Found> &found, Done done)
{
    if (!found) {
        done(std::nullopt);
        return;
    }
    const ActiveFrame &frame = found->frame;
    FrontApplication front;
    front.processID = frame.processID;
    if (!frame.title.isEmpty())
        front.windowTitle = frame.title;
    // The application's accessible name is its program name in GTK, the
    // name its window class is made from: it finds an entry as a class does.
    QStringList candidates = found->launchedEntries;
    candidates.append(frame.applicationName);
    candidates.removeAll(QString());
    const QString applicationName = frame.applicationName;
    m_entries.find(candidates, applicationName,
        [front, applicationName, done = std::move(done)](
            std::optional<X11DesktopEntries::Entry> entry) mutable {
            nameFrontApplication(front, entry, applicationName);
            done(front);
        });
}

} // namespace Vesko
