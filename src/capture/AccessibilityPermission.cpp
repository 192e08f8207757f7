// SPDX-License-Identifier: GPL-3.0-or-later

#include "capture/AccessibilityPermission.h"

namespace Vesko {

AccessibilityPermission::AccessibilityPermission(std::function<bool()> query, QObject *parent)
    : QObject(parent)
    , m_query(std::move(query))
    , m_isTrusted(m_query())
{
    m_poll.setInterval(pollIntervalMilliseconds);
    connect(&m_poll, &QTimer::timeout, this, &AccessibilityPermission::pollOnce);
}

void AccessibilityPermission::refresh()
{
    const bool trusted = m_query();
    if (trusted == m_isTrusted)
        return;
    m_isTrusted = trusted;
    Q_EMIT isTrustedChanged();
    Q_EMIT refreshNeeded();
}

void AccessibilityPermission::requestAccess()
{
    const bool trusted = m_query();
    if (trusted != m_isTrusted) {
        m_isTrusted = trusted;
        Q_EMIT isTrustedChanged();
    }
    if (trusted)
        Q_EMIT refreshNeeded();
    startPolling();
}

void AccessibilityPermission::openSystemSettings()
{
    // An X11 session has no switch to flip: the Capture pane says what is
    // missing. The answer is read again, and watched for a while.
    refresh();
    startPolling();
}

void AccessibilityPermission::startPolling()
{
    m_poll.stop();
    m_passes = 0;
    m_poll.start();
}

void AccessibilityPermission::pollOnce()
{
    ++m_passes;
    const bool trusted = m_query();
    if (trusted != m_isTrusted) {
        m_isTrusted = trusted;
        Q_EMIT isTrustedChanged();
        Q_EMIT refreshNeeded();
    }
    if (trusted) {
        Q_EMIT refreshNeeded();
        m_poll.stop();
        return;
    }
    if (m_passes >= pollPasses)
        m_poll.stop();
}

} // namespace Vesko
