// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/wayland/WaylandVirtualKeyboard.h"

#include "platform/Logging.h"
#include "platform/wayland/WaylandGlobals.h"

#include "virtual-keyboard-unstable-v1-client-protocol.h"

#include <QElapsedTimer>

#include <wayland-client.h>
#include <xkbcommon/xkbcommon.h>

#include <cstring>
#include <memory>
#include <sys/mman.h>
#include <unistd.h>

namespace Vesko {

namespace {

// Linux input key codes, as the virtual keyboard takes them.
constexpr quint32 leftControlKey = 29;
constexpr quint32 insertKey = 110;

template<typename T, void (*Free)(T *)> struct Deleter
{
    void operator()(T *object) const { Free(object); }
};

} // namespace

WaylandVirtualKeyboard::WaylandVirtualKeyboard(WaylandGlobals &globals, QObject *parent)
    : QObject(parent)
    , m_globals(globals)
{
    bindManager();
    connect(&globals, &WaylandGlobals::announced, this, [this](const QByteArray &interface) {
        if (!m_manager && interface == zwp_virtual_keyboard_manager_v1_interface.name)
            bindManager();
    });
    connect(&globals, &WaylandGlobals::withdrawn, this, [this](quint32 name) {
        if (name == m_managerName) {
            release();
        } else if (name == m_globals.seatName() && m_keyboard) {
            // Made on that seat: the next copy makes one on the next seat.
            zwp_virtual_keyboard_v1_destroy(m_keyboard);
            m_keyboard = nullptr;
        }
    });
}

WaylandVirtualKeyboard::~WaylandVirtualKeyboard()
{
    release();
}

void WaylandVirtualKeyboard::bindManager()
{
    m_manager = reinterpret_cast<zwp_virtual_keyboard_manager_v1 *>(
        m_globals.bind(&zwp_virtual_keyboard_manager_v1_interface, 1, &m_managerName));
}

void WaylandVirtualKeyboard::release()
{
    if (m_keyboard)
        zwp_virtual_keyboard_v1_destroy(m_keyboard);
    if (m_manager)
        zwp_virtual_keyboard_manager_v1_destroy(m_manager);
    m_keyboard = nullptr;
    m_manager = nullptr;
    m_managerName = 0;
    m_globals.flush();
}

bool WaylandVirtualKeyboard::makeKeyboard()
{
    if (m_keyboard)
        return true;
    if (!m_manager || !m_globals.seat())
        return false;
    // A plain keymap of the rules' defaults: Control and Insert are in every one.
    std::unique_ptr<xkb_context, Deleter<xkb_context, xkb_context_unref>> context(
        xkb_context_new(XKB_CONTEXT_NO_FLAGS));
    if (!context)
        return false;
    std::unique_ptr<xkb_keymap, Deleter<xkb_keymap, xkb_keymap_unref>> keymap(
        xkb_keymap_new_from_names(context.get(), nullptr, XKB_KEYMAP_COMPILE_NO_FLAGS));
    if (!keymap)
        return false;
    const xkb_mod_index_t control = xkb_keymap_mod_get_index(keymap.get(), XKB_MOD_NAME_CTRL);
    std::unique_ptr<char, Deleter<void, free>> text(
        xkb_keymap_get_as_string(keymap.get(), XKB_KEYMAP_FORMAT_TEXT_V1));
    if (!text || control == XKB_MOD_INVALID)
        return false;
    const size_t size = std::strlen(text.get()) + 1;
    const int fd = memfd_create("vesko-keymap", MFD_CLOEXEC);
    if (fd < 0)
        return false;
    if (::write(fd, text.get(), size) != ssize_t(size)) {
        ::close(fd);
        return false;
    }
    m_controlMask = 1u << control;
    m_keyboard
        = zwp_virtual_keyboard_manager_v1_create_virtual_keyboard(m_manager, m_globals.seat());
    zwp_virtual_keyboard_v1_keymap(m_keyboard, WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1, fd, quint32(size));
    ::close(fd);
    return true;
}

bool WaylandVirtualKeyboard::sendCopy()
{
    if (!makeKeyboard()) {
        qCInfo(lcCapture, "No virtual keyboard: the copy keys were not sent");
        return false;
    }
    static QElapsedTimer clock;
    if (!clock.isValid())
        clock.start();
    const auto now = [] { return quint32(clock.elapsed()); };
    zwp_virtual_keyboard_v1_key(m_keyboard, now(), leftControlKey, WL_KEYBOARD_KEY_STATE_PRESSED);
    zwp_virtual_keyboard_v1_modifiers(m_keyboard, m_controlMask, 0, 0, 0);
    zwp_virtual_keyboard_v1_key(m_keyboard, now(), insertKey, WL_KEYBOARD_KEY_STATE_PRESSED);
    zwp_virtual_keyboard_v1_key(m_keyboard, now(), insertKey, WL_KEYBOARD_KEY_STATE_RELEASED);
    zwp_virtual_keyboard_v1_key(m_keyboard, now(), leftControlKey, WL_KEYBOARD_KEY_STATE_RELEASED);
    zwp_virtual_keyboard_v1_modifiers(m_keyboard, 0, 0, 0, 0);
    m_globals.flush();
    return true;
}

} // namespace Vesko
