// SPDX-License-Identifier: GPL-3.0-or-later

#include "store/Store.h"

#include "attachments/AttachmentStore.h"
#include "library/LibraryFile.h"
#include "library/LibraryRepair.h"
#include "library/LibraryWriter.h"
#include "platform/Logging.h"
#include "shell/Preferences.h"

#include <QFileInfo>
#include <QThread>

namespace Vesko {

Store::Store(Library loaded, const Services &services, QObject *parent)
    : QObject(parent)
    , m_library(std::move(loaded))
    , m_preferences(services.preferences)
    , m_writer(services.writer)
    , m_attachments(services.attachments)
    , m_searchIndex(services.searchIndex)
{
    m_saveTimer.setSingleShot(true);
    m_saveTimer.setInterval(saveDelayMilliseconds);
    m_saveTimer.setTimerType(Qt::PreciseTimer);
    connect(&m_saveTimer, &QTimer::timeout, this, &Store::saveNow);
    m_searchTimer.setSingleShot(true);
    m_searchTimer.setInterval(searchDelayMilliseconds);
    m_searchTimer.setTimerType(Qt::PreciseTimer);
    connect(&m_searchTimer, &QTimer::timeout, this, &Store::startPendingSearch);
    m_saveRetryTimer.setSingleShot(true);
    m_saveRetryTimer.setInterval(saveRetryMilliseconds);
    connect(&m_saveRetryTimer, &QTimer::timeout, this, &Store::retrySave);

    // A preference of the list changes the rows, after the assignment returns.
    connect(&m_preferences, &Preferences::listOptionsAssigned, this, &Store::refreshRows,
        Qt::QueuedConnection);

    if (repairLibrary(m_library)) {
        // The repaired file is written at once; a failure waits for the next save.
        (void)writeLibrary(m_library, libraryFile());
    }
    m_announcedLibrary = m_library;
    rebuildRows();
    scheduleIndexSync();
}

Store::~Store() = default;

Store &Store::shared()
{
    static Store *const store = [] {
        std::optional<UnreadableLibrary> unreadable;
        finishInterruptedLibraryMove(libraryURL());
        Library loaded = loadLibrary(libraryURL(), &unreadable);
        auto *made = new Store(std::move(loaded),
            {Preferences::shared(), LibraryWriter::shared(), AttachmentStore::shared(),
                SearchIndex::shared()});
        made->setUnreadableLibrary(unreadable);
        // What an import cut short, or never saved, left behind goes; only
        // when the library was read, or every attachment would seem unused.
        if (!unreadable && QFileInfo::exists(libraryURL())) {
            AttachmentStore::shared().removeUnreferencedFolders(
                made->library(), attachmentsFolder(libraryURL()));
        }
        return made;
    }();
    return *store;
}

// -- state ---------------------------------------------------------------------

QString Store::libraryFile() const
{
    return m_preferences.libraryURL();
}

void Store::notifyLibraryIfChanged()
{
    // Comparing with the last announced value is cheap: lists that still
    // share their data compare equal at once, so only changed paths are walked.
    if (m_library == m_announcedLibrary)
        return;
    m_announcedLibrary = m_library;
    Q_EMIT libraryChanged();
}

void Store::setLibrary(const Library &library)
{
    if (library == m_library)
        return;
    m_library = library;
    notifyLibraryIfChanged();
}

template<typename T> void Store::assign(T &field, const T &value, void (Store::*changed)())
{
    if (field == value)
        return;
    field = value;
    Q_EMIT(this->*changed)();
}

void Store::setEditingNoteID(std::optional<QUuid> id)
{
    assign(m_editingNoteID, id, &Store::editingNoteIDChanged);
}

void Store::setSelectionSet(const QSet<QUuid> &selection)
{
    assign(m_selection, selection, &Store::selectionChanged);
}

void Store::setSelectionAnchor(std::optional<QUuid> anchor)
{
    assign(m_selectionAnchor, anchor, &Store::selectionAnchorChanged);
}

void Store::setExpandedNoteIDs(const QSet<QUuid> &ids)
{
    assign(m_expandedNoteIDs, ids, &Store::expandedNoteIDsChanged);
}

void Store::setSelection(const QSet<QUuid> &selection, std::optional<QUuid> anchor)
{
    setSelectionSet(selection);
    setSelectionAnchor(anchor);
}

Project Store::activeProject() const
{
    if (const Project *project = Vesko::activeProject(m_library))
        return *project;
    Project fallback;
    fallback.id = makeID();
    fallback.name = QStringLiteral("Notes");
    fallback.createdAt = currentDate();
    return fallback;
}

NoteSection Store::activeSection() const
{
    const Project *project = Vesko::activeProject(m_library);
    if (project) {
        if (project->activeSectionID) {
            for (const NoteSection &section : project->sections) {
                if (section.id == *project->activeSectionID)
                    return section;
            }
        }
        if (!project->sections.isEmpty())
            return project->sections.first();
    }
    return makeInboxSection();
}

std::optional<LibraryPosition> Store::locateNote(const QUuid &id) const
{
    // Edits and the selection mostly concern notes in view, whose places the
    // rows know; a walk over a million notes costs milliseconds.
    if (const auto place = m_rows.notePlace(id)) {
        const qsizetype p = activeProjectIndex(m_library);
        const QList<NoteSection> &sections
            = p >= 0 ? m_library.projects.at(p).sections : QList<NoteSection>();
        if (place->first < sections.size()) {
            const NoteList &notes = sections.at(place->first).notes;
            if (place->second < notes.size() && notes.at(place->second).id == id)
                return LibraryPosition {p, place->first, place->second};
        }
    }
    return Vesko::locateNote(m_library, id);
}

std::optional<NoteAddress> Store::addressOfNote(const QUuid &id) const
{
    const std::optional<LibraryPosition> at = locateNote(id);
    if (!at)
        return std::nullopt;
    const Project &project = m_library.projects.at(at->project);
    return NoteAddress {project.id, project.sections.at(at->section).id, id};
}

std::optional<Note> Store::note(const QUuid &id) const
{
    const std::optional<LibraryPosition> at = locateNote(id);
    if (!at)
        return std::nullopt;
    return m_library.projects.at(at->project).sections.at(at->section).notes.at(at->note);
}

std::optional<NoteSection> Store::section(const QUuid &id) const
{
    const std::optional<LibraryPosition> at = locateSection(m_library, id);
    if (!at)
        return std::nullopt;
    return m_library.projects.at(at->project).sections.at(at->section);
}

bool Store::isSearching() const
{
    return !SearchIndex::normalizedQuery(m_searchText).isEmpty();
}

QList<Note> Store::visibleNotes() const
{
    return Vesko::visibleNotes(m_rows.rows());
}

// -- the road of a change ------------------------------------------------------

void Store::recordUndo()
{
    Q_ASSERT(QThread::currentThread() == thread());
    m_undoStack.append(m_library);

    const qsizetype notes = noteCount(m_library);
    const qsizetype limit = std::clamp<qsizetype>(
        undoNoteBudget / std::max<qsizetype>(notes, 1), 5, maximumUndoSteps);
    if (m_undoStack.size() > limit)
        m_undoStack.remove(0, m_undoStack.size() - limit);
    m_redoStack.clear();
    Q_EMIT undoStateChanged();
}

void Store::commit()
{
    refreshAfterMutation();

    // The save carries the library and the file's path as they are now.
    m_pendingSave = m_library;
    m_pendingSavePath = libraryFile();
    m_saveTimer.start();
}

void Store::saveNow()
{
    const Library library = std::exchange(m_pendingSave, Library {});
    ++m_savesInFlight;
    m_writer.write(library, m_pendingSavePath, this,
        [this](std::optional<QString> failure) { noteSaveResult(failure); });
}

void Store::retrySave()
{
    // A scheduled save writes a state at least as new, and reports itself; so
    // does a write still on its way, whose failure starts the next retry.
    if (m_saveTimer.isActive() || m_savesInFlight > 0)
        return;
    ++m_savesInFlight;
    m_writer.write(m_library, libraryFile(), this,
        [this](std::optional<QString> failure) { noteSaveResult(failure); });
}

void Store::noteSaveResult(const std::optional<QString> &failure)
{
    --m_savesInFlight;
    // Writes end in the order they were queued, so the last result stands.
    if (failure) {
        qCCritical(lcStorage, "Save failed: %s", qUtf8Printable(*failure));
        m_saveRetryTimer.start();
    } else {
        m_saveRetryTimer.stop();
    }
    assign(m_saveFailure, failure.value_or(QString()), &Store::saveFailureChanged);
}

void Store::refreshAfterMutation()
{
    Q_ASSERT(QThread::currentThread() == thread());
    notifyLibraryIfChanged();
    ++m_libraryRevision;
    Q_EMIT libraryRevisionChanged();
    scheduleIndexSync();
    // While a search is active it runs again; the rows follow when it answers.
    if (isSearching())
        runSearch();
    else
        rebuildRows();
}

void Store::rebuildRows(const std::optional<SearchMatches> &matches)
{
    RowOptions options;
    options.showCompleted = m_preferences.showCompleted();
    options.newestFirst = m_preferences.newestFirst();
    options.moveDoneToBottom = m_preferences.moveDoneToBottom();
    options.isSearching = isSearching();
    m_lastRowChange = m_rows.update(Vesko::activeProject(m_library), options, matches);
    Q_EMIT rowsChanged();
}

void Store::undo()
{
    restoreSnapshot(m_undoStack, m_redoStack);
}

void Store::redo()
{
    restoreSnapshot(m_redoStack, m_undoStack);
}

void Store::restoreSnapshot(QList<Library> &from, QList<Library> &to)
{
    if (from.isEmpty())
        return;
    to.append(m_library);
    setLibrary(from.takeLast());
    Q_EMIT undoStateChanged();

    // Notes that no longer exist leave the selection; the anchor stays. One
    // pass over the library with the selection as a set, starting with the
    // active project, where the selected notes normally are, and ending as
    // soon as every one of them is found.
    if (!m_selection.isEmpty()) {
        QSet<QUuid> kept;
        kept.reserve(m_selection.size());
        auto keepSelected = [&](const Project &project) {
            for (const NoteSection &section : project.sections) {
                for (const Note &note : section.notes) {
                    if (m_selection.contains(note.id))
                        kept.insert(note.id);
                }
            }
            return kept.size() == m_selection.size();
        };
        const qsizetype active = activeProjectIndex(m_library);
        bool allFound = active >= 0 && keepSelected(m_library.projects.at(active));
        for (qsizetype p = 0; p < m_library.projects.size() && !allFound; ++p) {
            if (p != active)
                allFound = keepSelected(m_library.projects.at(p));
        }
        if (!allFound)
            setSelectionSet(kept);
    }
    commit();
}

void Store::flushSave()
{
    m_saveTimer.stop();
    m_saveRetryTimer.stop();
    m_pendingSave = Library {};
    const std::optional<QString> failure = m_writer.writeNow(m_library, libraryFile());
    assign(m_saveFailure, failure.value_or(QString()), &Store::saveFailureChanged);
    if (!failure)
        return;
    qCCritical(lcStorage, "Save failed: %s", qUtf8Printable(*failure));
    // The last chance for the changes that never reached the file.
    QString rescueFailure;
    const QString rescue = writeRescueFile(m_library, &rescueFailure);
    if (!rescue.isEmpty()) {
        qCCritical(lcStorage, "The library could not be saved; it was written to %s",
            qUtf8Printable(rescue));
    } else {
        qCCritical(lcStorage, "The library could not be saved, nor rescued to %s: %s",
            qUtf8Printable(rescueFolder()), qUtf8Printable(rescueFailure));
    }
}

void Store::finishForQuit()
{
    m_attachments.cancelCopies();
    flushSave();
    m_attachments.waitForIdle();
}

void Store::clearSearchText()
{
    if (m_searchText.isEmpty())
        return;
    // Every caller commits right after, which rebuilds the unfiltered rows:
    // only the search state is reset here, so that the rows are built once.
    m_searchTimer.stop();
    m_searchCancellation.cancel();
    m_searchText.clear();
    forgetSearchResult();
    Q_EMIT searchTextChanged();
}

} // namespace Vesko
