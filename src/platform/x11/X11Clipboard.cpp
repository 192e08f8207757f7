// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/x11/X11Clipboard.h"

#include "platform/SerialQueue.h"
#include "platform/x11/X11SelectionTransfer.h"

#include <QClipboard>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QPointer>

namespace Vesko {

//! What the queue's thread works with: its connection, made there on first
//! use, and the flag that makes a read give up.
struct X11Clipboard::Worker
{
    std::atomic_bool stopping = false;
    std::unique_ptr<X11SelectionTransfer> transfer;

    X11SelectionTransfer &get()
    {
        if (!transfer)
            transfer = std::make_unique<X11SelectionTransfer>(&stopping);
        return *transfer;
    }
};

namespace {

//! Hands \a value to \a done on the main thread, unless \a receiver has gone by then.
template<typename Value>
void answer(QPointer<QObject> receiver, std::function<void(Value)> done, Value value)
{
    QMetaObject::invokeMethod(
        QCoreApplication::instance(),
        [receiver, done = std::move(done), value = std::move(value)] {
            if (receiver)
                done(value);
        },
        Qt::QueuedConnection);
}

} // namespace

X11Clipboard::X11Clipboard()
{
    if (QGuiApplication::platformName() != QLatin1String("xcb"))
        return;
    m_worker = std::make_shared<Worker>();
    m_receiver = std::make_unique<QObject>();
    m_queue = std::make_unique<SerialQueue>(QStringLiteral("com.vesko.vesko.clipboard"));
}

X11Clipboard::~X11Clipboard()
{
    if (!m_worker)
        return;
    m_worker->stopping = true;
    m_receiver.reset();
    // Waits for the read under way, which gives up within a fraction of a second.
    m_queue.reset();
}

bool X11Clipboard::readsFromOwner() const
{
    return m_queue && !QGuiApplication::clipboard()->ownsClipboard();
}

void X11Clipboard::requestText(std::function<void(std::optional<QString>)> done)
{
    if (!readsFromOwner()) {
        QtClipboard::requestText(std::move(done));
        return;
    }
    QPointer<QObject> receiver(m_receiver.get());
    m_queue->async([worker = m_worker, receiver, done = std::move(done)] {
        std::optional<QString> text
            = worker->get().text("CLIPBOARD", QDeadlineTimer(answerTimeoutMilliseconds));
        answer(receiver, done, std::move(text));
    });
}

void X11Clipboard::requestSnapshot(std::function<void(std::optional<Snapshot>)> done)
{
    if (!readsFromOwner()) {
        QtClipboard::requestSnapshot(std::move(done));
        return;
    }
    QPointer<QObject> receiver(m_receiver.get());
    m_queue->async([worker = m_worker, receiver, done = std::move(done)] {
        std::optional<Snapshot> snapshot;
        if (const std::optional<QMap<QString, QByteArray>> formats
            = worker->get().copyAll("CLIPBOARD", QDeadlineTimer(snapshotTimeoutMilliseconds))) {
            snapshot = formats->isEmpty() ? Snapshot {} : Snapshot {*formats};
        }
        answer(receiver, done, std::move(snapshot));
    });
}

} // namespace Vesko
