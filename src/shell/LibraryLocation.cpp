// SPDX-License-Identifier: GPL-3.0-or-later

#include "shell/LibraryLocation.h"

#include "library/LibraryFile.h"
#include "store/Store.h"

#include <QDir>

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
