// SPDX-License-Identifier: GPL-3.0-or-later
//
// Moving the library to another folder. The attachments are copied on the
// importer's thread; the file is written on the writer's thread behind every
// save queued before, and read back there; only then does the Store go on
// with the file in its new place and let the old one go. The interface never
// waits for any of it, and the end is told by libraryMoveFinished().

#include "store/Store.h"

#include "attachments/AttachmentStore.h"
#include "library/LibraryFile.h"
#include "library/LibraryWriter.h"
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
    m_attachments.copyFolder(
        attachmentsFolder(current), attachmentsFolder(target), this,
        [this](qint64 copied, qint64 total) { Q_EMIT libraryMoveProgress(copied, total); },
        [this, current, target](std::optional<QString> failure) {
            if (failure)
                finishLibraryMove(*failure);
            else
                writeMovedLibrary(current, target);
        });
}

void Store::writeMovedLibrary(const QString &current, const QString &target)
{
    const quint64 revision = m_libraryRevision;
    m_writer.writeThenRead(m_library, target, this,
        [this, current, target, revision](std::optional<QString> failure, const Library &readBack) {
            if (failure)
                finishLibraryMove(*failure); // the old file stays in use
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

    if (!sameFile)
        m_attachments.removeMovedLibrary(current, target);
    finishLibraryMove(QString());
}

void Store::finishLibraryMove(const QString &failure)
{
    m_isMovingLibrary = false;
    Q_EMIT isMovingLibraryChanged();
    Q_EMIT libraryMoveFinished(failure);
}

} // namespace Vesko
