// SPDX-License-Identifier: GPL-3.0-or-later
//
// The attachments of a note row: the place where a row shows the tiles of
// its note's files. Until the attachment tiles are part of the program it
// shows the file names on one line, and with the row expanded one name a
// line with its size. No height without attachments.

#pragma once

#include "library/Library.h"

#include <QWidget>

namespace Vesko {

class RowAttachmentsView : public QWidget
{
    Q_OBJECT

public:
    explicit RowAttachmentsView(QWidget *parent = nullptr);

    void setAttachments(const QList<NoteAttachment> &attachments, const QUuid &noteID);
    void setExpanded(bool expanded);
    bool isEmpty() const { return m_attachments.isEmpty(); }

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString lineText(const NoteAttachment &attachment) const;

    QList<NoteAttachment> m_attachments;
    QUuid m_noteID;
    bool m_expanded = false;
};

} // namespace Vesko
