// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/x11/X11KeyMonitor.h"

#include "platform/x11/X11Connection.h"
#include "platform/x11/X11Keyboard.h"

#include <xcb/xinput.h>

#include <cstdlib>

namespace Vesko {

X11KeyMonitor::X11KeyMonitor() = default;

X11KeyMonitor::~X11KeyMonitor()
{
    stop();
}

bool X11KeyMonitor::start(std::function<void(const KeyEvent &)> receiver)
{
    if (m_receiver)
        return true;
    auto connection = std::make_unique<X11Connection>();
    if (!connection->isValid())
        return false;
    const std::optional<uint8_t> opcode = connection->selectRawKeyEvents(
        XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE);
    if (!opcode)
        return false;
    m_keyboard = std::make_unique<X11Keyboard>(connection->get());
    m_xinputOpcode = *opcode;
    m_connection = std::move(connection);
    m_receiver = std::move(receiver);
    m_held.reset();
    m_flags = 0;
    m_connection->setEventHandler([this](xcb_generic_event_t *event) { handleEvent(event); });
    xcb_flush(m_connection->get());
    return true;
}

void X11KeyMonitor::stop()
{
    m_receiver = nullptr;
    m_connection.reset();
    m_keyboard.reset();
    m_held.reset();
    m_flags = 0;
}

std::optional<KeyEvent> X11KeyMonitor::translate(bool press, quint8 keyCode, quint32 time)
{
    const double timestamp = double(time) / 1000.0;
    if (!m_keyboard->isModifier(keyCode)) {
        m_held[keyCode] = press;
        if (!press)
            return std::nullopt;
        return KeyEvent {KeyEvent::KeyDown, keyCode, m_flags, timestamp};
    }
    if (m_held[keyCode] == press)
        return std::nullopt; // a repeated press or release, or of a key pressed before we listened
    m_held[keyCode] = press;
    quint64 flags = 0;
    for (quint8 modifier : m_keyboard->modifierKeyCodes()) {
        if (m_held[modifier])
            flags |= m_keyboard->modifierFlag(modifier);
    }
    m_flags = flags;
    return KeyEvent {KeyEvent::FlagsChanged, keyCode, m_flags, timestamp};
}

void X11KeyMonitor::handleEvent(xcb_generic_event_t *event)
{
    const uint8_t type = event->response_type & 0x7F;
    if (type == XCB_MAPPING_NOTIFY) {
        m_keyboard->reload();
        return;
    }
    if (type != XCB_GE_GENERIC)
        return;
    auto *generic = reinterpret_cast<xcb_ge_generic_event_t *>(event);
    if (generic->extension != m_xinputOpcode)
        return;
    if (generic->event_type != XCB_INPUT_RAW_KEY_PRESS
        && generic->event_type != XCB_INPUT_RAW_KEY_RELEASE)
        return;
    auto *raw = reinterpret_cast<xcb_input_raw_key_press_event_t *>(event);
    const std::optional<KeyEvent> translated
        = translate(generic->event_type == XCB_INPUT_RAW_KEY_PRESS, quint8(raw->detail), raw->time);
    if (translated && m_receiver)
        m_receiver(*translated);
}

} // namespace Vesko
