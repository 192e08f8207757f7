// SPDX-License-Identifier: GPL-3.0-or-later
//
// The attachments of one note as tiles, in the note's order, wrapped over as
// many lines as the width needs. Without attachments it takes no room.

#pragma once

#include "library/Library.h"

#include <QUuid>
#include <QWidget>

namespace Vesko {

class AttachmentActions;
class AttachmentTile;
class ThumbnailCache;

class AttachmentListView : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(bool expanded READ isExpanded WRITE setExpanded)

public:
    static constexpr int spacing = 6;

    //! A list acting through the program's own attachment actions.
    explicit AttachmentListView(QWidget *parent = nullptr);
    AttachmentListView(
        AttachmentActions &actions, ThumbnailCache &cache, QWidget *parent = nullptr);
    ~AttachmentListView() override;

    void setAttachments(const QList<NoteAttachment> &attachments, const QUuid &noteID);
    QList<NoteAttachment> attachments() const { return m_attachments; }
    QUuid noteID() const { return m_noteID; }

    bool isExpanded() const { return m_expanded; }
    //! Larger tiles, with the size of each file.
    void setExpanded(bool expanded);

    QList<AttachmentTile *> tiles() const { return m_tiles; }

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    //! Places the tiles in lines within \a width; returns the height they take.
    int layoutTiles(int width, bool apply) const;

    AttachmentActions &m_actions;
    ThumbnailCache &m_cache;
    QList<NoteAttachment> m_attachments;
    QUuid m_noteID;
    bool m_expanded = false;
    QList<AttachmentTile *> m_tiles;
};

} // namespace Vesko
