// SPDX-License-Identifier: GPL-3.0-or-later
//
// A build without Enchant checks no spelling.

#include "platform/SpellChecker.h"

namespace Vesko {

std::unique_ptr<SpellChecker> makeSpellChecker(const QString &)
{
    return nullptr;
}

} // namespace Vesko
