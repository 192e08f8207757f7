// SPDX-License-Identifier: GPL-3.0-or-later

#include "library/LibraryFile.h"

#include "library/LibraryCoding.h"
#include "platform/FileSystem.h"
#include "platform/Logging.h"
#include "platform/SettingsFile.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QSettings>
#include <QStandardPaths>

#include <algorithm>

namespace Vesko {

namespace {

QString standardized(const QString &path)
{
    return QDir::cleanPath(QFileInfo(path).absoluteFilePath());
}

QString uuidText(const QUuid &id)
{
    return id.toString(QUuid::WithoutBraces).toUpper();
}

// A write follows a symbolic link to the file it names, so that a library
// linked into another folder stays linked there.
QString resolvedTarget(const QString &path)
{
    const QFileInfo info(path);
    if (info.isSymLink()) {
        const QString target = info.symLinkTarget();
        if (!target.isEmpty())
            return target;
    }
    return path;
}

// Removes the temporary files that an interrupted write left beside the library.
void removeStaleTemporaryFiles(const QString &path)
{
    const QFileInfo info(path);
    const QRegularExpression pattern(
        QStringLiteral("^\\.%1\\.[0-9A-Fa-f]{8}(-[0-9A-Fa-f]{4}){3}-[0-9A-Fa-f]{12}$")
            .arg(QRegularExpression::escape(info.fileName())));
    const QDir folder = info.absoluteDir();
    const QStringList names = folder.entryList(QDir::Files | QDir::Hidden | QDir::System);
    for (const QString &name : names) {
        if (pattern.match(name).hasMatch()) {
            qCInfo(lcStorage, "Removed the unfinished write %s",
                qUtf8Printable(folder.filePath(name)));
            QFile::remove(folder.filePath(name));
        }
    }
}

} // namespace

QString fileNameStamp(const QDateTime &date)
{
    return QString::fromLatin1(formatDocumentDate(date)).replace(u':', u'-');
}

QString defaultLibraryURL()
{
    const QString dataFolder
        = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    if (dataFolder.isEmpty())
        qFatal(
            "There is no folder for application data (XDG_DATA_HOME); cannot place the library.");
    return dataFolder + QStringLiteral("/Vesko/Library.json");
}

QString libraryURL()
{
    const QString chosen = openSettingsFile()->value(QStringLiteral("libraryPath")).toString();
    return chosen.isEmpty() ? defaultLibraryURL() : chosen;
}

QString attachmentsFolder(const QString &libraryPath)
{
    return QFileInfo(libraryPath).absoluteDir().filePath(QStringLiteral("Attachments"));
}

QString backupsFolder(const QString &libraryPath)
{
    return QFileInfo(libraryPath).absoluteDir().filePath(QStringLiteral("Library Backups"));
}

Library loadLibrary()
{
    return loadLibrary(libraryURL());
}

Library loadLibrary(const QString &path)
{
    if (!FileSystem::exists(path))
        return makeDefaultLibrary();

    removeStaleTemporaryFiles(path);

    QString error;
    QFile file(path);
    if (file.open(QIODevice::ReadOnly)) {
        QByteArray bytes = file.readAll();
        if (file.error() == QFileDevice::NoError) {
            if (std::optional<Library> library = decodeLibrary(bytes, &error))
                return *std::move(library);
        } else {
            error = file.errorString();
        }
    } else {
        error = file.errorString();
    }

    qCCritical(
        lcStorage, "Could not read library at %s: %s", qUtf8Printable(path), qUtf8Printable(error));
    setAsideUnreadableLibrary(path);
    return makeDefaultLibrary();
}

void setAsideUnreadableLibrary(const QString &path)
{
    const QString name
        = QStringLiteral("Library-unreadable-%1.json").arg(fileNameStamp(currentDate()));
    const QString target = QFileInfo(path).absoluteDir().filePath(name);
    if (auto error = FileSystem::renameWithoutReplacing(path, target))
        qCInfo(lcStorage, "Could not set the unreadable library aside: %s", qUtf8Printable(*error));
}

void backUpLibraryFile(const QString &path)
{
    if (!FileSystem::exists(path))
        return;

    const QString folder = backupsFolder(path);
    const QString name = QStringLiteral("Library-%1-%2.json")
                             .arg(fileNameStamp(currentDate()), uuidText(makeID()).left(6));
    FileSystem::makePath(folder);
    // The library file is only ever replaced by a rename, never changed in
    // place, so a second name for it is as good as a copy, and free.
    FileSystem::linkOrCopyKeepingDate(path, QDir(folder).filePath(name));

    // Every entry of the folder takes part, whatever its name; one whose date
    // cannot be read counts as the oldest.
    struct Entry
    {
        QString path;
        timespec modified;
    };
    std::vector<Entry> entries;
    const QDir dir(folder);
    const QStringList names
        = dir.entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QString &entryName : names) {
        const QString entryPath = dir.filePath(entryName);
        entries.push_back(
            {entryPath, FileSystem::modificationTime(entryPath).value_or(timespec {0, 0})});
    }
    std::stable_sort(entries.begin(), entries.end(), [](const Entry &a, const Entry &b) {
        if (a.modified.tv_sec != b.modified.tv_sec)
            return a.modified.tv_sec > b.modified.tv_sec;
        return a.modified.tv_nsec > b.modified.tv_nsec;
    });
    for (size_t i = libraryBackupCount; i < entries.size(); ++i) {
        const QFileInfo info(entries[i].path);
        if (info.isDir() && !info.isSymLink())
            QDir(entries[i].path).removeRecursively();
        else
            QFile::remove(entries[i].path);
    }
}

std::optional<QString> writeLibrary(const Library &library, const QString &path)
{
    const QString target = resolvedTarget(path);
    const QFileInfo info(target);
    const QString folder = info.absolutePath();

    if (auto error = FileSystem::makePath(folder))
        return error;

    backUpLibraryFile(target);

    // The document is encoded straight into the temporary file, a piece at a time.
    const QString temporary
        = QDir(folder).filePath(u'.' + info.fileName() + u'.' + uuidText(makeID()));
    if (auto error
        = FileSystem::writeNewFile(temporary, [&library](const FileSystem::ByteSink &sink) {
              return encodeLibrary(library, sink);
          })) {
        return error;
    }

    if (auto error = FileSystem::replaceFile(temporary, target)) {
        QFile::remove(temporary);
        return error;
    }
    return std::nullopt;
}

QString libraryMoveTarget(const QString &destination)
{
    if (QFileInfo(destination).isDir())
        return QDir(destination).filePath(QStringLiteral("Library.json"));
    return destination;
}

std::optional<QString> mergeAttachmentFolder(const QString &from, const QString &to)
{
    if (standardized(from) == standardized(to) || !QFileInfo(from).isDir())
        return std::nullopt;
    if (auto error = FileSystem::makePath(to))
        return error;

    const QDir source(from);
    const QFileInfoList entries = source.entryInfoList(
        QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QFileInfo &entry : entries) {
        const QString targetPath = QDir(to).filePath(entry.fileName());
        if (entry.isDir() && !entry.isSymLink()) {
            if (auto error = mergeAttachmentFolder(entry.absoluteFilePath(), targetPath))
                return error;
        } else if (!FileSystem::exists(targetPath)) {
            if (auto error = FileSystem::copyFileKeepingDate(entry.absoluteFilePath(), targetPath))
                return error;
        }
    }
    return std::nullopt;
}

void removeMovedLibrary(const QString &oldPath, const QString &newPath)
{
    if (standardized(oldPath) == standardized(newPath))
        return;
    QFile::remove(oldPath);
    const QString oldAttachments = attachmentsFolder(oldPath);
    if (standardized(oldAttachments) != standardized(attachmentsFolder(newPath)))
        QDir(oldAttachments).removeRecursively();
}

} // namespace Vesko
