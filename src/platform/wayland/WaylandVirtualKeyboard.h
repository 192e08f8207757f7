// SPDX-License-Identifier: GPL-3.0-or-later
//
// Synthetic keys through zwp_virtual_keyboard_v1: a keyboard of Vesko's own
// on the seat, with a keymap it uploads, that types Ctrl+Insert. The
// compositor makes it the seat's active keyboard for those keys, so the
// window hears exactly Ctrl+Insert, never mixed with a modifier the user
// still holds on the real keyboard.

#pragma once

#include <QObject>

struct zwp_virtual_keyboard_manager_v1;
struct zwp_virtual_keyboard_v1;

namespace Vesko {

class WaylandGlobals;

class WaylandVirtualKeyboard : public QObject
{
    Q_OBJECT

public:
    explicit WaylandVirtualKeyboard(WaylandGlobals &globals, QObject *parent = nullptr);
    ~WaylandVirtualKeyboard() override;

    //! The compositor offers virtual keyboards.
    bool isAvailable() const { return m_manager != nullptr; }
    //! Types Ctrl+Insert into the focused window; false when it could not.
    bool sendCopy();

private:
    void bindManager();
    void release();
    bool makeKeyboard();

    WaylandGlobals &m_globals;
    zwp_virtual_keyboard_manager_v1 *m_manager = nullptr;
    quint32 m_managerName = 0;
    zwp_virtual_keyboard_v1 *m_keyboard = nullptr;
    quint32 m_controlMask = 0;
};

} // namespace Vesko
