// SPDX-License-Identifier: GPL-3.0-or-later
//
// Moving the library to another folder. The attachments are copied on the
// importer's thread; the file is written on the writer's thread behind every
// save queued before, and read back there; only then does the Store go on
// with the file in its new place and let the old one go. The interface never
// waits for any of it, and the end is told by libraryMoveFinished(). New
// attachment files wait for the end, so that none lands in the old folder
// after its copy. A record of the move, kept until the old library is gone,
// lets the next start finish or undo a move that a crash cut short.

#include "store/Store.h"

#include "attachments/AttachmentStore.h"
#include "library/LibraryFile.h"
#include "library/LibraryWriter.h"
#include "platform/SettingsFile.h"
#include "shell/Preferences.h"

#include <QThread>

namespace Vesko {

void Store::moveLibrary(const QString &destination)
{
    Q_ASSERT(QThread::currentThread() == thread());
    auto refuse = [this](const QString &failure) {
        // Told once the call has returned, like every other end of a move.
        QMetaObject::invokeMethod(
            this, [this, failure] { Q_EMIT libraryMoveFinished(failure); }, Qt::QueuedConnection);
    };
    if (m_isMovingLibrary) {
        refuse(tr("The library is already being moved."));
        return;
    }
    const QString current = libraryFile();
    const QString target = libraryMoveTarget(destination);
    if (const std::optional<QString> refusal = libraryMoveRefusal(current, target)) {
        refuse(*refusal);
        return;
    }

    m_isMovingLibrary = true;
    Q_EMIT isMovingLibraryChanged();
    m_moveCancelled = std::make_shared<std::atomic_bool>(false);
    m_attachments.beginLibraryMove(current, target);
    m_attachments.copyFolder(
        attachmentsFolder(current), attachmentsFolder(target), this,
        [this](qint64 copied, qint64 total) { Q_EMIT libraryMoveProgress(copied, total); },
        [this, current, target, cancelled = m_moveCancelled](std::optional<QString> failure) {
            if (failure) {
                m_attachments.endLibraryMove();
                finishLibraryMove(cancelled->load() ? tr("The move was cancelled.") : *failure);
            }
            else
                writeMovedLibrary(current, target);
        },
        m_moveCancelled);
}

void Store::cancelLibraryMove()
{
    if (m_isMovingLibrary && m_moveCancelled)
        m_moveCancelled->store(true);
}

void Store::writeMovedLibrary(const QString &current, const QString &target)
{
    // From here on the move is no longer cancelled: the file is on its way.
    m_moveCancelled.reset();
    const quint64 revision = m_libraryRevision;
    m_writer.writeThenRead(m_library, target, this,
        [this, current, target, revision](std::optional<QString> failure, const Library &readBack) {
            if (failure) {
                m_attachments.endLibraryMove();
                finishLibraryMove(*failure); // the old file stays in use
            }
            else
                adoptMovedLibrary(current, target, readBack, revision);
        });
}

void Store::adoptMovedLibrary(
    const QString &current, const QString &target, const Library &readBack, quint64 revision)
{
    // A destination that leads to the file in use, through a link say, is no
    // move: the file was written again, and nothing is given up.
    const bool sameFile = isSameLocation(current, target);
    if (!sameFile)
        m_preferences.setLibraryPath(target);

    // The file holds what was written, after every save queued before it. A
    // change made while it was written is newer still: it stays, and is saved
    // to the new place.
    const bool changedMeanwhile = revision != m_libraryRevision;
    if (!changedMeanwhile)
        setLibrary(readBack);
    setSelectionSet({});
    clearSearchText();
    if (changedMeanwhile)
        commit();
    else
        refreshAfterMutation();

    if (sameFile) {
        m_attachments.endLibraryMove();
    } else {
        // Every setting goes to the file through the one writer, the library's path too.
        m_attachments.removeMovedLibrary(
            current, target, [] { SettingsWriter::shared().flush(); });
    }
    finishLibraryMove(QString());
}

void Store::finishLibraryMove(const QString &failure)
{
    m_isMovingLibrary = false;
    Q_EMIT isMovingLibraryChanged();
    // What waited goes to the folder in use now: the new one, or after a
    // failure the old one, which stays.
    const QString folder = currentAttachmentsFolder();
    const auto waiting = std::exchange(m_jobsAfterMove, {});
    for (const auto &[context, job] : waiting) {
        if (context)
            job(folder);
    }
    Q_EMIT libraryMoveFinished(failure);
}

QString Store::currentAttachmentsFolder() const
{
    return attachmentsFolder(libraryFile());
}

void Store::whenAttachmentsFolderSettled(
    QObject *context, std::function<void(const QString &folder)> job)
{
    if (m_isMovingLibrary)
        m_jobsAfterMove.append({QPointer<QObject>(context), std::move(job)});
    else
        job(currentAttachmentsFolder());
}

} // namespace Vesko
