// SPDX-License-Identifier: GPL-3.0-or-later
//
// Ctrl+C typed on the user's behalf through XTEST, without mixing in the
// keys the user still holds (a hot key's Super and Alt, and its letter). Their
// release is awaited for at most a quarter of a second, reading the keymap on
// the event loop. Keys still down then: the keyboard grab that a held hot key
// activated is ended (else the copy would come back to Vesko), each key is
// released through XTEST, and the modifiers that this let go are pressed again
// after the copy. The X server only lets go through XTEST what was pressed
// through XTEST (as automation does); a key held on a physical keyboard stays
// down and mixes with the copy. No step waits on the main thread, and each
// answer of the server is awaited within a bound.

#pragma once

#include <QDeadlineTimer>
#include <QList>
#include <QObject>
#include <QTimer>

#include <xcb/xcb.h>

#include <functional>
#include <optional>

namespace Vesko {

class X11Connection;
class X11Keyboard;

class X11SyntheticKeys : public QObject
{
    Q_OBJECT

public:
    //! How long the release of held keys is awaited.
    static constexpr int heldKeysTimeoutMilliseconds = 250;
    //! How often the keyboard's state is read while keys are held.
    static constexpr int heldKeysPollMilliseconds = 10;
    //! How long one answer of the X server is awaited before the copy is given up.
    static constexpr int answerTimeoutMilliseconds = 1000;

    //! Types on \a connection. \a grabConnection, when given, is the
    //! connection whose passive key grabs (the hot keys) may hold the keyboard.
    X11SyntheticKeys(X11Connection &connection, X11Keyboard &keyboard,
        X11Connection *grabConnection = nullptr, QObject *parent = nullptr);
    ~X11SyntheticKeys() override;

    //! Sends Ctrl+C, first giving \a focusWindow the keyboard when it is not
    //! 0. \a done learns once the keys are out, or false when they cannot be
    //! made (no XTEST, no Ctrl or C key, another copy under way, no answer).
    void sendCopy(xcb_window_t focusWindow, std::function<void(bool sent)> done);

private:
    //! What the keymap asked for last is for.
    enum class Step {
        AwaitingRelease, //!< polled until nothing is held or the bound passes
        EndingGrab, //!< after ungrabbing the keyboard: what is still held
        Releasing, //!< after the releases: which of them took effect
    };

    void ask(X11Connection &connection, Step step);
    void checkAnswer();
    void takeKeymap(const QList<quint8> &down);
    void releaseHeldKeys(const QList<quint8> &held);
    void send(const QList<quint8> &restore);
    void finish(bool sent);

    X11Connection &m_connection;
    X11Keyboard &m_keyboard;
    X11Connection *m_grabConnection;
    std::optional<bool> m_hasXTest;
    QTimer m_timer;

    // The copy under way.
    std::function<void(bool)> m_done;
    xcb_window_t m_focusWindow = 0;
    QDeadlineTimer m_releaseDeadline;
    Step m_step = Step::AwaitingRelease;
    //! The keys released through XTEST.
    QList<quint8> m_released;
    // The keymap request in flight.
    X11Connection *m_asked = nullptr;
    std::optional<xcb_query_keymap_cookie_t> m_pending;
    QDeadlineTimer m_answerDeadline;
};

} // namespace Vesko
