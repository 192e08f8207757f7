// SPDX-License-Identifier: GPL-3.0-or-later

#include "attachments/AttachmentStore.h"

#include "library/LibraryFile.h"
#include "platform/FileSystem.h"
#include "platform/Logging.h"
#include "platform/SerialQueue.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QMimeDatabase>
#include <QPointer>
#include <QSet>
#include <QThreadPool>

#include <cerrno>
#include <sys/stat.h>

namespace Vesko {

namespace {

QString newFolderName()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
}

// Hands \a result to \a done on the main thread, if \a context still lives
// by then. The guard is only read there, never on the worker.
void answer(QPointer<QObject> context, AttachmentStore::ImportDone done, ImportResult result)
{
    if (!done)
        return;
    QMetaObject::invokeMethod(
        QCoreApplication::instance(),
        [context, done = std::move(done), result = std::move(result)] {
            if (context)
                done(result);
        },
        Qt::QueuedConnection);
}

ImportResult failure(const QString &error)
{
    return {{}, error};
}

// Makes the folder \a path below an existing one, private whatever the umask.
std::optional<QString> makeFolder(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    if (::mkdir(name.constData(), FileSystem::privateDirectoryMode) != 0)
        return QObject::tr("Could not create the folder “%1”: %2.")
            .arg(path, FileSystem::lastErrorText());
    ::chmod(name.constData(), FileSystem::privateDirectoryMode);
    return std::nullopt;
}

// The name a file is written under in its folder until it is whole: hidden,
// and never the file's own name.
QString partialNameBeside(const QString &fileName)
{
    const QString name = QStringLiteral(".partial");
    return fileName == name ? name + u'~' : name;
}

} // namespace

QString AttachmentStore::pastedImageName()
{
    return QStringLiteral("Pasted Image.png");
}

AttachmentStore::AttachmentStore()
    : m_queue(std::make_unique<SerialQueue>(
        QStringLiteral("com.vesko.vesko.attachment-importer"), QThread::HighPriority))
{ }

AttachmentStore::~AttachmentStore()
{
    m_cancelled->store(true);
}

AttachmentStore &AttachmentStore::shared()
{
    // The program never waits for a copy, except to end one cleanly when it
    // quits, after the library is written (Store::finishForQuit()).
    static AttachmentStore *const store = new AttachmentStore;
    return *store;
}

std::optional<QString> AttachmentStore::contentTypeForFileName(const QString &fileName)
{
    // The extension follows the last dot; a leading dot only marks a hidden file.
    const qsizetype dot = fileName.lastIndexOf(u'.');
    if (dot <= 0 || dot == fileName.size() - 1)
        return std::nullopt;
    // Only the last extension counts: the name is reduced to it, so that
    // patterns over whole names ("*.tar.gz", "CMakeLists.txt") do not apply.
    static const QMimeDatabase database;
    const QMimeType type = database.mimeTypeForFile(
        QStringLiteral("x") + fileName.mid(dot), QMimeDatabase::MatchExtension);
    // The database's answer for an unknown name is the generic type.
    if (!type.isValid() || type.isDefault() || type.name().startsWith(u"inode/"))
        return std::nullopt;
    return type.name();
}

NoteAttachment::Kind AttachmentStore::kindOfContentType(const std::optional<QString> &contentType)
{
    if (!contentType)
        return NoteAttachment::Kind::File;
    static const QMimeDatabase database;
    const QMimeType type = database.mimeTypeForName(*contentType);
    QStringList names {*contentType};
    if (type.isValid())
        names << type.name() << type.allAncestors();
    for (const QString &name : std::as_const(names)) {
        if (name.startsWith(u"image/"))
            return NoteAttachment::Kind::Image;
    }
    return NoteAttachment::Kind::File;
}

ImportResult AttachmentStore::importFilesNow(
    const QList<QUrl> &sources, const QString &folder, const std::atomic_bool *cancelled)
{
    if (auto error = FileSystem::makePath(folder))
        return failure(*error);

    QStringList madeFolders;
    auto undo = [&](const QString &error) {
        for (const QString &made : std::as_const(madeFolders))
            QDir(made).removeRecursively();
        return failure(error);
    };

    auto isCancelled = [cancelled] { return cancelled && cancelled->load(); };
    FileSystem::PieceCopyOptions options;
    if (cancelled)
        options.shouldContinue = [isCancelled] { return !isCancelled(); };

    ImportResult result;
    for (const QUrl &source : sources) {
        if (isCancelled())
            return undo(QObject::tr("The import was cancelled."));
        if (!source.isLocalFile())
            return undo(
                QObject::tr("“%1” is not a file on this computer.").arg(source.toDisplayString()));
        const QString path = source.toLocalFile();
        struct stat info;
        if (::stat(QFile::encodeName(path).constData(), &info) != 0)
            return undo(
                QObject::tr("Could not read “%1”: %2.").arg(path, FileSystem::lastErrorText()));
        if (!S_ISREG(info.st_mode))
            continue; // folders and other non-files are skipped without a word

        const QString id = newFolderName();
        const QString target = QDir(folder).filePath(id);
        if (auto error = makeFolder(target))
            return undo(*error);
        madeFolders.append(target);

        // The copy gets its name only once it is whole: a copy cut short (a
        // crash, a full disk) never lies under the file's own name.
        const QString fileName = QFileInfo(path).fileName();
        const QString partial = target + u'/' + partialNameBeside(fileName);
        if (auto error = FileSystem::copyFileInPieces(path, partial, options))
            return undo(*error);
        if (auto error = FileSystem::replaceFile(partial, target + u'/' + fileName))
            return undo(*error);

        NoteAttachment attachment;
        attachment.id = QUuid::fromString(id);
        attachment.fileName = fileName;
        attachment.storedFileName = id + u'/' + fileName;
        attachment.contentTypeIdentifier = contentTypeForFileName(fileName);
        attachment.kind = kindOfContentType(attachment.contentTypeIdentifier);
        attachment.byteCount = qint64(info.st_size);
        attachment.createdAt = QDateTime::currentDateTimeUtc();
        result.attachments.append(attachment);
    }
    // The new folders' entries reach the disk before the records can point at them.
    if (!madeFolders.isEmpty())
        FileSystem::syncDirectory(folder);
    return result;
}

ImportResult AttachmentStore::writePastedImageNow(const QByteArray &png, const QString &folder)
{
    if (auto error = FileSystem::makePath(folder))
        return failure(*error);
    const QString id = newFolderName();
    const QString target = QDir(folder).filePath(id);
    if (auto error = makeFolder(target))
        return failure(*error);

    // Written under a hidden name and renamed, so that the image appears whole
    // or not at all. A failed write leaves the empty folder behind.
    const QString partial = target + u'/' + partialNameBeside(pastedImageName());
    const QString path = target + u'/' + pastedImageName();
    std::optional<QString> error = FileSystem::writeNewFile(partial, png);
    if (!error)
        error = FileSystem::replaceFile(partial, path);
    if (error) {
        QFile::remove(partial);
        return failure(*error);
    }
    FileSystem::syncDirectory(folder);

    NoteAttachment attachment;
    attachment.id = QUuid::fromString(id);
    attachment.fileName = pastedImageName();
    attachment.storedFileName = id + u'/' + pastedImageName();
    attachment.kind = NoteAttachment::Kind::Image;
    attachment.contentTypeIdentifier = QStringLiteral("image/png");
    attachment.byteCount = png.size();
    attachment.createdAt = QDateTime::currentDateTimeUtc();
    return {{attachment}, std::nullopt};
}

void AttachmentStore::importFiles(
    const QList<QUrl> &sources, const QString &folder, QObject *context, ImportDone done)
{
    QPointer<QObject> guard(context);
    std::shared_ptr<std::atomic_bool> cancelled = m_cancelled;
    m_queue->async([sources, folder, guard, done = std::move(done), cancelled] {
        ImportResult result = importFilesNow(sources, folder, cancelled.get());
        answer(guard, done, std::move(result));
    });
}

void AttachmentStore::writePastedImage(
    const QByteArray &png, const QString &folder, QObject *context, ImportDone done)
{
    QPointer<QObject> guard(context);
    QThreadPool::globalInstance()->start([png, folder, guard, done = std::move(done)] {
        answer(guard, done, writePastedImageNow(png, folder));
    });
}

std::optional<QString> AttachmentStore::pathInside(
    const QString &folder, const QString &storedFileName)
{
    const QString root = QDir::cleanPath(QFileInfo(folder).absoluteFilePath());
    const QString path = QDir::cleanPath(root + u'/' + storedFileName);
    if (!path.startsWith(root + u'/'))
        return std::nullopt;
    return path;
}

std::optional<QString> AttachmentStore::fileInside(
    const QString &folder, const QString &storedFileName)
{
    const std::optional<QString> path = pathInside(folder, storedFileName);
    if (!path)
        return std::nullopt;

    // The folders on the way must not lead elsewhere through a link. The last
    // component may itself be a link: removing it removes only the link.
    const QString root = QDir::cleanPath(QFileInfo(folder).absoluteFilePath());
    const QString canonicalRoot = QFileInfo(root).canonicalFilePath();
    const QString canonicalParent = QFileInfo(QFileInfo(*path).absolutePath()).canonicalFilePath();
    if (canonicalRoot.isEmpty() || canonicalParent.isEmpty())
        return std::nullopt;
    if (canonicalParent != canonicalRoot && !canonicalParent.startsWith(canonicalRoot + u'/'))
        return std::nullopt;
    return canonicalParent + u'/' + QFileInfo(*path).fileName();
}

void AttachmentStore::removeFiles(const QList<NoteAttachment> &attachments, const QString &folder)
{
    if (attachments.isEmpty())
        return;
    m_removalObservers.removeIf([](const Observer &o) { return !o.context; });
    m_queue->async([attachments, folder, observers = m_removalObservers] {
        const QString root = QFileInfo(folder).canonicalFilePath();
        QStringList removed;
        for (const NoteAttachment &attachment : attachments) {
            const std::optional<QString> file = fileInside(folder, attachment.storedFileName);
            if (!file)
                continue;
            QFile::remove(*file);
            removed.append(pathInside(folder, attachment.storedFileName).value_or(*file));
            const QString parent = QFileInfo(*file).absolutePath();
            if (parent != root
                && QDir(parent).isEmpty(
                    QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot))
                QDir().rmdir(parent);
        }
        for (const Observer &o : observers) {
            QMetaObject::invokeMethod(
                QCoreApplication::instance(),
                [o, removed] {
                    if (o.context)
                        o.observer(removed);
                },
                Qt::QueuedConnection);
        }
    });
}

void AttachmentStore::observeRemovals(QObject *context, RemovalObserver observer)
{
    m_removalObservers.append({context, std::move(observer)});
}

void AttachmentStore::cancelCopies()
{
    m_cancelled->store(true);
}

void AttachmentStore::stopImports()
{
    cancelCopies();
    waitForIdle();
}

void AttachmentStore::copyFolder(const QString &from, const QString &to, QObject *context,
    CopyProgress progress, CopyCompletion completion,
    std::shared_ptr<const std::atomic_bool> cancelled)
{
    QPointer<QObject> receiver(context);
    auto onMainThread = [receiver](auto call) {
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [receiver, call] {
                if (receiver)
                    call();
            },
            Qt::QueuedConnection);
    };
    m_queue->async([from, to, onMainThread, progress = std::move(progress),
                       completion = std::move(completion), stopped = m_cancelled,
                       cancelled = std::move(cancelled)] {
        const qint64 total = folderSize(from);
        qint64 copied = 0;
        QElapsedTimer sinceReport;
        sinceReport.start();
        // Reports at most a few times a second, and once at the end.
        const std::optional<QString> failure = mergeAttachmentFolder(from, to, [&](qint64 bytes) {
            copied += bytes;
            if (progress && sinceReport.elapsed() >= 100) {
                sinceReport.restart();
                onMainThread([progress, copied, total] { progress(copied, total); });
            }
            return !stopped->load() && !(cancelled && cancelled->load());
        });
        if (progress && !failure)
            onMainThread([progress, total] { progress(total, total); });
        onMainThread([completion, failure] { completion(failure); });
    });
}

void AttachmentStore::beginLibraryMove(const QString &oldLibrary, const QString &newLibrary)
{
    m_queue->async([oldLibrary, newLibrary] {
        if (const std::optional<QString> failure = writeLibraryMoveJournal(oldLibrary, newLibrary))
            qCWarning(lcStorage, "Cannot record the move of the library: %s",
                qUtf8Printable(*failure));
    });
}

void AttachmentStore::removeMovedLibrary(
    const QString &oldLibrary, const QString &newLibrary, std::function<void()> settle)
{
    m_queue->async([oldLibrary, newLibrary, settle = std::move(settle)] {
        // The old library goes only once nothing leads back to it: removed
        // before the settings name the new file, a crash would leave none.
        settle();
        Vesko::removeMovedLibrary(oldLibrary, newLibrary);
        removeLibraryMoveJournal();
    });
}

void AttachmentStore::endLibraryMove()
{
    m_queue->async([] { removeLibraryMoveJournal(); });
}

void AttachmentStore::removeUnreferencedFolders(const Library &library, const QString &folder)
{
    m_queue->async([library, folder] {
        const QStringList removed = removeUnreferencedFoldersNow(library, folder);
        if (!removed.isEmpty())
            qCInfo(lcStorage, "Removed %lld attachment folders that no note refers to",
                qlonglong(removed.size()));
    });
}

QStringList AttachmentStore::removeUnreferencedFoldersNow(
    const Library &library, const QString &folder)
{
    QSet<QString> referenced;
    for (const Project &project : library.projects) {
        for (const NoteSection &section : project.sections) {
            for (const Note &note : section.notes) {
                for (const NoteAttachment &attachment : note.attachments)
                    referenced.insert(attachment.storedFileName.section(u'/', 0, 0));
            }
        }
    }
    QStringList removed;
    const QDir dir(folder);
    for (const QString &name : dir.entryList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::Hidden)) {
        const QUuid id = QUuid::fromString(name);
        if (id.isNull() || name != id.toString(QUuid::WithoutBraces).toUpper()
            || referenced.contains(name) || QFileInfo(dir.filePath(name)).isSymLink())
            continue;
        if (QDir(dir.filePath(name)).removeRecursively())
            removed.append(name);
    }
    return removed;
}

void AttachmentStore::waitForIdle()
{
    m_queue->sync([] {});
}

} // namespace Vesko
