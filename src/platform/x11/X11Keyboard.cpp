// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/x11/X11Keyboard.h"

#include "platform/KeyMonitor.h"

#include <cstdlib>

namespace Vesko {

X11Keyboard::X11Keyboard(xcb_connection_t *connection)
    : m_connection(connection)
{
    reload();
}

void X11Keyboard::reload()
{
    m_modifierFlags.clear();
    m_modifierKeyCodes.clear();
    m_keysyms.clear();
    if (!m_connection)
        return;

    // The eight modifiers in the order of the protocol: Shift, Lock, Control, Mod1 to Mod5.
    static constexpr quint64 flags[8]
        = {ModifierFlag::Shift, ModifierFlag::CapsLock, ModifierFlag::Command, ModifierFlag::Option,
            0, 0, ModifierFlag::Control, ModifierFlag::SecondaryFn};
    xcb_get_modifier_mapping_reply_t *modifiers = xcb_get_modifier_mapping_reply(
        m_connection, xcb_get_modifier_mapping(m_connection), nullptr);
    if (modifiers) {
        const xcb_keycode_t *codes = xcb_get_modifier_mapping_keycodes(modifiers);
        const int perModifier = modifiers->keycodes_per_modifier;
        for (int modifier = 0; modifier < 8; ++modifier) {
            for (int i = 0; i < perModifier; ++i) {
                const xcb_keycode_t code = codes[modifier * perModifier + i];
                if (code != 0 && flags[modifier] != 0 && !m_modifierFlags.contains(code)) {
                    m_modifierFlags.insert(code, flags[modifier]);
                    m_modifierKeyCodes.append(code);
                }
            }
        }
        std::free(modifiers);
    }

    const xcb_setup_t *setup = xcb_get_setup(m_connection);
    m_minKeyCode = setup->min_keycode;
    const int count = setup->max_keycode - setup->min_keycode + 1;
    xcb_get_keyboard_mapping_reply_t *mapping = xcb_get_keyboard_mapping_reply(m_connection,
        xcb_get_keyboard_mapping(m_connection, setup->min_keycode, uint8_t(count)), nullptr);
    if (mapping) {
        m_keysymsPerKeyCode = mapping->keysyms_per_keycode;
        const xcb_keysym_t *syms = xcb_get_keyboard_mapping_keysyms(mapping);
        const int length = xcb_get_keyboard_mapping_keysyms_length(mapping);
        m_keysyms.reserve(length);
        for (int i = 0; i < length; ++i)
            m_keysyms.append(syms[i]);
        std::free(mapping);
    }
}

quint32 X11Keyboard::keysymAt(quint8 keyCode) const
{
    if (m_keysymsPerKeyCode == 0 || keyCode < m_minKeyCode)
        return 0;
    const qsizetype index = qsizetype(keyCode - m_minKeyCode) * m_keysymsPerKeyCode;
    return index < m_keysyms.size() ? m_keysyms.at(index) : 0;
}

quint8 X11Keyboard::keyCodeOf(quint32 keysym) const
{
    if (m_keysymsPerKeyCode == 0)
        return 0;
    for (qsizetype i = 0; i < m_keysyms.size(); i += m_keysymsPerKeyCode) {
        if (m_keysyms.at(i) == keysym)
            return quint8(m_minKeyCode + i / m_keysymsPerKeyCode);
    }
    return 0;
}

uint16_t X11Keyboard::modifierMask(quint64 flags)
{
    uint16_t mask = 0;
    if (flags & ModifierFlag::Shift)
        mask |= XCB_MOD_MASK_SHIFT;
    if (flags & ModifierFlag::Command)
        mask |= XCB_MOD_MASK_CONTROL;
    if (flags & ModifierFlag::Option)
        mask |= XCB_MOD_MASK_1;
    if (flags & ModifierFlag::Control)
        mask |= XCB_MOD_MASK_4;
    return mask;
}

} // namespace Vesko
