// SPDX-License-Identifier: GPL-3.0-or-later
//
// The four system-wide shortcut actions and the key combination of one: its
// stored JSON form, its defaults, and how it reads on screen, in the desktop's
// convention ("Super+Alt+C") or with the modifier symbols ("⌃⌥C").

#pragma once

#include "platform/KeyLayout.h"

#include <QByteArray>
#include <QString>

#include <array>
#include <optional>

namespace Vesko {

enum class HotKeyAction { TogglePanel, CaptureSelection, QuickAdd, CopySelectionAsList };

constexpr std::array<HotKeyAction, 4> allHotKeyActions = {HotKeyAction::TogglePanel,
    HotKeyAction::CaptureSelection, HotKeyAction::QuickAdd, HotKeyAction::CopySelectionAsList};

//! "togglePanel", "captureSelection", "quickAdd", "copySelectionAsList".
QString rawValue(HotKeyAction action);
//! The title shown in Settings and the shortcut sheet.
QString title(HotKeyAction action);
//! The identity under which the action is registered: its index plus one.
int hotKeyID(HotKeyAction action);
std::optional<HotKeyAction> hotKeyActionFromID(int id);

struct KeyCombo
{
    quint16 keyCode = 0;
    //! ModifierFlag values.
    quint64 modifiers = 0;

    bool operator==(const KeyCombo &) const = default;

    //! Super+Alt+Space, Super+Alt+C, Super+Alt+N, Super+Alt+L.
    static KeyCombo defaultFor(HotKeyAction action);
    //! {"keyCode":…,"modifiers":…}
    QByteArray toJson() const;
    //! Nothing for empty or undecodable data.
    static std::optional<KeyCombo> fromJson(const QByteArray &data);
};

//! The key alone in the desktop's words: "Space", "Backspace", "F5", or the
//! layout's text, or "Key " and the code.
QString keyName(quint16 keyCode, const KeyLayout *layout);
//! "Super+Ctrl+Alt+Shift+" as set, then the key's name.
QString displayString(const KeyCombo &combo, const KeyLayout *layout);

//! The key alone as a symbol: "↩", "⇥", "F5", or the layout's text, or "Key " and the code.
QString keySymbol(quint16 keyCode, const KeyLayout *layout);
//! "⌃⌥⇧⌘" as set (Control, Option, Shift, Command), then the key's symbol.
QString symbolDisplayString(const KeyCombo &combo, const KeyLayout *layout);

} // namespace Vesko
