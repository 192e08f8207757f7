// SPDX-License-Identifier: GPL-3.0-or-later

#include "library/LibraryRepair.h"

#include "library/TitleComparison.h"

#include <QSet>

namespace Vesko {

namespace {

const QString inboxTitle = QStringLiteral("Inbox");

QString noteSourceTitle(const Note &note)
{
    return sourceSectionTitle(note.source->appName, note.source->windowTitle);
}

QList<QUuid> automaticSectionIDs(const Project &project)
{
    QList<QUuid> ids;
    for (const NoteSection &section : project.sections) {
        if (section.isAutomatic)
            ids.append(section.id);
    }
    return ids;
}

// Phase 1: an ordinary section of an older file whose notes all came from
// the one source its title names was made by capture.
bool markLegacyCaptureSections(Project &project)
{
    bool changed = false;
    for (NoteSection &section : project.sections) {
        if (section.isAutomatic || section.notes.isEmpty()
            || titlesEqual(section.title, inboxTitle))
            continue;
        const bool allCaptured
            = std::all_of(section.notes.cbegin(), section.notes.cend(), [&](const Note &note) {
                  return note.source && titlesEqual(noteSourceTitle(note), section.title);
              });
        if (allCaptured) {
            section.isAutomatic = true;
            changed = true;
        }
    }
    return changed;
}

// For each automatic section still there (the keeper), offers every other
// section of the same title that \a isCandidate accepts to \a take, which
// takes notes out of it for the keeper or answers nothing to leave it alone.
// A section left empty by a take goes; the active mark passes to the keeper.
template<typename IsCandidate, typename Take>
bool gatherIntoKeepers(Project &project, IsCandidate isCandidate, Take take)
{
    bool changed = false;
    for (const QUuid &keeperID : automaticSectionIDs(project)) {
        qsizetype keeper = sectionIndex(project, keeperID);
        if (keeper < 0 || !project.sections.at(keeper).isAutomatic)
            continue;
        const QString title = project.sections.at(keeper).title;
        for (qsizetype i = 0; i < project.sections.size();) {
            NoteSection &other = project.sections[i];
            if (i == keeper || !isCandidate(other) || !titlesEqual(other.title, title)) {
                ++i;
                continue;
            }
            const std::optional<QList<Note>> taken = take(other, title);
            if (!taken) {
                ++i;
                continue;
            }
            changed = true;
            project.sections[keeper].notes.append(*taken);
            if (!project.sections.at(i).notes.isEmpty()) {
                ++i;
                continue;
            }
            if (project.activeSectionID == project.sections.at(i).id)
                project.activeSectionID = keeperID;
            project.sections.removeAt(i);
            if (i < keeper)
                --keeper;
        }
    }
    return changed;
}

// Phase 2: automatic sections of the same title become the first of them.
bool joinDuplicateAutomaticSections(Project &project)
{
    return gatherIntoKeepers(
        project, [](const NoteSection &other) { return other.isAutomatic; },
        [](NoteSection &other, const QString &) {
            return std::optional(std::exchange(other.notes, {}));
        });
}

// Phase 3: captures of an older file that lie in an ordinary section of the
// same title as an automatic section move there; typed notes stay.
bool collectStrayCaptures(Project &project)
{
    return gatherIntoKeepers(
        project, [](const NoteSection &other) { return !other.isAutomatic; },
        [](NoteSection &other, const QString &title) -> std::optional<QList<Note>> {
            QList<Note> moving;
            QList<Note> staying;
            for (const Note &note : std::as_const(other.notes)) {
                if (note.source && titlesEqual(noteSourceTitle(note), title))
                    moving.append(note);
                else
                    staying.append(note);
            }
            if (moving.isEmpty())
                return std::nullopt;
            other.notes = staying;
            return moving;
        });
}

} // namespace

bool foldShadowSections(Project &project)
{
    // Lower-cased equality here, unlike the title comparison everywhere else.
    QSet<QString> automaticTitles;
    for (const NoteSection &section : std::as_const(project.sections)) {
        if (section.isAutomatic)
            automaticTitles.insert(section.title.toLower());
    }
    if (automaticTitles.isEmpty())
        return false;

    auto isShadow = [&](const NoteSection &section) {
        return !section.isAutomatic && automaticTitles.contains(section.title.toLower())
            && std::none_of(section.notes.cbegin(), section.notes.cend(),
                [](const Note &note) { return note.source.has_value(); });
    };
    if (std::none_of(project.sections.cbegin(), project.sections.cend(), isShadow))
        return false;

    QList<Note> notes;
    for (const NoteSection &section : std::as_const(project.sections)) {
        if (isShadow(section))
            notes.append(section.notes);
    }
    project.sections.removeIf(isShadow);
    if (notes.isEmpty())
        return true;

    auto inbox = std::find_if(
        project.sections.begin(), project.sections.end(), [](const NoteSection &section) {
            return !section.isAutomatic && titlesEqual(section.title, inboxTitle);
        });
    if (inbox == project.sections.end()) {
        project.sections.append(makeInboxSection());
        inbox = project.sections.end() - 1;
    }
    inbox->notes.append(notes);
    return true;
}

bool migrateLegacySections(Project &project, bool isLegacy)
{
    bool changed = false;
    if (isLegacy)
        changed |= markLegacyCaptureSections(project);
    changed |= joinDuplicateAutomaticSections(project);
    if (isLegacy)
        changed |= collectStrayCaptures(project);
    return changed;
}

bool repairActiveSections(Library &library)
{
    const qint64 oldVersion = library.version;
    bool changed = oldVersion != libraryFormatVersion;
    library.version = libraryFormatVersion;

    for (Project &project : library.projects) {
        if (project.sections.isEmpty()) {
            project.sections.append(makeInboxSection());
            changed = true;
        }
        changed |= migrateLegacySections(project, oldVersion < libraryFormatVersion);

        if (project.activeSectionID && sectionIndex(project, *project.activeSectionID) >= 0)
            continue;
        const qsizetype inbox = inboxSectionIndex(project);
        project.activeSectionID = project.sections.at(inbox >= 0 ? inbox : 0).id;
        changed = true;
    }
    return changed;
}

bool repairLibrary(Library &library)
{
    if (!library.activeProjectID && !library.projects.isEmpty())
        library.activeProjectID = library.projects.first().id;
    // An empty library is replaced in memory only: the file is not rewritten for it.
    if (library.projects.isEmpty())
        library = makeDefaultLibrary();

    bool changed = false;
    for (Project &project : library.projects)
        changed |= foldShadowSections(project);
    changed |= repairActiveSections(library);
    return changed;
}

} // namespace Vesko
