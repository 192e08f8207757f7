// SPDX-License-Identifier: GPL-3.0-or-later
//
// A keyboard layout of two letters: C at key code 54 and N at 57, as a US
// layout has them; every other key shows nothing.

#pragma once

#include "platform/KeyLayout.h"

namespace Vesko::Test {

class FakeKeyLayout : public KeyLayout
{
public:
    std::optional<QString> keyText(quint16 keyCode) const override
    {
        if (keyCode == 54)
            return QStringLiteral("c");
        if (keyCode == 57)
            return QStringLiteral("n");
        return std::nullopt;
    }
};

} // namespace Vesko::Test
