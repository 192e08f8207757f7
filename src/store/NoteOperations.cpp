// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the user does to notes: add, edit, complete, delete, merge, split,
// move, expand, attach. Each follows the one road of a change.

#include "store/Store.h"

#include "store/LibraryPosition.h"

#include "attachments/AttachmentStore.h"
#include "library/LibraryFile.h"

#include <QTimer>

namespace Vesko {

namespace {

QString trimmed(const QString &text)
{
    return text.trimmed();
}

QSet<QUuid> idSet(const QList<QUuid> &ids)
{
    return QSet<QUuid>(ids.cbegin(), ids.cend());
}

QSet<QUuid> idsOf(const QList<Note> &notes)
{
    QSet<QUuid> ids;
    for (const Note &note : notes)
        ids.insert(note.id);
    return ids;
}

// Paragraphs: the pieces between two consecutive newlines, trimmed, empty ones dropped.
QStringList paragraphs(const QString &text)
{
    QStringList pieces;
    for (const QString &piece : text.split(QStringLiteral("\n\n"))) {
        const QString cleaned = piece.trimmed();
        if (!cleaned.isEmpty())
            pieces.append(cleaned);
    }
    return pieces;
}

//! A new note of \a text, made now.
Note newNote(const QString &text)
{
    Note note;
    note.id = makeID();
    note.text = text;
    note.createdAt = currentDate();
    note.updatedAt = note.createdAt;
    return note;
}

} // namespace

qsizetype Store::sectionForNewNote(Project &project, std::optional<QUuid> sectionID,
    const std::optional<QString> &sectionTitle, bool isAutomaticSection)
{
    qsizetype target = sectionID ? sectionIndex(project, *sectionID) : -1;
    if (target < 0 && sectionTitle)
        target = findOrCreateSection(project, *sectionTitle, isAutomaticSection);
    if (target < 0 && project.activeSectionID)
        target = sectionIndex(project, *project.activeSectionID);
    if (target < 0) {
        target = findOrCreateSection(project, QStringLiteral("Inbox"), false);
        project.activeSectionID = project.sections.at(target).id;
    }
    return target;
}

NoteSection *Store::findSection(const QUuid &id)
{
    const std::optional<LibraryPosition> at = locateSection(m_library, id);
    return at ? &m_library.projects[at->project].sections[at->section] : nullptr;
}

Note *Store::findNote(const QUuid &id)
{
    const std::optional<LibraryPosition> at = locateNote(id);
    return at ? &m_library.projects[at->project].sections[at->section].notes[at->note] : nullptr;
}

QList<Note> Store::visibleNotesAmong(const QList<QUuid> &ids) const
{
    const QSet<QUuid> wanted = idSet(ids);
    QList<Note> notes;
    for (const PanelRow &row : m_rows.rows()) {
        if (row.isNote() && wanted.contains(row.note().id))
            notes.append(row.note());
    }
    return notes;
}

std::optional<Note> Store::addNote(const QString &text, std::optional<QUuid> sectionID,
    std::optional<QString> sectionTitle, bool isAutomaticSection, std::optional<NoteSource> source,
    const QList<NoteAttachment> &attachments, bool reveal)
{
    const QString cleaned = trimmed(text);
    if (cleaned.isEmpty() && attachments.isEmpty())
        return std::nullopt;

    recordUndo();
    Note note = newNote(cleaned);
    note.source = std::move(source);
    note.attachments = attachments;

    // A library without projects has nowhere to put a note but a new unsaved
    // project; the repair at the next start gives it a default one anyway.
    qsizetype activeIndex = activeProjectIndex(m_library);
    if (activeIndex < 0) {
        m_library.projects.append(activeProject());
        activeIndex = 0;
    }
    Project &project = m_library.projects[activeIndex];
    const qsizetype target
        = sectionForNewNote(project, sectionID, sectionTitle, isAutomaticSection);
    project.sections[target].notes.append(note);
    const QUuid targetSectionID = project.sections.at(target).id;

    if (reveal) {
        clearSearchText();
        expandSection(targetSectionID);
        commit();
        setSelection({note.id}, std::nullopt);
        // The anchor follows once the row exists, and only if the note is still selected.
        QTimer::singleShot(20, this, [this, id = note.id] {
            if (m_selection.contains(id))
                setSelectionAnchor(id);
        });
    } else {
        commit();
    }
    return note;
}

std::optional<Note> Store::addNoteToProject(
    const QUuid &projectID, const QString &text, std::optional<QString> sectionTitle)
{
    const qsizetype index = projectIndex(m_library, projectID);
    if (index < 0)
        return std::nullopt;
    if (index == activeProjectIndex(m_library))
        return addNote(text, std::nullopt, sectionTitle);
    const QString cleaned = trimmed(text);
    if (cleaned.isEmpty())
        return std::nullopt;

    recordUndo();
    const Note note = newNote(cleaned);
    Project &project = m_library.projects[index];
    project.sections[sectionForNewNote(project, std::nullopt, sectionTitle, false)].notes.append(
        note);
    commit();
    return note;
}

void Store::updateNote(const QUuid &id, const QString &text)
{
    const QString cleaned = trimmed(text);
    const std::optional<LibraryPosition> at = locateNote(id);
    const Note *existing = at
        ? &m_library.projects.at(at->project).sections.at(at->section).notes.at(at->note)
        : nullptr;
    if (existing && existing->text == cleaned)
        return;

    // An unknown id still takes an undo step and commits.
    recordUndo();
    if (cleaned.isEmpty() && (!existing || existing->attachments.isEmpty())) {
        removeNotes({id});
        commit();
        return;
    }
    if (at) {
        Note &target = m_library.projects[at->project].sections[at->section].notes[at->note];
        target.text = cleaned;
        target.updatedAt = currentDate();
    }
    commit();
}

void Store::setDone(const QList<QUuid> &ids, bool isDone)
{
    if (ids.isEmpty())
        return;
    recordUndo();
    const QDateTime now = currentDate();
    // One pass over the library with a set of the ids, not a search per id;
    // each id counts at its first place in library order, as a look-up finds it.
    QSet<QUuid> pending = idSet(ids);
    QList<LibraryPosition> found;
    for (qsizetype p = 0; p < m_library.projects.size() && !pending.isEmpty(); ++p) {
        const QList<NoteSection> &sections = m_library.projects.at(p).sections;
        for (qsizetype s = 0; s < sections.size() && !pending.isEmpty(); ++s) {
            const NoteList &notes = sections.at(s).notes;
            for (qsizetype n = 0; n < notes.size(); ++n) {
                if (pending.remove(notes.at(n).id))
                    found.append(LibraryPosition {p, s, n});
            }
        }
    }
    // Only the sections that hold one of the notes are detached.
    for (const LibraryPosition &at : std::as_const(found)) {
        Note &target = m_library.projects[at.project].sections[at.section].notes[at.note];
        target.isDone = isDone;
        target.completedAt = isDone ? std::optional(now) : std::nullopt;
        target.updatedAt = now;
    }
    commit();
}

bool Store::toggledDoneValue(const QList<QUuid> &ids) const
{
    // One pass over the library with a set of the ids: an open note among
    // them decides at once, and an id never found counts as an open note.
    QSet<QUuid> pending = idSet(ids);
    for (const Project &project : m_library.projects) {
        for (const NoteSection &section : project.sections) {
            for (const Note &note : section.notes) {
                if (!pending.remove(note.id))
                    continue;
                if (!note.isDone)
                    return true;
                if (pending.isEmpty())
                    return false;
            }
        }
    }
    return !pending.isEmpty();
}

void Store::toggleDone(const QList<QUuid> &ids)
{
    if (ids.isEmpty())
        return;
    setDone(ids, toggledDoneValue(ids));
}

void Store::deleteNotes(const QSet<QUuid> &ids)
{
    if (ids.isEmpty())
        return;
    recordUndo();
    removeNotes(ids);
    commit();
}

std::optional<QUuid> Store::nextSelection(const QSet<QUuid> &ids) const
{
    const QList<QUuid> visible = visibleNoteIDs();
    qsizetype first = -1;
    for (qsizetype i = 0; i < visible.size() && first < 0; ++i) {
        if (ids.contains(visible.at(i)))
            first = i;
    }
    if (first < 0)
        return std::nullopt;
    for (qsizetype i = first + 1; i < visible.size(); ++i) {
        if (!ids.contains(visible.at(i)))
            return visible.at(i);
    }
    for (qsizetype i = first - 1; i >= 0; --i) {
        if (!ids.contains(visible.at(i)))
            return visible.at(i);
    }
    return std::nullopt;
}

void Store::stripNotes(const QSet<QUuid> &ids, QList<NoteAttachment> *removedAttachments)
{
    // One look-up per note; only the sections that hold one of them are detached.
    for (qsizetype p = 0; p < m_library.projects.size(); ++p) {
        const QList<NoteSection> &sections = m_library.projects.at(p).sections;
        for (qsizetype s = 0; s < sections.size(); ++s) {
            const NoteList &notes = sections.at(s).notes;
            const auto firstHit = std::find_if(notes.cbegin(), notes.cend(),
                [&](const Note &note) { return ids.contains(note.id); });
            if (firstHit == notes.cend())
                continue;
            m_library.projects[p].sections[s].notes.removeIf([&](const Note &note) {
                if (!ids.contains(note.id))
                    return false;
                if (removedAttachments)
                    removedAttachments->append(note.attachments);
                return true;
            });
        }
    }
}

void Store::removeNotes(const QSet<QUuid> &ids)
{
    const std::optional<QUuid> next = nextSelection(ids);
    QList<NoteAttachment> attachments;
    stripNotes(ids, &attachments);
    pruneEmptyAutomaticSections();
    setSelection(next ? QSet<QUuid> {*next} : QSet<QUuid> {}, next);
    setExpandedNoteIDs(m_expandedNoteIDs - ids);
    purgeAttachmentFiles(attachments);
}

void Store::purgeAttachmentFiles(const QList<NoteAttachment> &attachments)
{
    if (attachments.isEmpty())
        return;
    // The candidates are few; every name the library still refers to is
    // looked up among them, and a referenced one is spared.
    QSet<QString> candidates;
    for (const NoteAttachment &attachment : attachments)
        candidates.insert(attachment.storedFileName);
    for (const Project &project : std::as_const(m_library.projects)) {
        for (const NoteSection &section : project.sections) {
            for (const Note &note : section.notes) {
                for (const NoteAttachment &attachment : note.attachments)
                    candidates.remove(attachment.storedFileName);
            }
        }
    }
    QList<NoteAttachment> unreferenced;
    for (const NoteAttachment &attachment : attachments) {
        if (candidates.contains(attachment.storedFileName))
            unreferenced.append(attachment);
    }
    m_attachments.removeFiles(unreferenced, attachmentsFolder(libraryFile()));
}

void Store::clearCompleted()
{
    const qsizetype activeIndex = activeProjectIndex(m_library);
    if (activeIndex < 0)
        return;
    QSet<QUuid> done;
    for (const NoteSection &section : m_library.projects.at(activeIndex).sections) {
        for (const Note &note : section.notes) {
            if (note.isDone)
                done.insert(note.id);
        }
    }
    if (done.isEmpty())
        return;
    recordUndo();
    removeNotes(done);
    commit();
}

void Store::mergeNotes(const QList<QUuid> &ids)
{
    const QList<Note> notes = visibleNotesAmong(ids);
    if (notes.size() < 2)
        return;
    const std::optional<LibraryPosition> first = locateNote(notes.first().id);
    if (!first)
        return;

    const Note &f = notes.first();
    const bool allDone
        = std::all_of(notes.cbegin(), notes.cend(), [](const Note &note) { return note.isDone; });
    Note merged;
    merged.id = makeID();
    QStringList texts;
    for (const Note &note : notes) {
        texts.append(note.text);
        merged.attachments.append(note.attachments);
    }
    merged.text = texts.join(QStringLiteral("\n\n"));
    merged.isDone = allDone;
    merged.createdAt = f.createdAt;
    merged.updatedAt = currentDate();
    if (allDone)
        merged.completedAt = merged.updatedAt;
    merged.source = f.source;

    recordUndo();
    const QSet<QUuid> mergedIDs = idsOf(notes);
    Project &project = m_library.projects[first->project];
    project.sections[first->section].notes.insert(first->note, merged);
    for (qsizetype s = 0; s < project.sections.size(); ++s) {
        const NoteList &sectionNotes = project.sections.at(s).notes;
        if (std::any_of(sectionNotes.cbegin(), sectionNotes.cend(),
                [&](const Note &note) { return mergedIDs.contains(note.id); })) {
            project.sections[s].notes.removeIf(
                [&](const Note &note) { return mergedIDs.contains(note.id); });
        }
    }
    project.sections.removeIf(
        [](const NoteSection &section) { return section.isAutomatic && section.notes.isEmpty(); });

    setExpandedNoteIDs(m_expandedNoteIDs - mergedIDs);
    setSelection({merged.id}, merged.id);
    commit();
}

void Store::splitNote(const QUuid &id)
{
    const std::optional<LibraryPosition> at = locateNote(id);
    if (!at)
        return;
    const Note old = m_library.projects.at(at->project).sections.at(at->section).notes.at(at->note);
    const QStringList pieces = paragraphs(old.text);
    if (pieces.size() < 2)
        return;

    recordUndo();
    const QDateTime now = currentDate();
    QList<Note> parts;
    for (const QString &piece : pieces) {
        Note part;
        part.id = makeID();
        part.text = piece;
        part.isDone = old.isDone;
        part.createdAt = old.createdAt;
        part.updatedAt = now;
        part.source = old.source;
        if (parts.isEmpty())
            part.attachments = old.attachments;
        parts.append(part);
    }
    NoteList &notes = m_library.projects[at->project].sections[at->section].notes;
    notes.removeAt(at->note);
    for (qsizetype i = 0; i < parts.size(); ++i)
        notes.insert(at->note + i, parts.at(i));

    setSelection(idsOf(parts), parts.first().id);
    commit();
}

void Store::moveNotesToProject(
    const QList<QUuid> &ids, const QUuid &projectID, const QString &sectionTitle)
{
    const QList<Note> notes = visibleNotesAmong(ids);
    if (notes.isEmpty())
        return;
    const qsizetype index = projectIndex(m_library, projectID);
    if (index < 0)
        return;

    recordUndo();
    stripNotes(idsOf(notes));
    Project &target = m_library.projects[index];
    const qsizetype section = findOrCreateSection(target, sectionTitle, false);
    target.sections[section].notes.append(notes);
    pruneEmptyAutomaticSections();
    setSelection({}, std::nullopt);
    commit();
}

void Store::moveNotesToSection(const QList<QUuid> &ids, const QUuid &sectionID)
{
    const QList<Note> notes = visibleNotesAmong(ids);
    if (notes.isEmpty() || !locateSection(m_library, sectionID))
        return;

    recordUndo();
    stripNotes(idsOf(notes));
    findSection(sectionID)->notes.append(notes);
    pruneEmptyAutomaticSections();
    setSelectionSet(idsOf(notes));
    commit();
}

void Store::moveNotesToSection(const QList<QUuid> &ids, const QUuid &sectionID, qsizetype index)
{
    const QList<Note> notes = visibleNotesAmong(ids);
    const std::optional<LibraryPosition> at = locateSection(m_library, sectionID);
    if (notes.isEmpty() || !at)
        return;

    // The index counts the notes before the move; the moved ones before it drop out.
    const QSet<QUuid> moving = idsOf(notes);
    const NoteList &before = m_library.projects.at(at->project).sections.at(at->section).notes;
    const qsizetype limit = std::clamp<qsizetype>(index, 0, before.size());
    const qsizetype movedAhead = std::count_if(before.cbegin(), before.cbegin() + limit,
        [&](const Note &note) { return moving.contains(note.id); });

    recordUndo();
    stripNotes(moving);
    NoteList &target = findSection(sectionID)->notes;
    const qsizetype insertAt = std::clamp<qsizetype>(index - movedAhead, 0, target.size());
    for (qsizetype i = 0; i < notes.size(); ++i)
        target.insert(insertAt + i, notes.at(i));
    pruneEmptyAutomaticSections();
    setSelectionSet(moving);
    commit();
}

void Store::toggleExpanded(const QUuid &id)
{
    QSet<QUuid> expanded = m_expandedNoteIDs;
    if (!expanded.remove(id))
        expanded.insert(id);
    setExpandedNoteIDs(expanded);
}

void Store::addAttachments(const QList<NoteAttachment> &attachments, const QUuid &noteID)
{
    if (!locateNote(noteID)) {
        // The note went while its files were imported: they must not stay behind.
        m_attachments.removeFiles(attachments, attachmentsFolder(libraryFile()));
        return;
    }
    if (attachments.isEmpty())
        return;
    recordUndo();
    Note *target = findNote(noteID);
    target->attachments.append(attachments);
    target->updatedAt = currentDate();
    commit();
}

void Store::importAttachments(
    const QList<QUrl> &sources, const QUuid &noteID, std::function<void(ImportResult)> done)
{
    whenAttachmentsFolderSettled(
        this, [this, sources, noteID, done = std::move(done)](const QString &folder) {
            m_attachments.importFiles(
                sources, folder, this, [this, noteID, done](const ImportResult &result) {
                    if (result.succeeded())
                        addAttachments(result.attachments, noteID);
                    if (done)
                        done(result);
                });
        });
}

void Store::removeAttachment(const QUuid &attachmentID, const QUuid &noteID)
{
    const std::optional<Note> existing = note(noteID);
    if (!existing)
        return;
    const auto attachment
        = std::find_if(existing->attachments.cbegin(), existing->attachments.cend(),
            [&](const NoteAttachment &a) { return a.id == attachmentID; });
    if (attachment == existing->attachments.cend())
        return;
    const NoteAttachment removed = *attachment;

    recordUndo();
    Note *target = findNote(noteID);
    target->attachments.removeIf([&](const NoteAttachment &a) { return a.id == attachmentID; });
    target->updatedAt = currentDate();
    purgeAttachmentFiles({removed});
    commit();
}

} // namespace Vesko
