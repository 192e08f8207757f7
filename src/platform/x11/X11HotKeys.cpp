// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/x11/X11HotKeys.h"

#include "platform/x11/X11Connection.h"
#include "platform/x11/X11Keyboard.h"

#include <cstdlib>

namespace Vesko {

namespace {

// Caps Lock and Num Lock (Mod2) must not block a combination.
constexpr uint16_t lockVariants[]
    = {0, XCB_MOD_MASK_LOCK, XCB_MOD_MASK_2, XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2};
constexpr int badAccess = 10;

} // namespace

X11HotKeys::X11HotKeys()
    : m_connection(std::make_unique<X11Connection>())
{
    if (!m_connection->isValid())
        return;
    m_connection->setEventHandler([this](xcb_generic_event_t *event) { handleEvent(event); });
}

X11HotKeys::~X11HotKeys()
{
    for (auto it = m_grabs.cbegin(); it != m_grabs.cend(); ++it) {
        for (uint16_t lock : lockVariants)
            xcb_ungrab_key(m_connection->get(), it->keyCode, m_connection->root(), it->mask | lock);
    }
    if (m_connection->isValid())
        xcb_flush(m_connection->get());
}

void X11HotKeys::installHandler(std::function<void(int)> handler)
{
    m_handler = std::move(handler);
}

void X11HotKeys::removeHandler()
{
    m_handler = nullptr;
}

int X11HotKeys::registerKey(int id, quint16 keyCode, quint64 modifiers)
{
    if (!m_connection->isValid())
        return -1;
    if (keyCode > 255)
        return -2;
    unregisterKey(id);
    const uint16_t mask = X11Keyboard::modifierMask(modifiers);
    xcb_connection_t *c = m_connection->get();
    xcb_void_cookie_t cookies[std::size(lockVariants)];
    for (size_t i = 0; i < std::size(lockVariants); ++i) {
        cookies[i] = xcb_grab_key_checked(c, 1, m_connection->root(), mask | lockVariants[i],
            xcb_keycode_t(keyCode), XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    }
    int status = 0;
    for (xcb_void_cookie_t cookie : cookies) {
        if (xcb_generic_error_t *error = xcb_request_check(c, cookie)) {
            status = error->error_code;
            std::free(error);
        }
    }
    if (status != 0) {
        for (uint16_t lock : lockVariants)
            xcb_ungrab_key(c, xcb_keycode_t(keyCode), m_connection->root(), mask | lock);
        xcb_flush(c);
        return status == badAccess ? badAccess : status;
    }
    m_grabs.insert(id, Grab {quint8(keyCode), mask});
    return 0;
}

void X11HotKeys::unregisterKey(int id)
{
    const auto found = m_grabs.constFind(id);
    if (found == m_grabs.constEnd())
        return;
    for (uint16_t lock : lockVariants)
        xcb_ungrab_key(
            m_connection->get(), found->keyCode, m_connection->root(), found->mask | lock);
    xcb_flush(m_connection->get());
    m_grabs.erase(found);
}

void X11HotKeys::handleEvent(xcb_generic_event_t *event)
{
    const uint8_t type = event->response_type & 0x7F;
    if (type != XCB_KEY_PRESS)
        return;
    auto *press = reinterpret_cast<xcb_key_press_event_t *>(event);
    const uint16_t state = press->state & ~(XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2) & 0xFF;
    for (auto it = m_grabs.cbegin(); it != m_grabs.cend(); ++it) {
        if (it->keyCode == press->detail && it->mask == state) {
            if (m_handler)
                m_handler(it.key());
            return;
        }
    }
}

} // namespace Vesko
