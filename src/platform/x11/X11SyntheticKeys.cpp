// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/x11/X11SyntheticKeys.h"

#include "platform/Logging.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11Keyboard.h"

#include <xcb/xcbext.h>
#include <xcb/xtest.h>

#include <cstdlib>

namespace Vesko {

namespace {

constexpr quint32 keysymControlL = 0xffe3;
constexpr quint32 keysymInsert = 0xff63;
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
            askKeymap();
    });
}

X11SyntheticKeys::~X11SyntheticKeys()
{
    if (m_pending)
        xcb_discard_reply(m_connection.get(), m_pending->sequence);
}

void X11SyntheticKeys::sendCopy(xcb_window_t focusWindow, std::function<void(bool)> done)
{
    if (!m_hasXTest && m_connection.isValid())
        m_hasXTest = m_connection.extensionOpcode("XTEST").has_value();
    const bool canType = m_connection.isValid() && m_hasXTest.value_or(false)
        && m_keyboard.keyCodeOf(keysymControlL) != 0 && m_keyboard.keyCodeOf(keysymInsert) != 0;
    if (!canType || m_done) {
        done(false);
        return;
    }
    m_done = std::move(done);
    m_focusWindow = focusWindow;
    m_releaseDeadline = QDeadlineTimer(heldKeysTimeoutMilliseconds);
    askKeymap();
}

void X11SyntheticKeys::askKeymap()
{
    m_pending = xcb_query_keymap(m_connection.get());
    xcb_flush(m_connection.get());
    m_answerDeadline = QDeadlineTimer(answerTimeoutMilliseconds);
    m_timer.start(answerPollMilliseconds);
}

void X11SyntheticKeys::checkAnswer()
{
    xcb_connection_t *c = m_connection.get();
    void *answer = nullptr;
    xcb_generic_error_t *error = nullptr;
    if (!xcb_poll_for_reply(c, m_pending->sequence, &answer, &error)) {
        if (!m_answerDeadline.hasExpired() && !xcb_connection_has_error(c)) {
            m_timer.start(answerPollMilliseconds);
            return;
        }
        // The server does not answer: the copy is given up, never left pending.
        xcb_discard_reply(c, m_pending->sequence);
        m_pending.reset();
        qCInfo(lcCapture, "The X server did not tell which keys are held; no copy was sent");
        finish(false);
        return;
    }
    m_pending.reset();
    std::free(error);
    auto *keymap = static_cast<xcb_query_keymap_reply_t *>(answer);
    if (!keymap) {
        finish(false);
        return;
    }
    bool anyKeyDown = false;
    for (uint8_t bits : keymap->keys)
        anyKeyDown = anyKeyDown || bits != 0;
    std::free(keymap);
    takeKeymap(anyKeyDown);
}

void X11SyntheticKeys::takeKeymap(bool anyKeyDown)
{
    if (!anyKeyDown) {
        send();
    } else if (!m_releaseDeadline.hasExpired()) {
        m_timer.start(heldKeysPollMilliseconds);
    } else {
        // Typed now, the copy would mix with what the user holds (Super+Alt+
        // Ctrl+Insert is no copy), or go to the grab of a hot key still down.
        qCInfo(lcCapture, "Keys were still held after %d ms; no copy was sent",
            heldKeysTimeoutMilliseconds);
        finish(false);
    }
}

void X11SyntheticKeys::send()
{
    xcb_connection_t *c = m_connection.get();
    const quint8 control = m_keyboard.keyCodeOf(keysymControlL);
    const quint8 insert = m_keyboard.keyCodeOf(keysymInsert);
    auto fake = [c](uint8_t type, quint8 code) {
        xcb_test_fake_input(c, type, code, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    };
    if (m_focusWindow != 0)
        xcb_set_input_focus(c, XCB_INPUT_FOCUS_PARENT, m_focusWindow, XCB_CURRENT_TIME);
    fake(XCB_KEY_PRESS, control);
    fake(XCB_KEY_PRESS, insert);
    fake(XCB_KEY_RELEASE, insert);
    fake(XCB_KEY_RELEASE, control);
    xcb_flush(c);
    finish(true);
}

void X11SyntheticKeys::finish(bool sent)
{
    m_timer.stop();
    std::function<void(bool)> done = std::move(m_done);
    m_done = nullptr;
    if (done)
        done(sent);
}

} // namespace Vesko
