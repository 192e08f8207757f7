// SPDX-License-Identifier: GPL-3.0-or-later
//
// The small square picture of one attachment: the image itself, scaled down
// in the background, for an image; the file type's icon for other files;
// and a plain symbol until then, or for good when the file cannot be shown.

#pragma once

#include "library/Library.h"

#include <QIcon>
#include <QImage>
#include <QWidget>

class QPainter;

namespace Vesko {

class ThumbnailCache;

class AttachmentThumbnailView : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(bool expanded READ isExpanded WRITE setExpanded)

public:
    static constexpr int collapsedSide = 30;
    static constexpr int expandedSide = 38;
    static constexpr int cornerRadius = 6;

    explicit AttachmentThumbnailView(QWidget *parent = nullptr);
    AttachmentThumbnailView(ThumbnailCache &cache, QWidget *parent = nullptr);
    ~AttachmentThumbnailView() override;

    //! Shows \a attachment, whose file is \a filePath (empty when it has none).
    void setAttachment(const NoteAttachment &attachment, const QString &filePath);
    const NoteAttachment &attachment() const { return m_attachment; }

    bool isExpanded() const { return m_expanded; }
    void setExpanded(bool expanded);
    int side() const { return m_expanded ? expandedSide : collapsedSide; }

    //! The thumbnail once it has come; null while the symbol shows.
    QImage image() const { return m_image; }
    bool hasImage() const { return !m_image.isNull(); }

    QSize sizeHint() const override;

Q_SIGNALS:
    //! The thumbnail came.
    void imageChanged();

protected:
    void paintEvent(QPaintEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void requestImage();
    void takeImage(const QImage &image, int pixelSide);
    //! The side in device pixels that the thumbnail is decoded at: twice the
    //! view's side times the screen's device pixel ratio.
    int pixelSide() const;

    ThumbnailCache &m_cache;
    NoteAttachment m_attachment;
    QString m_filePath;
    bool m_expanded = false;
    QImage m_image;
    //! The side in device pixels that m_image was asked for at.
    int m_imageSide = 0;
    //! The file whose thumbnail this view waits for, if any, and at which side.
    QString m_waiting;
    int m_waitingSide = 0;
    //! The file type's icon, for files that are not images.
    QIcon m_typeIcon;
};

} // namespace Vesko
