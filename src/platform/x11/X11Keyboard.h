// SPDX-License-Identifier: GPL-3.0-or-later
//
// The X server's keyboard as the capture layer reads it: which key codes are
// modifiers (and which of the program's modifier flags each one stands for)
// and the key code of a key symbol. Read again after the server announces a
// mapping change. (What a key shows on screen is X11KeyLayout's.)

#pragma once

#include <QHash>
#include <QList>

#include <xcb/xcb.h>

namespace Vesko {

class X11Keyboard
{
public:
    explicit X11Keyboard(xcb_connection_t *connection);

    //! Reads the modifier and keyboard mappings again.
    void reload();

    //! The flag a modifier key sets: Shift, Command (Ctrl), Option (Alt),
    //! Control (Super), SecondaryFn (AltGr), CapsLock; 0 for other keys.
    quint64 modifierFlag(quint8 keyCode) const { return m_modifierFlags.value(keyCode); }
    bool isModifier(quint8 keyCode) const { return m_modifierFlags.contains(keyCode); }
    //! Every modifier key, in no particular order.
    const QList<quint8> &modifierKeyCodes() const { return m_modifierKeyCodes; }
    //! The first key code that produces \a keysym at its first level, or 0.
    quint8 keyCodeOf(quint32 keysym) const;
    quint32 keysymAt(quint8 keyCode) const;
    //! The X modifier mask of the program's flags.
    static uint16_t modifierMask(quint64 flags);

private:
    xcb_connection_t *m_connection;
    QHash<quint8, quint64> m_modifierFlags;
    QList<quint8> m_modifierKeyCodes;
    quint8 m_minKeyCode = 8;
    int m_keysymsPerKeyCode = 0;
    QList<quint32> m_keysyms;
};

} // namespace Vesko
