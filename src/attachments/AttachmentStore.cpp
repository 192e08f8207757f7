// SPDX-License-Identifier: GPL-3.0-or-later

#include "attachments/AttachmentStore.h"

#include "library/LibraryFile.h"
#include "platform/SerialQueue.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QPointer>

namespace Vesko {

AttachmentStore::AttachmentStore()
    : m_queue(std::make_unique<SerialQueue>(QStringLiteral("com.vesko.vesko.attachment-importer")))
{ }

AttachmentStore::~AttachmentStore() = default;

AttachmentStore &AttachmentStore::shared()
{
    static AttachmentStore *const store = new AttachmentStore;
    return *store;
}

std::optional<QString> AttachmentStore::fileInside(
    const QString &folder, const QString &storedFileName)
{
    const QString root = QDir::cleanPath(QFileInfo(folder).absoluteFilePath());
    const QString path = QDir::cleanPath(root + u'/' + storedFileName);
    if (!path.startsWith(root + u'/'))
        return std::nullopt;

    // The folders on the way must not lead elsewhere through a link. The last
    // component may itself be a link: removing it removes only the link.
    const QString canonicalRoot = QFileInfo(root).canonicalFilePath();
    const QString canonicalParent = QFileInfo(QFileInfo(path).absolutePath()).canonicalFilePath();
    if (canonicalRoot.isEmpty() || canonicalParent.isEmpty())
        return std::nullopt;
    if (canonicalParent != canonicalRoot && !canonicalParent.startsWith(canonicalRoot + u'/'))
        return std::nullopt;
    return canonicalParent + u'/' + QFileInfo(path).fileName();
}

void AttachmentStore::removeFiles(const QList<NoteAttachment> &attachments, const QString &folder)
{
    if (attachments.isEmpty())
        return;
    m_queue->async([attachments, folder] {
        const QString root = QFileInfo(folder).canonicalFilePath();
        for (const NoteAttachment &attachment : attachments) {
            const std::optional<QString> file = fileInside(folder, attachment.storedFileName);
            if (!file)
                continue;
            QFile::remove(*file);
            const QString parent = QFileInfo(*file).absolutePath();
            if (parent != root
                && QDir(parent).isEmpty(
                    QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot))
                QDir().rmdir(parent);
        }
    });
}

void AttachmentStore::copyFolder(const QString &from, const QString &to, QObject *context,
    CopyProgress progress, CopyCompletion completion)
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
                       completion = std::move(completion)] {
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
            return true;
        });
        if (progress && !failure)
            onMainThread([progress, total] { progress(total, total); });
        onMainThread([completion, failure] { completion(failure); });
    });
}

void AttachmentStore::removeMovedLibrary(const QString &oldLibrary, const QString &newLibrary)
{
    m_queue->async([oldLibrary, newLibrary] { Vesko::removeMovedLibrary(oldLibrary, newLibrary); });
}

void AttachmentStore::waitForIdle()
{
    m_queue->sync([] {});
}

} // namespace Vesko
