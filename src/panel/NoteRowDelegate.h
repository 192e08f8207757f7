// SPDX-License-Identifier: GPL-3.0-or-later
//
// Paints the panel's rows: a section header (title, open count, hairline) or
// a note card (its text without Markdown, its source line), in the Theme's
// colours. A note shows at most four lines of its text.

#pragma once

#include <QHash>
#include <QStyledItemDelegate>
#include <QUuid>

class QAbstractItemView;

namespace Vesko {

class NoteRowDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    //! Lays rows out in the width of \a view's viewport.
    explicit NoteRowDelegate(QAbstractItemView *view);

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
        const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;

private:
    int textWidth() const;
    //! The height of a note's card for its text, laid out once per text and width.
    int noteHeight(const QModelIndex &index) const;

    struct Measured
    {
        QString text;
        int height = 0;
    };

    QAbstractItemView *m_view;
    mutable QHash<QUuid, Measured> m_heights;
    mutable int m_measuredWidth = -1;
};

} // namespace Vesko
