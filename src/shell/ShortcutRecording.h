// SPDX-License-Identifier: GPL-3.0-or-later
//
// The rules of recording a system-wide shortcut in Settings: what one key
// press does to an action's combination. Escape cancels, Backspace and Delete
// clear, a key needs a modifier, and a combination another action holds is
// refused with that action's name. The key code decides before the modifiers.

#pragma once

#include "capture/KeyCombo.h"

#include <QString>

#include <optional>

namespace Vesko {

class HotKeyCenter;

namespace RecorderKeyCode {
//! X key codes of the keys that do not become a shortcut.
constexpr quint16 Escape = 9;
constexpr quint16 Backspace = 22;
constexpr quint16 Delete = 119;
} // namespace RecorderKeyCode

struct RecordedKey
{
    enum class Outcome { Cancelled, Cleared, Refused, Stored };

    Outcome outcome;
    //! The line shown under the control when the key was refused.
    QString warning;
};

//! Applies the key \a keyCode pressed with \a modifiers (ModifierFlag values)
//! to \a action: clears or sets its combination in \a hotKeys, or says why not.
RecordedKey applyRecordedKey(
    HotKeyCenter &hotKeys, HotKeyAction action, quint16 keyCode, quint64 modifiers);

//! The program's modifier flags of Qt's modifiers: Ctrl is Command, Super
//! (Meta) is Control, Alt is Option.
quint64 modifierFlags(Qt::KeyboardModifiers modifiers);

} // namespace Vesko
