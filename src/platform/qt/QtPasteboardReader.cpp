// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/qt/QtPasteboardReader.h"

#include "platform/x11/X11ClipboardReader.h"

#include <QBuffer>
#include <QClipboard>
#include <QGuiApplication>
#include <QImage>
#include <QImageReader>
#include <QMimeData>
#include <QPointer>
#include <QThreadPool>

namespace Vesko {

namespace {

const QString uriListFormat = QStringLiteral("text/uri-list");
const QString pngFormat = QStringLiteral("image/png");

QClipboard *clipboard()
{
    return QGuiApplication::clipboard();
}

} // namespace

QtPasteboardReader::QtPasteboardReader(QObject *parent)
    : QObject(parent)
{
    if (QGuiApplication::platformName() == u"xcb") {
        m_x11 = std::make_unique<X11ClipboardReader>();
        if (!m_x11->isValid())
            m_x11.reset();
    }
}

QtPasteboardReader::~QtPasteboardReader() = default;

bool QtPasteboardReader::readsFromX11() const
{
    // Vesko's own data are read directly: asking the X server would only
    // bring them back from this very process.
    return m_x11 && !clipboard()->ownsClipboard();
}

QByteArray QtPasteboardReader::convertToPng(const QByteArray &bytes, const QString &format)
{
    QBuffer input;
    input.setData(bytes);
    input.open(QIODevice::ReadOnly);
    QImageReader reader(&input);
    const QString subtype = format.section(u'/', 1);
    if (!subtype.isEmpty() && QImageReader::supportedMimeTypes().contains(format.toLatin1()))
        reader.setFormat(
            QImageReader::imageFormatsForMimeType(format.toLatin1()).value(0, subtype.toLatin1()));
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    const QImage image = reader.read();
    if (image.isNull())
        return {};
    QByteArray png;
    QBuffer output(&png);
    output.open(QIODevice::WriteOnly);
    if (!image.save(&output, "PNG"))
        return {};
    return png;
}

void QtPasteboardReader::readPasteboard(Done done)
{
    QPointer<QtPasteboardReader> guard(this);
    readOffers([guard, done = std::move(done)](const QStringList &offers) {
        if (!guard)
            return;
        QStringList plan = Pasteboard::formatsToRead(offers);
        // Each read through QClipboard from another application holds the
        // main thread until that application has sent the data (Qt waits up
        // to a second of silence each time): a few formats at most.
        if (!guard->readsFromX11() && !clipboard()->ownsClipboard())
            plan = plan.mid(0, maximumBlockingReads);
        guard->readFormats(plan, done);
    });
}

void QtPasteboardReader::readFormats(QStringList plan, Done done)
{
    if (plan.isEmpty()) {
        done({});
        return;
    }
    const QString format = plan.takeFirst();
    QPointer<QtPasteboardReader> guard(this);
    readFormat(format, [guard, format, plan, done](const QByteArray &data) {
        if (!guard)
            return;
        if (format == uriListFormat) {
            const QList<QUrl> files = Pasteboard::localFilesOfUriList(data);
            if (!files.isEmpty())
                done({files, {}});
            else
                guard->readFormats(plan, done);
        } else if (format == pngFormat && !data.isEmpty()) {
            done({{}, data});
        } else if (format != pngFormat && !data.isEmpty()) {
            // Decoding and encoding an image can take a while: not here. An
            // image that does not decode leaves the next format to try.
            guard->inBackground([data, format] { return convertToPng(data, format); },
                [guard, plan, done](const QByteArray &png) {
                    if (!guard)
                        return;
                    if (!png.isEmpty())
                        done({{}, png});
                    else
                        guard->readFormats(plan, done);
                });
        } else {
            guard->readFormats(plan, done);
        }
    });
}

void QtPasteboardReader::inBackground(
    std::function<QByteArray()> work, std::function<void(const QByteArray &)> done)
{
    QPointer<QtPasteboardReader> guard(this);
    QThreadPool::globalInstance()->start([guard, work = std::move(work), done = std::move(done)] {
        const QByteArray result = work();
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [guard, result, done] {
                if (guard)
                    done(result);
            },
            Qt::QueuedConnection);
    });
}

void QtPasteboardReader::readOffers(std::function<void(const QStringList &formats)> done)
{
    if (readsFromX11()) {
        m_x11->offers(std::move(done));
        return;
    }
    const QMimeData *data = clipboard()->mimeData(QClipboard::Clipboard);
    QStringList formats = data ? data->formats() : QStringList();
    // An image that Vesko put there itself is held as an image, not as bytes.
    if (data && clipboard()->ownsClipboard() && data->hasImage() && !formats.contains(pngFormat))
        formats.append(pngFormat);
    QMetaObject::invokeMethod(
        this, [formats, done = std::move(done)] { done(formats); }, Qt::QueuedConnection);
}

void QtPasteboardReader::readFormat(
    const QString &format, std::function<void(const QByteArray &data)> done)
{
    if (readsFromX11()) {
        m_x11->read(format, [done = std::move(done)](const std::optional<QByteArray> &data) {
            done(data.value_or(QByteArray()));
        });
        return;
    }
    const QMimeData *mime = clipboard()->mimeData(QClipboard::Clipboard);
    if (mime && format == pngFormat && clipboard()->ownsClipboard() && !mime->hasFormat(format)
        && mime->hasImage()) {
        // Vesko's own image: the image is shared, not copied, and encoded elsewhere.
        const QImage image = qvariant_cast<QImage>(mime->imageData());
        inBackground(
            [image] {
                QByteArray png;
                QBuffer buffer(&png);
                buffer.open(QIODevice::WriteOnly);
                if (!image.save(&buffer, "PNG"))
                    png.clear();
                return png;
            },
            std::move(done));
        return;
    }
    const QByteArray data = mime ? mime->data(format) : QByteArray();
    QMetaObject::invokeMethod(
        this, [data, done = std::move(done)] { done(data); }, Qt::QueuedConnection);
}

} // namespace Vesko
