// SPDX-License-Identifier: GPL-3.0-or-later

#include "library/LibraryFile.h"

#include "library/LibraryCoding.h"
#include "platform/FileSystem.h"
#include "platform/Logging.h"
#include "platform/SettingsFile.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QSettings>
#include <QStandardPaths>
#include <QUuid>

#include <algorithm>

namespace Vesko {

namespace {

// Whether \a path is \a folder or lies below it.
bool isWithin(const QString &path, const QString &folder)
{
    return path == folder || path.startsWith(folder.endsWith(u'/') ? folder : folder + u'/');
}

// Makes the folder \a path with the folders on its way, noting in \a made
// those that did not exist, outermost first.
std::optional<QString> makeNotedPath(const QString &path, QStringList &made)
{
    QStringList missing;
    for (QString folder = QDir::cleanPath(path); !FileSystem::exists(folder);) {
        missing.prepend(folder);
        const QString parent = QFileInfo(folder).path();
        if (parent == folder)
            break;
        folder = parent;
    }
    if (auto error = FileSystem::makePath(path))
        return error;
    made.append(missing);
    return std::nullopt;
}

// The copy of one folder's entries into another; directories are entered,
// links copied as links, files copied a piece at a time. Whatever it makes
// is noted in \a made, in the order it was made.
std::optional<QString> copyFolderEntries(const QString &from, const QString &to,
    const std::function<bool(qint64)> &progress, QStringList &made)
{
    if (auto error = makeNotedPath(to, made))
        return error;
    const QDir source(from);
    const QStringList names
        = source.entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QString &name : names) {
        const QString sourcePath = source.filePath(name);
        const QString targetPath = QDir(to).filePath(name);
        // Asked before each entry too, so that links and empty files stop it as well.
        if (progress && !progress(0))
            return QObject::tr("The copy of “%1” was cancelled.").arg(from);
        const QFileInfo entry(sourcePath);
        if (entry.isSymLink()) {
            // A link is copied as the link it is: what it points to is not an attachment.
            if (!FileSystem::exists(targetPath)) {
                if (auto error = FileSystem::copySymbolicLink(sourcePath, targetPath))
                    return error;
                made.append(targetPath);
            }
        } else if (entry.isDir()) {
            if (auto error = copyFolderEntries(sourcePath, targetPath, progress, made))
                return error;
        } else if (!entry.isFile()) {
            // A pipe, socket or device is no attachment, and no copy of one is made.
            qCInfo(lcStorage, "Left out of the move: %s is not a file", qUtf8Printable(sourcePath));
        } else if (!FileSystem::exists(targetPath)) {
            FileSystem::CopyOptions options;
            options.followsLinks = false;
            options.progress = progress;
            if (auto error = FileSystem::copyFileKeepingDate(sourcePath, targetPath, options))
                return error;
            made.append(targetPath);
        }
    }
    return std::nullopt;
}

// Takes back what a copy made, newest first: its files and links, and its
// folders once they are empty. What was there before is never touched.
void removeMadeEntries(const QStringList &made)
{
    for (auto entry = made.crbegin(); entry != made.crend(); ++entry) {
        const QFileInfo info(*entry);
        if (info.isDir() && !info.isSymLink())
            QDir().rmdir(*entry);
        else
            QFile::remove(*entry);
    }
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
    const QString chosen = settingValue(QStringLiteral("libraryPath")).toString();
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

std::optional<Library> readLibraryFile(const QString &path, QString *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = file.errorString();
        return std::nullopt;
    }
    // The bytes go into a buffer with room for the parser's padding behind
    // them, so that a large file is parsed where it lies, not copied first.
    const qint64 expected = file.size();
    QByteArray bytes;
    bytes.reserve(expected + libraryParsePadding);
    bytes.resize(expected);
    qsizetype length = 0;
    while (length < expected) {
        const qint64 read = file.read(bytes.data() + length, expected - length);
        if (read < 0) {
            *error = file.errorString();
            return std::nullopt;
        }
        if (read == 0)
            break;
        length += qsizetype(read);
    }
    bytes.resize(length);
    // A file that grew while it was read: the rest comes behind.
    const QByteArray rest = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        *error = file.errorString();
        return std::nullopt;
    }
    if (!rest.isEmpty()) {
        bytes.reserve(length + rest.size() + libraryParsePadding);
        bytes.append(rest);
    }
    // Editors on some systems start a UTF-8 file with a byte-order mark;
    // it is no part of the document, and the next save leaves it out.
    if (bytes.startsWith("\xEF\xBB\xBF"))
        bytes.remove(0, 3);
    return decodeLibrary(std::move(bytes), error);
}

Library loadLibrary(const QString &path, std::optional<UnreadableLibrary> *unreadable)
{
    if (!FileSystem::exists(path)) {
        // Set aside at an earlier start that ended before its first save.
        if (unreadable)
            *unreadable = readUnreadableLibraryNote(path);
        return makeDefaultLibrary();
    }

    removeStaleTemporaryFiles(path);

    QString error;
    if (std::optional<Library> library = readLibraryFile(path, &error)) {
        // An earlier start may have found the file unreadable, and the user
        // quit before acting on it: the news and its backups still stand.
        if (unreadable)
            *unreadable = readUnreadableLibraryNote(path);
        return *std::move(library);
    }

    qCCritical(
        lcStorage, "Could not read library at %s: %s", qUtf8Printable(path), qUtf8Printable(error));
    const std::optional<QString> setAside = setAsideUnreadableLibrary(path);
    // The backups kept for an earlier unreadable file are still in the
    // folder, so the listing holds them too.
    const UnreadableLibrary found {
        setAside.value_or(path), setAside.has_value(), error, libraryBackups(path)};
    // Noted at once, before any save can rotate a backup away: the news
    // must outlast this run when the user quits without acting on it.
    if (auto failure = writeUnreadableLibraryNote(path, found))
        qCWarning(lcStorage, "Could not note the unreadable library: %s", qUtf8Printable(*failure));
    if (unreadable)
        *unreadable = found;
    return makeDefaultLibrary();
}

std::optional<QString> setAsideUnreadableLibrary(const QString &path)
{
    const QString name
        = QStringLiteral("Library-unreadable-%1.json").arg(fileNameStamp(currentDate()));
    const QString target = QFileInfo(path).absoluteDir().filePath(name);
    if (auto error = FileSystem::renameWithoutReplacing(path, target)) {
        qCInfo(lcStorage, "Could not set the unreadable library aside: %s", qUtf8Printable(*error));
        return std::nullopt;
    }
    return target;
}

namespace {

struct BackupEntry
{
    QString path;
    timespec modified;
};

// Every entry of the folder takes part, whatever its name; one whose date
// cannot be read counts as the oldest. Newest first.
std::vector<BackupEntry> listBackupEntries(const QString &folder)
{
    std::vector<BackupEntry> entries;
    const QDir dir(folder);
    const QStringList names
        = dir.entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QString &entryName : names) {
        const QString entryPath = dir.filePath(entryName);
        entries.push_back(
            {entryPath, FileSystem::modificationTime(entryPath).value_or(timespec {0, 0})});
    }
    std::stable_sort(
        entries.begin(), entries.end(), [](const BackupEntry &a, const BackupEntry &b) {
            if (a.modified.tv_sec != b.modified.tv_sec)
                return a.modified.tv_sec > b.modified.tv_sec;
            return a.modified.tv_nsec > b.modified.tv_nsec;
        });
    return entries;
}

} // namespace

QString unreadableLibraryNoteFile(const QString &path)
{
    const QFileInfo info(path);
    return info.absoluteDir().filePath(u'.' + info.fileName() + QStringLiteral(".unreadable"));
}

// The note names files, not paths: the set-aside file lies beside the
// library, the backups in its "Library Backups", wherever the folder is.
std::optional<UnreadableLibrary> readUnreadableLibraryNote(const QString &path)
{
    QFile file(unreadableLibraryNoteFile(path));
    if (!file.exists())
        return std::nullopt;
    if (!file.open(QIODevice::ReadOnly)) {
        qCWarning(lcStorage, "Could not read %s: %s", qUtf8Printable(file.fileName()),
            qUtf8Printable(file.errorString()));
        return std::nullopt;
    }
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &parseError);
    const QJsonObject note = document.object();
    const QString setAsideName = note.value(u"setAside").toString();
    if (document.isNull() || setAsideName.isEmpty() || setAsideName.contains(u'/')) {
        qCWarning(lcStorage, "Could not read %s: %s", qUtf8Printable(file.fileName()),
            qUtf8Printable(parseError.errorString()));
        return std::nullopt;
    }

    const QDir folder = QFileInfo(path).absoluteDir();
    const QDir backups(backupsFolder(path));
    UnreadableLibrary unreadable;
    unreadable.path = folder.filePath(setAsideName);
    unreadable.isSetAside = note.value(u"isSetAside").toBool();
    unreadable.reason = note.value(u"reason").toString();
    const QJsonArray names = note.value(u"backups").toArray();
    for (const QJsonValue &name : names) {
        // One the user deleted by hand is no longer there to keep or restore.
        const QString backup = backups.filePath(name.toString());
        if (!name.toString().isEmpty() && !name.toString().contains(u'/')
            && FileSystem::exists(backup))
            unreadable.backups.append(backup);
    }
    if (unreadable.backups.isEmpty() && !FileSystem::exists(unreadable.path))
        return std::nullopt;
    return unreadable;
}

std::optional<QString> writeUnreadableLibraryNote(
    const QString &path, const std::optional<UnreadableLibrary> &unreadable)
{
    const QString noteFile = unreadableLibraryNoteFile(path);
    if (!unreadable) {
        if (!FileSystem::exists(noteFile) || QFile::remove(noteFile))
            return std::nullopt;
        return FileSystem::lastErrorText();
    }
    QJsonArray backups;
    for (const QString &backup : unreadable->backups)
        backups.append(QFileInfo(backup).fileName());
    const QJsonObject note {
        {QStringLiteral("setAside"), QFileInfo(unreadable->path).fileName()},
        {QStringLiteral("isSetAside"), unreadable->isSetAside},
        {QStringLiteral("reason"), unreadable->reason},
        {QStringLiteral("backups"), backups},
    };
    const QString temporary = noteFile + u'.' + QUuid::createUuid().toString(QUuid::WithoutBraces);
    if (auto failure = FileSystem::writeNewFile(temporary, QJsonDocument(note).toJson()))
        return failure;
    if (auto failure = FileSystem::replaceFile(temporary, noteFile)) {
        QFile::remove(temporary);
        return failure;
    }
    return std::nullopt;
}

QStringList libraryBackups(const QString &path)
{
    QStringList paths;
    for (const BackupEntry &entry : listBackupEntries(backupsFolder(path)))
        paths.append(entry.path);
    return paths;
}

void backUpLibraryFile(const QString &path, const QStringList &kept)
{
    if (!FileSystem::exists(path))
        return;

    const QString folder = backupsFolder(path);
    std::vector<BackupEntry> entries = listBackupEntries(folder);

    // A backup carries the date of the file it copies: when the newest one has
    // the file's size and date, this content is kept already. A write that
    // failed, and the retries after it, leave the file as it was, and each
    // would otherwise push a distinct older backup out for another copy of it.
    const std::optional<timespec> modified = FileSystem::modificationTime(path);
    const bool keptAlready = modified && !entries.empty()
        && entries.front().modified.tv_sec == modified->tv_sec
        && entries.front().modified.tv_nsec == modified->tv_nsec
        && QFileInfo(entries.front().path).size() == QFileInfo(path).size();
    if (!keptAlready) {
        const QString name = QStringLiteral("Library-%1-%2.json")
                                 .arg(fileNameStamp(currentDate()), uuidText(makeID()).left(6));
        FileSystem::makePath(folder);
        // A copy of its own, private whatever the file's permissions, dated by
        // the save that produced its content. It need not reach the disk
        // before the write goes on: the write itself is flushed.
        FileSystem::CopyOptions options;
        options.durability = FileSystem::Durability::Cached;
        FileSystem::copyFileKeepingDate(path, QDir(folder).filePath(name), options);
        entries = listBackupEntries(folder);
    }

    // Kept entries stand apart: they neither go nor push others out.
    std::erase_if(entries, [&kept](const BackupEntry &entry) { return kept.contains(entry.path); });
    for (size_t i = libraryBackupCount; i < entries.size(); ++i) {
        const QFileInfo info(entries[i].path);
        if (info.isDir() && !info.isSymLink())
            QDir(entries[i].path).removeRecursively();
        else
            QFile::remove(entries[i].path);
    }
}

std::optional<QString> writeLibrary(const Library &library, const QString &path,
    const QStringList &keptBackups, EncodedSections *encoded)
{
    const QString target = resolvedTarget(path);
    const QFileInfo info(target);
    const QString folder = info.absolutePath();

    if (auto error = FileSystem::makePath(folder))
        return error;

    backUpLibraryFile(target, keptBackups);

    // The document is encoded straight into the temporary file, a piece at a time.
    const QString temporary
        = QDir(folder).filePath(u'.' + info.fileName() + u'.' + uuidText(makeID()));
    if (auto error = FileSystem::writeNewFile(
            temporary, [&library, encoded](const FileSystem::ByteSink &sink) {
                return encodeLibrary(library, sink, encoded);
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

QString rescueFolder()
{
    QString state = qEnvironmentVariable("XDG_STATE_HOME");
    if (state.isEmpty() || !QDir::isAbsolutePath(state))
        state = QDir::homePath() + QStringLiteral("/.local/state");
    return state + QStringLiteral("/Vesko");
}

QString writeRescueFile(const Library &library, QString *failure)
{
    const QString folder = rescueFolder();
    if (auto error = FileSystem::makePath(folder)) {
        *failure = *error;
        return {};
    }
    // A name of its own: an earlier rescue of the same second is never replaced.
    const QString stamp = fileNameStamp(currentDate());
    QString path = QDir(folder).filePath(QStringLiteral("Library-unsaved-%1.json").arg(stamp));
    if (FileSystem::exists(path)) {
        path = QDir(folder).filePath(
            QStringLiteral("Library-unsaved-%1-%2.json").arg(stamp, uuidText(makeID()).left(6)));
    }
    if (auto error = FileSystem::writeNewFile(path, [&library](const FileSystem::ByteSink &sink) {
            return encodeLibrary(library, sink);
        })) {
        *failure = *error;
        return {};
    }
    FileSystem::syncDirectory(folder);
    return path;
}

QString canonicalLocation(const QString &path)
{
    const QString clean = QDir::cleanPath(QFileInfo(path).absoluteFilePath());
    const QString canonical = QFileInfo(clean).canonicalFilePath();
    if (!canonical.isEmpty())
        return canonical;
    const qsizetype slash = clean.lastIndexOf(u'/');
    if (slash <= 0)
        return clean;
    return canonicalLocation(clean.left(slash)) + clean.mid(slash);
}

bool isSameLocation(const QString &first, const QString &second)
{
    return canonicalLocation(first) == canonicalLocation(second);
}

std::optional<QString> libraryMoveRefusal(const QString &current, const QString &target)
{
    const QString attachments = canonicalLocation(attachmentsFolder(current));
    if (isWithin(canonicalLocation(QFileInfo(target).absolutePath()), attachments)) {
        return QObject::tr("The library cannot move into its own Attachments folder “%1”. "
                           "Choose a folder outside it.")
            .arg(attachmentsFolder(current));
    }
    return std::nullopt;
}

qint64 folderSize(const QString &folder)
{
    qint64 total = 0;
    const QDir dir(folder);
    const QFileInfoList entries
        = dir.entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QFileInfo &entry : entries) {
        if (entry.isSymLink())
            continue;
        if (entry.isDir())
            total += folderSize(entry.absoluteFilePath());
        else
            total += entry.size();
    }
    return total;
}

std::optional<QString> mergeAttachmentFolder(
    const QString &from, const QString &to, const std::function<bool(qint64)> &progress)
{
    if (isSameLocation(from, to) || !QFileInfo(from).isDir())
        return std::nullopt;
    // A target inside the source would receive its own copies without end.
    if (isWithin(canonicalLocation(to), canonicalLocation(from)))
        return QObject::tr("“%1” lies inside “%2”.").arg(to, from);
    // A copy that fails or is cancelled leaves the target as it found it: no
    // half of the attachments lies there, and files that were there stay.
    QStringList made;
    const std::optional<QString> failure = copyFolderEntries(from, to, progress, made);
    if (failure)
        removeMadeEntries(made);
    return failure;
}

void removeMovedLibrary(const QString &oldPath, const QString &newPath)
{
    if (isSameLocation(oldPath, newPath))
        return;
    const QString oldAttachments = attachmentsFolder(oldPath);
    const bool sharedAttachments = isSameLocation(oldAttachments, attachmentsFolder(newPath));
    QFile::remove(oldPath);
    if (!sharedAttachments)
        QDir(oldAttachments).removeRecursively();
}

QString libraryMoveJournalPath()
{
    return rescueFolder() + QStringLiteral("/LibraryMove.json");
}

std::optional<QString> writeLibraryMoveJournal(const QString &from, const QString &to)
{
    const QJsonObject journal {{QStringLiteral("from"), from}, {QStringLiteral("to"), to},
        {QStringLiteral("makesLibrary"), !QFileInfo::exists(to)},
        {QStringLiteral("makesAttachments"), !QFileInfo::exists(attachmentsFolder(to))}};
    if (auto error = FileSystem::makePath(rescueFolder()))
        return error;
    const QString path = libraryMoveJournalPath();
    const QString temporary = path + QStringLiteral(".new");
    QFile::remove(temporary);
    if (auto error = FileSystem::writeNewFile(temporary, QJsonDocument(journal).toJson()))
        return error;
    return FileSystem::replaceFile(temporary, path);
}

void removeLibraryMoveJournal()
{
    QFile::remove(libraryMoveJournalPath());
    FileSystem::syncDirectory(rescueFolder());
}

bool finishInterruptedLibraryMove(const QString &libraryInUse)
{
    QFile file(libraryMoveJournalPath());
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QJsonObject journal = QJsonDocument::fromJson(file.readAll()).object();
    file.close();
    const QString from = journal.value(QStringLiteral("from")).toString();
    const QString to = journal.value(QStringLiteral("to")).toString();
    if (!from.isEmpty() && !to.isEmpty() && !isSameLocation(from, to)) {
        if (isSameLocation(libraryInUse, to)) {
            qCInfo(lcStorage, "Finishing the move of the library from %s", qUtf8Printable(from));
            removeMovedLibrary(from, to);
        } else if (isSameLocation(libraryInUse, from)) {
            qCInfo(lcStorage, "Undoing the unfinished move of the library to %s",
                qUtf8Printable(to));
            if (journal.value(QStringLiteral("makesLibrary")).toBool())
                QFile::remove(to);
            removeStaleTemporaryFiles(to);
            const QString attachments = attachmentsFolder(to);
            if (journal.value(QStringLiteral("makesAttachments")).toBool()
                && !isSameLocation(attachments, attachmentsFolder(from)))
                QDir(attachments).removeRecursively();
        }
    }
    removeLibraryMoveJournal();
    return true;
}

} // namespace Vesko
