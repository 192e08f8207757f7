// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/wayland/WaylandPipeReader.h"

#include "platform/Logging.h"

#include <QPointer>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace Vesko {

void WaylandPipeReader::read(
    int readEnd, qsizetype capBytes, int timeoutMilliseconds, Done done, QObject *context)
{
    auto *reader = new WaylandPipeReader(readEnd, capBytes, timeoutMilliseconds, std::move(done));
    // The owner's end ends the read with it, without an answer.
    if (context)
        connect(context, &QObject::destroyed, reader, [reader] {
            reader->m_done = nullptr;
            reader->deleteLater();
        });
}

WaylandPipeReader::WaylandPipeReader(
    int readEnd, qsizetype capBytes, int timeoutMilliseconds, Done done)
    : m_fd(readEnd)
    , m_cap(capBytes)
    , m_done(std::move(done))
    , m_notifier(readEnd, QSocketNotifier::Read)
{
    ::fcntl(m_fd, F_SETFL, ::fcntl(m_fd, F_GETFL) | O_NONBLOCK);
    connect(&m_notifier, &QSocketNotifier::activated, this, &WaylandPipeReader::readAvailable);
    m_deadline.setSingleShot(true);
    connect(&m_deadline, &QTimer::timeout, this, [this] {
        qCInfo(lcCapture,
            "A selection's owner sent no end of data within the wait; read %lld bytes",
            qlonglong(m_bytes.size()));
        finish(std::nullopt);
    });
    m_deadline.start(timeoutMilliseconds);
}

WaylandPipeReader::~WaylandPipeReader()
{
    if (m_fd >= 0)
        ::close(m_fd);
}

void WaylandPipeReader::readAvailable()
{
    // At most a megabyte a turn: a writer that never pauses does not hold the event loop.
    char buffer[65536];
    for (int turn = 0; turn < 16; ++turn) {
        const ssize_t count = ::read(m_fd, buffer, sizeof buffer);
        if (count > 0) {
            if (m_bytes.size() + count > m_cap) {
                qCInfo(lcCapture, "A selection's owner sent more than %lld bytes: not read",
                    qlonglong(m_cap));
                finish(std::nullopt);
                return;
            }
            m_bytes.append(buffer, count);
            continue;
        }
        if (count == 0) {
            finish(std::move(m_bytes));
            return;
        }
        if (errno == EINTR)
            continue;
        if (errno != EAGAIN && errno != EWOULDBLOCK) {
            qCInfo(lcCapture, "A selection could not be read: %s", strerror(errno));
            finish(std::nullopt);
        }
        return; // more later
    }
}

void WaylandPipeReader::finish(std::optional<QByteArray> bytes)
{
    m_notifier.setEnabled(false);
    m_deadline.stop();
    ::close(m_fd);
    m_fd = -1;
    Done done = std::move(m_done);
    m_done = nullptr;
    deleteLater();
    if (done)
        done(std::move(bytes));
}

} // namespace Vesko
