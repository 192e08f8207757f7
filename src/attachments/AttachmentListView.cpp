// SPDX-License-Identifier: GPL-3.0-or-later

#include "attachments/AttachmentListView.h"

#include "attachments/AttachmentActions.h"
#include "attachments/AttachmentTile.h"
#include "attachments/DesktopAttachments.h"
#include "attachments/ThumbnailCache.h"

#include <QResizeEvent>

namespace Vesko {

AttachmentListView::AttachmentListView(QWidget *parent)
    : AttachmentListView(attachmentActions(), ThumbnailCache::shared(), parent)
{ }

AttachmentListView::AttachmentListView(
    AttachmentActions &actions, ThumbnailCache &cache, QWidget *parent)
    : QWidget(parent)
    , m_actions(actions)
    , m_cache(cache)
{
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    setVisible(false);
}

AttachmentListView::~AttachmentListView() = default;

void AttachmentListView::setAttachments(
    const QList<NoteAttachment> &attachments, const QUuid &noteID)
{
    if (attachments == m_attachments && noteID == m_noteID)
        return;
    m_attachments = attachments;
    m_noteID = noteID;

    // Tiles are kept and given their new records in order; only the count changes.
    while (m_tiles.size() > attachments.size())
        delete m_tiles.takeLast();
    while (m_tiles.size() < attachments.size()) {
        auto *tile = new AttachmentTile(m_actions, m_cache, this);
        tile->setExpanded(m_expanded);
        m_tiles.append(tile);
    }
    const QString folder = m_actions.attachmentsFolder();
    for (qsizetype i = 0; i < attachments.size(); ++i) {
        const NoteAttachment &attachment = attachments.at(i);
        m_tiles.at(i)->setAttachment(
            attachment, noteID, m_actions.filePath(attachment, folder).value_or(QString()));
        m_tiles.at(i)->show();
    }
    setVisible(!attachments.isEmpty());
    layoutTiles(width(), true);
    updateGeometry();
}

void AttachmentListView::setExpanded(bool expanded)
{
    if (m_expanded == expanded)
        return;
    m_expanded = expanded;
    for (AttachmentTile *tile : std::as_const(m_tiles))
        tile->setExpanded(expanded);
    layoutTiles(width(), true);
    updateGeometry();
}

int AttachmentListView::layoutTiles(int width, bool apply) const
{
    if (m_tiles.isEmpty())
        return 0;
    int x = 0;
    int y = 0;
    int lineHeight = 0;
    for (AttachmentTile *tile : m_tiles) {
        const QSize hint = tile->sizeHint();
        const int tileWidth = std::max(tile->minimumSizeHint().width(),
            width > 0 ? std::min(hint.width(), width) : hint.width());
        if (x > 0 && x + tileWidth > width) {
            x = 0;
            y += lineHeight + spacing;
            lineHeight = 0;
        }
        if (apply)
            tile->setGeometry(x, y, tileWidth, hint.height());
        x += tileWidth + spacing;
        lineHeight = std::max(lineHeight, hint.height());
    }
    return y + lineHeight;
}

int AttachmentListView::heightForWidth(int width) const
{
    return layoutTiles(width, false);
}

QSize AttachmentListView::sizeHint() const
{
    if (m_tiles.isEmpty())
        return QSize(0, 0);
    int width = 0;
    for (AttachmentTile *tile : m_tiles)
        width += tile->sizeHint().width() + spacing;
    width -= spacing;
    return QSize(width, layoutTiles(width, false));
}

QSize AttachmentListView::minimumSizeHint() const
{
    if (m_tiles.isEmpty())
        return QSize(0, 0);
    int width = 0;
    for (AttachmentTile *tile : m_tiles)
        width = std::max(width, tile->minimumSizeHint().width());
    return QSize(width, layoutTiles(width, false));
}

void AttachmentListView::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    layoutTiles(event->size().width(), true);
}

} // namespace Vesko
