// SPDX-License-Identifier: GPL-3.0-or-later
//
// One attachment as a small button: its thumbnail and its name (and its size
// when expanded). A click opens the file; the context menu offers "Open",
// "Show in Files" and "Remove Attachment".

#pragma once

#include "library/Library.h"

#include <QAbstractButton>
#include <QUuid>

class QMenu;

namespace Vesko {

class AttachmentActions;
class AttachmentThumbnailView;
class ThumbnailCache;

//! Fills \a menu with the entries for one attachment of a note: "Open",
//! "Show in Files", a divider and \a removeTitle ("Remove Attachment").
void fillAttachmentMenu(QMenu &menu, AttachmentActions &actions, const NoteAttachment &attachment,
    const QUuid &noteID, const QString &removeTitle);

class AttachmentTile : public QAbstractButton
{
    Q_OBJECT
    Q_PROPERTY(bool expanded READ isExpanded WRITE setExpanded)

public:
    static constexpr int horizontalPadding = 7;
    static constexpr int verticalPadding = 5;
    static constexpr int spacing = 7;
    static constexpr int cornerRadius = 8;

    AttachmentTile(AttachmentActions &actions, ThumbnailCache &cache, QWidget *parent = nullptr);
    ~AttachmentTile() override;

    //! Shows \a attachment of the note \a noteID, whose file is \a filePath.
    void setAttachment(
        const NoteAttachment &attachment, const QUuid &noteID, const QString &filePath);
    const NoteAttachment &attachment() const { return m_attachment; }

    bool isExpanded() const { return m_expanded; }
    void setExpanded(bool expanded);

    //! The second line when expanded: the size, or empty without one.
    QString sizeText() const;
    AttachmentThumbnailView *thumbnail() const { return m_thumbnail; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    QFont nameFont() const;
    void updateTexts();

    AttachmentActions &m_actions;
    AttachmentThumbnailView *m_thumbnail;
    NoteAttachment m_attachment;
    QUuid m_noteID;
    bool m_expanded = false;
    bool m_hovered = false;
};

} // namespace Vesko
