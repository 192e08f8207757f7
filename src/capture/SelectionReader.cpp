// SPDX-License-Identifier: GPL-3.0-or-later

#include "capture/SelectionReader.h"

#include "capture/SelectionText.h"
#include "platform/Clipboard.h"
#include "platform/DesktopSession.h"

namespace Vesko {

SelectionReader::SelectionReader(
    DesktopSession &session, Clipboard &clipboard, std::function<bool()> isTrusted, QObject *parent)
    : QObject(parent)
    , m_session(session)
    , m_clipboard(clipboard)
    , m_isTrusted(std::move(isTrusted))
{
    m_pollTimer.setInterval(pollIntervalMilliseconds);
    m_pollTimer.setTimerType(Qt::PreciseTimer);
    connect(&m_pollTimer, &QTimer::timeout, this, &SelectionReader::poll);
}

void SelectionReader::readSelection(Done done)
{
    const std::optional<FrontApplication> front = m_session.frontApplication();
    if (!front) {
        done(std::nullopt);
        return;
    }
    // Asked once: a change of the answer in the middle of a read counts from the next one.
    const bool trusted = m_isTrusted();
    NoteSource source;
    source.appName = front->name.isEmpty() ? QStringLiteral("Unknown") : front->name;
    source.bundleIdentifier = front->identifier;
    // The title is read before any key goes out.
    if (trusted && front->windowTitle)
        source.windowTitle = cleanWindowTitle(*front->windowTitle);

    if (trusted) {
        if (const std::optional<QString> primary = m_session.primarySelection(front->processID)) {
            const QString text = normalizeCapturedText(*primary);
            if (!text.isEmpty()) {
                done(CapturedSelection {text, source});
                return;
            }
        }
    }

    // The fallback: never a Ctrl+C into a terminal, where it interrupts.
    if (front->isTerminal || !trusted) {
        done(std::nullopt);
        return;
    }
    m_done = std::move(done);
    m_source = source;
    m_snapshot = m_clipboard.snapshot();
    m_baseline = m_clipboard.changeCount(); // once, not per attempt
    m_attempt = 0;
    startAttempt();
}

void SelectionReader::startAttempt()
{
    ++m_attempt;
    if (m_attempt > copyAttempts) {
        // Nothing came: the clipboard is left as it is and the snapshot dropped.
        finish(std::nullopt);
        return;
    }
    if (!m_session.sendCopy(m_attempt)) {
        startAttempt();
        return;
    }
    m_polls = 0;
    m_pollTimer.start();
}

void SelectionReader::poll()
{
    ++m_polls;
    if (m_clipboard.changeCount() != m_baseline) {
        if (const std::optional<QString> text = m_clipboard.text()) {
            m_pollTimer.stop();
            m_clipboard.restore(m_snapshot);
            finish(*text);
            return;
        }
        // Something other than text, an image say: the next attempt.
        m_pollTimer.stop();
        startAttempt();
        return;
    }
    if (m_polls >= pollsPerAttempt) {
        m_pollTimer.stop();
        startAttempt();
    }
}

void SelectionReader::finish(std::optional<QString> text)
{
    Done done = std::move(m_done);
    m_done = nullptr;
    m_snapshot.clear();
    std::optional<CapturedSelection> result;
    if (text) {
        const QString normalized = normalizeCapturedText(*text);
        if (!normalized.isEmpty())
            result = CapturedSelection {normalized, m_source};
    }
    if (done)
        done(result);
}

} // namespace Vesko
