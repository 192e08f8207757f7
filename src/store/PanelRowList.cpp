// SPDX-License-Identifier: GPL-3.0-or-later

#include "store/PanelRowList.h"

#include <algorithm>

namespace Vesko {

namespace {

// Sameness by identity: values that share their buffers are equal without
// reading them. Holding the notes a row was made from keeps this safe: a
// change to a buffer that is shared copies it first, so a shared buffer is
// an unchanged one. Two equal values that do not share count as different,
// which only costs a row made again.
bool sameString(const QString &a, const QString &b)
{
    return a.size() == b.size() && (a.isEmpty() || a.constData() == b.constData());
}

bool sameString(const std::optional<QString> &a, const std::optional<QString> &b)
{
    return a.has_value() == b.has_value() && (!a || sameString(*a, *b));
}

template<typename T> bool sameList(const QList<T> &a, const QList<T> &b)
{
    return a.size() == b.size() && (a.isEmpty() || a.constData() == b.constData());
}

bool sameSource(const std::optional<NoteSource> &a, const std::optional<NoteSource> &b)
{
    if (a.has_value() != b.has_value())
        return false;
    return !a
        || (sameString(a->appName, b->appName)
            && sameString(a->bundleIdentifier, b->bundleIdentifier)
            && sameString(a->windowTitle, b->windowTitle));
}

bool sameNote(const Note &a, const Note &b)
{
    return a.id == b.id && a.isDone == b.isDone && sameString(a.text, b.text)
        && a.createdAt == b.createdAt && a.updatedAt == b.updatedAt
        && a.completedAt == b.completedAt && sameSource(a.source, b.source)
        && sameList(a.attachments, b.attachments);
}

bool sameList(const NoteList &a, const NoteList &b)
{
    return a.sharesAllChunks(b);
}

// The number of notes alike at the start of both lists: chunks both share
// are skipped whole, then notes are compared one by one.
qsizetype commonHead(const NoteList &a, const NoteList &b)
{
    qsizetype n = 0;
    for (qsizetype c = 0; c < a.chunkCount() && c < b.chunkCount()
         && NoteList::sameChunk(a.chunk(c), b.chunk(c));
         ++c)
        n += a.chunk(c).size();
    const qsizetype shorter = std::min(a.size(), b.size());
    while (n < shorter && sameNote(a.at(n), b.at(n)))
        ++n;
    return n;
}

// The number of notes alike at the end of both lists, at most \a most.
qsizetype commonTail(const NoteList &a, const NoteList &b, qsizetype most)
{
    qsizetype n = 0;
    for (qsizetype ca = a.chunkCount() - 1, cb = b.chunkCount() - 1;
         ca >= 0 && cb >= 0 && n < most && NoteList::sameChunk(a.chunk(ca), b.chunk(cb));
         --ca, --cb)
        n += a.chunk(ca).size();
    n = std::min(n, most);
    while (n < most && sameNote(a.at(a.size() - 1 - n), b.at(b.size() - 1 - n)))
        ++n;
    return n;
}

} // namespace

PanelRowChange PanelRowList::clear()
{
    const PanelRowChange change {0, m_rows.size(), 0};
    m_rows.clear();
    m_sections.clear();
    m_derived = false;
    m_index.clear();
    m_indexCurrent = true;
    return change;
}

PanelRowChange PanelRowList::update(
    const Project *project, const RowOptions &options, const std::optional<SearchMatches> &matches)
{
    const std::optional<SearchMatches> &usedMatches
        = options.isSearching ? matches : std::optional<SearchMatches>();
    const std::optional<QUuid> projectID
        = project ? std::optional<QUuid>(project->id) : std::nullopt;
    bool sameShape = m_derived && projectID == m_projectID && options == m_options
        && usedMatches == m_matches && project
        && qsizetype(m_sections.size()) == project->sections.size();
    for (qsizetype s = 0; sameShape && s < project->sections.size(); ++s)
        sameShape = project->sections.at(s).id == m_sections[size_t(s)].source.id;
    if (!sameShape) {
        m_projectID = projectID;
        m_options = options;
        m_matches = usedMatches;
        return rebuild(project);
    }

    // One span covers every section's change, in the new rows' places.
    qsizetype first = -1;
    qsizetype endAfter = 0;
    qsizetype shift = 0;
    for (qsizetype s = 0; s < project->sections.size(); ++s) {
        Section &cached = m_sections[size_t(s)];
        cached.start += shift;
        const NoteSection &section = project->sections.at(s);
        const PanelRowChange change
            = patchSection(cached, section, project->activeSectionID == section.id);
        if (change.isEmpty() && change.first < 0)
            continue;
        if (first < 0)
            first = change.first;
        endAfter = change.first + change.inserted;
        shift += change.inserted - change.removed;
    }
    if (first < 0)
        return {};
    return {first, endAfter - first - shift, endAfter - first};
}

std::vector<qsizetype> PanelRowList::filteredOrder(const NoteSection &section, int *remaining) const
{
    const NoteList &notes = section.notes;
    const bool byMatch
        = m_options.isSearching && !(m_matches && m_matches->sectionIDs.contains(section.id));
    std::vector<qsizetype> order;
    order.reserve(size_t(notes.size()));
    int open = 0;
    for (qsizetype i = 0; i < notes.size(); ++i) {
        const Note &note = notes.at(i);
        if (!note.isDone)
            ++open;
        if (byMatch && !(m_matches && m_matches->noteIDs.contains(note.id)))
            continue;
        if (!m_options.showCompleted && note.isDone)
            continue;
        order.push_back(i);
    }
    if (m_options.newestFirst)
        std::reverse(order.begin(), order.end());
    if (m_options.moveDoneToBottom) {
        std::stable_partition(
            order.begin(), order.end(), [&](qsizetype i) { return !notes.at(i).isDone; });
    }
    *remaining = open;
    return order;
}

PanelRowChange PanelRowList::rebuild(const Project *project)
{
    const qsizetype oldCount = m_rows.size();
    m_rows.clear();
    m_sections.clear();
    m_index.clear();
    m_derived = true;
    if (project) {
        m_sections.resize(size_t(project->sections.size()));
        for (qsizetype s = 0; s < project->sections.size(); ++s) {
            const NoteSection &section = project->sections.at(s);
            Section &cached = m_sections[size_t(s)];
            int remaining = 0;
            cached.source = section;
            cached.order = filteredOrder(section, &remaining);
            cached.header = {section.id, section.title, section.isCollapsed, remaining,
                project->activeSectionID == section.id};
            cached.start = m_rows.size();
            cached.present = !(m_options.isSearching && cached.order.empty());
            if (!cached.present)
                continue;
            m_rows.append(cached.header);
            if (m_options.isSearching || !section.isCollapsed) {
                for (const qsizetype i : cached.order)
                    m_rows.append(PanelNoteRow {section.notes.at(i), section.id});
            }
            cached.unindexedFrom = 0;
            cached.unindexedTo = m_rows.size() - cached.start;
        }
    }
    m_indexCurrent = m_rows.isEmpty();
    return {0, oldCount, m_rows.size()};
}

PanelRowChange PanelRowList::patchSection(
    Section &cached, const NoteSection &section, bool isActive)
{
    const bool notesSame = sameList(cached.source.notes, section.notes);
    if (notesSame && section.title == cached.source.title
        && section.isCollapsed == cached.source.isCollapsed && isActive == cached.header.isActive) {
        cached.source = section;
        return {-1, 0, 0};
    }

    int remaining = cached.header.remainingCount;
    std::vector<qsizetype> order = notesSame ? cached.order : filteredOrder(section, &remaining);
    const PanelSectionRow header {
        section.id, section.title, section.isCollapsed, remaining, isActive};
    const bool present = !(m_options.isSearching && order.empty());
    const bool shown = m_options.isSearching || !section.isCollapsed;
    const bool wasShown = m_options.isSearching || !cached.source.isCollapsed;
    const qsizetype oldCount
        = cached.present ? 1 + (wasShown ? qsizetype(cached.order.size()) : 0) : 0;
    const qsizetype newCount = present ? 1 + (shown ? qsizetype(order.size()) : 0) : 0;

    // The rows of the section, counted from its header, that change:
    // [low, oldHigh) becomes [low, newHigh).
    qsizetype low = 0;
    qsizetype oldHigh = oldCount;
    qsizetype newHigh = newCount;
    bool headerChanged = false;
    const NoteList &before = cached.source.notes;
    const NoteList &after = section.notes;
    if (present != cached.present || shown != wasShown) {
        // The section comes, goes, opens or closes: all its rows are made again.
    } else if (!present) {
        oldHigh = newHigh = 0;
    } else {
        headerChanged = !(header == cached.header);
        if (headerChanged)
            m_rows[cached.start] = header;
        low = oldHigh = newHigh = 1;
        if (shown && !(notesSame && order == cached.order)) {
            // Notes alike at both ends of the section are the same notes;
            // the rows made from them stand as they are.
            const qsizetype shorter = std::min(before.size(), after.size());
            const qsizetype head = notesSame ? shorter : commonHead(before, after);
            const qsizetype tail = commonTail(before, after, shorter - head);
            const qsizetype growth = after.size() - before.size();
            auto sameRow = [&](qsizetype oldIndex, qsizetype newIndex) {
                if (oldIndex < head)
                    return oldIndex == newIndex;
                return oldIndex >= before.size() - tail && oldIndex + growth == newIndex;
            };
            const qsizetype oldNotes = qsizetype(cached.order.size());
            const qsizetype newNotes = qsizetype(order.size());
            qsizetype a = 0;
            while (a < std::min(oldNotes, newNotes)
                && sameRow(cached.order[size_t(a)], order[size_t(a)]))
                ++a;
            qsizetype b = 0;
            while (b < std::min(oldNotes, newNotes) - a
                && sameRow(cached.order[size_t(oldNotes - 1 - b)], order[size_t(newNotes - 1 - b)]))
                ++b;
            low = 1 + a;
            oldHigh = 1 + oldNotes - b;
            newHigh = 1 + newNotes - b;
        }
    }

    // The new rows of the span, then one splice.
    QList<PanelRow> made;
    made.reserve(newHigh - low);
    for (qsizetype offset = low; offset < newHigh; ++offset) {
        if (offset == 0)
            made.append(header);
        else
            made.append(PanelNoteRow {after.at(order[size_t(offset - 1)]), section.id});
    }
    const qsizetype at = cached.start + low;
    const qsizetype removed = oldHigh - low;
    const qsizetype common = std::min(removed, made.size());
    for (qsizetype i = 0; i < common; ++i)
        m_rows[at + i] = std::move(made[i]);
    if (removed > common)
        m_rows.remove(at + common, removed - common);
    else if (made.size() > common)
        m_rows.insert(at + common, made.size() - common, made.at(common));
    for (qsizetype i = common + 1; i < made.size(); ++i)
        m_rows[at + i] = std::move(made[i]);

    if (removed > 0 || !made.isEmpty()) {
        // Rows behind a splice that changed the count moved within the section.
        const bool pending = cached.unindexedFrom < cached.unindexedTo;
        const qsizetype end = removed == made.size() ? newHigh : newCount;
        cached.unindexedFrom = pending ? std::min(cached.unindexedFrom, low) : low;
        cached.unindexedTo = std::min(pending ? std::max(cached.unindexedTo, end) : end, newCount);
        m_indexCurrent = false;
    }

    cached.source = section;
    cached.header = header;
    cached.order = std::move(order);
    cached.present = present;
    if (headerChanged) {
        // One span from the header to the last note row that changed.
        return {cached.start, std::max<qsizetype>(oldHigh, 1), std::max<qsizetype>(newHigh, 1)};
    }
    if (removed == 0 && made.isEmpty())
        return {-1, 0, 0};
    return {at, removed, made.size()};
}

qsizetype PanelRowList::indexOf(const QUuid &id) const
{
    if (!m_indexCurrent) {
        // After a whole derivation the index is made anew, at its size at once.
        if (m_index.isEmpty())
            m_index.reserve(m_rows.size());
        for (size_t s = 0; s < m_sections.size(); ++s) {
            Section &section = const_cast<Section &>(m_sections[s]);
            for (qsizetype offset = section.unindexedFrom; offset < section.unindexedTo; ++offset)
                m_index.insert(m_rows.at(section.start + offset).id(), {qsizetype(s), offset});
            section.unindexedFrom = section.unindexedTo = 0;
        }
        m_indexCurrent = true;
    }
    const auto found = m_index.constFind(id);
    if (found == m_index.cend() || found->section >= qsizetype(m_sections.size()))
        return -1;
    const qsizetype at = m_sections[size_t(found->section)].start + found->offset;
    return at < m_rows.size() && m_rows.at(at).id() == id ? at : -1;
}

} // namespace Vesko

namespace Vesko {

std::optional<std::pair<qsizetype, qsizetype>> PanelRowList::notePlace(const QUuid &id) const
{
    const qsizetype at = indexOf(id);
    if (at < 0 || !m_rows.at(at).isNote())
        return std::nullopt;
    const Place place = m_index.value(id);
    const Section &section = m_sections[size_t(place.section)];
    return std::make_pair(place.section, section.order[size_t(place.offset - 1)]);
}

} // namespace Vesko
