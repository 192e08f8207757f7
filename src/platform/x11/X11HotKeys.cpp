// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/x11/X11HotKeys.h"

#include "platform/SessionType.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11Keyboard.h"

// The XKB header names a member "explicit", a C++ keyword.
#define explicit xkbExplicit
#include <xcb/xkb.h>
#undef explicit
#include <xcb/xinput.h>

#include <cstdlib>

namespace Vesko {

namespace {

// Caps Lock and Num Lock (Mod2) must not block a combination.
constexpr uint16_t lockVariants[]
    = {0, XCB_MOD_MASK_LOCK, XCB_MOD_MASK_2, XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2};
constexpr uint16_t lockMasks = XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2;

constexpr int unavailableStatus = -1;
constexpr int badValue = 2;

//! Asks the server to report auto-repeat as presses without releases.
bool enableDetectableAutoRepeat(xcb_connection_t *c)
{
    xcb_xkb_use_extension_reply_t *use
        = xcb_xkb_use_extension_reply(c, xcb_xkb_use_extension(c, 1, 0), nullptr);
    const bool hasXkb = use && use->supported;
    std::free(use);
    if (!hasXkb)
        return false;
    constexpr uint32_t flag = XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT;
    xcb_xkb_per_client_flags_reply_t *flags = xcb_xkb_per_client_flags_reply(
        c, xcb_xkb_per_client_flags(c, XCB_XKB_ID_USE_CORE_KBD, flag, flag, 0, 0, 0), nullptr);
    const bool enabled = flags && (flags->value & flag);
    std::free(flags);
    return enabled;
}

} // namespace

X11HotKeys::X11HotKeys()
{
    // Under XWayland a grab fires only while an X11 window has the focus: no
    // grab at all is more honest than one that works now and then.
    if (isWaylandSession())
        return;
    m_connection = std::make_unique<X11Connection>();
    if (!m_connection->isValid()) {
        m_connection.reset();
        return;
    }
    m_detectableAutoRepeat = enableDetectableAutoRepeat(m_connection->get());
    // The raw releases tell when a held key is let go, wherever the release went.
    m_xinputOpcode = m_connection->selectRawKeyEvents(XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE);
    m_connection->setEventHandler([this](xcb_generic_event_t *event) { handleEvent(event); });
}

X11HotKeys::~X11HotKeys()
{
    if (!m_connection)
        return;
    for (const Grab &grab : std::as_const(m_grabs))
        ungrab(grab);
    xcb_flush(m_connection->get());
}

bool X11HotKeys::isAvailable() const
{
    return m_connection != nullptr;
}

void X11HotKeys::installHandler(std::function<void(int)> handler)
{
    m_handler = std::move(handler);
}

void X11HotKeys::removeHandler()
{
    m_handler = nullptr;
}

void X11HotKeys::ungrab(const Grab &grab)
{
    for (size_t i = 0; i < std::size(lockVariants); ++i) {
        if (grab.variants & (1u << i)) {
            xcb_ungrab_key(m_connection->get(), grab.keyCode, m_connection->root(),
                grab.mask | lockVariants[i]);
        }
    }
}

int X11HotKeys::registerKey(int id, quint16 keyCode, quint64 modifiers)
{
    if (!m_connection)
        return unavailableStatus;
    if (keyCode > 255)
        return badValue;
    unregisterKey(id);
    Grab grab;
    grab.keyCode = quint8(keyCode);
    grab.mask = X11Keyboard::modifierMask(modifiers);
    for (const Grab &held : std::as_const(m_grabs)) {
        if (held.keyCode == grab.keyCode && held.mask == grab.mask)
            return takenStatus;
    }

    xcb_connection_t *c = m_connection->get();
    xcb_void_cookie_t cookies[std::size(lockVariants)];
    for (size_t i = 0; i < std::size(lockVariants); ++i) {
        cookies[i] = xcb_grab_key_checked(c, 1, m_connection->root(), grab.mask | lockVariants[i],
            grab.keyCode, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    }
    int status = 0;
    for (size_t i = 0; i < std::size(lockVariants); ++i) {
        if (xcb_generic_error_t *error = xcb_request_check(c, cookies[i])) {
            status = error->error_code;
            std::free(error);
        } else {
            grab.variants |= quint8(1u << i);
        }
    }
    if (status != 0) {
        // Only the variants this call took are given back.
        ungrab(grab);
        xcb_flush(c);
        return status;
    }
    m_grabs.insert(id, grab);
    return 0;
}

void X11HotKeys::unregisterKey(int id)
{
    const auto found = m_grabs.constFind(id);
    if (found == m_grabs.constEnd())
        return;
    ungrab(*found);
    xcb_flush(m_connection->get());
    m_grabs.erase(found);
}

void X11HotKeys::keyReleased(quint8 keyCode)
{
    for (Grab &grab : m_grabs) {
        if (grab.keyCode == keyCode)
            grab.isDown = false;
    }
}

void X11HotKeys::handleEvent(xcb_generic_event_t *event)
{
    const uint8_t type = event->response_type & 0x7F;
    if (type == XCB_GE_GENERIC) {
        auto *generic = reinterpret_cast<xcb_ge_generic_event_t *>(event);
        if (m_xinputOpcode && generic->extension == *m_xinputOpcode
            && generic->event_type == XCB_INPUT_RAW_KEY_RELEASE) {
            keyReleased(
                quint8(reinterpret_cast<xcb_input_raw_key_release_event_t *>(event)->detail));
        }
        return;
    }
    if (type == XCB_KEY_RELEASE) {
        // The grab's key is up again, whatever modifiers are still down.
        auto *release = reinterpret_cast<xcb_key_release_event_t *>(event);
        keyReleased(release->detail);
        for (Grab &grab : m_grabs) {
            if (grab.keyCode == release->detail)
                grab.releaseTime = release->time;
        }
        return;
    }
    if (type != XCB_KEY_PRESS)
        return;
    auto *press = reinterpret_cast<xcb_key_press_event_t *>(event);
    const uint16_t state = press->state & ~lockMasks & 0xFF;
    for (auto it = m_grabs.begin(); it != m_grabs.end(); ++it) {
        if (it->keyCode != press->detail || it->mask != state)
            continue;
        // A repeat: the key was never released, or (without detectable
        // auto-repeat) its release came with this very press's time.
        const bool repeat = it->isDown || (it->releaseTime != 0 && it->releaseTime == press->time);
        it->isDown = true;
        if (!repeat && m_handler)
            m_handler(it.key());
        return;
    }
}

} // namespace Vesko
