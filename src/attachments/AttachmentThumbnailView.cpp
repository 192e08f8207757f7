// SPDX-License-Identifier: GPL-3.0-or-later

#include "attachments/AttachmentThumbnailView.h"

#include "attachments/ThumbnailCache.h"
#include "shell/Theme.h"

#include <QMimeDatabase>
#include <QPainter>
#include <QPainterPath>

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
    connect(&m_cache, &ThumbnailCache::thumbnailReady, this, &AttachmentThumbnailView::takeImage);
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
    update();
}

QSize AttachmentThumbnailView::sizeHint() const
{
    return QSize(side(), side());
}

int AttachmentThumbnailView::pixelSide() const
{
    // Every thumbnail is made for the larger side, so that a file is read
    // once whether its tile is expanded or not.
    return qCeil(2 * expandedSide * devicePixelRatioF());
}

void AttachmentThumbnailView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    requestImage();
}

void AttachmentThumbnailView::requestImage()
{
    if (!m_image.isNull() || m_filePath.isEmpty()
        || m_attachment.kind != NoteAttachment::Kind::Image)
        return;
    const QImage image = m_cache.thumbnail(m_filePath, pixelSide());
    if (!image.isNull()) {
        m_image = image;
        update();
        Q_EMIT imageChanged();
    }
}

void AttachmentThumbnailView::takeImage(const QString &path)
{
    if (path == m_filePath && m_image.isNull() && m_attachment.kind == NoteAttachment::Kind::Image)
        requestImage();
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
    const int symbolSide = qRound(side() * 0.48);
    const QRect symbolRect(
        (side() - symbolSide) / 2, (side() - symbolSide) / 2, symbolSide, symbolSide);
    if (!m_typeIcon.isNull()) {
        m_typeIcon.paint(&painter, symbolRect);
        return;
    }
    const QString symbol = m_attachment.kind == NoteAttachment::Kind::Image
        ? QStringLiteral("photo")
        : QStringLiteral("doc");
    symbolIcon(symbol, colors.greyStrong, symbolSide).paint(&painter, symbolRect);
}

} // namespace Vesko
