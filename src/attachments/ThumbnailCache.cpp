// SPDX-License-Identifier: GPL-3.0-or-later

#include "attachments/ThumbnailCache.h"

#include "attachments/AttachmentStore.h"
#include "platform/SerialQueue.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QPointer>

#include <cmath>
#include <sys/stat.h>

namespace Vesko {

namespace {

ThumbnailCache::FileIdentity identityOf(const struct stat &info)
{
    return {info.st_dev, info.st_ino, qint64(info.st_size), info.st_mtim};
}

std::optional<ThumbnailCache::FileIdentity> identityOfPath(const QString &path)
{
    struct stat info;
    if (::stat(QFile::encodeName(path).constData(), &info) != 0)
        return std::nullopt;
    return identityOf(info);
}

// Decodes from \a file, scaled to cover a square of \a pixelSide and cut to it.
QImage decodeFrom(QIODevice *file, const QByteArray &formatHint, int pixelSide)
{
    QImageReader reader(file, formatHint);
    reader.setAutoTransform(true);
    QSize size = reader.size();
    if (size.isValid()) {
        // Images are turned by their orientation tag after scaling: scale the
        // stored size so that the turned image covers the square.
        const QImageIOHandler::Transformations turns = reader.transformation();
        const bool swapped = turns & QImageIOHandler::TransformationRotate90;
        const QSize shown = swapped ? size.transposed() : size;
        const double scale
            = std::max(double(pixelSide) / shown.width(), double(pixelSide) / shown.height());
        if (scale < 1.0) {
            size = QSize(std::max(1, int(std::ceil(size.width() * scale))),
                std::max(1, int(std::ceil(size.height() * scale))));
            reader.setScaledSize(size);
        }
    }
    // Without a size up front (some formats tell it only while decoding),
    // the whole image is read and scaled here.
    QImage image = reader.read();
    if (image.isNull())
        return {};
    if (image.width() > pixelSide && image.height() > pixelSide)
        image = image.scaled(
            pixelSide, pixelSide, Qt::KeepAspectRatioByExpanding, Qt::SmoothTransformation);
    if (image.width() > pixelSide || image.height() > pixelSide) {
        const int width = std::min(image.width(), pixelSide);
        const int height = std::min(image.height(), pixelSide);
        image
            = image.copy((image.width() - width) / 2, (image.height() - height) / 2, width, height);
    }
    return image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

// The file at \a path decoded, with the identity of the very file that was read.
QImage decodeWithIdentity(
    const QString &path, int pixelSide, std::optional<ThumbnailCache::FileIdentity> *identity)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *identity = identityOfPath(path);
        return {};
    }
    struct stat info;
    if (::fstat(file.handle(), &info) != 0 || !S_ISREG(info.st_mode)) {
        *identity = std::nullopt;
        return {};
    }
    *identity = identityOf(info);
    return decodeFrom(&file, QFileInfo(path).suffix().toLower().toLatin1(), pixelSide);
}

} // namespace

bool ThumbnailCache::FileIdentity::operator==(const FileIdentity &other) const
{
    return device == other.device && inode == other.inode && size == other.size
        && modified.tv_sec == other.modified.tv_sec && modified.tv_nsec == other.modified.tv_nsec;
}

ThumbnailCache::ThumbnailCache(QObject *parent)
    : QObject(parent)
    , m_queue(std::make_unique<SerialQueue>(QStringLiteral("com.vesko.vesko.thumbnails")))
    , m_images(maximumBytes)
{
    // Set here, before the worker reads: the limit is one for the process.
    if (QImageReader::allocationLimit() < allocationLimitMegabytes)
        QImageReader::setAllocationLimit(allocationLimitMegabytes);
}

ThumbnailCache::~ThumbnailCache() = default;

ThumbnailCache &ThumbnailCache::shared()
{
    static ThumbnailCache *const cache = [] {
        auto *made = new ThumbnailCache;
        AttachmentStore::shared().observeRemovals(
            made, [made](const QStringList &files) { made->forget(files); });
        return made;
    }();
    return *cache;
}

QImage ThumbnailCache::decode(const QString &path, int pixelSide)
{
    std::optional<FileIdentity> identity;
    return decodeWithIdentity(path, pixelSide, &identity);
}

QImage ThumbnailCache::thumbnail(const QString &path, int pixelSide, QObject *receiver, Ready ready)
{
    if (const Entry *entry = m_images.object(path); entry && entry->side >= pixelSide) {
        // At hand; whether the file is still the one it was made from is
        // checked behind the view's back.
        schedule(path, pixelSide);
        return entry->image;
    }
    if (receiver && ready)
        m_waiters[path].append({receiver, std::move(ready)});
    schedule(path, pixelSide);
    return {};
}

void ThumbnailCache::schedule(const QString &path, int pixelSide)
{
    if (m_pending.value(path) >= pixelSide) {
        m_askedAgain.insert(path); // the answer on its way, and one more look
        return;
    }

    // What is known now, for the worker to compare the file with.
    std::optional<std::optional<FileIdentity>> known;
    if (const Entry *entry = m_images.object(path); entry && entry->side >= pixelSide)
        known.emplace(entry->identity);
    else if (m_failed.contains(path))
        known.emplace(m_failed.value(path));

    m_pending.insert(path, pixelSide);
    QPointer<ThumbnailCache> guard(this);
    m_queue->async([guard, path, pixelSide, known] {
        Outcome outcome;
        if (known && identityOfPath(path) == *known)
            outcome.unchanged = true;
        else
            outcome.image = decodeWithIdentity(path, pixelSide, &outcome.identity);
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [guard, path, pixelSide, outcome] {
                if (guard)
                    guard->finish(path, pixelSide, outcome);
            },
            Qt::QueuedConnection);
    });
}

void ThumbnailCache::finish(const QString &path, int pixelSide, const Outcome &outcome)
{
    if (m_pending.value(path) != pixelSide)
        return; // a larger one is on its way
    m_pending.remove(path);
    const bool lookAgain = m_askedAgain.remove(path);

    if (outcome.unchanged) {
        if (lookAgain)
            schedule(path, pixelSide);
        else if (const Entry *entry = m_images.object(path))
            tellWaiters(path, entry->image);
        else if (m_failed.contains(path))
            tellWaiters(path, {});
        else
            schedule(path, pixelSide); // the image left the cache meanwhile
        return;
    }

    ++m_readCount;
    const Entry *previous = m_images.object(path);
    const bool replaced = previous && previous->identity != outcome.identity;
    if (outcome.image.isNull()) {
        m_images.remove(path);
        m_failed.insert(path, outcome.identity);
    } else {
        m_failed.remove(path);
        m_images.insert(path, new Entry {outcome.image, pixelSide, outcome.identity},
            std::max<qsizetype>(1, outcome.image.sizeInBytes()));
    }
    if (lookAgain)
        schedule(path, pixelSide);
    else
        tellWaiters(path, outcome.image);
    if (outcome.image.isNull())
        Q_EMIT thumbnailFailed(path);
    else
        Q_EMIT thumbnailReady(path);
    if (replaced)
        Q_EMIT thumbnailInvalidated(path);
}

void ThumbnailCache::tellWaiters(const QString &path, const QImage &image)
{
    for (const Waiter &waiter : m_waiters.take(path)) {
        if (waiter.receiver)
            waiter.ready(image);
    }
}

void ThumbnailCache::forget(const QStringList &paths)
{
    for (const QString &path : paths) {
        const bool hadImage = m_images.remove(path);
        m_failed.remove(path);
        if (hadImage)
            Q_EMIT thumbnailInvalidated(path);
    }
}

void ThumbnailCache::waitForWorker()
{
    m_queue->sync([] {});
}

ThumbnailCache::State ThumbnailCache::state(const QString &path) const
{
    if (m_images.contains(path))
        return State::Ready;
    if (m_failed.contains(path))
        return State::Failed;
    if (m_pending.contains(path))
        return State::Pending;
    return State::Unknown;
}

} // namespace Vesko
