// SPDX-License-Identifier: GPL-3.0-or-later
//
// The keyboard layout the X server uses now, read through libxkbcommon: the
// core keyboard's keymap and the layout (XKB group) in effect, followed on a
// connection of its own through XKB's notify events. A switch of layout or a
// new keymap (setxkbmap) changes the names of keys at once: changed() tells.

#pragma once

#include "platform/KeyLayout.h"

#include <xcb/xcb.h>

#include <memory>

struct xkb_context;
struct xkb_keymap;
struct xkb_state;

namespace Vesko {

class X11Connection;

class X11KeyLayout : public KeyLayout
{
    Q_OBJECT

public:
    explicit X11KeyLayout(QObject *parent = nullptr);
    ~X11KeyLayout() override;

    //! The server has XKB and its keymap could be read.
    bool isValid() const { return m_keymap != nullptr; }

    //! The key's symbol at the first level of the current layout, as text,
    //! upper-cased; nothing for a key that shows no printable text.
    std::optional<QString> keyText(quint16 keyCode) const override;

private:
    void handleEvent(xcb_generic_event_t *event);
    //! Reads the keymap and the state of the keyboard again.
    void reload();

    std::unique_ptr<X11Connection> m_connection;
    uint8_t m_xkbEventBase = 0;
    int32_t m_deviceID = -1;
    xkb_context *m_context = nullptr;
    xkb_keymap *m_keymap = nullptr;
    xkb_state *m_state = nullptr;
};

} // namespace Vesko
