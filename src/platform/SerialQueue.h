// SPDX-License-Identifier: GPL-3.0-or-later
//
// A dedicated worker thread that runs jobs one at a time, in the order they
// were submitted. Jobs receive value copies only; a job hands its result back
// to the main thread with a queued call on a context object there, which is
// dropped if that object is gone by then.

#pragma once

#include <QObject>
#include <QThread>

#include <functional>
#include <type_traits>

namespace Vesko {

class SerialQueue
{
public:
    //! What the queue's end waits for.
    enum class End {
        //! The jobs already submitted.
        AfterJobs,
        //! A moment (detachedWaitMilliseconds) at most: the jobs still to
        //! run then run after the queue is gone, and the thread goes once
        //! they are done. For jobs that may wait on other processes, which
        //! the queue's owner must never wait for.
        Detached,
    };
    static constexpr int detachedWaitMilliseconds = 100;

    //! Starts the thread, named \a label so that it shows in debuggers and ps.
    explicit SerialQueue(const QString &label,
        QThread::Priority priority = QThread::InheritPriority, End end = End::AfterJobs);
    //! Stops the thread after the jobs already submitted; waits for them
    //! unless the queue's end is End::Detached.
    ~SerialQueue();

    SerialQueue(const SerialQueue &) = delete;
    SerialQueue &operator=(const SerialQueue &) = delete;

    //! Runs \a job on the queue's thread after the jobs before it.
    void async(std::function<void()> job);

    //! Runs \a job on the queue's thread after the jobs before it and blocks
    //! the calling thread until it is done. Must not be called from the queue itself.
    template<typename Job> std::invoke_result_t<Job> sync(Job job)
    {
        using Result = std::invoke_result_t<Job>;
        if constexpr (std::is_void_v<Result>) {
            QMetaObject::invokeMethod(m_context, std::move(job), Qt::BlockingQueuedConnection);
        } else {
            Result result {};
            QMetaObject::invokeMethod(
                m_context, [&] { result = job(); }, Qt::BlockingQueuedConnection);
            return result;
        }
    }

private:
    QThread *m_thread;
    QObject *m_context;
    End m_end;
};

} // namespace Vesko
