// SPDX-License-Identifier: GPL-3.0-or-later
//
// Where a note or a section stands in a library, by indices: the first match
// in project, section, note order. A mutable reference reached through the
// indices detaches only the path to it.

#pragma once

#include "library/Library.h"

#include <optional>

namespace Vesko {

struct LibraryPosition
{
    qsizetype project = -1;
    qsizetype section = -1;
    qsizetype note = -1;
};

inline std::optional<LibraryPosition> locateNote(const Library &library, const QUuid &id)
{
    for (qsizetype p = 0; p < library.projects.size(); ++p) {
        const QList<NoteSection> &sections = library.projects.at(p).sections;
        for (qsizetype s = 0; s < sections.size(); ++s) {
            const NoteList &notes = sections.at(s).notes;
            for (qsizetype n = 0; n < notes.size(); ++n) {
                if (notes.at(n).id == id)
                    return LibraryPosition {p, s, n};
            }
        }
    }
    return std::nullopt;
}

inline std::optional<LibraryPosition> locateSection(const Library &library, const QUuid &id)
{
    for (qsizetype p = 0; p < library.projects.size(); ++p) {
        const QList<NoteSection> &sections = library.projects.at(p).sections;
        for (qsizetype s = 0; s < sections.size(); ++s) {
            if (sections.at(s).id == id)
                return LibraryPosition {p, s, -1};
        }
    }
    return std::nullopt;
}

} // namespace Vesko
