// SPDX-License-Identifier: GPL-3.0-or-later
//
// The files waiting to be added with a note not yet written: one chip each,
// with its name and a button that takes it out again, in a row that scrolls
// sideways. Without files it takes no room.

#pragma once

#include "library/Library.h"

#include <QList>
#include <QUrl>
#include <QWidget>

class QHBoxLayout;
class QScrollArea;

namespace Vesko {

class PendingAttachmentStrip : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QList<QUrl> urls READ urls WRITE setUrls NOTIFY urlsChanged)

public:
    static constexpr int chipSpacing = 5;

    explicit PendingAttachmentStrip(QWidget *parent = nullptr);
    ~PendingAttachmentStrip() override;

    //! The files, as chips named by their last path component. A chip's
    //! button takes its file out of urls().
    QList<QUrl> urls() const { return m_urls; }
    void setUrls(const QList<QUrl> &urls);

    //! Records already made, as chips named by their file name. A chip's
    //! button asks for removal through removeRequested().
    void setAttachments(const QList<NoteAttachment> &attachments);

    //! The names on the chips, in order.
    QStringList chipNames() const;

Q_SIGNALS:
    void urlsChanged();
    void removeRequested(const QUuid &attachmentID);

private:
    struct Chip
    {
        QString name;
        QUrl url;
        QUuid attachmentID;
    };

    void rebuild(const QList<Chip> &chips);
    void remove(const Chip &chip);

    QList<QUrl> m_urls;
    QList<Chip> m_chips;
    QScrollArea *m_scrollArea;
    QWidget *m_row;
    QHBoxLayout *m_rowLayout;
};

} // namespace Vesko
