// SPDX-License-Identifier: GPL-3.0-or-later

#include "shell/ShortcutRecording.h"

#include "capture/HotKeyCenter.h"
#include "platform/KeyMonitor.h"

#include <QCoreApplication>

namespace Vesko {

RecordedKey applyRecordedKey(
    HotKeyCenter &hotKeys, HotKeyAction action, quint16 keyCode, quint64 modifiers)
{
    using Outcome = RecordedKey::Outcome;
    if (keyCode == RecorderKeyCode::Escape)
        return {Outcome::Cancelled, {}};
    if (keyCode == RecorderKeyCode::Backspace || keyCode == RecorderKeyCode::Delete) {
        hotKeys.clearCombo(action);
        return {Outcome::Cleared, {}};
    }
    const KeyCombo combo {keyCode, modifiers & ~quint64(0xFFFF)};
    if (!(combo.modifiers & ModifierFlag::HotKeyModifiers)) {
        return {Outcome::Refused,
            QCoreApplication::translate(
                "ShortcutRecorderView", "Add a modifier like Ctrl or Alt.")};
    }
    if (const std::optional<HotKeyAction> other = hotKeys.conflictingAction(combo, action)) {
        return {Outcome::Refused,
            QCoreApplication::translate("ShortcutRecorderView", "Already used by “%1”.")
                .arg(title(*other))};
    }
    hotKeys.setCombo(combo, action);
    return {Outcome::Stored, {}};
}

quint64 modifierFlags(Qt::KeyboardModifiers modifiers)
{
    quint64 flags = 0;
    if (modifiers & Qt::ShiftModifier)
        flags |= ModifierFlag::Shift;
    if (modifiers & Qt::ControlModifier)
        flags |= ModifierFlag::Command;
    if (modifiers & Qt::AltModifier)
        flags |= ModifierFlag::Option;
    if (modifiers & Qt::MetaModifier)
        flags |= ModifierFlag::Control;
    return flags;
}

} // namespace Vesko
