// SPDX-License-Identifier: GPL-3.0-or-later
//
// The panel's rows, kept up to date by patching rather than derived whole at
// each change. Each section remembers the notes its rows were made from; an
// update makes rows only for the notes that changed since and splices them
// into the flat list. What it holds always equals derivePanelRows() of the
// same project, options and matches.

#pragma once

#include "store/PanelRow.h"

#include <QHash>

#include <vector>

namespace Vesko {

//! The rows an update replaced: \a removed rows from \a first became
//! \a inserted rows. One span covers every change.
struct PanelRowChange
{
    qsizetype first = 0;
    qsizetype removed = 0;
    qsizetype inserted = 0;

    bool isEmpty() const { return removed == 0 && inserted == 0; }
    bool operator==(const PanelRowChange &) const = default;
};

class PanelRowList
{
public:
    const QList<PanelRow> &rows() const { return m_rows; }

    //! Brings the rows up to what derivePanelRows() gives for the same input
    //! and returns the span that changed. With the project and the options of
    //! the last update, only sections whose notes, title, collapse or active
    //! state changed are looked at, and only rows of changed notes are made.
    PanelRowChange update(const Project *project, const RowOptions &options,
        const std::optional<SearchMatches> &matches);

    //! Empties the rows; the next update derives them whole.
    PanelRowChange clear();

    //! The index of the row \a id, or -1. The first look-up after a change of
    //! the sections' rows indexes them again.
    qsizetype indexOf(const QUuid &id) const;

    //! Where the note of the row \a id stood in the project at the last
    //! update: the index of its section and its index there; none when it
    //! has no row. The caller checks that the place still holds it.
    std::optional<std::pair<qsizetype, qsizetype>> notePlace(const QUuid &id) const;

private:
    //! What the rows of one section were made from.
    struct Section
    {
        NoteSection source;
        PanelSectionRow header;
        //! The header's row; its note rows follow.
        qsizetype start = 0;
        //! The section has rows at all: a search leaves out sections without matches.
        bool present = false;
        //! The indices in source.notes of the notes that have rows, in row order.
        std::vector<qsizetype> order;
        //! The rows of the section, counted from its header, whose places
        //! the index does not know yet.
        qsizetype unindexedFrom = 0;
        qsizetype unindexedTo = 0;
    };

    PanelRowChange rebuild(const Project *project);
    //! The notes of \a section that pass the search and the filters, in row
    //! order, and its open notes.
    std::vector<qsizetype> filteredOrder(const NoteSection &section, int *remaining) const;
    //! Brings one section's rows up to date; returns the rows it replaced.
    PanelRowChange patchSection(Section &cached, const NoteSection &section, bool isActive);

    QList<PanelRow> m_rows;
    std::vector<Section> m_sections;
    bool m_derived = false;
    std::optional<QUuid> m_projectID;
    RowOptions m_options;
    std::optional<SearchMatches> m_matches;

    //! Where a row stands: its section, and its place counted from the header.
    struct Place
    {
        qsizetype section = 0;
        qsizetype offset = 0;
    };
    //! Row ids to places. Entries of rows gone since stay until overwritten:
    //! a look-up checks the row it finds.
    mutable QHash<QUuid, Place> m_index;
    mutable bool m_indexCurrent = false;
};

} // namespace Vesko
