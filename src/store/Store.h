// SPDX-License-Identifier: GPL-3.0-or-later
//
// The one object that owns the library while Vesko runs. Every change takes
// the same road: validate, record an undo step, change the library, adjust
// the selection, commit. Committing raises the revision, tells the search
// index, rebuilds the panel's rows and schedules a save 0.35 seconds later,
// which a later commit postpones. The Store lives on the main thread; only
// copies of the library leave it.

#pragma once

#include "attachments/AttachmentStore.h"
#include "library/Library.h"
#include "library/LibraryFile.h"
#include "search/SearchIndex.h"
#include "search/SearchMatches.h"
#include "store/LibraryPosition.h"
#include "store/PanelRow.h"
#include "store/PanelRowList.h"

#include <QObject>
#include <QPointer>
#include <QSet>
#include <QTimer>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>

namespace Vesko {

class Clipboard;
class LibraryWriter;
class Preferences;
class SearchIndex;

class Store : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString searchText READ searchText WRITE setSearchText NOTIFY searchTextChanged)
    Q_PROPERTY(QSet<QUuid> selection READ selection NOTIFY selectionChanged)
    Q_PROPERTY(
        std::optional<QUuid> selectionAnchor READ selectionAnchor NOTIFY selectionAnchorChanged)
    Q_PROPERTY(std::optional<QUuid> editingNoteID READ editingNoteID WRITE setEditingNoteID NOTIFY
            editingNoteIDChanged)
    Q_PROPERTY(QSet<QUuid> expandedNoteIDs READ expandedNoteIDs NOTIFY expandedNoteIDsChanged)
    Q_PROPERTY(quint64 libraryRevision READ libraryRevision NOTIFY libraryRevisionChanged)
    Q_PROPERTY(bool canUndo READ canUndo NOTIFY undoStateChanged)
    Q_PROPERTY(bool canRedo READ canRedo NOTIFY undoStateChanged)
    Q_PROPERTY(QString saveFailure READ saveFailure NOTIFY saveFailureChanged)
    Q_PROPERTY(bool isMovingLibrary READ isMovingLibrary NOTIFY isMovingLibraryChanged)

public:
    static constexpr int maximumUndoSteps = 60;
    static constexpr qsizetype undoNoteBudget = 500000;
    //! The quiet time after the last change before the library is saved.
    static constexpr int saveDelayMilliseconds = 350;
    //! While saves fail, the pause before the library is written again.
    static constexpr int saveRetryMilliseconds = 5000;

    //! The services a Store works with; shared() uses the process-wide ones.
    struct Services
    {
        Preferences &preferences;
        LibraryWriter &writer;
        AttachmentStore &attachments;
        SearchIndex &searchIndex;
    };

    static constexpr int searchDelayMilliseconds = 75;

    //! Takes over \a loaded, repairs it (and writes it at once if the repair
    //! changed anything), derives the rows and starts indexing it.
    Store(Library loaded, const Services &services, QObject *parent = nullptr);
    ~Store() override;

    //! The Store of the process, made on first use from the library file.
    static Store &shared();

    // -- state -----------------------------------------------------------------

    const Library &library() const { return m_library; }
    //! Replaces the library; a structurally equal one changes nothing.
    void setLibrary(const Library &library);

    QString searchText() const { return m_searchText; }
    //! The text of the search field; a change searches the active project
    //! after a short pause, and clearing it shows every row at once.
    void setSearchText(const QString &text);
    const QList<PanelRow> &rows() const { return m_rows.rows(); }
    //! The rows the last change of rows() replaced, for views that follow
    //! them without taking in every row again.
    PanelRowChange lastRowChange() const { return m_lastRowChange; }
    //! The index in rows() of the row \a id, or -1.
    qsizetype rowIndex(const QUuid &id) const { return m_rows.indexOf(id); }
    QSet<QUuid> selection() const { return m_selection; }
    std::optional<QUuid> selectionAnchor() const { return m_selectionAnchor; }
    std::optional<QUuid> editingNoteID() const { return m_editingNoteID; }
    void setEditingNoteID(std::optional<QUuid> id);
    QSet<QUuid> expandedNoteIDs() const { return m_expandedNoteIDs; }
    quint64 libraryRevision() const { return m_libraryRevision; }
    const SearchMatches &currentMatches() const { return m_currentMatches; }
    QString appliedSearchQuery() const { return m_appliedSearchQuery; }

    bool canUndo() const { return !m_undoStack.isEmpty(); }
    bool canRedo() const { return !m_redoStack.isEmpty(); }
    qsizetype undoStepCount() const { return m_undoStack.size(); }
    qsizetype redoStepCount() const { return m_redoStack.size(); }
    //! A save is scheduled and has not started yet.
    bool hasPendingSave() const { return m_saveTimer.isActive(); }
    //! Why the last save failed, such as "No space left on device"; empty
    //! once a save succeeds. While it is set the library is written again
    //! every saveRetryMilliseconds, and at each change.
    QString saveFailure() const { return m_saveFailure; }
    //! A move of the library is under way.
    bool isMovingLibrary() const { return m_isMovingLibrary; }

    // -- a library file that could not be read -------------------------------

    //! The library file that could not be read at start, while the user has
    //! neither restored a backup nor dismissed the news.
    const std::optional<UnreadableLibrary> &unreadableLibrary() const { return m_unreadable; }
    //! Tells of a library file that could not be read. Until the user restores
    //! a backup or dismisses it, the backups that the load found are kept out
    //! of the rotation, so that the saves of the new library cannot push them out.
    void setUnreadableLibrary(const std::optional<UnreadableLibrary> &unreadable);
    //! Reads the backups that the load found, newest first, off the main
    //! thread, and makes the first that reads the library: one change that
    //! can be undone. The unreadable library is then no longer told of, and
    //! those backups stay kept until the program ends. When none reads,
    //! restoreFailure() says so and nothing changes.
    void restoreLatestBackup();
    //! The user has seen the news: it goes, and the backups rotate again.
    //! Like a restore, this removes the note that carried the news from
    //! start to start (see readUnreadableLibraryNote()).
    void dismissUnreadableLibrary();
    //! A restore is being read.
    bool isRestoringBackup() const { return m_isRestoringBackup; }
    //! Why the last restore found nothing; empty otherwise.
    QString restoreFailure() const { return m_restoreFailure; }

    //! The library's active project, or an unsaved empty "Notes" without one.
    Project activeProject() const;
    //! The active project's active section, else its first, else an unsaved "Inbox".
    NoteSection activeSection() const;
    //! Looked up over all projects, first match in project, section, note order.
    std::optional<Note> note(const QUuid &id) const;
    std::optional<NoteAddress> addressOfNote(const QUuid &id) const;
    std::optional<NoteSection> section(const QUuid &id) const;

    //! The search text has more than blanks and tabs.
    bool isSearching() const;
    //! The notes of the note rows, in row order: what selection, copying and moving act on.
    QList<Note> visibleNotes() const;

    // -- the road of a change --------------------------------------------------

    //! Keeps a copy of the library as an undo step; to be called before a change.
    void recordUndo();
    //! To be called after a change: refreshes what derives from the library
    //! and schedules the save.
    void commit();
    //! The part of commit() that does not save.
    void refreshAfterMutation();
    //! Rebuilds the rows for the current search state; after a preference changed.
    void refreshRows();
    void rebuildRows(const std::optional<SearchMatches> &matches = std::nullopt);

    void undo();
    void redo();

    //! Cancels a pending save and writes the library now, blocking until it is
    //! on the disk. At quit; it writes whether or not anything changed. When
    //! that write fails, the library goes to a rescue file (see writeRescueFile()).
    void flushSave();
    //! For the end of the program: copies of attachment files under way (a
    //! move of the library, an import) are told to stop at their next piece,
    //! the library is written by flushSave() without waiting for them, and
    //! only then are they waited for, as they take back what they had copied.
    //! A move cut short this way leaves the library where it was.
    void finishForQuit();

    //! Moves the library file to \a destination, a folder or a file path, with
    //! its attachments, and goes on with the file there. The attachments are
    //! copied in the background and the file is written behind the saves
    //! already queued; libraryMoveFinished() tells the end. On failure the old
    //! file stays in use. A destination that leads to the library file itself
    //! rewrites it and moves nothing.
    void moveLibrary(const QString &destination);
    //! Stops a move while its attachments are copied: the copy stops at its
    //! next piece and takes back what it copied, and the move ends as failed
    //! with the library where it was. Once the file is being written the
    //! move goes on to its end.
    void cancelLibraryMove();

    // -- selection ------------------------------------------------------------

    //! The pointer's selection: Shift extends from the anchor, Ctrl toggles.
    void select(const QUuid &id, bool extending, bool toggling);
    //! The keyboard's selection: one step up (-1) or down (+1). Returns the note reached.
    std::optional<QUuid> moveSelection(int offset, bool extending);
    void selectAll();
    void selectAllInSection(const QUuid &sectionID);
    //! Drops notes that are gone from the selection, the anchor, editing and expansion.
    void forgetNotes(const QSet<QUuid> &ids);
    //! Sets the selection and the anchor in one step.
    void setSelection(const QSet<QUuid> &selection, std::optional<QUuid> anchor);

    // -- notes ----------------------------------------------------------------
    // Each operation does nothing at all when there is nothing to do; else it
    // records one undo step, changes the library, adjusts the selection and
    // commits. Operations on several notes act on the visible ones, in row order.

    //! Adds a note to the active project: to the section \a sectionID if it is
    //! there, else to the section titled \a sectionTitle among those of its
    //! kind (made if missing), else to the active section, else to "Inbox".
    //! With \a reveal the search is cleared, the section expanded and the note
    //! selected, and anchored a moment later. Blank text needs an attachment.
    std::optional<Note> addNote(const QString &text, std::optional<QUuid> sectionID = std::nullopt,
        std::optional<QString> sectionTitle = std::nullopt, bool isAutomaticSection = false,
        std::optional<NoteSource> source = std::nullopt,
        const QList<NoteAttachment> &attachments = {}, bool reveal = false);
    //! Adds a note to the project \a projectID as addNote() adds one to the
    //! active project, without switching to it: to the section titled
    //! \a sectionTitle (made if missing), else its active section, else
    //! "Inbox". Nothing for blank text or an unknown project.
    std::optional<Note> addNoteToProject(const QUuid &projectID, const QString &text,
        std::optional<QString> sectionTitle = std::nullopt);
    //! Sets a note's text; an edit that empties a note without attachments deletes it.
    void updateNote(const QUuid &id, const QString &text);
    void setDone(const QList<QUuid> &ids, bool isDone);
    //! The value toggleDone() gives \a ids: done, unless every one of them is
    //! a done note (a note that cannot be found counts as not done).
    bool toggledDoneValue(const QList<QUuid> &ids) const;
    //! Marks \a ids done, or not done when all of them are done already.
    void toggleDone(const QList<QUuid> &ids);
    void deleteNotes(const QSet<QUuid> &ids);
    //! Deletes the done notes of the active project, hidden ones included.
    void clearCompleted();
    //! Joins the visible notes among \a ids, in row order, into one new note
    //! in the place of the first.
    void mergeNotes(const QList<QUuid> &ids);
    //! Cuts a note into one note per paragraph (text between blank lines).
    void splitNote(const QUuid &id);
    void moveNotesToProject(
        const QList<QUuid> &ids, const QUuid &projectID, const QString &sectionTitle);
    void moveNotesToSection(const QList<QUuid> &ids, const QUuid &sectionID);
    //! Moves notes to \a index among the section's notes as they were before the move.
    void moveNotesToSection(const QList<QUuid> &ids, const QUuid &sectionID, qsizetype index);
    void toggleExpanded(const QUuid &id);
    //! Attaches records of files already imported; their files go if the note has gone.
    void addAttachments(const QList<NoteAttachment> &attachments, const QUuid &noteID);
    void removeAttachment(const QUuid &attachmentID, const QUuid &noteID);
    //! Copies the files of \a sources into the attachments folder on the
    //! importer thread, then attaches them to the note; when the note is gone
    //! by then, the copies are deleted again. \a done learns the outcome.
    //! While the library is being moved the copy waits for the move's end.
    void importAttachments(const QList<QUrl> &sources, const QUuid &noteID,
        std::function<void(ImportResult)> done = {});
    //! The "Attachments" folder beside the library file in use.
    QString currentAttachmentsFolder() const;
    //! Hands \a job the folder that new attachment files go into: at once, or,
    //! while the library is being moved, once the move has ended, with the
    //! folder of the file in use then. Nothing new lands in a folder that the
    //! move copies and removes. The job is dropped when \a context has gone.
    void whenAttachmentsFolderSettled(
        QObject *context, std::function<void(const QString &folder)> job);

    //! The note to select after removing \a ids: the next visible survivor,
    //! else the nearest one above, else nothing.
    std::optional<QUuid> nextSelection(const QSet<QUuid> &ids) const;
    //! Deletes the files of records that nothing in the library refers to any more.
    void purgeAttachmentFiles(const QList<NoteAttachment> &attachments);

    // -- text out ---------------------------------------------------------------

    //! The visible notes among \a ids, in row order, as plain text: their
    //! texts, or stripped of Markdown when copyIncludesMarkdown is off.
    QString plainCopyText(const QList<QUuid> &ids) const;
    //! The same notes as a list in the listStyle preference; empty without notes.
    QString listCopyText(const QList<QUuid> &ids) const;
    //! The whole library as one Markdown document.
    QString markdownExportText() const;
    //! Puts plainCopyText(ids) on \a clipboard; an empty text leaves it as it was.
    bool copyNotes(const QList<QUuid> &ids, Clipboard &clipboard) const;
    //! Puts listCopyText(ids) on \a clipboard; without notes it stays as it was.
    bool copyAsList(const QList<QUuid> &ids, Clipboard &clipboard) const;

    // -- sections and projects ----------------------------------------------------

    //! The index of the first section of \a project of that kind and title,
    //! appending a new one when there is none.
    static qsizetype findOrCreateSection(Project &project, const QString &title, bool automatic);
    //! The section of \a project a new note goes to: the one with \a sectionID,
    //! else the one titled \a sectionTitle (made if need be), else the active
    //! one, else "Inbox", which then becomes the active one.
    static qsizetype sectionForNewNote(Project &project, std::optional<QUuid> sectionID,
        const std::optional<QString> &sectionTitle, bool isAutomaticSection);
    //! Activates the section of that title in the active project, or makes it.
    std::optional<NoteSection> createOrUseSection(const QString &title);
    void activateSection(const QUuid &id);
    //! Activates the \a number-th section (from 1) of the active project.
    void jumpToSection(int number);
    void renameSection(const QUuid &id, const QString &title);
    void renameProject(const QUuid &id, const QString &name);
    //! Swaps a section of the active project with its neighbour (+1 down, -1 up).
    void moveSection(const QUuid &id, int by);
    //! Moves a section before another one, or to the end without one.
    void moveSection(const QUuid &id, const std::optional<QUuid> &before);
    //! These four change the library without an undo step; the caller commits.
    void toggleSectionCollapsed(const QUuid &id);
    void expandSection(const QUuid &id);
    void collapseAllSections();
    void expandAllSections();
    //! Deletes a section with its notes and their attachment files.
    void deleteSection(const QUuid &id);
    //! Removes every automatic section left without notes, in all projects.
    void pruneEmptyAutomaticSections();
    std::optional<Project> createProject(const QString &name);
    void deleteProject(const QUuid &id);
    //! Shows another project; not an undo step.
    void switchProject(const QUuid &id);

Q_SIGNALS:
    void libraryChanged();
    void searchTextChanged();
    //! After every rebuild of the rows, even to an equal list.
    void rowsChanged();
    void selectionChanged();
    void selectionAnchorChanged();
    void editingNoteIDChanged();
    void expandedNoteIDsChanged();
    void libraryRevisionChanged();
    void undoStateChanged();
    //! The applied search result changed.
    void currentMatchesChanged();
    void saveFailureChanged();
    void isMovingLibraryChanged();
    //! The unreadable library, the restore under way or its failure changed.
    void unreadableLibraryChanged();
    //! The attachments of a move: bytes copied so far, of \a totalBytes.
    void libraryMoveProgress(qint64 copiedBytes, qint64 totalBytes);
    //! A move has ended: \a failure says why it failed, empty when it succeeded.
    void libraryMoveFinished(const QString &failure);

private:
    void notifyLibraryIfChanged();
    //! Assigns \a value and emits \a changed only when it differs.
    template<typename T> void assign(T &field, const T &value, void (Store::*changed)());
    void setSelectionSet(const QSet<QUuid> &selection);
    void setSelectionAnchor(std::optional<QUuid> anchor);
    void setExpandedNoteIDs(const QSet<QUuid> &ids);
    void saveNow();
    //! Writes the library again after a failed save, unless a save is scheduled.
    void retrySave();
    //! Takes the outcome of a write: the failure is shown and retried, a success clears it.
    void noteSaveResult(const std::optional<QString> &failure);
    //! The library file in use, as the preferences hold it.
    QString libraryFile() const;
    //! The steps of a move after its attachments are copied, and its end.
    void writeMovedLibrary(const QString &current, const QString &target);
    void adoptMovedLibrary(
        const QString &current, const QString &target, const Library &readBack, quint64 revision);
    void finishLibraryMove(const QString &failure);
    //! The ids of the note rows, in row order.
    QList<QUuid> visibleNoteIDs() const;
    //! The index in the rows of the note row \a id, or -1.
    qsizetype noteRowIndex(const QUuid &id) const;
    //! Ends a search without rebuilding the rows; for operations that commit next.
    void clearSearchText();
    //! The visible notes whose ids are among \a ids, in row order.
    QList<Note> visibleNotesAmong(const QList<QUuid> &ids) const;
    //! Removes notes everywhere, prunes, moves the selection on and purges files.
    void removeNotes(const QSet<QUuid> &ids);
    //! Removes notes from every section of every project, and nothing else;
    //! the attachment records of the removed notes go to \a removedAttachments.
    void stripNotes(const QSet<QUuid> &ids, QList<NoteAttachment> *removedAttachments = nullptr);
    //! Where the note \a id lies: first where the rows last saw it, when it
    //! is still there, else by a walk over the library. Note ids are unique.
    std::optional<LibraryPosition> locateNote(const QUuid &id) const;
    NoteSection *findSection(const QUuid &id);
    Note *findNote(const QUuid &id);
    //! Undo and redo: the last state of \a from becomes the library, the present one goes to \a to.
    void restoreSnapshot(QList<Library> &from, QList<Library> &to);
    void scheduleIndexSync();
    //! Cancels the running search and starts one for the present text.
    void runSearch();
    void startPendingSearch();
    //! Drops the applied search result and its query.
    void forgetSearchResult();
    void applySearchResult(const SearchMatches &matches, const QString &query, quint64 revision);

    Library m_library;
    QString m_searchText;
    PanelRowList m_rows;
    PanelRowChange m_lastRowChange;
    QSet<QUuid> m_selection;
    std::optional<QUuid> m_selectionAnchor;
    std::optional<QUuid> m_editingNoteID;
    QSet<QUuid> m_expandedNoteIDs;
    QList<Library> m_undoStack;
    QList<Library> m_redoStack;
    quint64 m_libraryRevision = 0;
    SearchMatches m_currentMatches;
    QString m_appliedSearchQuery;

    Preferences &m_preferences;
    LibraryWriter &m_writer;
    AttachmentStore &m_attachments;
    SearchIndex &m_searchIndex;

    //! The pending search: its debounce, what it will search, its cancellation.
    QTimer m_searchTimer;
    struct PendingSearch
    {
        QString query;
        Project project;
        Library library;
        quint64 revision = 0;
    } m_pendingSearch;
    Cancellation m_searchCancellation;
    Cancellation m_indexSyncCancellation;

    //! The pending save and what it will write, as of the commit that scheduled it.
    QTimer m_saveTimer;
    Library m_pendingSave;
    QString m_pendingSavePath;
    QString m_saveFailure;
    QTimer m_saveRetryTimer;
    //! Writes of saves and retries queued and not answered yet.
    int m_savesInFlight = 0;
    bool m_isMovingLibrary = false;
    //! Raised to cancel the copy of the move under way.
    std::shared_ptr<std::atomic_bool> m_moveCancelled;
    std::optional<UnreadableLibrary> m_unreadable;
    //! The library file beside which the load noted m_unreadable.
    QString m_unreadableNotedAt;
    bool m_isRestoringBackup = false;
    QString m_restoreFailure;
    //! New attachment files that wait for the move to end.
    QList<std::pair<QPointer<QObject>, std::function<void(const QString &)>>> m_jobsAfterMove;

    //! The library as last announced by libraryChanged().
    Library m_announcedLibrary;
};

} // namespace Vesko
