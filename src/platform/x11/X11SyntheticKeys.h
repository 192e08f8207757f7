// SPDX-License-Identifier: GPL-3.0-or-later
//
// Ctrl+C typed on the user's behalf through XTEST. Keys the user still holds
// (the Super and Alt of a hot key, say, or its letter, whose grab keeps the
// keyboard until it goes up) must not mix with it: their release is awaited
// for at most a quarter of a second, on the event loop, reading the
// keyboard's state without waiting for the answer; modifiers still down
// then are released before the copy and pressed again after it.

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

    X11SyntheticKeys(X11Connection &connection, X11Keyboard &keyboard, QObject *parent = nullptr);

    //! Sends Ctrl+C, first giving \a focusWindow the keyboard when it is not
    //! 0. \a done learns once the keys are out, or false when they cannot be
    //! made (no XTEST, no Ctrl or C key, another copy under way).
    void sendCopy(xcb_window_t focusWindow, std::function<void(bool sent)> done);

private:
    void askKeyboard();
    void checkAnswer();
    void send(const QList<quint8> &heldModifiers);

    X11Connection &m_connection;
    X11Keyboard &m_keyboard;
    std::optional<bool> m_hasXTest;
    QTimer m_timer;

    // The copy under way.
    std::function<void(bool)> m_done;
    xcb_window_t m_focusWindow = 0;
    QDeadlineTimer m_deadline;
    std::optional<xcb_query_keymap_cookie_t> m_pending;
};

} // namespace Vesko
