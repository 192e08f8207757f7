// SPDX-License-Identifier: GPL-3.0-or-later
//
// Thumbnails of attachment images: decoded and scaled down off the main
// thread, one file at a time, and kept per stored file, so that many tiles
// of the same file read it once. A file that cannot be decoded is
// remembered as such and not read again.

#pragma once

#include <QCache>
#include <QHash>
#include <QImage>
#include <QObject>
#include <QPointer>
#include <QSet>

#include <functional>
#include <memory>

namespace Vesko {

class SerialQueue;

class ThumbnailCache : public QObject
{
    Q_OBJECT

public:
    enum class State { Unknown, Pending, Ready, Failed };

    //! The cache holds at most this many bytes of images.
    static constexpr qsizetype maximumBytes = 96 * 1024 * 1024;

    explicit ThumbnailCache(QObject *parent = nullptr);
    ~ThumbnailCache() override;

    //! The one cache of the process, made on first use.
    static ThumbnailCache &shared();

    using Ready = std::function<void(const QImage &image)>;

    //! The thumbnail of the image file \a path, at least \a pixelSide pixels
    //! square, when it is at hand. Otherwise a null image, and the file is
    //! decoded in the background unless that is under way or failed before;
    //! thumbnailReady() or thumbnailFailed() follows, and \a ready is called
    //! with the image (null after a failure) if \a receiver still lives.
    QImage thumbnail(
        const QString &path, int pixelSide, QObject *receiver = nullptr, Ready ready = {});
    State state(const QString &path) const;

    //! How many times a file was read so far.
    int readCount() const { return m_readCount; }

    //! The image of \a path scaled to cover a square of \a pixelSide and cut
    //! to it, or a null image. The decoding itself, on the calling thread.
    static QImage decode(const QString &path, int pixelSide);

Q_SIGNALS:
    void thumbnailReady(const QString &path);
    void thumbnailFailed(const QString &path);

private:
    void finish(const QString &path, int pixelSide, const QImage &image);

    std::unique_ptr<SerialQueue> m_queue;
    QCache<QString, QImage> m_images;
    //! The side each cached image was decoded at.
    QHash<QString, int> m_sides;
    QHash<QString, int> m_pending;
    struct Waiter
    {
        QPointer<QObject> receiver;
        Ready ready;
    };
    //! Who waits for which file: told directly, not through a signal that
    //! every view would hear.
    QHash<QString, QList<Waiter>> m_waiters;
    QSet<QString> m_failed;
    int m_readCount = 0;
};

} // namespace Vesko
