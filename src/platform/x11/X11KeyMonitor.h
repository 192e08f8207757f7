// SPDX-License-Identifier: GPL-3.0-or-later
//
// The key monitor of an X11 session: XInput 2 raw key events selected on the
// root window, read on the main thread. It only listens; nothing is grabbed.
// Modifier keys become flag changes with the flags held after them, other
// keys become key presses. The set of keys held is kept, since the raw stream
// can repeat a release.

#pragma once

#include "platform/KeyMonitor.h"

#include <bitset>

#include <xcb/xcb.h>

#include <memory>

namespace Vesko {

class X11Connection;
class X11Keyboard;

class X11KeyMonitor : public KeyMonitor
{
public:
    X11KeyMonitor();
    ~X11KeyMonitor() override;

    bool start(std::function<void(const KeyEvent &)> receiver) override;
    void stop() override;
    bool isRunning() const override { return bool(m_receiver); }

    //! Decodes one event of the connection and delivers what it means, if
    //! anything; public for the benchmark.
    void handleEvent(xcb_generic_event_t *event);
    uint8_t xinputOpcode() const { return m_xinputOpcode; }

private:
    //! One raw press or release of \a keyCode at \a time (ms) as the receiver gets it.
    std::optional<KeyEvent> translate(bool press, quint8 keyCode, quint32 time);

    std::unique_ptr<X11Connection> m_connection;
    std::unique_ptr<X11Keyboard> m_keyboard;
    uint8_t m_xinputOpcode = 0;
    std::function<void(const KeyEvent &)> m_receiver;
    //! The keys down now, by key code; fixed storage, nothing allocated per key.
    std::bitset<256> m_held;
    quint64 m_flags = 0;
};

} // namespace Vesko
