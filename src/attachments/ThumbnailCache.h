// SPDX-License-Identifier: GPL-3.0-or-later
//
// Thumbnails of attachment images: decoded and scaled down off the main
// thread, one file at a time, and kept per stored file together with the
// file's identity (device, inode, size, modification time), so that many
// tiles of the same file read it once and a file that was removed or
// replaced is never shown as it was. What is known of a file, an image or a
// failure, is checked against the file on the worker whenever a view asks.

#pragma once

#include <QCache>
#include <QHash>
#include <QImage>
#include <QObject>
#include <QPointer>
#include <QSet>

#include <ctime>
#include <functional>
#include <memory>
#include <optional>
#include <sys/types.h>

namespace Vesko {

class SerialQueue;

class ThumbnailCache : public QObject
{
    Q_OBJECT

public:
    enum class State { Unknown, Pending, Ready, Failed };

    //! The cache holds at most this many bytes of images.
    static constexpr qsizetype maximumBytes = 96 * 1024 * 1024;
    //! The largest decoded image (before scaling) a thumbnail may come from:
    //! formats that cannot scale while decoding (PNG) hold the whole image.
    static constexpr int allocationLimitMegabytes = 512;

    explicit ThumbnailCache(QObject *parent = nullptr);
    ~ThumbnailCache() override;

    //! The one cache of the process, made on first use; it forgets the files
    //! that the shared attachment store removes.
    static ThumbnailCache &shared();

    using Ready = std::function<void(const QImage &image)>;

    //! The thumbnail of the image file \a path, at least \a pixelSide pixels
    //! square, when it is at hand; the file is then checked in the
    //! background, and thumbnailInvalidated() follows if it changed.
    //! Otherwise a null image, and the file is decoded in the background
    //! unless that is under way or failed before on the same file;
    //! thumbnailReady() or thumbnailFailed() follows, and \a ready is called
    //! with the image (null after a failure) if \a receiver still lives.
    QImage thumbnail(
        const QString &path, int pixelSide, QObject *receiver = nullptr, Ready ready = {});
    State state(const QString &path) const;

    //! Drops what is known of \a paths, whose files have gone.
    void forget(const QStringList &paths);

    //! How many times a file was decoded so far.
    int readCount() const { return m_readCount; }
    //! Returns once the worker has done what it was given; its answers are
    //! delivered by the event loop after. For tests.
    void waitForWorker();

    //! The image of \a path scaled to cover a square of \a pixelSide and cut
    //! to it, or a null image. The decoding itself, on the calling thread.
    static QImage decode(const QString &path, int pixelSide);

    //! What tells one file from another at the same path.
    struct FileIdentity
    {
        dev_t device = 0;
        ino_t inode = 0;
        qint64 size = 0;
        timespec modified {};

        bool operator==(const FileIdentity &other) const;
    };

Q_SIGNALS:
    void thumbnailReady(const QString &path);
    void thumbnailFailed(const QString &path);
    //! The image given out for \a path no longer shows its file: the views
    //! that hold it ask again.
    void thumbnailInvalidated(const QString &path);

private:
    struct Entry
    {
        QImage image;
        int side = 0;
        std::optional<FileIdentity> identity;
    };
    //! What the worker found: the file as known, or a new decoding.
    struct Outcome
    {
        bool unchanged = false;
        QImage image;
        std::optional<FileIdentity> identity;
    };

    //! Has the worker look at \a path for a thumbnail of \a pixelSide.
    void schedule(const QString &path, int pixelSide);
    void finish(const QString &path, int pixelSide, const Outcome &outcome);
    void tellWaiters(const QString &path, const QImage &image);

    std::unique_ptr<SerialQueue> m_queue;
    QCache<QString, Entry> m_images;
    //! Files that did not decode, with the identity they had then (none
    //! when they could not be found).
    QHash<QString, std::optional<FileIdentity>> m_failed;
    //! The side of the request under way for each file.
    QHash<QString, int> m_pending;
    //! Files asked for again while their answer was on its way: that answer
    //! may have looked at the file before it changed, so it is looked at once
    //! more before the waiters are told.
    QSet<QString> m_askedAgain;
    struct Waiter
    {
        QPointer<QObject> receiver;
        Ready ready;
    };
    //! Who waits for which file: told directly, not through a signal that
    //! every view would hear.
    QHash<QString, QList<Waiter>> m_waiters;
    int m_readCount = 0;
};

} // namespace Vesko
