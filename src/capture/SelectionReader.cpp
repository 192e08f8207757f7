// SPDX-License-Identifier: GPL-3.0-or-later

#include "capture/SelectionReader.h"

#include "capture/SelectionText.h"
#include "platform/DesktopSession.h"
#include "platform/Logging.h"

#include <QPointer>

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
    if (m_done) {
        done(std::nullopt);
        return;
    }
    m_done = std::move(done);
    QPointer<SelectionReader> self(this);
    m_session.frontApplication([self](std::optional<FrontApplication> front) {
        if (self)
            self->readFrom(front);
    });
}

void SelectionReader::readFrom(const std::optional<FrontApplication> &front)
{
    if (!front) {
        finish(std::nullopt);
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
    if (!trusted) {
        finish(std::nullopt);
        return;
    }
    m_source = source;

    // The fallback: never a synthetic copy into a terminal emulator, nor
    // where no copy keys can be sent; the selection is all that is read there.
    const bool mayCopy = !front->isTerminal && m_session.sendsCopy();
    QPointer<SelectionReader> self(this);
    m_session.readPrimarySelection(
        front->processID, [self, mayCopy](std::optional<QString> primary) {
            if (!self)
                return;
            if (primary) {
                const QString text = normalizeCapturedText(*primary);
                if (!text.isEmpty()) {
                    self->finish(text);
                    return;
                }
            }
            if (!mayCopy) {
                self->finish(std::nullopt);
                return;
            }
            self->readThroughCopy();
        });
}

void SelectionReader::readThroughCopy()
{
    QPointer<SelectionReader> self(this);
    m_clipboard.requestSnapshot([self](std::optional<Clipboard::Snapshot> snapshot) {
        if (!self)
            return;
        if (!snapshot) {
            // What the copy would replace could not be kept whole: no key
            // goes out, and the user's clipboard stays as it is.
            qCInfo(lcCapture, "The clipboard could not be read whole: no copy is made");
            self->finish(std::nullopt);
            return;
        }
        self->m_snapshot = std::move(snapshot);
        self->m_baseline = self->m_clipboard.changeCount(); // once, not per attempt
        self->m_attempt = 0;
        self->startAttempt();
    });
}

void SelectionReader::startAttempt()
{
    ++m_attempt;
    if (m_attempt > copyAttempts) {
        // Nothing came: the clipboard is left as it is and the snapshot dropped.
        finish(std::nullopt);
        return;
    }
    QPointer<SelectionReader> self(this);
    m_session.sendCopy(m_attempt, [self](bool sent) {
        if (!self)
            return;
        if (!sent) {
            self->startAttempt();
            return;
        }
        self->m_polls = 0;
        self->m_pollTimer.start();
    });
}

void SelectionReader::poll()
{
    ++m_polls;
    if (m_clipboard.changeCount() != m_baseline) {
        m_pollTimer.stop();
        QPointer<SelectionReader> self(this);
        m_clipboard.requestText([self](std::optional<QString> text) {
            if (!self)
                return;
            if (!text) {
                // Something other than text, an image say: the next attempt.
                self->startAttempt();
                return;
            }
            self->m_clipboard.restore(*self->m_snapshot);
            self->finish(*text);
        });
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
    m_snapshot.reset();
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
