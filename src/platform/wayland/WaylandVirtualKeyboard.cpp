// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/wayland/WaylandVirtualKeyboard.h"

#include "platform/Logging.h"
#include "platform/wayland/WaylandGlobals.h"

#include "virtual-keyboard-unstable-v1-client-protocol.h"

#include <QElapsedTimer>

#include <wayland-client.h>
#include <xkbcommon/xkbcommon.h>

#include <chrono>
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
    // Compiling a keymap reads the rules' files: off the main thread, once.
    if (m_manager && !m_compiling.valid() && !m_keymap)
        m_compiling = std::async(std::launch::async, &WaylandVirtualKeyboard::compileKeymap);
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

std::optional<WaylandVirtualKeyboard::Keymap> WaylandVirtualKeyboard::compileKeymap()
{
    // A plain keymap of the rules' defaults: Control and Insert are in every one.
    std::unique_ptr<xkb_context, Deleter<xkb_context, xkb_context_unref>> context(
        xkb_context_new(XKB_CONTEXT_NO_FLAGS));
    if (!context)
        return std::nullopt;
    std::unique_ptr<xkb_keymap, Deleter<xkb_keymap, xkb_keymap_unref>> keymap(
        xkb_keymap_new_from_names(context.get(), nullptr, XKB_KEYMAP_COMPILE_NO_FLAGS));
    if (!keymap)
        return std::nullopt;
    const xkb_mod_index_t control = xkb_keymap_mod_get_index(keymap.get(), XKB_MOD_NAME_CTRL);
    std::unique_ptr<char, Deleter<void, free>> text(
        xkb_keymap_get_as_string(keymap.get(), XKB_KEYMAP_FORMAT_TEXT_V1));
    if (!text || control == XKB_MOD_INVALID)
        return std::nullopt;
    // With its final NUL, as the compositor reads it.
    return Keymap {QByteArray(text.get(), qsizetype(std::strlen(text.get()) + 1)), 1u << control};
}

bool WaylandVirtualKeyboard::makeKeyboard()
{
    if (m_keyboard)
        return true;
    if (!m_manager || !m_globals.seat())
        return false;
    if (!m_keymap) {
        // Compiled since the manager was offered, long before a capture:
        // not ready yet only in the first moments, when this copy fails.
        if (!m_compiling.valid()
            || m_compiling.wait_for(std::chrono::seconds(0)) != std::future_status::ready) {
            qCInfo(lcCapture, "The virtual keyboard's keymap is not compiled yet");
            return false;
        }
        m_keymap = m_compiling.get();
        if (!m_keymap) {
            qCInfo(lcCapture, "The virtual keyboard's keymap could not be compiled");
            m_keymap = Keymap {}; // not tried again
        }
    }
    if (m_keymap->text.isEmpty())
        return false;
    const int fd = memfd_create("vesko-keymap", MFD_CLOEXEC);
    if (fd < 0)
        return false;
    const QByteArray &text = m_keymap->text;
    if (::write(fd, text.constData(), size_t(text.size())) != ssize_t(text.size())) {
        ::close(fd);
        return false;
    }
    m_keyboard
        = zwp_virtual_keyboard_manager_v1_create_virtual_keyboard(m_manager, m_globals.seat());
    zwp_virtual_keyboard_v1_keymap(
        m_keyboard, WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1, fd, quint32(text.size()));
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
    zwp_virtual_keyboard_v1_modifiers(m_keyboard, m_keymap->controlMask, 0, 0, 0);
    zwp_virtual_keyboard_v1_key(m_keyboard, now(), insertKey, WL_KEYBOARD_KEY_STATE_PRESSED);
    zwp_virtual_keyboard_v1_key(m_keyboard, now(), insertKey, WL_KEYBOARD_KEY_STATE_RELEASED);
    zwp_virtual_keyboard_v1_key(m_keyboard, now(), leftControlKey, WL_KEYBOARD_KEY_STATE_RELEASED);
    zwp_virtual_keyboard_v1_modifiers(m_keyboard, 0, 0, 0, 0);
    m_globals.flush();
    return true;
}

} // namespace Vesko
