// SPDX-License-Identifier: GPL-3.0-or-later
//
// The Store against a plain reference model: random sequences of operations
// run on both, and after each step they agree on the library, the rows, the
// selection, the undo stacks and the revision. At the end undoing everything
// gives back the start, redoing everything the end, and a save and a load
// give back the same library. A failure prints the seed and the shortest
// sequence that still fails.
//
//   VESKO_MODEL_SEED=<n>   run that seed instead of the fixed ones
//   VESKO_MODEL_STEPS=<n>  steps per sequence

#include "StoreFixture.h"
#include "TestEnvironment.h"

#include "library/LibraryFile.h"

#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <set>
#include <vector>

using namespace Vesko;

namespace {

// -- the reference model: plain values, its own rules ----------------------------

struct MAttachment
{
    QUuid id;
    QString fileName;
    QString storedFileName;
    bool operator==(const MAttachment &) const = default;
};

struct MNote
{
    QUuid id;
    QString text;
    bool done = false;
    //! An invalid date stands for a time of the last step: the Store's is taken
    //! when it lies within that step.
    std::optional<QDateTime> completedAt;
    QString source; // the application's name; null without a source
    std::vector<MAttachment> attachments;
    QDateTime createdAt;
    QDateTime updatedAt;
    bool operator==(const MNote &) const = default;
};

struct MSection
{
    QUuid id;
    QString title;
    bool collapsed = false;
    bool automatic = false;
    std::vector<MNote> notes;
    bool operator==(const MSection &) const = default;
};

struct MProject
{
    QUuid id;
    QString name;
    std::vector<MSection> sections;
    std::optional<QUuid> activeSection;
    bool operator==(const MProject &) const = default;
};

struct MLibrary
{
    std::vector<MProject> projects;
    std::optional<QUuid> activeProject;
    bool operator==(const MLibrary &) const = default;
};

struct MRow
{
    bool isSection = false;
    QUuid id;
    QString title; // a section's title, a note's text
    bool flag = false; // a section is collapsed, a note is done
    int remaining = 0;
    bool active = false;
    QUuid sectionID;
    bool operator==(const MRow &) const = default;
};

QDateTime wholeSeconds(const QDateTime &date)
{
    return date.isValid() ? QDateTime::fromSecsSinceEpoch(date.toSecsSinceEpoch(), Qt::UTC) : date;
}

MLibrary modelOf(const Library &library)
{
    MLibrary model;
    model.activeProject = library.activeProjectID;
    for (const Project &project : library.projects) {
        MProject p {project.id, project.name, {}, project.activeSectionID};
        for (const NoteSection &section : project.sections) {
            MSection s {section.id, section.title, section.isCollapsed, section.isAutomatic, {}};
            for (const Note &note : section.notes) {
                MNote n {note.id, note.text, note.isDone, note.completedAt,
                    note.source ? note.source->appName : QString(), {}, note.createdAt,
                    note.updatedAt};
                for (const NoteAttachment &a : note.attachments)
                    n.attachments.push_back({a.id, a.fileName, a.storedFileName});
                s.notes.push_back(n);
            }
            p.sections.push_back(s);
        }
        model.projects.push_back(p);
    }
    return model;
}

//! Every date of \a library cut to whole seconds, as the file keeps them.
Library inWholeSeconds(Library library)
{
    for (Project &project : library.projects) {
        project.createdAt = wholeSeconds(project.createdAt);
        for (NoteSection &section : project.sections) {
            section.createdAt = wholeSeconds(section.createdAt);
            for (Note &note : section.notes) {
                note.createdAt = wholeSeconds(note.createdAt);
                note.updatedAt = wholeSeconds(note.updatedAt);
                if (note.completedAt)
                    note.completedAt = wholeSeconds(*note.completedAt);
                for (NoteAttachment &attachment : note.attachments)
                    attachment.createdAt = wholeSeconds(attachment.createdAt);
            }
        }
    }
    return library;
}

bool sameTitle(const QString &a, const QString &b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

// The search query: blanks and tabs off both ends, lower case.
QString normalized(const QString &text)
{
    qsizetype from = 0;
    qsizetype to = text.size();
    while (from < to && (text[from] == u' ' || text[from] == u'\t'))
        ++from;
    while (to > from && (text[to - 1] == u' ' || text[to - 1] == u'\t'))
        --to;
    return text.mid(from, to - from).toLower();
}

const QUuid unknownID = QUuid::createUuidV5(QUuid(), QStringLiteral("no such thing"));

struct Preferences3
{
    bool showCompleted = true;
    bool newestFirst = false;
    bool moveDoneToBottom = false;
};

//! What the user sees and what the Store keeps besides the library.
class Model
{
public:
    MLibrary lib;
    QString searchText;
    QSet<QUuid> selection;
    std::optional<QUuid> anchor;
    //! Anchors that an arbitrary pick may give: any of them is right.
    std::optional<QSet<QUuid>> anchorChoices;
    std::optional<QUuid> editing;
    QSet<QUuid> expanded;
    std::vector<MLibrary> undoStack;
    std::vector<MLibrary> redoStack;
    bool undoTrimmed = false;
    quint64 commits = 0;
    Preferences3 prefs;
    int placeholders = 0;
    QSet<QUuid> placeholderIDs;

    QUuid fresh()
    {
        const QUuid id
            = QUuid::createUuidV5(QUuid(), QStringLiteral("placeholder %1").arg(++placeholders));
        placeholderIDs.insert(id);
        return id;
    }

    qsizetype activeIndex() const
    {
        for (qsizetype i = 0; i < qsizetype(lib.projects.size()); ++i) {
            if (lib.activeProject && lib.projects[i].id == *lib.activeProject)
                return i;
        }
        return lib.projects.empty() ? -1 : 0;
    }
    MProject *active() { return activeIndex() < 0 ? nullptr : &lib.projects[activeIndex()]; }

    bool searching() const { return !normalized(searchText).isEmpty(); }

    std::vector<MRow> rows() const
    {
        std::vector<MRow> out;
        const qsizetype index = activeIndex();
        if (index < 0)
            return out;
        const MProject &project = lib.projects[index];
        const QString q = normalized(searchText);
        const bool isSearching = !q.isEmpty();
        auto noteMatches = [&](const MNote &note) {
            if (note.text.toLower().contains(q))
                return true;
            return std::any_of(note.attachments.begin(), note.attachments.end(),
                [&](const MAttachment &a) { return a.fileName.toLower().contains(q); });
        };
        for (const MSection &section : project.sections) {
            std::vector<MNote> notes = section.notes;
            if (isSearching && !section.title.toLower().contains(q))
                std::erase_if(notes, [&](const MNote &note) { return !noteMatches(note); });
            if (!prefs.showCompleted)
                std::erase_if(notes, [](const MNote &note) { return note.done; });
            if (prefs.newestFirst)
                std::reverse(notes.begin(), notes.end());
            if (prefs.moveDoneToBottom)
                std::stable_partition(
                    notes.begin(), notes.end(), [](const MNote &note) { return !note.done; });
            if (isSearching && notes.empty())
                continue;
            const int remaining = int(std::count_if(section.notes.begin(), section.notes.end(),
                [](const MNote &note) { return !note.done; }));
            out.push_back({true, section.id, section.title, section.collapsed, remaining,
                project.activeSection == section.id, {}});
            if (isSearching || !section.collapsed) {
                for (const MNote &note : notes)
                    out.push_back({false, note.id, note.text, note.done, 0, false, section.id});
            }
        }
        return out;
    }

    QList<QUuid> visible() const
    {
        QList<QUuid> ids;
        for (const MRow &row : rows()) {
            if (!row.isSection)
                ids.append(row.id);
        }
        return ids;
    }

    std::vector<MNote> visibleAmong(const QList<QUuid> &ids) const
    {
        std::vector<MNote> notes;
        for (const QUuid &id : visible()) {
            if (ids.contains(id))
                notes.push_back(*find(id));
        }
        return notes;
    }

    //! The section holding the note \a id and the note's index there.
    std::pair<MSection *, qsizetype> locate(const QUuid &id) const
    {
        for (const MProject &p : lib.projects)
            for (const MSection &s : p.sections)
                for (qsizetype i = 0; i < qsizetype(s.notes.size()); ++i)
                    if (s.notes[i].id == id)
                        return {const_cast<MSection *>(&s), i};
        return {nullptr, -1};
    }

    MNote *find(const QUuid &id) const
    {
        const auto [section, i] = locate(id);
        return section ? &section->notes[i] : nullptr;
    }

    MProject *findProject(const QUuid &id)
    {
        for (MProject &p : lib.projects)
            if (p.id == id)
                return &p;
        return nullptr;
    }

    MSection *findSection(const QUuid &id)
    {
        for (MProject &p : lib.projects)
            for (MSection &s : p.sections)
                if (s.id == id)
                    return &s;
        return nullptr;
    }

    QList<QUuid> allNoteIDs() const
    {
        QList<QUuid> ids;
        for (const MProject &p : lib.projects)
            for (const MSection &s : p.sections)
                for (const MNote &n : s.notes)
                    ids.append(n.id);
        return ids;
    }

    // -- the road of a change --

    void recordUndo()
    {
        undoStack.push_back(lib);
        const qsizetype notes = allNoteIDs().size();
        const qsizetype limit
            = std::clamp<qsizetype>(500000 / std::max<qsizetype>(notes, 1), 5, 60);
        while (qsizetype(undoStack.size()) > limit) {
            undoStack.erase(undoStack.begin());
            undoTrimmed = true;
        }
        redoStack.clear();
    }

    void commit() { ++commits; }

    void setSelection(const QSet<QUuid> &ids, std::optional<QUuid> newAnchor)
    {
        selection = ids;
        anchor = newAnchor;
    }

    void clearSearch() { searchText.clear(); }

    static qsizetype findOrCreate(MProject &project, const QString &title, bool automatic, Model &m)
    {
        for (qsizetype i = 0; i < qsizetype(project.sections.size()); ++i) {
            if (project.sections[i].automatic == automatic
                && sameTitle(project.sections[i].title, title))
                return i;
        }
        project.sections.push_back({m.fresh(), title, false, automatic, {}});
        return qsizetype(project.sections.size()) - 1;
    }

    void pruneAutomatic()
    {
        for (MProject &p : lib.projects)
            std::erase_if(
                p.sections, [](const MSection &s) { return s.automatic && s.notes.empty(); });
    }

    void strip(const QSet<QUuid> &ids)
    {
        for (MProject &p : lib.projects)
            for (MSection &s : p.sections)
                std::erase_if(s.notes, [&](const MNote &n) { return ids.contains(n.id); });
    }

    //! The first note left after the first of \a ids in the rows, else the last one before it.
    std::optional<QUuid> nextSelection(const QSet<QUuid> &ids) const
    {
        const QList<QUuid> order = visible();
        const auto gone = [&](const QUuid &id) { return ids.contains(id); };
        const auto first = std::find_if(order.begin(), order.end(), gone);
        const auto after = std::find_if_not(first, order.end(), gone);
        if (after != order.end())
            return *after;
        const auto before = std::find_if_not(std::make_reverse_iterator(first), order.rend(), gone);
        return before != order.rend() && first != order.end() ? std::optional(*before)
                                                              : std::nullopt;
    }

    void removeNotes(const QSet<QUuid> &ids)
    {
        const std::optional<QUuid> next = nextSelection(ids);
        strip(ids);
        pruneAutomatic();
        setSelection(next ? QSet<QUuid> {*next} : QSet<QUuid> {}, next);
        expanded -= ids;
    }

    void forgetNotes(const QSet<QUuid> &ids)
    {
        selection -= ids;
        if (anchor && ids.contains(*anchor)) {
            anchor.reset();
            if (!selection.isEmpty())
                anchorChoices = selection; // any remaining member
        }
        if (editing && ids.contains(*editing))
            editing.reset();
        expanded -= ids;
    }

    // -- notes --

    void addNote(MProject &project, const QString &text, std::optional<QUuid> sectionID,
        std::optional<QString> title, bool automatic, const QString &source,
        const std::vector<MAttachment> &attachments, bool reveal)
    {
        const QString cleaned = text.trimmed();
        if (cleaned.isEmpty() && attachments.empty())
            return;
        recordUndo();
        MNote note {fresh(), cleaned, false, std::nullopt, source, attachments, {}, {}};
        qsizetype target = -1;
        for (qsizetype i = 0; sectionID && i < qsizetype(project.sections.size()); ++i)
            if (project.sections[i].id == *sectionID)
                target = i;
        if (target < 0)
            target = targetSection(project, title, automatic);
        project.sections[target].notes.push_back(note);
        if (reveal) {
            clearSearch();
            project.sections[target].collapsed = false;
            setSelection({note.id}, note.id); // the anchor a moment later: the test waits for it
        }
        commit();
    }

    //! The section a new note goes to: by title, else the active one, else "Inbox".
    qsizetype targetSection(MProject &project, std::optional<QString> title, bool automatic)
    {
        if (title)
            return findOrCreate(project, *title, automatic, *this);
        for (qsizetype i = 0; i < qsizetype(project.sections.size()); ++i)
            if (project.activeSection == project.sections[i].id)
                return i;
        const qsizetype inbox = findOrCreate(project, QStringLiteral("Inbox"), false, *this);
        project.activeSection = project.sections[inbox].id;
        return inbox;
    }

    void addNoteToProject(const QUuid &projectID, const QString &text, std::optional<QString> title)
    {
        if (MProject *project = findProject(projectID))
            addNote(*project, text, std::nullopt, title, false, QString(), {}, false);
    }

    void updateNote(const QUuid &id, const QString &text)
    {
        const QString cleaned = text.trimmed();
        MNote *note = find(id);
        if (note && note->text == cleaned)
            return;
        recordUndo(); // copies the library: pointers into it stay good
        if (cleaned.isEmpty() && (!note || note->attachments.empty())) {
            removeNotes({id});
            commit();
            return;
        }
        if (note) {
            note->text = cleaned;
            note->updatedAt = QDateTime();
        }
        commit();
    }

    void setDone(const QList<QUuid> &ids, bool done)
    {
        if (ids.isEmpty())
            return;
        recordUndo();
        for (const QUuid &id : ids) {
            if (MNote *note = find(id)) {
                note->done = done;
                note->completedAt = done ? std::optional(QDateTime()) : std::nullopt;
                note->updatedAt = QDateTime();
            }
        }
        commit();
    }

    void toggleDone(const QList<QUuid> &ids)
    {
        if (ids.isEmpty())
            return;
        const bool allDone = std::all_of(ids.begin(), ids.end(), [&](const QUuid &id) {
            const MNote *note = find(id);
            return note && note->done;
        });
        setDone(ids, !allDone);
    }

    void deleteNotes(const QSet<QUuid> &ids)
    {
        if (ids.isEmpty())
            return;
        recordUndo();
        removeNotes(ids);
        commit();
    }

    void clearCompleted()
    {
        QSet<QUuid> done;
        for (const MSection &s : active()->sections)
            for (const MNote &n : s.notes)
                if (n.done)
                    done.insert(n.id);
        deleteNotes(done);
    }

    void mergeNotes(const QList<QUuid> &ids)
    {
        const std::vector<MNote> notes = visibleAmong(ids);
        if (notes.size() < 2)
            return;
        const MNote &f = notes.front();
        MNote merged {fresh(), {}, true, std::nullopt, f.source, {}, f.createdAt, {}};
        QStringList texts;
        QSet<QUuid> mergedIDs;
        for (const MNote &n : notes) {
            texts.append(n.text);
            merged.attachments.insert(
                merged.attachments.end(), n.attachments.begin(), n.attachments.end());
            merged.done = merged.done && n.done;
            mergedIDs.insert(n.id);
        }
        merged.text = texts.join(QStringLiteral("\n\n"));
        merged.completedAt = merged.done ? std::optional(QDateTime()) : std::nullopt;
        recordUndo();
        const auto [section, at] = locate(f.id);
        section->notes.insert(section->notes.begin() + at, merged);
        strip(mergedIDs);
        pruneAutomatic();
        expanded -= mergedIDs;
        setSelection({merged.id}, merged.id);
        commit();
    }

    void splitNote(const QUuid &id)
    {
        const auto [section, i] = locate(id);
        if (!section)
            return;
        const MNote old = section->notes[i];
        QStringList pieces;
        for (const QString &piece : old.text.split(QStringLiteral("\n\n"))) {
            if (!piece.trimmed().isEmpty())
                pieces.append(piece.trimmed());
        }
        if (pieces.size() < 2)
            return;
        recordUndo();
        section->notes.erase(section->notes.begin() + i);
        QSet<QUuid> parts;
        for (qsizetype k = 0; k < pieces.size(); ++k) {
            MNote part {fresh(), pieces[k], old.done, std::nullopt, old.source,
                k == 0 ? old.attachments : std::vector<MAttachment> {}, old.createdAt, {}};
            section->notes.insert(section->notes.begin() + i + k, part);
            parts.insert(part.id);
        }
        setSelection(parts, section->notes[i].id);
        commit();
    }

    void moveNotesToProject(const QList<QUuid> &ids, const QUuid &projectID, const QString &title)
    {
        const std::vector<MNote> notes = visibleAmong(ids);
        if (notes.empty())
            return;
        MProject *project = findProject(projectID);
        if (!project)
            return;
        recordUndo();
        QSet<QUuid> moving;
        for (const MNote &n : notes)
            moving.insert(n.id);
        strip(moving);
        MSection &target = project->sections[findOrCreate(*project, title, false, *this)];
        target.notes.insert(target.notes.end(), notes.begin(), notes.end());
        pruneAutomatic();
        setSelection({}, std::nullopt);
        commit();
    }

    void moveNotesToSection(const QList<QUuid> &ids, const QUuid &sectionID,
        std::optional<qsizetype> index = std::nullopt)
    {
        const std::vector<MNote> notes = visibleAmong(ids);
        MSection *section = findSection(sectionID);
        if (notes.empty() || !section)
            return;
        QSet<QUuid> moving;
        for (const MNote &n : notes)
            moving.insert(n.id);
        int ahead = 0;
        for (qsizetype i = 0; index && i < std::min<qsizetype>(*index, section->notes.size()); ++i)
            ahead += moving.contains(section->notes[i].id) ? 1 : 0;
        recordUndo();
        strip(moving);
        section = findSection(sectionID);
        const qsizetype at = index ? std::clamp<qsizetype>(*index - ahead, 0, section->notes.size())
                                   : qsizetype(section->notes.size());
        section->notes.insert(section->notes.begin() + at, notes.begin(), notes.end());
        pruneAutomatic();
        selection = moving;
        commit();
    }

    void addAttachments(const std::vector<MAttachment> &records, const QUuid &noteID)
    {
        MNote *note = find(noteID);
        if (!note || records.empty())
            return;
        recordUndo();
        note->attachments.insert(note->attachments.end(), records.begin(), records.end());
        note->updatedAt = QDateTime();
        commit();
    }

    void removeAttachment(const QUuid &attachmentID, const QUuid &noteID)
    {
        MNote *note = find(noteID);
        if (!note
            || std::none_of(note->attachments.begin(), note->attachments.end(),
                [&](const MAttachment &a) { return a.id == attachmentID; }))
            return;
        recordUndo();
        std::erase_if(
            note->attachments, [&](const MAttachment &a) { return a.id == attachmentID; });
        note->updatedAt = QDateTime();
        commit();
    }

    // -- sections and projects --

    void createOrUseSection(const QString &title)
    {
        const QString cleaned = title.trimmed();
        if (cleaned.isEmpty())
            return;
        for (const MSection &s : active()->sections) {
            if (sameTitle(s.title, cleaned)) {
                activateSection(s.id);
                return;
            }
        }
        recordUndo();
        const QUuid id = fresh();
        active()->sections.push_back({id, cleaned, false, false, {}});
        active()->activeSection = id;
        setSelection({}, std::nullopt);
        commit();
    }

    void activateSection(const QUuid &id)
    {
        MProject &project = *active();
        auto section = std::find_if(project.sections.begin(), project.sections.end(),
            [&](const MSection &s) { return s.id == id; });
        if (section == project.sections.end() || project.activeSection == id)
            return;
        recordUndo();
        active()->activeSection = id;
        section->collapsed = false;
        setSelection({}, std::nullopt);
        clearSearch();
        commit();
    }

    //! Gives \a target's \a field the trimmed \a text, unless that is blank.
    template<typename T> void rename(T *target, QString T::*field, const QString &text)
    {
        if (!target || text.trimmed().isEmpty())
            return;
        recordUndo(); // copies the library: the pointer into it stays good
        target->*field = text.trimmed();
        commit();
    }
    void renameSection(const QUuid &id, const QString &t)
    {
        rename(findSection(id), &MSection::title, t);
    }
    void renameProject(const QUuid &id, const QString &t)
    {
        rename(findProject(id), &MProject::name, t);
    }

    qsizetype sectionIndexInActive(const QUuid &id) const
    {
        const MProject &project = lib.projects[activeIndex()];
        for (qsizetype i = 0; i < qsizetype(project.sections.size()); ++i)
            if (project.sections[i].id == id)
                return i;
        return -1;
    }

    void moveSection(const QUuid &id, int by)
    {
        const qsizetype i = sectionIndexInActive(id);
        const qsizetype j = i + by;
        if (i < 0 || j < 0 || j >= qsizetype(active()->sections.size()))
            return;
        recordUndo();
        std::swap(active()->sections[i], active()->sections[j]);
        commit();
    }

    void moveSection(const QUuid &id, std::optional<QUuid> before)
    {
        const qsizetype i = sectionIndexInActive(id);
        if (i < 0)
            return;
        qsizetype d = before ? sectionIndexInActive(*before) : -1;
        if (d < 0)
            d = qsizetype(active()->sections.size());
        const qsizetype to = i < d ? d - 1 : d;
        if (to == i)
            return;
        recordUndo();
        std::vector<MSection> &sections = active()->sections;
        const MSection moving = sections[i];
        sections.erase(sections.begin() + i);
        sections.insert(sections.begin() + std::clamp<qsizetype>(to, 0, sections.size()), moving);
        commit();
    }

    void deleteSection(const QUuid &id)
    {
        const MSection *section = findSection(id);
        if (!section)
            return;
        QSet<QUuid> noteIDs;
        for (const MNote &n : section->notes)
            noteIDs.insert(n.id);
        recordUndo();
        for (MProject &p : lib.projects) {
            const auto removed
                = std::erase_if(p.sections, [&](const MSection &s) { return s.id == id; });
            if (removed == 0 || p.activeSection != id)
                continue;
            auto inbox = std::find_if(p.sections.begin(), p.sections.end(),
                [](const MSection &s) { return sameTitle(s.title, QStringLiteral("Inbox")); });
            if (inbox != p.sections.end())
                p.activeSection = inbox->id;
            else if (!p.sections.empty())
                p.activeSection = p.sections.front().id;
            else
                p.activeSection.reset();
        }
        forgetNotes(noteIDs);
        commit();
    }

    void createProject(const QString &name)
    {
        const QString cleaned = name.trimmed();
        if (cleaned.isEmpty())
            return;
        recordUndo();
        const QUuid section = fresh();
        const QUuid id = fresh();
        lib.projects.push_back(
            {id, cleaned, {{section, QStringLiteral("Inbox"), false, false, {}}}, section});
        lib.activeProject = id;
        commit();
    }

    void deleteProject(const QUuid &id)
    {
        const MProject *project = findProject(id);
        if (!project)
            return;
        QSet<QUuid> noteIDs;
        for (const MSection &s : project->sections)
            for (const MNote &n : s.notes)
                noteIDs.insert(n.id);
        recordUndo();
        std::erase_if(lib.projects, [&](const MProject &p) { return p.id == id; });
        if (lib.activeProject == id)
            lib.activeProject
                = lib.projects.empty() ? std::nullopt : std::optional(lib.projects.front().id);
        forgetNotes(noteIDs);
        clearSearch();
        commit();
    }

    void switchProject(const QUuid &id)
    {
        if (lib.activeProject == id)
            return;
        lib.activeProject = id;
        for (MProject &p : lib.projects) {
            if (p.id == id && !p.activeSection && !p.sections.empty())
                p.activeSection = p.sections.front().id;
        }
        setSelection({}, std::nullopt);
        clearSearch();
        commit();
    }

    void restore(std::vector<MLibrary> &from, std::vector<MLibrary> &to)
    {
        if (from.empty())
            return;
        to.push_back(lib);
        lib = from.back();
        from.pop_back();
        QSet<QUuid> kept;
        for (const QUuid &id : std::as_const(selection))
            if (find(id))
                kept.insert(id);
        selection = kept;
        commit();
    }

    // -- selection --

    void select(const QUuid &id, bool extending, bool toggling)
    {
        if (toggling) {
            if (selection.remove(id))
                return;
            selection.insert(id);
            anchor = id;
            return;
        }
        if (extending && anchor) {
            const QList<QUuid> ids = visible();
            const qsizetype a = ids.indexOf(*anchor);
            const qsizetype t = ids.indexOf(id);
            if (a >= 0 && t >= 0) {
                selection
                    = QSet<QUuid>(ids.begin() + std::min(a, t), ids.begin() + std::max(a, t) + 1);
                return;
            }
        }
        setSelection({id}, id);
    }

    //! The keyboard's step from \a start; returns the note reached.
    std::optional<QUuid> moveSelectionFrom(std::optional<QUuid> start, int offset, bool extending)
    {
        const QList<QUuid> ids = visible();
        if (ids.isEmpty())
            return std::nullopt;
        const qsizetype p = start ? ids.indexOf(*start) : -1;
        if (p >= 0) {
            const QUuid t = ids[std::clamp<qsizetype>(p + offset, 0, ids.size() - 1)];
            if (extending)
                select(t, true, false);
            else
                setSelection({t}, t);
            return t;
        }
        const QUuid t = offset < 1 ? ids.last() : ids.first();
        setSelection({t}, t);
        return t;
    }

    void selectAllInSection(const QUuid &id)
    {
        const MSection *section = findSection(id);
        QSet<QUuid> ids;
        for (int i = 0; section && i < int(section->notes.size()); ++i)
            ids.insert(section->notes[i].id);
        setSelection(ids,
            section && !section->notes.empty() ? std::optional(section->notes.front().id)
                                               : std::nullopt);
    }
};

// -- the operations of a sequence --------------------------------------------------

// clang-format off
enum class Kind { AddNote, AddToProject, Update, SetDone, ToggleDone, Delete, ClearCompleted, Merge,
    Split, MoveToProject, MoveToSection, MoveToIndex, ToggleExpanded, AddAttachments,
    RemoveAttachment, CreateOrUseSection, ActivateSection, JumpToSection, RenameSection,
    RenameProject, MoveSectionBy, MoveSectionBefore, ToggleCollapsed, CollapseAll, ExpandAll,
    DeleteSection, CreateProject, DeleteProject, SwitchProject, Undo, Redo, Search, Select,
    MoveSelection, SelectAll, SelectAllInSection, SetEditing, Preference, SaveAndLoad };
// clang-format on

const char *const kindNames[] = {"addNote", "addNoteToProject", "updateNote", "setDone",
    "toggleDone", "deleteNotes", "clearCompleted", "mergeNotes", "splitNote", "moveNotesToProject",
    "moveNotesToSection", "moveNotesToSection(index)", "toggleExpanded", "addAttachments",
    "removeAttachment", "createOrUseSection", "activateSection", "jumpToSection", "renameSection",
    "renameProject", "moveSection(by)", "moveSection(before)", "toggleSectionCollapsed",
    "collapseAllSections", "expandAllSections", "deleteSection", "createProject", "deleteProject",
    "switchProject", "undo", "redo", "setSearchText", "select", "moveSelection", "selectAll",
    "selectAllInSection", "setEditingNoteID", "preference", "save and load"};

// References are resolved against the state at the step, so that a shorter
// sequence still means something: a note below 1000 is the n-th visible one,
// from 1000 on the n-th of the library, and -1 an unknown id.
struct Op
{
    Kind kind = Kind::Undo;
    QList<int> notes;
    int section = 0;
    int other = 0;
    int number = 0;
    QString text;
    QString title; // null for none
    bool flag = false;
    bool flag2 = false;

    QString toString() const
    {
        QStringList parts;
        if (!notes.isEmpty()) {
            QStringList refs;
            for (int n : notes)
                refs.append(n < 0   ? QStringLiteral("unknown")
                        : n >= 1000 ? QStringLiteral("library#%1").arg(n - 1000)
                                    : QStringLiteral("row#%1").arg(n));
            parts.append(QStringLiteral("notes=") + refs.join(u','));
        }
        parts.append(
            QStringLiteral("section=%1 other=%2 number=%3").arg(section).arg(other).arg(number));
        if (!text.isNull())
            parts.append(QStringLiteral("text=\"%1\"")
                             .arg(QString(text).replace(u'\n', QStringLiteral("\\n"))));
        if (!title.isNull())
            parts.append(QStringLiteral("title=\"%1\"").arg(title));
        parts.append(QStringLiteral("flags=%1%2").arg(int(flag)).arg(int(flag2)));
        return QString::fromLatin1(kindNames[int(kind)]) + u' ' + parts.join(u' ');
    }
};

const QStringList words = {QStringLiteral("alpha"), QStringLiteral("Beta"), QStringLiteral("gamma"),
    QStringLiteral("delta"), QStringLiteral("Mail"), QStringLiteral("work"),
    QStringLiteral("inbox"), QStringLiteral("x"), QStringLiteral("ab"), QStringLiteral("café")};
const QStringList titles = {QStringLiteral("Inbox"), QStringLiteral("inbox"),
    QStringLiteral("Work"), QStringLiteral("Ideas"), QStringLiteral("Mail"),
    QStringLiteral("Mail — Budget"), QStringLiteral(" Work "), QStringLiteral("  ")};

QString randomText(QRandomGenerator &random)
{
    QStringList paragraphs;
    const int count = random.bounded(10) < 7 ? 1 : 2 + random.bounded(2);
    for (int p = 0; p < count; ++p) {
        QStringList line;
        for (int w = 0, n = 1 + random.bounded(3); w < n; ++w)
            line.append(words[random.bounded(int(words.size()))]);
        paragraphs.append(line.join(u' '));
    }
    const QStringList joints = {QStringLiteral("\n\n"), QStringLiteral("\n\n\n"),
        QStringLiteral("\n"), QStringLiteral(" \n\n "), QStringLiteral("\n \n")};
    QString text = paragraphs.first();
    for (qsizetype p = 1; p < paragraphs.size(); ++p)
        text += joints[random.bounded(int(joints.size()))] + paragraphs[p];
    switch (random.bounded(12)) {
    case 0:
        return QStringLiteral(" \n\t");
    case 1:
        return QStringLiteral("  ") + text + QStringLiteral("\n");
    default:
        return text;
    }
}

Op randomOp(QRandomGenerator &random)
{
    // Weights of the kinds, in the order of Kind.
    static const int weights[] = {14, 3, 6, 3, 4, 3, 1, 4, 5, 3, 3, 5, 2, 2, 2, 3, 2, 1, 2, 1, 2, 2,
        3, 1, 1, 2, 2, 2, 2, 7, 4, 2, 5, 5, 1, 1, 1, 2, 1};
    static_assert(std::size(weights) == std::size(kindNames));
    int total = 0;
    for (int w : weights)
        total += w;
    int roll = random.bounded(total);
    int kind = 0;
    while (roll >= weights[kind])
        roll -= weights[kind++];

    Op op;
    op.kind = Kind(kind);
    auto noteRef = [&] {
        const int roll = random.bounded(20);
        return roll == 0 ? -1 : roll < 4 ? 1000 + random.bounded(200) : random.bounded(40);
    };
    for (int i = 0, n = (op.kind == Kind::Merge ? 2 : 1) + random.bounded(4); i < n; ++i)
        op.notes.append(noteRef());
    op.section = random.bounded(20) == 0 ? -1
        : random.bounded(20) < 4         ? 1000 + random.bounded(50)
                                         : random.bounded(12);
    op.other = random.bounded(20) == 0 ? -1 : random.bounded(12);
    op.number = random.bounded(12);
    op.text = randomText(random);
    op.title = random.bounded(3) == 0 ? QString() : titles[random.bounded(int(titles.size()))];
    op.flag = random.bounded(2);
    op.flag2 = random.bounded(4) == 0;
    if (op.kind == Kind::Search) {
        // A fragment of a word in any case, at times between blanks; at times none.
        const QString word = random.bounded(3) == 0 ? titles[random.bounded(4)]
                                                    : words[random.bounded(int(words.size()))];
        const int from = random.bounded(int(word.size()));
        QString query = word.mid(from, 1 + random.bounded(int(word.size()) - from));
        query = random.bounded(2) ? query.toUpper() : query;
        if (random.bounded(4) == 0)
            query = QStringLiteral(" \t") + query + u' ';
        const int roll = random.bounded(10);
        op.text = roll < 4 ? QStringLiteral("") : roll == 4 ? QStringLiteral("  ") : query;
    }
    return op;
}

Library randomLibrary(QRandomGenerator &random)
{
    Library library;
    int counter = 0;
    auto id = [&](const QString &what) {
        return QUuid::createUuidV5(QUuid(), what + QString::number(++counter));
    };
    const QDateTime made = QDateTime::fromSecsSinceEpoch(1700000000, Qt::UTC);
    const QDateTime start = QDateTime::fromSecsSinceEpoch(1767225600, Qt::UTC);
    for (int p = 0, projects = 2 + random.bounded(2); p < projects; ++p) {
        Project project {
            id(QStringLiteral("project")), QStringLiteral("Project %1").arg(p), {}, made, {}};
        const QStringList ordinary
            = {QStringLiteral("Inbox"), QStringLiteral("Work"), QStringLiteral("Ideas")};
        const QStringList automatic = {QStringLiteral("Mail"), QStringLiteral("Mail — Budget")};
        for (int s = 0, sections = 1 + random.bounded(4); s < sections; ++s) {
            const bool isAutomatic = s > 0 && s <= automatic.size() && random.bounded(3) == 0;
            NoteSection section {id(QStringLiteral("section")),
                isAutomatic
                    ? automatic[s - 1]
                    : ordinary[s % ordinary.size()] + (s >= 3 ? QStringLiteral(" 2") : QString()),
                {}, random.bounded(5) == 0, made, isAutomatic};
            for (int n = 0, notes = (isAutomatic ? 1 : 0) + 1 + random.bounded(8); n < notes; ++n) {
                Note note {id(QStringLiteral("note")), randomText(random).trimmed(), false,
                    start.addSecs(++counter * 60), {}, std::nullopt, std::nullopt, {}};
                if (isAutomatic || random.bounded(4) == 0)
                    note.source = NoteSource {QStringLiteral("Mail"), std::nullopt, std::nullopt};
                if (note.text.isEmpty())
                    note.text = QStringLiteral("gamma");
                note.isDone = random.bounded(10) < 3;
                note.updatedAt = note.createdAt;
                if (note.isDone)
                    note.completedAt = note.createdAt.addSecs(60);
                if (random.bounded(7) == 0)
                    note.attachments.append({id(QStringLiteral("attachment")),
                        QStringLiteral("Budget %1.pdf").arg(counter),
                        QStringLiteral("A%1/Budget.pdf").arg(counter), NoteAttachment::Kind::File,
                        std::nullopt, std::nullopt, note.createdAt});
                section.notes.append(note);
            }
            project.sections.append(section);
        }
        // At times without an active section, as an older file may be.
        if (random.bounded(4) > 0)
            project.activeSectionID
                = project.sections[random.bounded(int(project.sections.size()))].id;
        library.projects.append(project);
    }
    library.activeProjectID = library.projects[random.bounded(int(library.projects.size()))].id;
    return library;
}

QString dump(const MLibrary &library)
{
    QStringList lines;
    for (const MProject &p : library.projects) {
        lines.append(
            QStringLiteral("project %1%2")
                .arg(p.name,
                    library.activeProject == p.id ? QStringLiteral(" (active)") : QString()));
        for (const MSection &s : p.sections) {
            QStringList notes;
            for (const MNote &n : s.notes)
                notes.append(QString(n.text).replace(u'\n', u'/')
                    + (n.done ? QStringLiteral("[done]") : QString())
                    + (n.completedAt ? QStringLiteral("[stamped]") : QString())
                    + (n.attachments.empty()
                            ? QString()
                            : QStringLiteral("[%1 att]").arg(n.attachments.size())));
            lines.append(QStringLiteral("  %1%2%3%4: %5")
                             .arg(p.activeSection == s.id ? QStringLiteral("*") : QString(),
                                 s.title, s.automatic ? QStringLiteral("!") : QString(),
                                 s.collapsed ? QStringLiteral("+") : QString(),
                                 notes.join(QStringLiteral(" | "))));
        }
    }
    return lines.join(u'\n');
}

QString dump(const std::vector<MRow> &rows)
{
    QStringList lines;
    for (const MRow &row : rows)
        lines.append(row.isSection
                ? QStringLiteral("[%1 %2 %3%4]")
                      .arg(row.title)
                      .arg(row.remaining)
                      .arg(row.flag ? QStringLiteral("+") : QString(),
                          row.active ? QStringLiteral("*") : QString())
                : QStringLiteral("  %1%2").arg(QString(row.title).replace(u'\n', u'/'),
                    row.flag ? QStringLiteral(" [done]") : QString()));
    return lines.join(u'\n');
}

std::vector<MRow> rowsOf(const QList<PanelRow> &rows)
{
    std::vector<MRow> out;
    for (const PanelRow &row : rows) {
        if (row.isSection()) {
            const PanelSectionRow &s = row.section();
            out.push_back({true, s.id, s.title, s.isCollapsed, s.remainingCount, s.isActive, {}});
        } else {
            out.push_back({false, row.note().id, row.note().text, row.note().isDone, 0, false,
                row.noteRow().sectionID});
        }
    }
    return out;
}

// -- one run of a sequence against a fresh Store --------------------------------------

struct Failure
{
    qsizetype step = -1; // the index of the operation; the sequence's length for the end checks
    QString message;
};

class Run
{
public:
    explicit Run(const Library &initial)
        : m_initial(modelOf(initial))
    {
        m_fixture.preferences().setLibraryPath(m_folder.filePath(QStringLiteral("Library.json")));
        m_fixture.preferences().setShowCompleted(true);
        m_fixture.preferences().setNewestFirst(false);
        m_fixture.preferences().setMoveDoneToBottom(false);
        m_model.lib = m_initial;
        for (const QUuid &id : m_model.allNoteIDs())
            m_known.insert(id);
        for (const MProject &p : m_initial.projects) {
            m_known.insert(p.id);
            for (const MSection &s : p.sections)
                m_known.insert(s.id);
        }
        // Set after construction, so that the repair at load leaves it as made.
        m_store = &m_fixture.make(makeDefaultLibrary());
        // The list follows the rows through the span each change reports:
        // the old rows with that span replaced must be the new rows.
        m_lastRows = m_store->rows();
        QObject::connect(m_store, &Store::rowsChanged, m_store, [this] {
            const PanelRowChange change = m_store->lastRowChange();
            QList<PanelRow> spliced = m_lastRows.mid(0, change.first);
            spliced += m_store->rows().mid(change.first, change.inserted);
            spliced += m_lastRows.mid(change.first + change.removed);
            if (spliced != m_store->rows() && !m_spliceFailure)
                m_spliceFailure = QStringLiteral("a change reported rows %1 + %2 for %3")
                                      .arg(change.first)
                                      .arg(change.inserted)
                                      .arg(change.removed);
            m_lastRows = m_store->rows();
        });
        m_store->setLibrary(initial);
        m_store->refreshAfterMutation();
        m_baseRevision = m_store->libraryRevision();
        QCoreApplication::processEvents();
    }

    std::optional<Failure> play(const std::vector<Op> &ops)
    {
        if (std::optional<QString> failure = check())
            return Failure {-1, QStringLiteral("before the first step: ") + *failure};
        for (qsizetype i = 0; i < qsizetype(ops.size()); ++i) {
            if (std::optional<QString> failure = step(ops[i]))
                return Failure {i, *failure};
        }
        if (std::optional<QString> failure = finish())
            return Failure {qsizetype(ops.size()), *failure};
        return std::nullopt;
    }

private:
    std::optional<QUuid> noteRef(int ref) const
    {
        if (ref < 0)
            return unknownID;
        const QList<QUuid> ids = ref >= 1000 ? m_model.allNoteIDs() : m_model.visible();
        if (ids.isEmpty())
            return std::nullopt;
        return ids[(ref % 1000) % ids.size()];
    }

    QList<QUuid> noteRefs(const QList<int> &refs) const
    {
        QList<QUuid> ids;
        for (int ref : refs) {
            if (const std::optional<QUuid> id = noteRef(ref))
                ids.append(*id); // a note named twice too
        }
        return ids;
    }

    QUuid sectionRef(int ref)
    {
        if (ref < 0)
            return unknownID;
        QList<QUuid> ids;
        if (ref >= 1000) {
            for (const MProject &p : m_model.lib.projects)
                for (const MSection &s : p.sections)
                    ids.append(s.id);
        } else {
            for (const MSection &s : m_model.active()->sections)
                ids.append(s.id);
        }
        return ids.isEmpty() ? unknownID : ids[(ref % 1000) % ids.size()];
    }

    QUuid projectRef(int ref) const
    {
        if (ref < 0 || m_model.lib.projects.empty())
            return unknownID;
        return m_model.lib.projects[ref % m_model.lib.projects.size()].id;
    }

    std::vector<MAttachment> attachmentsFor(const Op &op)
    {
        std::vector<MAttachment> records;
        for (int i = 0; i < op.number % 3; ++i) {
            const QString name = words[(op.number + i) % words.size()] + QStringLiteral(".txt");
            records.push_back(
                {makeID(), name, QStringLiteral("M%1/%2").arg(++m_attachmentCounter).arg(name)});
        }
        return records;
    }

    static QList<NoteAttachment> records(const std::vector<MAttachment> &attachments)
    {
        QList<NoteAttachment> out;
        for (const MAttachment &a : attachments)
            out.append({a.id, a.fileName, a.storedFileName, NoteAttachment::Kind::File,
                std::nullopt, std::nullopt, currentDate()});
        return out;
    }

    std::optional<QString> step(const Op &op)
    {
        m_stepStarted = QDateTime::currentDateTimeUtc();
        Store &store = *m_store;
        Model &model = m_model;
        const QList<QUuid> ids = noteRefs(op.notes);
        const QUuid firstNote = ids.value(0, unknownID);
        const QString searchBefore = store.searchText();
        const quint64 revisionBefore = store.libraryRevision();
        std::optional<QString> title = op.title.isNull() ? std::nullopt : std::optional(op.title);
        QSignalSpy rowsChanged(&store, &Store::rowsChanged);
        bool preferenceChanged = false;
        const MLibrary libraryBefore = model.lib;
        const QString name = op.title.isNull() ? op.text : op.title;
        // An operation the model has under the Store's name.
        const auto both = [&](const auto &call) {
            call(store);
            call(model);
        };

        switch (op.kind) {
        case Kind::AddNote: {
            // The section: by id (at times of another project), by title, or neither.
            const std::optional<QUuid> sectionID
                = op.flag2 ? std::optional(sectionRef(op.section)) : std::nullopt;
            const std::vector<MAttachment> attachments
                = op.number % 4 == 0 ? attachmentsFor(op) : std::vector<MAttachment> {};
            const bool reveal = op.number % 3 == 0;
            const std::optional<Note> added = store.addNote(op.text, sectionID, title, op.flag,
                op.flag
                    ? std::optional(NoteSource {QStringLiteral("Mail"), std::nullopt, std::nullopt})
                    : std::nullopt,
                records(attachments), reveal);
            model.addNote(*model.active(), op.text, sectionID, title, op.flag,
                op.flag ? QStringLiteral("Mail") : QString(), attachments, reveal);
            if (reveal && added
                && !QTest::qWaitFor([&] { return store.selectionAnchor() == added->id; }, 30000))
                return QStringLiteral("the anchor did not follow the revealed note");
            break;
        }
        case Kind::AddToProject:
            both([&](auto &on) { on.addNoteToProject(projectRef(op.other), op.text, title); });
            break;
        case Kind::Update:
            both([&](auto &on) { on.updateNote(firstNote, op.text); });
            break;
        case Kind::SetDone:
            both([&](auto &on) { on.setDone(ids, op.flag); });
            break;
        case Kind::ToggleDone: {
            // At times done notes and one that is gone, which counts as open.
            QList<QUuid> toggled = ids;
            if (op.flag2) {
                toggled = {unknownID};
                for (const QUuid &id : model.visible())
                    if (model.find(id)->done && toggled.size() < 3)
                        toggled.append(id);
            }
            both([&](auto &on) { on.toggleDone(toggled); });
            break;
        }
        case Kind::Delete:
            both([&](auto &on) { on.deleteNotes(QSet<QUuid>(ids.begin(), ids.end())); });
            break;
        case Kind::ClearCompleted:
            both([&](auto &on) { on.clearCompleted(); });
            break;
        case Kind::Merge:
            both([&](auto &on) { on.mergeNotes(ids); });
            break;
        case Kind::Split: {
            // At times the n-th visible note of several paragraphs.
            QUuid id = firstNote;
            QList<QUuid> candidates;
            for (const QUuid &visible : model.visible())
                if (model.find(visible)->text.contains(QStringLiteral("\n\n")))
                    candidates.append(visible);
            if (op.flag && !candidates.isEmpty())
                id = candidates[op.number % candidates.size()];
            both([&](auto &on) { on.splitNote(id); });
            break;
        }
        case Kind::MoveToProject: {
            const QString target = title.value_or(QStringLiteral("Moved"));
            both([&](auto &on) { on.moveNotesToProject(ids, projectRef(op.other), target); });
            break;
        }
        case Kind::MoveToSection:
            both([&](auto &on) { on.moveNotesToSection(ids, sectionRef(op.section)); });
            break;
        case Kind::MoveToIndex: {
            // At times within the section of the first note, where the notes
            // moved from above the index count.
            QUuid section = sectionRef(op.section);
            for (const MProject &p : model.lib.projects)
                for (const MSection &s : p.sections)
                    if (op.flag && std::any_of(s.notes.begin(), s.notes.end(), [&](const MNote &n) {
                            return n.id == firstNote;
                        }))
                        section = s.id;
            const MSection *target = model.findSection(section);
            const int index = target ? op.number % int(target->notes.size() + 2) : op.number;
            QList<QUuid> moving = ids;
            if (op.flag && target && !target->notes.empty()) {
                moving.clear();
                for (int ref : op.notes)
                    if (ref >= 0 && !moving.contains(target->notes[ref % target->notes.size()].id))
                        moving.append(target->notes[ref % target->notes.size()].id);
            }
            both([&](auto &on) { on.moveNotesToSection(moving, section, index); });
            break;
        }
        case Kind::ToggleExpanded:
            store.toggleExpanded(firstNote);
            if (!model.expanded.remove(firstNote))
                model.expanded.insert(firstNote);
            break;
        case Kind::AddAttachments: {
            const std::vector<MAttachment> attachments = attachmentsFor(op);
            store.addAttachments(records(attachments), firstNote);
            model.addAttachments(attachments, firstNote);
            break;
        }
        case Kind::RemoveAttachment: {
            const MNote *note = model.find(firstNote);
            const QUuid attachment = note && !note->attachments.empty()
                ? note->attachments[op.number % note->attachments.size()].id
                : unknownID;
            both([&](auto &on) { on.removeAttachment(attachment, firstNote); });
            break;
        }
        case Kind::CreateOrUseSection: {
            // At times the title of an automatic section, which is used too.
            QString title = name;
            for (const MSection &section : model.active()->sections)
                if (op.flag2 && section.automatic)
                    title = section.title.toUpper();
            both([&](auto &on) { on.createOrUseSection(title); });
            break;
        }
        case Kind::ActivateSection:
            both([&](auto &on) { on.activateSection(sectionRef(op.section)); });
            break;
        case Kind::JumpToSection: {
            store.jumpToSection(op.number % 5);
            const int n = op.number % 5;
            if (n >= 1 && n <= int(model.active()->sections.size()))
                model.activateSection(model.active()->sections[n - 1].id);
            break;
        }
        case Kind::RenameSection:
            both([&](auto &on) { on.renameSection(sectionRef(op.section), name); });
            break;
        case Kind::RenameProject:
            both([&](auto &on) { on.renameProject(projectRef(op.other), name); });
            break;
        case Kind::MoveSectionBy:
            both([&](auto &on) { on.moveSection(sectionRef(op.section), op.flag ? 1 : -1); });
            break;
        case Kind::MoveSectionBefore: {
            const std::optional<QUuid> before
                = op.flag2 ? std::nullopt : std::optional(sectionRef(op.other));
            both([&](auto &on) { on.moveSection(sectionRef(op.section), before); });
            break;
        }
        case Kind::ToggleCollapsed: {
            const QUuid id = sectionRef(op.section);
            store.toggleSectionCollapsed(id);
            store.commit();
            if (MSection *section = model.findSection(id))
                section->collapsed = !section->collapsed;
            model.commit();
            break;
        }
        case Kind::CollapseAll:
        case Kind::ExpandAll:
            if (op.kind == Kind::CollapseAll)
                store.collapseAllSections();
            else
                store.expandAllSections();
            store.commit();
            for (MSection &section : model.active()->sections)
                section.collapsed = op.kind == Kind::CollapseAll;
            model.commit();
            break;
        case Kind::DeleteSection: {
            // Often the active one, whose mark goes to "Inbox".
            const QUuid id = op.flag && model.active()->activeSection
                ? *model.active()->activeSection
                : sectionRef(op.section);
            both([&](auto &on) { on.deleteSection(id); });
            break;
        }
        case Kind::CreateProject:
            both([&](auto &on) { on.createProject(name); });
            break;
        case Kind::DeleteProject: {
            // Often the active one; the last project is never offered for deletion.
            const QUuid id = op.flag && model.lib.activeProject ? *model.lib.activeProject
                                                                : projectRef(op.other);
            if (model.lib.projects.size() > 1) {
                both([&](auto &on) { on.deleteProject(id); });
            }
            break;
        }
        case Kind::SwitchProject:
            both([&](auto &on) { on.switchProject(projectRef(op.other)); });
            break;
        case Kind::Undo:
            store.undo();
            model.restore(model.undoStack, model.redoStack);
            break;
        case Kind::Redo:
            store.redo();
            model.restore(model.redoStack, model.undoStack);
            break;
        case Kind::Search:
            store.setSearchText(op.text);
            model.searchText = op.text;
            break;
        case Kind::Select:
            both([&](auto &on) { on.select(firstNote, op.flag, op.flag2); });
            break;
        case Kind::MoveSelection: {
            const int offset = op.flag ? 1 : -1;
            const std::optional<QUuid> reached = store.moveSelection(offset, op.flag2);
            // Without an anchor the step starts from any selected note: each is right.
            QList<std::optional<QUuid>> starts;
            if (model.anchor || model.selection.isEmpty())
                starts.append(model.anchor);
            for (const QUuid &id : std::as_const(model.selection))
                if (!model.anchor)
                    starts.append(id);
            const Model before = model;
            bool matched = false;
            for (const std::optional<QUuid> &start : std::as_const(starts)) {
                model = before;
                const std::optional<QUuid> expected
                    = model.moveSelectionFrom(start, offset, op.flag2);
                if (expected == reached && model.selection == store.selection()
                    && model.anchor == store.selectionAnchor()) {
                    matched = true;
                    break;
                }
            }
            if (!matched)
                return QStringLiteral(
                    "moveSelection reached a note that no selected note leads to");
            break;
        }
        case Kind::SelectAll: {
            store.selectAll();
            const QList<QUuid> visible = model.visible();
            model.selection = QSet<QUuid>(visible.begin(), visible.end());
            break;
        }
        case Kind::SelectAllInSection:
            both([&](auto &on) { on.selectAllInSection(sectionRef(op.section)); });
            break;
        case Kind::SetEditing:
            store.setEditingNoteID(firstNote);
            model.editing = firstNote;
            break;
        case Kind::Preference: {
            const std::pair<bool Preferences3::*, void (Preferences::*)(bool)> flips[]
                = {{&Preferences3::showCompleted, &Preferences::setShowCompleted},
                    {&Preferences3::newestFirst, &Preferences::setNewestFirst},
                    {&Preferences3::moveDoneToBottom, &Preferences::setMoveDoneToBottom}};
            const auto [flag, setter] = flips[op.number % 3];
            model.prefs.*flag = !(model.prefs.*flag);
            (m_fixture.preferences().*setter)(model.prefs.*flag);
            preferenceChanged = true;
            break;
        }
        case Kind::SaveAndLoad:
            if (std::optional<QString> failure = saveAndLoad())
                return failure;
            break;
        }

        // The rows follow a preference after the assignment, and a search when it answers.
        const qsizetype rebuilt = rowsChanged.size();
        const bool searchPending = model.searching()
            && (store.libraryRevision() != revisionBefore || store.searchText() != searchBefore);
        const std::set<Kind> unrecorded
            = {Kind::ToggleCollapsed, Kind::CollapseAll, Kind::ExpandAll, Kind::SwitchProject};
        m_unrecorded = m_unrecorded || (unrecorded.count(op.kind) && !(libraryBefore == model.lib));
        if ((preferenceChanged || searchPending)
            && !QTest::qWaitFor([&] { return rowsChanged.size() > rebuilt; }, 30000))
            return QStringLiteral("the rows were not rebuilt within 30 s");
        return check();
    }

    //! Gives the ids made in the last step, which the model only knows as
    //! placeholders, the Store's ids when those are new and in the same place.
    void adoptNewIDs(const MLibrary &actual)
    {
        QHash<QUuid, QUuid> found;
        auto adopt = [&](const QUuid &expected, const QUuid &id) {
            if (m_model.placeholderIDs.contains(expected) && !m_known.contains(id)
                && !found.contains(expected))
                found.insert(expected, id);
        };
        MLibrary &lib = m_model.lib;
        for (size_t p = 0; p < std::min(lib.projects.size(), actual.projects.size()); ++p) {
            MProject &ep = lib.projects[p];
            const MProject &ap = actual.projects[p];
            adopt(ep.id, ap.id);
            for (size_t s = 0; s < std::min(ep.sections.size(), ap.sections.size()); ++s) {
                MSection &es = ep.sections[s];
                const MSection &as = ap.sections[s];
                adopt(es.id, as.id);
                for (size_t n = 0; n < std::min(es.notes.size(), as.notes.size()); ++n) {
                    MNote &en = es.notes[n];
                    adopt(en.id, as.notes[n].id);
                    // Dates of the last step, such as a new note's.
                    const MNote &an = as.notes[n];
                    const QDateTime now = QDateTime::currentDateTimeUtc();
                    auto adoptDate = [&](QDateTime &expected, const QDateTime &date) {
                        if (!expected.isValid() && date >= m_stepStarted && date <= now)
                            expected = date;
                    };
                    adoptDate(en.createdAt, an.createdAt);
                    adoptDate(en.updatedAt, an.updatedAt);
                    if (en.completedAt && an.completedAt)
                        adoptDate(*en.completedAt, *an.completedAt);
                }
            }
        }
        auto map = [&](QUuid &id) { id = found.value(id, id); };
        auto mapOptional = [&](std::optional<QUuid> &id) {
            if (id)
                map(*id);
        };
        for (MProject &p : lib.projects) {
            map(p.id);
            mapOptional(p.activeSection);
            for (MSection &s : p.sections) {
                map(s.id);
                for (MNote &n : s.notes)
                    map(n.id);
            }
        }
        mapOptional(lib.activeProject);
        mapOptional(m_model.anchor);
        QSet<QUuid> selection;
        for (QUuid id : std::as_const(m_model.selection)) {
            map(id);
            selection.insert(id);
        }
        m_model.selection = selection;
        for (auto it = found.cbegin(); it != found.cend(); ++it)
            m_known.insert(it.value());
    }

    std::optional<QString> check()
    {
        const Store &store = *m_store;
        const MLibrary actual = modelOf(store.library());
        adoptNewIDs(actual);
        if (m_model.anchorChoices) {
            if (store.selectionAnchor()
                && m_model.anchorChoices->contains(*store.selectionAnchor()))
                m_model.anchor = store.selectionAnchor();
            m_model.anchorChoices.reset();
        }
        if (actual != m_model.lib)
            return QStringLiteral("the libraries differ.\nexpected:\n%1\nactual:\n%2")
                .arg(dump(m_model.lib), dump(actual));
        const std::vector<MRow> rows = rowsOf(store.rows());
        if (rows != m_model.rows())
            return QStringLiteral("the rows differ.\nexpected:\n%1\nactual:\n%2")
                .arg(dump(m_model.rows()), dump(rows));
        // The Store patches its rows from change to change; every field of
        // every row must be what a whole derivation gives.
        const Preferences &preferences = m_fixture.preferences();
        const RowOptions options {preferences.showCompleted(), preferences.newestFirst(),
            preferences.moveDoneToBottom(), store.isSearching()};
        const QList<PanelRow> derived = derivePanelRows(activeProject(store.library()), options,
            store.isSearching() ? std::optional(store.currentMatches()) : std::nullopt);
        if (store.rows() != derived)
            return QStringLiteral("the rows differ from a whole derivation:\n%1")
                .arg(dump(rowsOf(derived)));
        if (m_spliceFailure)
            return *m_spliceFailure;
        for (const PanelRow &row : derived) {
            const qsizetype index = store.rowIndex(row.id());
            if (index < 0 || store.rows().at(index).id() != row.id())
                return QStringLiteral("the row index misplaces %1").arg(row.id().toString());
        }
        const std::pair<const char *, bool> agreements[]
            = {{"selections", store.selection() == m_model.selection},
                {"anchors", store.selectionAnchor() == m_model.anchor},
                {"notes being edited", store.editingNoteID() == m_model.editing},
                {"expanded notes", store.expandedNoteIDs() == m_model.expanded},
                {"search texts", store.searchText() == m_model.searchText},
                {"undo stacks", store.undoStepCount() == qsizetype(m_model.undoStack.size())},
                {"redo stacks", store.redoStepCount() == qsizetype(m_model.redoStack.size())},
                {"revisions", store.libraryRevision() == m_baseRevision + m_model.commits}};
        for (const auto &[what, agree] : agreements) {
            if (!agree)
                return QStringLiteral("the %1 differ").arg(QLatin1String(what));
        }
        return std::nullopt;
    }

    std::optional<QString> saveAndLoad()
    {
        // The Store's library agreed with the model at the last check; the
        // file keeps every field of it, dates in whole seconds.
        m_store->flushSave();
        const Library loaded = loadLibrary(m_fixture.preferences().libraryPath());
        if (inWholeSeconds(loaded) != inWholeSeconds(m_store->library()))
            return QStringLiteral("the saved library reads back as\n%1").arg(dump(modelOf(loaded)));
        return std::nullopt;
    }

    std::optional<QString> finish()
    {
        Store &store = *m_store;
        // Without a search every undo shows its rows at once.
        store.setSearchText(QString());
        m_model.searchText.clear();
        const auto replay = [&](bool undo, const QString &what) -> std::optional<QString> {
            while (undo ? store.canUndo() : store.canRedo()) {
                undo ? store.undo() : store.redo();
                undo ? m_model.restore(m_model.undoStack, m_model.redoStack)
                     : m_model.restore(m_model.redoStack, m_model.undoStack);
                if (std::optional<QString> failure = settle())
                    return what + QStringLiteral(": ") + *failure;
            }
            return std::nullopt;
        };
        // The newest state first: steps undone at the end come back.
        if (std::optional<QString> failure = replay(false, QStringLiteral("redoing at the end")))
            return failure;
        const Library end = store.library();
        if (std::optional<QString> failure = replay(true, QStringLiteral("undoing everything")))
            return failure;
        // Collapsing and switching projects take no undo step; without them
        // and with every step kept, the start comes back whole.
        if (!m_model.undoTrimmed && !m_unrecorded && modelOf(store.library()) != m_initial)
            return QStringLiteral("undoing everything did not give back the start");
        if (std::optional<QString> failure = replay(false, QStringLiteral("redoing everything")))
            return failure;
        if (store.library() != end)
            return QStringLiteral("redoing everything did not give back the end");
        return saveAndLoad();
    }

    //! Waits for a search to answer a change, then compares.
    std::optional<QString> settle()
    {
        if (m_model.searching()) {
            QSignalSpy rowsChanged(m_store, &Store::rowsChanged);
            if (!QTest::qWaitFor([&] { return !rowsChanged.isEmpty(); }, 30000))
                return QStringLiteral("the rows were not rebuilt within 30 s");
        }
        return check();
    }

    Test::StoreFixture m_fixture;
    QTemporaryDir m_folder;
    MLibrary m_initial;
    Model m_model;
    Store *m_store = nullptr;
    QList<PanelRow> m_lastRows;
    std::optional<QString> m_spliceFailure;
    quint64 m_baseRevision = 0;
    QSet<QUuid> m_known;
    int m_attachmentCounter = 0;
    bool m_unrecorded = false;
    QDateTime m_stepStarted;
};

//! The shortest sequence found that still fails, by removing runs of steps.
std::vector<Op> shrink(const Library &initial, std::vector<Op> ops, Failure &failure)
{
    int replays = 0;
    for (size_t chunk = std::max<size_t>(ops.size() / 2, 1); chunk >= 1 && replays < 400;
         chunk /= 2) {
        for (size_t from = 0; from < ops.size() && replays < 400;) {
            std::vector<Op> shorter = ops;
            shorter.erase(
                shorter.begin() + from, shorter.begin() + std::min(ops.size(), from + chunk));
            ++replays;
            if (std::optional<Failure> again = Run(initial).play(shorter)) {
                ops = shorter;
                failure = *again;
            } else {
                from += chunk;
            }
        }
        if (chunk == 1)
            break;
    }
    return ops;
}

} // namespace

class StoreModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void storeFollowsTheModel_data();
    void storeFollowsTheModel();
};

void StoreModelTest::storeFollowsTheModel_data()
{
    QTest::addColumn<quint32>("seed");
    QTest::addColumn<int>("steps");
    const int steps = qEnvironmentVariableIsSet("VESKO_MODEL_STEPS")
        ? qEnvironmentVariableIntValue("VESKO_MODEL_STEPS")
        : 400;
    if (qEnvironmentVariableIsSet("VESKO_MODEL_SEED")) {
        const quint32 seed = qEnvironmentVariable("VESKO_MODEL_SEED").toUInt();
        QTest::addRow("seed %u", seed) << seed << steps;
        return;
    }
    for (quint32 seed : {1u, 2u, 3u, 4u, 5u})
        QTest::addRow("seed %u", seed) << seed << steps;
}

void StoreModelTest::storeFollowsTheModel()
{
    QFETCH(quint32, seed);
    QFETCH(int, steps);
    QRandomGenerator random(seed);
    const Library initial = randomLibrary(random);
    std::vector<Op> ops;
    for (int i = 0; i < steps; ++i)
        ops.push_back(randomOp(random));

    std::optional<Failure> failure = Run(initial).play(ops);
    if (!failure)
        return;
    const qsizetype failedAt = failure->step;
    if (failure->step >= 0 && failure->step < qsizetype(ops.size()))
        ops.resize(failure->step + 1);
    const std::vector<Op> shortest = shrink(initial, ops, *failure);
    QStringList lines;
    for (const Op &op : shortest)
        lines.append(QStringLiteral("  ") + op.toString());
    QFAIL(qPrintable(QStringLiteral("seed %1 failed at step %2 (rerun with VESKO_MODEL_SEED=%1).\n"
                                    "The shortest failing sequence, %3 steps:\n%4\n%5")
                         .arg(seed)
                         .arg(failedAt)
                         .arg(shortest.size())
                         .arg(lines.join(u'\n'), failure->message)));
}

VESKO_TEST_MAIN(StoreModelTest)
#include "tst_storemodel.moc"
