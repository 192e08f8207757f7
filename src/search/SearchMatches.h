// SPDX-License-Identifier: GPL-3.0-or-later
//
// The answer of a search: the notes whose text or attachment names contain the
// query, and the sections whose titles do.

#pragma once

#include <QSet>
#include <QUuid>

namespace Vesko {

struct SearchMatches
{
    QSet<QUuid> noteIDs;
    QSet<QUuid> sectionIDs;

    bool operator==(const SearchMatches &) const = default;
};

} // namespace Vesko
