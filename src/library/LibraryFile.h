// SPDX-License-Identifier: GPL-3.0-or-later
//
// The library on disk: where the file lies, how it is read at start, how an
// unreadable file is set aside, how every write first keeps a backup of what
// is there and then replaces the file atomically, and the file-level steps of
// moving the library to another folder.
//
// The folder of the library file holds:
//   Library.json                       the document (or the user's chosen name)
//   Attachments/                       the attachment files
//   Library Backups/                   the last five states of the file
//   Library-unreadable-<stamp>.json    files that could not be read
//   .Library.json.<UUID>               the temporary file of a write in progress

#pragma once

#include "library/Library.h"

#include <QString>

#include <functional>
#include <optional>

namespace Vesko {

struct EncodedSections;

//! The number of backups kept in "Library Backups".
inline constexpr int libraryBackupCount = 5;

//! The library file's absolute path: the preference libraryPath when it is
//! set and not empty, else defaultLibraryURL(). Worked out at each call.
QString libraryURL();

//! "Vesko/Library.json" in the user's data folder ($XDG_DATA_HOME).
QString defaultLibraryURL();

//! "Attachments" beside the library file at \a libraryPath.
QString attachmentsFolder(const QString &libraryPath);

//! "Library Backups" beside the library file at \a libraryPath.
QString backupsFolder(const QString &libraryPath);

//! What a load found when the library file could not be read.
struct UnreadableLibrary
{
    //! Where the file lies now: set aside, or still in its place when it
    //! could not be moved.
    QString path;
    //! The file could be set aside under a name of its own.
    bool isSetAside = false;
    //! Why it could not be read.
    QString reason;
    //! The entries of "Library Backups" as the load found them, newest first:
    //! the states of the library before the file became unreadable.
    QStringList backups;

    bool operator==(const UnreadableLibrary &) const = default;
};

//! Reads the library at libraryURL(). A missing file gives a new library and
//! writes nothing; an unreadable one is logged, set aside and replaced by a
//! new library, and what the load found is told in \a unreadable, when given,
//! and noted beside the library (see unreadableLibraryNoteFile()). Without a
//! new failure, \a unreadable tells what an earlier start noted and the user
//! has not acted on yet. Temporary files left by an interrupted write are removed.
Library loadLibrary();
Library loadLibrary(const QString &path, std::optional<UnreadableLibrary> *unreadable = nullptr);

//! Reads and decodes the library file at \a path, and nothing else: a
//! failure is returned in \a error, the file stays as it is.
std::optional<Library> readLibraryFile(const QString &path, QString *error);

//! Moves an unreadable file to "Library-unreadable-<stamp>.json" beside it
//! and returns its new path. Never overwrites; a failure leaves the file
//! where it is and returns nothing.
std::optional<QString> setAsideUnreadableLibrary(const QString &path);

//! ".<library file name>.unreadable" beside the library file at \a path: what
//! a start found unreadable there, kept until the user restores or dismisses it.
QString unreadableLibraryNoteFile(const QString &path);

//! What the note beside the library at \a path tells, without the backups
//! that are gone since; nothing when there is no note, it cannot be read, or
//! neither the set-aside file nor any of its backups is left.
std::optional<UnreadableLibrary> readUnreadableLibraryNote(const QString &path);

//! Notes \a unreadable beside the library at \a path, replacing an earlier
//! note in one step; nothing removes the note. Returns the failure text.
std::optional<QString> writeUnreadableLibraryNote(
    const QString &path, const std::optional<UnreadableLibrary> &unreadable);

//! The entries of "Library Backups" beside the library file at \a path,
//! whatever their names, newest first by modification date; an entry whose
//! date cannot be read comes last.
QStringList libraryBackups(const QString &path);

//! Copies the file at \a path into "Library Backups", a private copy (0600)
//! keeping its date, unless the newest backup has the file's size and date
//! already, and keeps the newest five entries of that folder. The entries
//! named in \a kept are never removed and do not count among the five.
//! Never fails.
void backUpLibraryFile(const QString &path, const QStringList &kept = {});

//! Writes \a library to \a path: backup (keeping \a keptBackups, see
//! backUpLibraryFile()), encode, a private temporary file beside the target
//! flushed to disk, then an atomic rename over the target. Returns the
//! failure text; the old file is untouched on failure. With \a encoded, the
//! notes that did not change since its last encoding are not encoded again
//! (see EncodedSections).
std::optional<QString> writeLibrary(const Library &library, const QString &path,
    const QStringList &keptBackups = {}, EncodedSections *encoded = nullptr);

//! The library file that a move to \a destination writes: "Library.json" in
//! it when it is a folder, else \a destination itself.
QString libraryMoveTarget(const QString &destination);

//! Whether two paths lead to the same place once symbolic links are resolved;
//! either may not exist yet.
bool isSameLocation(const QString &first, const QString &second);
//! Where \a path leads once every symbolic link on the way is resolved; a
//! path that does not exist yet resolves through the part of it that does.
QString canonicalLocation(const QString &path);

//! Why the library at \a current cannot move to the file \a target, or
//! nothing: a target inside the library's own Attachments folder would copy
//! that folder into itself without end.
std::optional<QString> libraryMoveRefusal(const QString &current, const QString &target);

//! The bytes of the files below \a folder; links are not followed.
qint64 folderSize(const QString &folder);

//! Copies the attachment folder \a from into \a to, recursively, keeping any
//! file that is already there. Files go a piece at a time, each piece
//! reported to \a progress (which may cancel by returning false); a symbolic
//! link is copied as a link, never followed. Nothing happens when both are
//! the same folder or \a from does not exist; a target inside the source is
//! refused. A copy that fails or is cancelled removes again every file and
//! folder it made, and leaves what was there before.
std::optional<QString> mergeAttachmentFolder(
    const QString &from, const QString &to, const std::function<bool(qint64)> &progress = {});

//! After a move from \a oldPath to \a newPath has been written: removes the
//! old file, and the old attachment folder if it is another folder. Nothing
//! is removed when both paths lead to the same file. Failures are ignored.
void removeMovedLibrary(const QString &oldPath, const QString &newPath);

//! The record of a library move under way, in rescueFolder(): written before
//! the first byte is copied, removed once the old library is gone, so that a
//! start after a crash can finish or undo a move that was cut short.
QString libraryMoveJournalPath();

//! Records a move from \a from to \a to, and which of the new library file
//! and attachment folder the move makes (those that do not exist yet).
std::optional<QString> writeLibraryMoveJournal(const QString &from, const QString &to);

//! Removes the record once the move has fully ended.
void removeLibraryMoveJournal();

//! At a start: ends a move that a crash cut short, given the library file
//! that the settings name. When that is the move's new file, the move had
//! been taken over: the old library goes, as after every move. Otherwise the
//! old file is still the one in use: what the move made at the new place goes.
//! Returns whether there was a move to end.
bool finishInterruptedLibraryMove(const QString &libraryInUse);

//! "Vesko" in the user's state folder ($XDG_STATE_HOME, else ~/.local/state),
//! where a library that could not be saved at the end is rescued.
QString rescueFolder();

//! Writes \a library to a new private file "Library-unsaved-<stamp>.json" in
//! rescueFolder(): the last resort when the library file cannot be written at
//! the end. Returns the rescue file's path, or an empty path with \a failure set.
QString writeRescueFile(const Library &library, QString *failure);

//! The time stamp used in backup and set-aside names: "2026-03-14T09-26-53Z".
QString fileNameStamp(const QDateTime &date);

} // namespace Vesko
