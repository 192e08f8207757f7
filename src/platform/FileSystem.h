// SPDX-License-Identifier: GPL-3.0-or-later
//
// The few file operations whose exact system calls matter for keeping data
// safe: durable writes, atomic replacement, private permissions and copies
// that keep their modification date. Failures come back as a readable text.

#pragma once

#include <QByteArray>
#include <QString>

#include <ctime>
#include <functional>
#include <optional>

namespace Vesko::FileSystem {

//! Permissions of what Vesko keeps: only the user may read it.
inline constexpr unsigned privateDirectoryMode = 0700;
inline constexpr unsigned privateFileMode = 0600;

//! A failure text for the current errno, such as "Permission denied".
QString lastErrorText();

//! Creates \a path with its missing parents; the folders created are private.
//! Returns the failure text, or nothing on success and when it already exists.
std::optional<QString> makePath(const QString &path);

//! Whether a write waits until its bytes are on the disk.
enum class Durability { Flushed, Cached };

//! Creates \a path, which must not exist yet, writes \a bytes to it and, when
//! \a durability says so, flushes them to the disk. On failure the file is removed again.
std::optional<QString> writeNewFile(const QString &path, const QByteArray &bytes,
    Durability durability = Durability::Flushed, unsigned mode = privateFileMode);

//! Receives the bytes of a file being written; false stops the write as failed.
using ByteSink = std::function<bool(const char *data, qsizetype size)>;
//! Writes a file's bytes into the sink it is given; false when it failed.
using Producer = std::function<bool(const ByteSink &sink)>;

//! Like the other writeNewFile(), with the bytes made while the file is written.
std::optional<QString> writeNewFile(const QString &path, const Producer &produce,
    Durability durability = Durability::Flushed, unsigned mode = privateFileMode);

//! Renames \a from over \a to in one step and flushes the directory entry.
std::optional<QString> replaceFile(const QString &from, const QString &to);

//! Renames \a from to \a to only if nothing exists at \a to.
std::optional<QString> renameWithoutReplacing(const QString &from, const QString &to);

//! How copyFileKeepingDate() copies.
struct CopyOptions
{
    Durability durability = Durability::Flushed;
    //! Whether a source that is a symbolic link is copied as the file it
    //! names; without, such a source fails the copy.
    bool followsLinks = true;
    //! Called after each piece with the bytes of that piece; false cancels the copy.
    std::function<bool(qint64 bytes)> progress;
};

//! Copies a file a piece at a time; the copy is private and carries the
//! source's modification date. It appears under its name whole or not at all.
std::optional<QString> copyFileKeepingDate(
    const QString &from, const QString &to, const CopyOptions &options = {});

//! Makes \a to a symbolic link with the same target text as the link \a from.
std::optional<QString> copySymbolicLink(const QString &from, const QString &to);

//! Creates \a path if it is missing and makes it private (0600) either way.
std::optional<QString> makePrivateFile(const QString &path);

//! How copyFileInPieces() treats its source and its copy.
struct PieceCopyOptions
{
    //! A link as the source is refused rather than followed.
    bool followLinks = true;
    //! The copy carries the source's modification date.
    bool keepDate = false;
    Durability durability = Durability::Flushed;
    //! Asked before each piece; false stops the copy as failed.
    std::function<bool()> shouldContinue;
    //! Told after each piece how many bytes it held; false stops the copy as failed.
    std::function<bool(qint64 bytes)> progress;
};

//! Copies the regular file \a from to \a to, which must not exist yet, a
//! piece at a time, so that no file is ever held whole in memory whatever its
//! size; the holes of a sparse file stay holes. The copy is private. On
//! failure nothing is left at \a to.
std::optional<QString> copyFileInPieces(
    const QString &from, const QString &to, const PieceCopyOptions &options = {});

//! The modification time of \a path, to the nanosecond, or nothing if it cannot be read.
std::optional<timespec> modificationTime(const QString &path);

//! Flushes a directory's entries to the disk, so that a rename in it survives a crash.
void syncDirectory(const QString &path);

bool exists(const QString &path);

} // namespace Vesko::FileSystem
