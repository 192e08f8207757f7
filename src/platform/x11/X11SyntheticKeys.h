// SPDX-License-Identifier: GPL-3.0-or-later
//
// The copy typed on the user's behalf through XTEST: Ctrl+Insert, which every
// X11 toolkit takes as Copy, whose key code is the same in every keyboard
// layout, and which no terminal (stand-alone or a panel inside an editor)
// takes as an interrupt. Keys the user still holds (a hot key's Super and
// Alt, and its letter, whose grab would take the copy) must not mix with it:
// their release is awaited, reading the keymap on the event loop, for at most
// heldKeysTimeoutMilliseconds. Keys still down then: nothing is typed and the
// copy is reported as not made. A key the user holds is never released,
// ungrabbed or pressed again here. No step waits on the main thread, and each
// answer of the server is awaited within a bound.

#pragma once

#include <QDeadlineTimer>
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
    //! How long the release of held keys is awaited for one copy.
    static constexpr int heldKeysTimeoutMilliseconds = 1000;
    //! How often the keyboard's state is read while keys are held.
    static constexpr int heldKeysPollMilliseconds = 10;
    //! How long one answer of the X server is awaited before the copy is given up.
    static constexpr int answerTimeoutMilliseconds = 1000;

    X11SyntheticKeys(X11Connection &connection, X11Keyboard &keyboard, QObject *parent = nullptr);
    ~X11SyntheticKeys() override;

    //! Sends Ctrl+Insert once no key is held, first giving \a focusWindow the
    //! keyboard when it is not 0. \a done learns once the keys are out, or
    //! false when none were sent: no XTEST, no Ctrl or Insert key, another
    //! copy under way, no answer, or keys still held when the wait ran out.
    void sendCopy(xcb_window_t focusWindow, std::function<void(bool sent)> done);

private:
    void askKeymap();
    void checkAnswer();
    void takeKeymap(bool anyKeyDown);
    void send();
    void finish(bool sent);

    X11Connection &m_connection;
    X11Keyboard &m_keyboard;
    std::optional<bool> m_hasXTest;
    QTimer m_timer;

    // The copy under way.
    std::function<void(bool)> m_done;
    xcb_window_t m_focusWindow = 0;
    QDeadlineTimer m_releaseDeadline;
    // The keymap request in flight.
    std::optional<xcb_query_keymap_cookie_t> m_pending;
    QDeadlineTimer m_answerDeadline;
};

} // namespace Vesko
