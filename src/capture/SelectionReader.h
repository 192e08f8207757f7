// SPDX-License-Identifier: GPL-3.0-or-later
//
// Reads what the user has selected in the application in front, and where it
// comes from. First the primary selection, when the front application's own
// process owns it; that leaves the clipboard alone. Otherwise a synthetic
// copy (never into a terminal), the clipboard read, and the clipboard put
// back as it was. Every step that waits for another program or for the
// user's keys answers later, on the event loop: the interface stays live.

#pragma once

#include "library/Library.h"
#include "platform/Clipboard.h"
#include "platform/DesktopSession.h"

#include <QObject>
#include <QTimer>

#include <functional>
#include <optional>

namespace Vesko {

struct CapturedSelection
{
    //! The cleaned selection, never empty.
    QString text;
    NoteSource source;
};

class SelectionReader : public QObject
{
    Q_OBJECT

public:
    static constexpr int pollIntervalMilliseconds = 12;
    static constexpr int pollsPerAttempt = 40;
    static constexpr int copyAttempts = 2;

    using Done = std::function<void(std::optional<CapturedSelection>)>;

    SelectionReader(DesktopSession &session, Clipboard &clipboard, std::function<bool()> isTrusted,
        QObject *parent = nullptr);

    //! Reads the selection and calls \a done on the main thread, at once or
    //! once the desktop has answered (the primary selection within half a
    //! second, the synthetic copy within about a second after the snapshot).
    //! One read at a time: a read asked for during another gets nothing.
    void readSelection(Done done);
    bool isReading() const { return bool(m_done); }

private:
    void readFrom(const std::optional<FrontApplication> &front);
    void readThroughCopy();
    void startAttempt();
    void poll();
    void finish(std::optional<QString> text);

    DesktopSession &m_session;
    Clipboard &m_clipboard;
    std::function<bool()> m_isTrusted;
    QTimer m_pollTimer;

    // The read under way.
    Done m_done;
    NoteSource m_source;
    quint64 m_baseline = 0;
    int m_attempt = 0;
    int m_polls = 0;
    //! What the clipboard held before the copy; always whole.
    std::optional<Clipboard::Snapshot> m_snapshot;
};

} // namespace Vesko
