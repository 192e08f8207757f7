// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/TerminationSignals.h"

#include <QSocketNotifier>

#include <csignal>
#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace Vesko {

namespace {

int signalSockets[2] = {-1, -1};

void forwardSignal(int signalNumber)
{
    const unsigned char byte = static_cast<unsigned char>(signalNumber);
    const int saved = errno;
    [[maybe_unused]] const ssize_t written = ::write(signalSockets[0], &byte, 1);
    errno = saved;
}

} // namespace

TerminationSignals::TerminationSignals(QObject *parent)
    : QObject(parent)
{
    Q_ASSERT(signalSockets[0] < 0);
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, signalSockets) != 0)
        qFatal("Could not create the socket pair for termination signals");

    m_notifier = new QSocketNotifier(signalSockets[1], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &TerminationSignals::readSignal);

    struct sigaction action = {};
    action.sa_handler = forwardSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (int number : {SIGTERM, SIGINT, SIGHUP})
        ::sigaction(number, &action, nullptr);
}

TerminationSignals::~TerminationSignals()
{
    for (int number : {SIGTERM, SIGINT, SIGHUP})
        ::signal(number, SIG_DFL);
    delete m_notifier;
    ::close(signalSockets[0]);
    ::close(signalSockets[1]);
    signalSockets[0] = signalSockets[1] = -1;
}

void TerminationSignals::readSignal()
{
    unsigned char byte;
    while (::read(signalSockets[1], &byte, 1) == 1)
        Q_EMIT terminationRequested(byte);
}

} // namespace Vesko
