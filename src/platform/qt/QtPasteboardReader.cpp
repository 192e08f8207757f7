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
        if (guard)
            guard->readFormats(Pasteboard::formatsToRead(offers), done);
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
            // Decoding and encoding an image can take a while: not here.
            QThreadPool::globalInstance()->start([guard, data, format, done] {
                const QByteArray png = convertToPng(data, format);
                QMetaObject::invokeMethod(
                    QCoreApplication::instance(),
                    [guard, png, done] {
                        if (guard)
                            done({{}, png});
                    },
                    Qt::QueuedConnection);
            });
        } else {
            guard->readFormats(plan, done);
        }
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
    if (data && data->hasImage() && !formats.contains(pngFormat))
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
    QByteArray data = mime ? mime->data(format) : QByteArray();
    if (data.isEmpty() && format == pngFormat && mime && mime->hasImage()) {
        QBuffer buffer(&data);
        buffer.open(QIODevice::WriteOnly);
        qvariant_cast<QImage>(mime->imageData()).save(&buffer, "PNG");
    }
    QMetaObject::invokeMethod(
        this, [data, done = std::move(done)] { done(data); }, Qt::QueuedConnection);
}

} // namespace Vesko
