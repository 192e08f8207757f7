// SPDX-License-Identifier: GPL-3.0-or-later
//
// Small steps on real files that many tests take: writing and reading whole
// files, listing a folder's tree, a file's permission bits and its date.

#pragma once

#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTest>

#include <sys/stat.h>

namespace Vesko::Test {

//! Writes \a bytes to \a path, making its folders.
inline void writeFile(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    QVERIFY2(file.open(QIODevice::WriteOnly | QIODevice::Truncate), qPrintable(path));
    QCOMPARE(file.write(bytes), bytes.size());
}

//! The bytes of \a path, or none when it cannot be read.
inline QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

//! Every entry below \a folder as sorted relative paths, links not followed.
inline QStringList fileTree(const QString &folder)
{
    QStringList paths;
    QDirIterator it(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
        QDirIterator::Subdirectories);
    while (it.hasNext())
        paths.append(QDir(folder).relativeFilePath(it.next()));
    paths.sort();
    return paths;
}

//! The permission bits of \a path itself (a link's own), 0 when it is missing.
inline unsigned fileMode(const QString &path)
{
    struct stat info;
    if (::lstat(QFile::encodeName(path).constData(), &info) != 0)
        return 0;
    return info.st_mode & 07777;
}

//! Dates \a path, to order files such as backups without waiting.
inline void setModified(const QString &path, qint64 secondsSinceEpoch)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.setFileTime(QDateTime::fromSecsSinceEpoch(secondsSinceEpoch, Qt::UTC),
        QFileDevice::FileModificationTime));
}

} // namespace Vesko::Test
