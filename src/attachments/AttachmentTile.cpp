// SPDX-License-Identifier: GPL-3.0-or-later

#include "attachments/AttachmentTile.h"

#include "attachments/AttachmentActions.h"
#include "attachments/AttachmentThumbnailView.h"
#include "shell/Theme.h"

#include <QContextMenuEvent>
#include <QFontDatabase>
#include <QLocale>
#include <QMenu>
#include <QPainter>
#include <QPainterPath>

namespace Vesko {

namespace {

// A system font whose size is given in the panel's units (device-independent pixels).
QFont systemFont(qreal pixels, QFont::Weight weight)
{
    QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    font.setPointSizeF(pixels * 72.0 / 96.0);
    font.setWeight(weight);
    return font;
}

QFont detailFont()
{
    return Theme::captionFont();
}

} // namespace

void fillAttachmentMenu(QMenu &menu, AttachmentActions &actions, const NoteAttachment &attachment,
    const QUuid &noteID, const QString &removeTitle)
{
    QObject::connect(menu.addAction(AttachmentTile::tr("Open")), &QAction::triggered, &actions,
        [&actions, attachment] { actions.openAttachment(attachment); });
    QObject::connect(menu.addAction(AttachmentTile::tr("Show in Files")), &QAction::triggered,
        &actions, [&actions, attachment] { actions.revealAttachment(attachment); });
    menu.addSeparator();
    QObject::connect(menu.addAction(removeTitle), &QAction::triggered, &actions,
        [&actions, id = attachment.id, noteID] { actions.removeAttachment(id, noteID); });
}

AttachmentTile::AttachmentTile(AttachmentActions &actions, ThumbnailCache &cache, QWidget *parent)
    : QAbstractButton(parent)
    , m_actions(actions)
    , m_thumbnail(new AttachmentThumbnailView(cache, this))
{
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::NoFocus);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    connect(
        this, &QAbstractButton::clicked, this, [this] { m_actions.openAttachment(m_attachment); });
}

AttachmentTile::~AttachmentTile() = default;

void AttachmentTile::setAttachment(
    const NoteAttachment &attachment, const QUuid &noteID, const QString &filePath)
{
    m_noteID = noteID;
    m_thumbnail->setAttachment(attachment, filePath);
    if (attachment == m_attachment)
        return;
    m_attachment = attachment;
    updateTexts();
}

void AttachmentTile::setExpanded(bool expanded)
{
    if (m_expanded == expanded)
        return;
    m_expanded = expanded;
    m_thumbnail->setExpanded(expanded);
    updateTexts();
}

QString AttachmentTile::sizeText() const
{
    if (!m_expanded || !m_attachment.byteCount)
        return {};
    // Decimal units, as file managers on the desktop show file sizes.
    return QLocale().formattedDataSize(*m_attachment.byteCount, 1, QLocale::DataSizeSIFormat);
}

void AttachmentTile::updateTexts()
{
    setToolTip(tr("Open %1").arg(m_attachment.fileName));
    setAccessibleName(m_attachment.fileName);
    setAccessibleDescription(sizeText());
    updateGeometry();
    update();
}

QFont AttachmentTile::nameFont() const
{
    return systemFont(m_expanded ? 12 : 10.5, QFont::Medium);
}

QSize AttachmentTile::sizeHint() const
{
    const QFontMetrics name(nameFont());
    int textWidth = name.horizontalAdvance(m_attachment.fileName);
    int textHeight = name.height();
    if (const QString size = sizeText(); !size.isEmpty()) {
        const QFontMetrics detail(detailFont());
        textWidth = std::max(textWidth, detail.horizontalAdvance(size));
        textHeight += detail.height();
    }
    const int side = m_thumbnail->side();
    return QSize(2 * horizontalPadding + side + spacing + textWidth + 1,
        2 * verticalPadding + std::max(side, textHeight));
}

QSize AttachmentTile::minimumSizeHint() const
{
    const int side = m_thumbnail->side();
    return QSize(2 * horizontalPadding + side + spacing + QFontMetrics(nameFont()).height() * 2,
        sizeHint().height());
}

void AttachmentTile::resizeEvent(QResizeEvent *event)
{
    QAbstractButton::resizeEvent(event);
    const int side = m_thumbnail->side();
    m_thumbnail->move(horizontalPadding, (height() - side) / 2);
}

void AttachmentTile::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const ThemeColors colors = Theme::currentColors();
    QPainterPath shape;
    shape.addRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius, cornerRadius);
    painter.fillPath(shape, m_hovered || isDown() ? colors.surfaceHoverFill : colors.surfaceFill);
    painter.setPen(QPen(colors.surfaceStroke, 1));
    painter.drawPath(shape);

    const int side = m_thumbnail->side();
    const int left = horizontalPadding + side + spacing;
    const int available = std::max(0, width() - left - horizontalPadding);
    const QFontMetrics name(nameFont());
    const QString size = sizeText();
    const QFontMetrics detail(detailFont());
    const int textHeight = name.height() + (size.isEmpty() ? 0 : detail.height());
    int top = (height() - textHeight) / 2;

    painter.setFont(nameFont());
    painter.setPen(colors.text);
    painter.drawText(QRect(left, top, available, name.height()), Qt::AlignLeft | Qt::AlignVCenter,
        name.elidedText(m_attachment.fileName, Qt::ElideMiddle, available));
    if (!size.isEmpty()) {
        top += name.height();
        painter.setFont(detailFont());
        painter.setPen(colors.tertiaryText);
        painter.drawText(QRect(left, top, available, detail.height()),
            Qt::AlignLeft | Qt::AlignVCenter, detail.elidedText(size, Qt::ElideRight, available));
    }
}

void AttachmentTile::contextMenuEvent(QContextMenuEvent *event)
{
    auto *menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    fillAttachmentMenu(*menu, m_actions, m_attachment, m_noteID, tr("Remove Attachment"));
    menu->popup(event->globalPos());
    event->accept();
}

void AttachmentTile::enterEvent(QEnterEvent *event)
{
    m_hovered = true;
    update();
    QAbstractButton::enterEvent(event);
}

void AttachmentTile::leaveEvent(QEvent *event)
{
    m_hovered = false;
    update();
    QAbstractButton::leaveEvent(event);
}

} // namespace Vesko
