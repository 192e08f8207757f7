// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/SerialQueue.h"

#include <QCoreApplication>
#include <QDeadlineTimer>

namespace Vesko {

SerialQueue::SerialQueue(const QString &label, QThread::Priority priority, End end)
    : m_thread(new QThread)
    , m_context(new QObject)
    , m_end(end)
{
    m_thread->setObjectName(label);
    m_context->moveToThread(m_thread);
    QObject::connect(m_thread, &QThread::finished, m_context, &QObject::deleteLater);
    m_thread->start(priority);
}

SerialQueue::~SerialQueue()
{
    // Stopping as a job of its own lets every job submitted before it run
    // first. Without an application object, queued jobs can no longer be
    // delivered at all, so the thread is stopped directly.
    QThread *thread = m_thread;
    if (QCoreApplication::instance())
        async([thread] { thread->quit(); });
    else
        thread->quit();
    if (m_end == End::Detached && !thread->wait(QDeadlineTimer(detachedWaitMilliseconds))) {
        // The thread object goes once the thread has ended; where no event
        // loop runs any more (the program's exit), it stays for the exit.
        QObject::connect(thread, &QThread::finished, thread, &QObject::deleteLater);
        return;
    }
    thread->wait();
    delete thread;
}

void SerialQueue::async(std::function<void()> job)
{
    QMetaObject::invokeMethod(m_context, std::move(job), Qt::QueuedConnection);
}

} // namespace Vesko
