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
    drawSymbol(painter, symbolRect, colors.greyStrong);
}

void AttachmentThumbnailView::drawSymbol(
    QPainter &painter, const QRectF &area, const QColor &color) const
{
    // Line drawings, so that they look the same on every desktop.
    painter.setPen(
        QPen(color, std::max(1.0, area.width() / 12), Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    const qreal w = area.width();
    const qreal h = area.height();
    if (m_attachment.kind == NoteAttachment::Kind::Image) {
        // "photo": a frame with the sun over a hill.
        const QRectF frame = area.adjusted(0, h * 0.12, 0, -h * 0.12);
        painter.drawRoundedRect(frame, w * 0.12, w * 0.12);
        painter.drawEllipse(QPointF(frame.left() + w * 0.3, frame.top() + frame.height() * 0.32),
            w * 0.08, w * 0.08);
        const QPointF hill[] = {{frame.left() + w * 0.08, frame.bottom() - h * 0.06},
            {frame.left() + w * 0.42, frame.top() + frame.height() * 0.5},
            {frame.left() + w * 0.62, frame.top() + frame.height() * 0.7},
            {frame.left() + w * 0.76, frame.top() + frame.height() * 0.56},
            {frame.right() - w * 0.06, frame.bottom() - h * 0.06}};
        painter.drawPolyline(hill, 5);
        return;
    }
    // "doc": a page with a folded corner and lines of text.
    const qreal left = area.left() + w * 0.16;
    const qreal right = area.right() - w * 0.16;
    const qreal fold = w * 0.22;
    const QPointF page[] = {{left, area.top()}, {right - fold, area.top()},
        {right, area.top() + fold}, {right, area.bottom()}, {left, area.bottom()}};
    painter.drawPolygon(page, 5);
    painter.drawPolyline(QPolygonF({{right - fold, area.top()}, {right - fold, area.top() + fold},
        {right, area.top() + fold}}));
    for (int line = 0; line < 3; ++line) {
        const qreal y = area.top() + h * (0.48 + 0.16 * line);
        painter.drawLine(QPointF(left + w * 0.12, y), QPointF(right - w * 0.12, y));
    }
}

} // namespace Vesko
