// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/x11/X11SyntheticKeys.h"

#include "platform/KeyMonitor.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11Keyboard.h"

#include <xcb/xcbext.h>
#include <xcb/xtest.h>

#include <cstdlib>

namespace Vesko {

namespace {

constexpr quint32 keysymControlL = 0xffe3;
constexpr quint32 keysymC = 0x0063;
//! While an answer is awaited, how often it is looked for.
constexpr int answerPollMilliseconds = 1;

} // namespace

X11SyntheticKeys::X11SyntheticKeys(
    X11Connection &connection, X11Keyboard &keyboard, QObject *parent)
    : QObject(parent)
    , m_connection(connection)
    , m_keyboard(keyboard)
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, [this] {
        if (m_pending)
            checkAnswer();
        else
            askKeyboard();
    });
}

void X11SyntheticKeys::sendCopy(xcb_window_t focusWindow, std::function<void(bool)> done)
{
    if (!m_hasXTest && m_connection.isValid())
        m_hasXTest = m_connection.extensionOpcode("XTEST").has_value();
    const bool canType = m_connection.isValid() && m_hasXTest.value_or(false)
        && m_keyboard.keyCodeOf(keysymControlL) != 0 && m_keyboard.keyCodeOf(keysymC) != 0;
    if (!canType || m_done) {
        done(false);
        return;
    }
    m_done = std::move(done);
    m_focusWindow = focusWindow;
    m_deadline = QDeadlineTimer(heldKeysTimeoutMilliseconds);
    askKeyboard();
}

void X11SyntheticKeys::askKeyboard()
{
    m_pending = xcb_query_keymap(m_connection.get());
    xcb_flush(m_connection.get());
    m_timer.start(answerPollMilliseconds);
}

void X11SyntheticKeys::checkAnswer()
{
    xcb_connection_t *c = m_connection.get();
    void *answer = nullptr;
    xcb_generic_error_t *error = nullptr;
    if (!xcb_poll_for_reply(c, m_pending->sequence, &answer, &error)) {
        m_timer.start(answerPollMilliseconds);
        return;
    }
    m_pending.reset();
    std::free(error);
    auto *keymap = static_cast<xcb_query_keymap_reply_t *>(answer);
    if (!keymap) {
        send({});
        return;
    }
    QList<quint8> heldModifiers;
    bool anyHeld = false;
    for (int code = 8; code < 256; ++code) {
        if (!((keymap->keys[code / 8] >> (code % 8)) & 1))
            continue;
        anyHeld = true;
        // Caps Lock is left alone: pressing it again would toggle the lock.
        const quint64 flag = m_keyboard.modifierFlag(quint8(code));
        if (flag != 0 && flag != ModifierFlag::CapsLock)
            heldModifiers.append(quint8(code));
    }
    std::free(keymap);
    if (!anyHeld || m_deadline.hasExpired()) {
        send(heldModifiers);
        return;
    }
    m_timer.start(heldKeysPollMilliseconds);
}

void X11SyntheticKeys::send(const QList<quint8> &heldModifiers)
{
    xcb_connection_t *c = m_connection.get();
    const quint8 control = m_keyboard.keyCodeOf(keysymControlL);
    const quint8 letter = m_keyboard.keyCodeOf(keysymC);
    auto fake = [c](uint8_t type, quint8 code) {
        xcb_test_fake_input(c, type, code, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    };
    if (m_focusWindow != 0)
        xcb_set_input_focus(c, XCB_INPUT_FOCUS_PARENT, m_focusWindow, XCB_CURRENT_TIME);
    // The user's modifiers go up for the copy alone, and straight back down.
    for (quint8 code : heldModifiers)
        fake(XCB_KEY_RELEASE, code);
    fake(XCB_KEY_PRESS, control);
    fake(XCB_KEY_PRESS, letter);
    fake(XCB_KEY_RELEASE, letter);
    fake(XCB_KEY_RELEASE, control);
    for (quint8 code : heldModifiers)
        fake(XCB_KEY_PRESS, code);
    xcb_flush(c);
    std::function<void(bool)> done = std::move(m_done);
    m_done = nullptr;
    done(true);
}

} // namespace Vesko
