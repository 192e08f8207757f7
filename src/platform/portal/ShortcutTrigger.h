// SPDX-License-Identifier: GPL-3.0-or-later
//
// A key combination (an XKB key code and the program's modifier flags) in
// the words other programs take it in: the trigger form of the XDG shortcuts
// convention that the global-shortcuts portal reads ("LOGO+ALT+c"), and a
// sway key binding ("Mod4+Mod1+c"). The key is named by the keysym it gives
// without modifiers in the default keyboard layout, which also names the
// keys on screen where the X server's layout cannot be read (Wayland).

#pragma once

#include "platform/KeyLayout.h"

#include <QString>

namespace Vesko {

//! The keysym name of \a keyCode at its first level ("c", "space",
//! "Return", "F5"); empty for a code the layout does not know.
QString keysymName(quint16 keyCode);

//! "LOGO+CTRL+ALT+SHIFT+" as set, then the keysym name; empty when the key
//! has no name.
QString xdgShortcutTrigger(quint16 keyCode, quint64 modifiers);

//! "Mod4+Ctrl+Mod1+Shift+" as set, then the keysym name, as sway's bindsym
//! takes it; empty when the key has no name.
QString swayKeyCombo(quint16 keyCode, quint64 modifiers);

//! The text of each key in the default keyboard layout (XKB_DEFAULT_LAYOUT,
//! else "us"): what the recorder shows where no other layout is known.
class DefaultKeyLayout : public KeyLayout
{
    Q_OBJECT

public:
    using KeyLayout::KeyLayout;
    std::optional<QString> keyText(quint16 keyCode) const override;
};

} // namespace Vesko
