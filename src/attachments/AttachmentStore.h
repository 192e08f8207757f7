// SPDX-License-Identifier: GPL-3.0-or-later
//
// The files of attachments, in the "Attachments" folder beside the library:
// one folder per attachment, named by a UUID, holding the file. Imports and
// removals run on one worker thread, one job at a time; their answers come
// back to the main thread. Every file and folder made here is private.

#pragma once

#include "library/Library.h"

#include <QPointer>
#include <QUrl>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>

class QObject;

namespace Vesko {

class SerialQueue;

//! The outcome of an import or of writing a pasted image: the new records, or
//! the first error and no records at all.
struct ImportResult
{
    QList<NoteAttachment> attachments;
    std::optional<QString> error;

    bool succeeded() const { return !error.has_value(); }
};

class AttachmentStore
{
public:
    //! The name a pasted image is stored under.
    static QString pastedImageName();

    AttachmentStore();
    ~AttachmentStore();

    //! The one attachment store of the process, made on first use and never destroyed.
    static AttachmentStore &shared();

    using ImportDone = std::function<void(const ImportResult &result)>;

    //! Copies the files of \a sources into \a folder on the worker thread, and
    //! hands the result to \a done on \a context's thread, unless \a context
    //! is gone by then. See importFilesNow().
    void importFiles(
        const QList<QUrl> &sources, const QString &folder, QObject *context, ImportDone done);

    //! Writes \a png as a pasted image into \a folder on a thread of its own,
    //! apart from the imports, and hands the result to \a done on \a context's
    //! thread. See writePastedImageNow().
    void writePastedImage(
        const QByteArray &png, const QString &folder, QObject *context, ImportDone done);

    //! Deletes the files of \a attachments below \a folder in the background,
    //! and each folder that this leaves empty, but never the attachments
    //! folder itself. Nothing outside \a folder is ever touched, whatever the
    //! records say. Failures are ignored.
    void removeFiles(const QList<NoteAttachment> &attachments, const QString &folder);

    //! Reports of copyFolder(), on the main thread.
    using CopyProgress = std::function<void(qint64 copiedBytes, qint64 totalBytes)>;
    using CopyCompletion = std::function<void(std::optional<QString> failure)>;

    //! Copies the attachment folder \a from into \a to in the background, a
    //! piece of each file at a time, keeping files already there and copying
    //! links as links (see mergeAttachmentFolder()). \a progress and
    //! \a completion run on the main thread unless \a context has gone.
    //! cancelCopies(), or raising \a cancelled, stops it as failed, with the
    //! target as it was.
    void copyFolder(const QString &from, const QString &to, QObject *context, CopyProgress progress,
        CopyCompletion completion, std::shared_ptr<const std::atomic_bool> cancelled = {});

    //! Before a move of the library, ahead of its copy: records the move in
    //! the background (see writeLibraryMoveJournal()), so that a start after
    //! a crash finishes or undoes it.
    void beginLibraryMove(const QString &oldLibrary, const QString &newLibrary);
    //! After a move, in the background: runs \a settle, which makes the new
    //! place the one the next start uses, then removes the file at \a oldLibrary
    //! and its attachment folder, unless they are the same as those of
    //! \a newLibrary, and last the record of the move.
    void removeMovedLibrary(
        const QString &oldLibrary, const QString &newLibrary, std::function<void()> settle);
    //! After a move that failed, in the background: removes the record of the move.
    void endLibraryMove();

    //! At a start, in the background: removes the folders below \a folder
    //! that an import makes (named by an id) and no note of \a library refers
    //! to, such as those of an import cut short by a crash, or finished but
    //! never saved. Other files and folders stay.
    void removeUnreferencedFolders(const Library &library, const QString &folder);
    //! The same, on the calling thread; returns the names of the folders removed.
    static QStringList removeUnreferencedFoldersNow(const Library &library, const QString &folder);

    //! Blocks until the jobs queued so far are done.
    void waitForIdle();

    //! For the end of the program, without waiting: an import or a folder
    //! copy under way stops at its next piece and removes what it made, and
    //! every one asked for later fails.
    void cancelCopies();
    //! cancelCopies(), then returns once the worker is idle. Nothing is left
    //! half copied.
    void stopImports();

    using RemovalObserver = std::function<void(const QStringList &files)>;
    //! After each removal, \a observer hears on \a context's thread which files
    //! went, by the paths that pathInside() gives, unless \a context is gone.
    void observeRemovals(QObject *context, RemovalObserver observer);

    //! The import itself, on the calling thread: each regular file of \a
    //! sources is copied, a piece at a time, into a new folder of its own
    //! below \a folder, under its own name; folders among the sources are
    //! skipped. All or nothing: on the first failure every folder made by
    //! this call is removed again and the error is the result. Setting \a
    //! cancelled stops it between pieces as a failure.
    static ImportResult importFilesNow(const QList<QUrl> &sources, const QString &folder,
        const std::atomic_bool *cancelled = nullptr);

    //! Writing a pasted image, on the calling thread: a new folder below \a
    //! folder holding \a png as "Pasted Image.png", written atomically.
    static ImportResult writePastedImageNow(const QByteArray &png, const QString &folder);

    //! The MIME type found for a file name's extension, or nothing when the
    //! name has no extension or no type is known for it.
    static std::optional<QString> contentTypeForFileName(const QString &fileName);
    //! Image when \a contentType is an image type, else file.
    static NoteAttachment::Kind kindOfContentType(const std::optional<QString> &contentType);

    //! The file of \a storedFileName below \a folder, or nothing when the name
    //! leads outside the folder, by "..", or through a link to elsewhere.
    static std::optional<QString> fileInside(const QString &folder, const QString &storedFileName);
    //! The same test on the names alone, without touching the disk: for the
    //! main thread, which only reads files through other threads.
    static std::optional<QString> pathInside(const QString &folder, const QString &storedFileName);

private:
    struct Observer
    {
        QPointer<QObject> context;
        RemovalObserver observer;
    };

    std::unique_ptr<SerialQueue> m_queue;
    QList<Observer> m_removalObservers;
    //! Set when the store goes: an import still running stops between pieces.
    std::shared_ptr<std::atomic_bool> m_cancelled = std::make_shared<std::atomic_bool>(false);
};

} // namespace Vesko
