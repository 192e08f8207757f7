// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/x11/X11SyntheticKeys.h"

#include "platform/KeyMonitor.h"
#include "platform/Logging.h"
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

X11SyntheticKeys::X11SyntheticKeys(X11Connection &connection, X11Keyboard &keyboard,
    X11Connection *grabConnection, QObject *parent)
    : QObject(parent)
    , m_connection(connection)
    , m_keyboard(keyboard)
    , m_grabConnection(grabConnection && grabConnection->isValid() ? grabConnection : nullptr)
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, [this] {
        if (m_pending)
            checkAnswer();
        else
            ask(m_connection, Step::AwaitingRelease);
    });
}

X11SyntheticKeys::~X11SyntheticKeys()
{
    if (m_pending)
        xcb_discard_reply(m_asked->get(), m_pending->sequence);
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
    m_released.clear();
    m_releaseDeadline = QDeadlineTimer(heldKeysTimeoutMilliseconds);
    ask(m_connection, Step::AwaitingRelease);
}

void X11SyntheticKeys::ask(X11Connection &connection, Step step)
{
    m_step = step;
    m_asked = &connection;
    m_pending = xcb_query_keymap(connection.get());
    xcb_flush(connection.get());
    m_answerDeadline = QDeadlineTimer(answerTimeoutMilliseconds);
    m_timer.start(answerPollMilliseconds);
}

void X11SyntheticKeys::checkAnswer()
{
    xcb_connection_t *c = m_asked->get();
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
    QList<quint8> down;
    for (int code = 8; code < 256; ++code) {
        if ((keymap->keys[code / 8] >> (code % 8)) & 1)
            down.append(quint8(code));
    }
    std::free(keymap);
    takeKeymap(down);
}

void X11SyntheticKeys::takeKeymap(const QList<quint8> &down)
{
    switch (m_step) {
    case Step::AwaitingRelease:
        if (down.isEmpty()) {
            send({});
        } else if (!m_releaseDeadline.hasExpired()) {
            m_timer.start(heldKeysPollMilliseconds);
        } else if (m_grabConnection) {
            // A hot key's letter still down keeps the keyboard grabbed by
            // Vesko's own connection, so the copy would come back here. The
            // keymap asked on that connection after the ungrab tells when the
            // server has done it.
            xcb_ungrab_keyboard(m_grabConnection->get(), XCB_CURRENT_TIME);
            ask(*m_grabConnection, Step::EndingGrab);
        } else {
            releaseHeldKeys(down);
        }
        break;
    case Step::EndingGrab:
        if (down.isEmpty())
            send({});
        else
            releaseHeldKeys(down);
        break;
    case Step::Releasing: {
        // Only what really went up is pressed again: a key that a physical
        // keyboard holds was not let go, and pressing it through XTEST would
        // leave it down after the user's own release.
        QList<quint8> restore;
        for (quint8 code : std::as_const(m_released)) {
            const quint64 flag = m_keyboard.modifierFlag(code);
            // Caps Lock is left alone: pressing it again would toggle the lock.
            if (flag != 0 && flag != ModifierFlag::CapsLock && !down.contains(code))
                restore.append(code);
        }
        send(restore);
        break;
    }
    }
}

void X11SyntheticKeys::releaseHeldKeys(const QList<quint8> &held)
{
    xcb_connection_t *c = m_connection.get();
    for (quint8 code : held)
        xcb_test_fake_input(c, XCB_KEY_RELEASE, code, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    m_released = held;
    ask(m_connection, Step::Releasing);
}

void X11SyntheticKeys::send(const QList<quint8> &restore)
{
    xcb_connection_t *c = m_connection.get();
    const quint8 control = m_keyboard.keyCodeOf(keysymControlL);
    const quint8 letter = m_keyboard.keyCodeOf(keysymC);
    auto fake = [c](uint8_t type, quint8 code) {
        xcb_test_fake_input(c, type, code, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    };
    if (m_focusWindow != 0)
        xcb_set_input_focus(c, XCB_INPUT_FOCUS_PARENT, m_focusWindow, XCB_CURRENT_TIME);
    fake(XCB_KEY_PRESS, control);
    fake(XCB_KEY_PRESS, letter);
    fake(XCB_KEY_RELEASE, letter);
    fake(XCB_KEY_RELEASE, control);
    // The modifiers let go for the copy go straight back down.
    for (quint8 code : restore)
        fake(XCB_KEY_PRESS, code);
    xcb_flush(c);
    finish(true);
}

void X11SyntheticKeys::finish(bool sent)
{
    m_timer.stop();
    m_released.clear();
    std::function<void(bool)> done = std::move(m_done);
    m_done = nullptr;
    if (done)
        done(sent);
}

} // namespace Vesko
