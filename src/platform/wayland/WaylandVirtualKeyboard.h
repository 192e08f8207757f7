// SPDX-License-Identifier: GPL-3.0-or-later
//
// Synthetic keys through zwp_virtual_keyboard_v1: a keyboard of Vesko's own
// on the seat, with a keymap it uploads, that types Ctrl+Insert. The
// compositor makes it the seat's active keyboard for those keys, so the
// window hears exactly Ctrl+Insert, never mixed with a modifier the user
// still holds on the real keyboard. The keymap is compiled on a thread of
// its own as soon as the compositor offers virtual keyboards, never on the
// main thread at the first copy.

#pragma once

#include <QByteArray>
#include <QObject>

#include <future>
#include <optional>

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
    //! The keymap's text, and the mask of Control in it.
    struct Keymap
    {
        QByteArray text;
        quint32 controlMask = 0;
    };
    static std::optional<Keymap> compileKeymap();

    void bindManager();
    void release();
    bool makeKeyboard();

    WaylandGlobals &m_globals;
    zwp_virtual_keyboard_manager_v1 *m_manager = nullptr;
    quint32 m_managerName = 0;
    zwp_virtual_keyboard_v1 *m_keyboard = nullptr;
    //! Under way from the first offer of the manager on; taken once ready.
    std::future<std::optional<Keymap>> m_compiling;
    std::optional<Keymap> m_keymap;
};

} // namespace Vesko
