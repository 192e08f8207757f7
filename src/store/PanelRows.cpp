// SPDX-License-Identifier: GPL-3.0-or-later

#include "store/PanelRow.h"

#include <algorithm>

namespace Vesko {

QList<PanelRow> derivePanelRows(
    const Project *project, const RowOptions &options, const std::optional<SearchMatches> &matches)
{
    QList<PanelRow> rows;
    if (!project)
        return rows;

    qsizetype capacity = project->sections.size();
    for (const NoteSection &section : project->sections)
        capacity += section.notes.size();
    rows.reserve(capacity);

    QList<Note> notes;
    for (const NoteSection &section : project->sections) {
        // Copies of notes share their text with the library.
        notes = section.notes;

        if (options.isSearching && !(matches && matches->sectionIDs.contains(section.id))) {
            notes.removeIf(
                [&](const Note &note) { return !matches || !matches->noteIDs.contains(note.id); });
        }
        if (!options.showCompleted)
            notes.removeIf([](const Note &note) { return note.isDone; });
        if (options.newestFirst)
            std::reverse(notes.begin(), notes.end());
        if (options.moveDoneToBottom)
            std::stable_partition(
                notes.begin(), notes.end(), [](const Note &note) { return !note.isDone; });

        if (options.isSearching && notes.isEmpty())
            continue;

        const auto remaining = std::count_if(section.notes.cbegin(), section.notes.cend(),
            [](const Note &note) { return !note.isDone; });
        rows.append(PanelSectionRow {section.id, section.title, section.isCollapsed, int(remaining),
            project->activeSectionID == section.id});

        if (options.isSearching || !section.isCollapsed) {
            for (const Note &note : std::as_const(notes))
                rows.append(PanelNoteRow {note, section.id});
        }
    }
    return rows;
}

QList<Note> visibleNotes(const QList<PanelRow> &rows)
{
    QList<Note> notes;
    for (const PanelRow &row : rows) {
        if (row.isNote())
            notes.append(row.note());
    }
    return notes;
}

} // namespace Vesko
