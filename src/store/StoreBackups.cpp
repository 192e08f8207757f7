// SPDX-License-Identifier: GPL-3.0-or-later
//
// A library file that could not be read at start: the Store keeps the news
// until the user acts on it, keeps the backups the load found out of the
// rotation meanwhile (after a restore, until the program ends), and restores
// the newest of them that reads as one change that can be undone. The note
// beside the library that carries the news to later starts goes when the
// user acts on it.

#include "store/Store.h"

#include "library/LibraryRepair.h"
#include "library/LibraryWriter.h"
#include "platform/Logging.h"

#include <QFileInfo>

namespace Vesko {

void Store::setUnreadableLibrary(const std::optional<UnreadableLibrary> &unreadable)
{
    if (unreadable == m_unreadable)
        return;
    // The news belongs to the library file it was found for, wherever the
    // library has moved since: that is where the note lies.
    if (unreadable && !m_unreadable)
        m_unreadableNotedAt = libraryFile();
    if (!unreadable && m_unreadable)
        m_writer.noteUnreadableLibrary(m_unreadableNotedAt, std::nullopt);
    m_unreadable = unreadable;
    m_restoreFailure.clear();
    // The saves of the new library would otherwise push the backups of the
    // old one out of the folder, five saves on.
    m_writer.keepBackups(m_unreadable ? m_unreadable->backups : QStringList());
    Q_EMIT unreadableLibraryChanged();
}

void Store::dismissUnreadableLibrary()
{
    setUnreadableLibrary(std::nullopt);
}

void Store::restoreLatestBackup()
{
    if (!m_unreadable || m_isRestoringBackup)
        return;
    if (m_unreadable->backups.isEmpty()) {
        m_restoreFailure = tr("There is no backup to restore.");
        Q_EMIT unreadableLibraryChanged();
        return;
    }
    m_isRestoringBackup = true;
    m_restoreFailure.clear();
    Q_EMIT unreadableLibraryChanged();
    // Read behind the saves already queued, off the main thread.
    m_writer.readFirstReadable(m_unreadable->backups, this,
        [this](std::optional<LibraryWriter::Found> found, const QString &failure) {
            m_isRestoringBackup = false;
            if (!m_unreadable) {
                // Dismissed while it was read: the user no longer wants it.
                Q_EMIT unreadableLibraryChanged();
                return;
            }
            if (!found) {
                qCCritical(lcStorage, "No backup could be read: %s", qUtf8Printable(failure));
                m_restoreFailure = tr("No backup could be read.");
                Q_EMIT unreadableLibraryChanged();
                return;
            }
            qCInfo(lcStorage, "Restoring the library from %s", qUtf8Printable(found->path));
            Library restored = std::move(found->library);
            repairLibrary(restored);
            recordUndo();
            setLibrary(restored);
            setEditingNoteID(std::nullopt);
            setSelection({}, std::nullopt);
            clearSearchText();
            commit();
            // The line goes, but the backups stay kept for the rest of the
            // run: the saves of the library just replaced must not push the
            // user's older states out either.
            m_unreadable.reset();
            m_writer.noteUnreadableLibrary(m_unreadableNotedAt, std::nullopt);
            Q_EMIT unreadableLibraryChanged();
        });
}

} // namespace Vesko
