// SPDX-License-Identifier: GPL-3.0-or-later
//
// The current keyboard layout, asked what a key shows. The X11
// implementation reads it through libxkbcommon; tests use their own.

#pragma once

#include <QString>

#include <optional>

namespace Vesko {

//! The text a key shows in the current keyboard layout.
class KeyLayout
{
public:
    virtual ~KeyLayout() = default;
    virtual std::optional<QString> keyText(quint16 keyCode) const = 0;
};

} // namespace Vesko
