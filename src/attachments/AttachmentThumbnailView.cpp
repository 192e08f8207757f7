// SPDX-License-Identifier: GPL-3.0-or-later

#include "attachments/AttachmentThumbnailView.h"

#include "attachments/ThumbnailCache.h"
#include "shell/Theme.h"

#include <QMimeDatabase>
#include <QPainter>
#include <QPainterPath>
#include <QScreen>

namespace Vesko {

namespace {

// The file type's icon from the desktop's theme, if it has one.
QIcon typeIcon(const NoteAttachment &attachment)
{
    if (!attachment.contentTypeIdentifier)
        return {};
    static const QMimeDatabase database;
    const QMimeType type = database.mimeTypeForName(*attachment.contentTypeIdentifier);
    if (!type.isValid())
        return {};
    QIcon icon = QIcon::fromTheme(type.iconName());
    if (icon.isNull())
        icon = QIcon::fromTheme(type.genericIconName());
    return icon;
}

} // namespace

AttachmentThumbnailView::AttachmentThumbnailView(QWidget *parent)
    : AttachmentThumbnailView(ThumbnailCache::shared(), parent)
{ }

AttachmentThumbnailView::AttachmentThumbnailView(ThumbnailCache &cache, QWidget *parent)
    : QWidget(parent)
    , m_cache(cache)
{
    setFixedSize(sizeHint());
    setAttribute(Qt::WA_TransparentForMouseEvents);
    // The file was removed or replaced: the image shown is no longer its picture.
    connect(&m_cache, &ThumbnailCache::thumbnailInvalidated, this, [this](const QString &path) {
        if (path != m_filePath)
            return;
        m_image = QImage();
        m_imageSide = 0;
        m_waiting.clear();
        if (isVisible())
            requestImage();
        update();
    });
}

AttachmentThumbnailView::~AttachmentThumbnailView() = default;

void AttachmentThumbnailView::setAttachment(
    const NoteAttachment &attachment, const QString &filePath)
{
    if (attachment == m_attachment && filePath == m_filePath)
        return;
    m_attachment = attachment;
    m_filePath = filePath;
    m_image = QImage();
    m_imageSide = 0;
    m_typeIcon = attachment.kind == NoteAttachment::Kind::File ? typeIcon(attachment) : QIcon();
    if (isVisible())
        requestImage();
    update();
}

void AttachmentThumbnailView::setExpanded(bool expanded)
{
    if (m_expanded == expanded)
        return;
    m_expanded = expanded;
    setFixedSize(sizeHint());
    if (isVisible())
        requestImage(); // a larger side needs a larger image
    update();
}

QSize AttachmentThumbnailView::sizeHint() const
{
    return QSize(side(), side());
}

int AttachmentThumbnailView::pixelSide() const
{
    // Twice the side, at the scale of the screen the view is on (2 without one).
    const QScreen *screen = this->screen();
    const qreal scale = screen ? screen->devicePixelRatio() : 2.0;
    return qCeil(2 * side() * scale);
}

void AttachmentThumbnailView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    requestImage();
}

void AttachmentThumbnailView::requestImage()
{
    if (m_filePath.isEmpty() || m_attachment.kind != NoteAttachment::Kind::Image)
        return;
    const int wanted = pixelSide();
    if (!m_image.isNull() && m_imageSide >= wanted)
        return;
    if (m_waiting == m_filePath && m_waitingSide >= wanted)
        return;
    const QString path = m_filePath;
    const QImage image
        = m_cache.thumbnail(path, wanted, this, [this, path, wanted](const QImage &arrived) {
              if (m_waiting == path && m_waitingSide == wanted)
                  m_waiting.clear();
              if (path == m_filePath)
                  takeImage(arrived, wanted);
          });
    if (!image.isNull()) {
        takeImage(image, wanted);
    } else {
        m_waiting = path;
        m_waitingSide = wanted;
    }
}

void AttachmentThumbnailView::takeImage(const QImage &image, int pixelSide)
{
    if (image.isNull() || (!m_image.isNull() && m_imageSide >= pixelSide))
        return;
    m_image = image;
    m_imageSide = pixelSide;
    update();
    Q_EMIT imageChanged();
}

void AttachmentThumbnailView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    const QRectF square(0, 0, side(), side());
    QPainterPath clip;
    clip.addRoundedRect(square, cornerRadius, cornerRadius);
    painter.setClipPath(clip);
    const ThemeColors colors = Theme::currentColors();

    if (!m_image.isNull()) {
        // The image fills the square; what overhangs is cut off.
        const QSizeF size = m_image.size();
        const qreal scale
            = std::max(square.width() / size.width(), square.height() / size.height());
        const QSizeF drawn = size * scale;
        const QRectF target(square.center().x() - drawn.width() / 2,
            square.center().y() - drawn.height() / 2, drawn.width(), drawn.height());
        painter.drawImage(target, m_image);
        return;
    }

    painter.fillPath(clip, colors.surfaceFill);
    const qreal symbolSide = side() * 0.48;
    const QRectF symbolRect(
        (side() - symbolSide) / 2, (side() - symbolSide) / 2, symbolSide, symbolSide);
    if (!m_typeIcon.isNull()) {
        m_typeIcon.paint(&painter, symbolRect.toAlignedRect());
        return;
    }
    // The program's own "photo" or "doc", as every symbol it shows.
    const QString symbol = m_attachment.kind == NoteAttachment::Kind::Image
        ? QStringLiteral("photo")
        : QStringLiteral("doc");
    symbolIcon(symbol, colors.greyStrong, int(symbolSide))
        .paint(&painter, symbolRect.toAlignedRect());
}

} // namespace Vesko
