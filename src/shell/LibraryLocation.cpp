// SPDX-License-Identifier: GPL-3.0-or-later

#include "shell/LibraryLocation.h"

#include "library/LibraryFile.h"
#include "store/Store.h"

#include <QDir>
#include <QPointer>
#include <QTimer>

namespace Vesko::LibraryLocation {

namespace {

QString normalised(const QString &path)
{
    return QDir::cleanPath(QDir(path).absolutePath());
}

} // namespace

bool differsFromDefault(const QString &libraryPath)
{
    return normalised(libraryPath) != normalised(defaultLibraryURL());
}

void move(Store &store, const QString &destination, QObject *context, MoveFinished finished)
{
    // The move starts on the next turn of the event loop, so that the tab can
    // show its progress line first. The Store copies the attachments in the
    // background and tells the end.
    QPointer<Store> guardedStore(&store);
    QTimer::singleShot(0, context, [guardedStore, destination, context, finished] {
        if (!guardedStore)
            return;
        QObject::connect(
            guardedStore.data(), &Store::libraryMoveFinished, context,
            [finished](const QString &failure) {
                finished(failure.isEmpty() ? std::nullopt : std::optional<QString>(failure));
            },
            Qt::SingleShotConnection);
        guardedStore->moveLibrary(destination);
    });
}

qsizetype activeProjectNoteCount(const Store &store)
{
    qsizetype count = 0;
    for (const NoteSection &section : store.activeProject().sections)
        count += section.notes.size();
    return count;
}

qsizetype projectCount(const Store &store)
{
    return store.library().projects.size();
}

} // namespace Vesko::LibraryLocation
