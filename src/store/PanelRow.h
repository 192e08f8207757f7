// SPDX-License-Identifier: GPL-3.0-or-later
//
// The flat list the panel shows: a header row for each section of the active
// project and a row for each note shown under it, a function of the project,
// the search state and three preferences. derivePanelRows() makes the list
// whole; the Store keeps it up to date by patching (PanelRowList).

#pragma once

#include "library/Library.h"
#include "search/SearchMatches.h"

#include <QList>

#include <optional>
#include <variant>

namespace Vesko {

struct PanelSectionRow
{
    QUuid id;
    QString title;
    bool isCollapsed = false;
    //! Open notes of the section, counted before any filter.
    int remainingCount = 0;
    //! The section is the active project's active section.
    bool isActive = false;

    bool operator==(const PanelSectionRow &) const = default;
};

struct PanelNoteRow
{
    Note note;
    QUuid sectionID;

    bool operator==(const PanelNoteRow &) const = default;
};

class PanelRow
{
public:
    PanelRow(PanelSectionRow section)
        : m_value(std::move(section))
    { }
    PanelRow(PanelNoteRow note)
        : m_value(std::move(note))
    { }

    bool isSection() const { return std::holds_alternative<PanelSectionRow>(m_value); }
    bool isNote() const { return !isSection(); }
    const PanelSectionRow &section() const { return std::get<PanelSectionRow>(m_value); }
    const PanelNoteRow &noteRow() const { return std::get<PanelNoteRow>(m_value); }
    const Note &note() const { return noteRow().note; }

    //! The section's or the note's id.
    QUuid id() const { return isSection() ? section().id : note().id; }

    bool operator==(const PanelRow &) const = default;

private:
    std::variant<PanelSectionRow, PanelNoteRow> m_value;
};

//! What a rebuild of the rows reads besides the project.
struct RowOptions
{
    bool showCompleted = true;
    bool newestFirst = false;
    bool moveDoneToBottom = false;
    //! The search text is not blank. Only with it do matches count.
    bool isSearching = false;

    bool operator==(const RowOptions &) const = default;
};

//! The rows of \a project (none without one) for \a options and \a matches.
QList<PanelRow> derivePanelRows(
    const Project *project, const RowOptions &options, const std::optional<SearchMatches> &matches);

//! The notes of the note rows, in row order.
QList<Note> visibleNotes(const QList<PanelRow> &rows);

} // namespace Vesko

// Rows hold Qt's implicitly shared values, std::optional and std::variant,
// none of which points into itself: a splice of the rows moves their bytes.
Q_DECLARE_TYPEINFO(Vesko::PanelRow, Q_RELOCATABLE_TYPE);
