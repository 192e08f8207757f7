// SPDX-License-Identifier: GPL-3.0-or-later

#include "attachments/ThumbnailCache.h"

#include "platform/SerialQueue.h"

#include <QCoreApplication>
#include <QImageReader>
#include <QPointer>

#include <cmath>

namespace Vesko {

ThumbnailCache::ThumbnailCache(QObject *parent)
    : QObject(parent)
    , m_queue(std::make_unique<SerialQueue>(QStringLiteral("com.vesko.vesko.thumbnails")))
    , m_images(maximumBytes)
{ }

ThumbnailCache::~ThumbnailCache() = default;

ThumbnailCache &ThumbnailCache::shared()
{
    static ThumbnailCache *const cache = new ThumbnailCache;
    return *cache;
}

QImage ThumbnailCache::decode(const QString &path, int pixelSide)
{
    QImageReader reader(path);
    reader.setAutoTransform(true);
    QSize size = reader.size();
    if (!size.isValid())
        return {};
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
    QImage image = reader.read();
    if (image.isNull())
        return {};
    if (image.width() > pixelSide || image.height() > pixelSide) {
        const int width = std::min(image.width(), pixelSide);
        const int height = std::min(image.height(), pixelSide);
        image
            = image.copy((image.width() - width) / 2, (image.height() - height) / 2, width, height);
    }
    return image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

QImage ThumbnailCache::thumbnail(const QString &path, int pixelSide, QObject *receiver, Ready ready)
{
    if (const QImage *image = m_images.object(path); image && m_sides.value(path) >= pixelSide)
        return *image;
    if (m_failed.contains(path))
        return {};
    if (receiver && ready)
        m_waiters[path].append({receiver, std::move(ready)});
    if (m_pending.value(path) >= pixelSide)
        return {};

    m_pending.insert(path, pixelSide);
    ++m_readCount;
    QPointer<ThumbnailCache> guard(this);
    m_queue->async([guard, path, pixelSide] {
        const QImage image = decode(path, pixelSide);
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [guard, path, pixelSide, image] {
                if (guard)
                    guard->finish(path, pixelSide, image);
            },
            Qt::QueuedConnection);
    });
    return {};
}

void ThumbnailCache::finish(const QString &path, int pixelSide, const QImage &image)
{
    if (m_pending.value(path) != pixelSide)
        return; // a larger one is on its way
    m_pending.remove(path);
    if (image.isNull())
        m_failed.insert(path);
    else {
        m_images.insert(path, new QImage(image), std::max<qsizetype>(1, image.sizeInBytes()));
        m_sides.insert(path, pixelSide);
    }
    for (const Waiter &waiter : m_waiters.take(path)) {
        if (waiter.receiver)
            waiter.ready(image);
    }
    if (image.isNull())
        Q_EMIT thumbnailFailed(path);
    else
        Q_EMIT thumbnailReady(path);
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
