// SPDX-License-Identifier: GPL-3.0-or-later
//
// The few file operations whose exact system calls matter for keeping data
// safe: durable writes, atomic replacement, private permissions and copies
// that keep their modification date. Failures come back as a readable text.

#pragma once

#include <QByteArray>
#include <QString>

#include <ctime>
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

//! Creates \a path, which must not exist yet, writes \a bytes to it and
//! flushes them to the disk. On failure the file is removed again.
std::optional<QString> writeNewFile(
    const QString &path, const QByteArray &bytes, unsigned mode = privateFileMode);

//! Renames \a from over \a to in one step and flushes the directory entry.
std::optional<QString> replaceFile(const QString &from, const QString &to);

//! Renames \a from to \a to only if nothing exists at \a to.
std::optional<QString> renameWithoutReplacing(const QString &from, const QString &to);

//! Copies a file; the copy is private and carries the source's modification date.
std::optional<QString> copyFileKeepingDate(const QString &from, const QString &to);

//! The modification time of \a path, to the nanosecond, or nothing if it cannot be read.
std::optional<timespec> modificationTime(const QString &path);

//! Flushes a directory's entries to the disk, so that a rename in it survives a crash.
void syncDirectory(const QString &path);

bool exists(const QString &path);

} // namespace Vesko::FileSystem
