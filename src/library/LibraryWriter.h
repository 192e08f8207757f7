// SPDX-License-Identifier: GPL-3.0-or-later
//
// Writes the library off the main thread, one write after the other in the
// order they were asked for, so that a later state is never overwritten by an
// earlier one. Each write receives its own copy of the library.

#pragma once

#include "library/Library.h"
#include "library/LibraryFile.h"

#include <QObject>

#include <functional>
#include <memory>
#include <optional>

namespace Vesko {

class SerialQueue;
struct EncodedSections;

class LibraryWriter
{
public:
    //! The failure text of a write, or nothing when it succeeded.
    using Completion = std::function<void(std::optional<QString> failure)>;

    LibraryWriter();
    ~LibraryWriter();

    //! The one writer of the process, made on first use and never destroyed.
    static LibraryWriter &shared();

    //! Queues a write of \a library to \a path. \a completion runs on the
    //! main thread once the write is done, unless \a context, an object of
    //! the main thread, is gone by then.
    void write(
        const Library &library, const QString &path, QObject *context, Completion completion);

    //! What a write that reads the file back gives: the failure text of the
    //! write or of the reading, or the library read from the file just written.
    using ReadBackCompletion
        = std::function<void(std::optional<QString> failure, const Library &readBack)>;

    //! Queues a write of \a library to \a path and, once it is done, reads the
    //! file back on the writer's thread: the library as it now stands on the
    //! disk, after every write queued before. \a completion runs as for write().
    void writeThenRead(const Library &library, const QString &path, QObject *context,
        ReadBackCompletion completion);

    //! Queues a write behind the ones already waiting and blocks until it is done.
    std::optional<QString> writeNow(const Library &library, const QString &path);

    //! From the writes queued after this call on, the backups at \a paths
    //! are kept whatever the rotation (see backUpLibraryFile()); an empty
    //! list lets them go again.
    void keepBackups(const QStringList &paths);

    //! Queues the note of an unreadable library beside the library file at
    //! \a libraryPath: written, or removed when \a unreadable is empty (see
    //! writeUnreadableLibraryNote()). A failure is logged.
    void noteUnreadableLibrary(
        const QString &libraryPath, const std::optional<UnreadableLibrary> &unreadable);

    //! A library read back from one of several files.
    struct Found
    {
        Library library;
        QString path;
    };
    //! What a search of files gives: the first that reads, or the failure text.
    using FindCompletion = std::function<void(std::optional<Found> found, const QString &failure)>;

    //! Reads \a paths in their order behind the writes already queued, and
    //! hands the first library that reads to \a completion, on the main thread
    //! unless \a context is gone by then.
    void readFirstReadable(const QStringList &paths, QObject *context, FindCompletion completion);

private:
    std::unique_ptr<SerialQueue> m_queue;
    //! The backups that writes keep; touched on the queue's thread only.
    std::shared_ptr<QStringList> m_keptBackups = std::make_shared<QStringList>();
    //! The notes as the last write encoded them, so that a write encodes only
    //! what changed since; touched on the queue's thread only.
    std::shared_ptr<EncodedSections> m_encoded;
};

} // namespace Vesko
