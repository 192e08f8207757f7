// SPDX-License-Identifier: GPL-3.0-or-later
//
// Reads what another client writes into a pipe, on the main thread without
// ever waiting on it: the read end is watched by a socket notifier, the
// bytes are capped and the whole read is bounded in time. A writer that
// never writes, never closes, or sends more than the cap ends the read
// with nothing, and a log line.

#pragma once

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

#include <functional>
#include <optional>

namespace Vesko {

class WaylandPipeReader : public QObject
{
    Q_OBJECT

public:
    using Done = std::function<void(std::optional<QByteArray>)>;

    //! Takes ownership of \a readEnd and starts reading: \a done gets every
    //! byte once the writer has closed its end, or nothing when more than
    //! \a capBytes came or the writer took longer than \a timeoutMilliseconds.
    //! \a done is called once, later, on the event loop; the reader deletes
    //! itself afterwards.
    static void read(int readEnd, qsizetype capBytes, int timeoutMilliseconds, Done done,
        QObject *context = nullptr);

    ~WaylandPipeReader() override;

private:
    WaylandPipeReader(int readEnd, qsizetype capBytes, int timeoutMilliseconds, Done done);
    void readAvailable();
    void finish(std::optional<QByteArray> bytes);

    int m_fd;
    qsizetype m_cap;
    QByteArray m_bytes;
    Done m_done;
    QSocketNotifier m_notifier;
    QTimer m_deadline;
};

} // namespace Vesko
