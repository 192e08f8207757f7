// SPDX-License-Identifier: GPL-3.0-or-later
//
// The selection: a set of note ids and an anchor, the fixed end of a range
// and the point keyboard movement starts from. Everything here goes by the
// visible notes, in row order.

#include "store/Store.h"

namespace Vesko {

namespace {

QList<QUuid> idsOf(const NoteList &notes)
{
    QList<QUuid> ids;
    ids.reserve(notes.size());
    for (const Note &note : notes)
        ids.append(note.id);
    return ids;
}

} // namespace

QList<QUuid> Store::visibleNoteIDs() const
{
    // Read from the rows without copying a note.
    QList<QUuid> ids;
    ids.reserve(m_rows.rows().size());
    for (const PanelRow &row : m_rows.rows()) {
        if (row.isNote())
            ids.append(row.note().id);
    }
    return ids;
}

void Store::select(const QUuid &id, bool extending, bool toggling)
{
    if (toggling) {
        QSet<QUuid> selection = m_selection;
        if (selection.remove(id)) {
            setSelectionSet(selection); // the anchor stays, even if it was this note
        } else {
            selection.insert(id);
            setSelection(selection, id);
        }
        return;
    }

    if (extending && m_selectionAnchor) {
        const qsizetype anchor = noteRowIndex(*m_selectionAnchor);
        const qsizetype target = noteRowIndex(id);
        if (anchor >= 0 && target >= 0) {
            const auto [low, high] = std::minmax(anchor, target);
            QSet<QUuid> range;
            for (qsizetype i = low; i <= high; ++i) {
                if (m_rows.rows().at(i).isNote())
                    range.insert(m_rows.rows().at(i).id());
            }
            setSelectionSet(range);
            return;
        }
    }

    setSelection({id}, id);
}

qsizetype Store::noteRowIndex(const QUuid &id) const
{
    const qsizetype index = m_rows.indexOf(id);
    return index >= 0 && m_rows.rows().at(index).isNote() ? index : -1;
}

std::optional<QUuid> Store::moveSelection(int offset, bool extending)
{
    // Steps over the rows from the start's row, through the row index: a
    // step costs the same in a list of any length.
    const QList<PanelRow> &rows = m_rows.rows();
    auto nextNoteRow = [&](qsizetype from, qsizetype step) {
        for (qsizetype i = from + step; i >= 0 && i < rows.size(); i += step) {
            if (rows.at(i).isNote())
                return i;
        }
        return qsizetype(-1);
    };
    const qsizetype firstNote = nextNoteRow(-1, 1);
    if (firstNote < 0)
        return std::nullopt;

    std::optional<QUuid> start = m_selectionAnchor;
    if (!start && !m_selection.isEmpty())
        start = *m_selection.cbegin();

    const qsizetype position = start ? noteRowIndex(*start) : -1;
    if (position >= 0) {
        qsizetype reached = position;
        const qsizetype step = offset < 0 ? -1 : 1;
        for (int left = std::abs(offset); left > 0; --left) {
            const qsizetype next = nextNoteRow(reached, step);
            if (next < 0)
                break;
            reached = next;
        }
        const QUuid target = rows.at(reached).id();
        if (extending)
            select(target, true, false);
        else
            setSelection({target}, target);
        return target;
    }

    const QUuid target = rows.at(offset < 1 ? nextNoteRow(rows.size(), -1) : firstNote).id();
    setSelection({target}, target);
    return target;
}

void Store::selectAll()
{
    const QList<QUuid> ids = visibleNoteIDs();
    setSelectionSet(QSet<QUuid>(ids.cbegin(), ids.cend()));
}

void Store::selectAllInSection(const QUuid &sectionID)
{
    const std::optional<NoteSection> found = section(sectionID);
    if (!found) {
        setSelection({}, std::nullopt);
        return;
    }
    const QList<QUuid> ids = idsOf(found->notes);
    setSelection(QSet<QUuid>(ids.cbegin(), ids.cend()),
        ids.isEmpty() ? std::nullopt : std::optional<QUuid>(ids.first()));
}

void Store::forgetNotes(const QSet<QUuid> &ids)
{
    setSelectionSet(m_selection - ids);
    if (m_selectionAnchor && ids.contains(*m_selectionAnchor)) {
        setSelectionAnchor(
            m_selection.isEmpty() ? std::nullopt : std::optional<QUuid>(*m_selection.cbegin()));
    }
    if (m_editingNoteID && ids.contains(*m_editingNoteID))
        setEditingNoteID(std::nullopt);
    setExpandedNoteIDs(m_expandedNoteIDs - ids);
}

} // namespace Vesko
