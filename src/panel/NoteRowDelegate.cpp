// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/NoteRowDelegate.h"

#include "panel/PanelRowsModel.h"
#include "shell/Theme.h"
#include "store/MarkdownText.h"

#include <QAbstractItemView>
#include <QPainter>
#include <QPainterPath>

namespace Vesko {

namespace {

constexpr int rowPadding = 3;
constexpr int cardPaddingH = 10;
constexpr int cardPaddingV = 7;
constexpr int cardRadius = 10;
constexpr int sectionHeight = 26;
constexpr int maximumLines = 4;
constexpr int sourceSpacing = 2;

//! More than a card's four lines can hold at any panel width; the rest is never laid out.
constexpr int shownCharacters = 1024;

QString noteText(const QModelIndex &index)
{
    return strippedMarkdown(index.data(Qt::DisplayRole).toString().left(shownCharacters));
}

//! The lines the text takes in \a width, at most the maximum; the rest is clipped.
int lineCount(const QString &text, const QFontMetrics &metrics, int width)
{
    const QRect bounds = metrics.boundingRect(QRect(0, 0, width, 100000), Qt::TextWordWrap, text);
    return std::clamp(bounds.height() / std::max(1, metrics.lineSpacing()), 1, maximumLines);
}

} // namespace

NoteRowDelegate::NoteRowDelegate(QAbstractItemView *view)
    : QStyledItemDelegate(view)
    , m_view(view)
{ }

int NoteRowDelegate::textWidth() const
{
    return std::max(40, m_view->viewport()->width() - 2 * cardPaddingH);
}

QSize NoteRowDelegate::sizeHint(const QStyleOptionViewItem &, const QModelIndex &index) const
{
    if (index.data(PanelRowsModel::IsSectionRole).toBool())
        return QSize(textWidth(), sectionHeight);
    return QSize(textWidth(), noteHeight(index));
}

int NoteRowDelegate::noteHeight(const QModelIndex &index) const
{
    const int width = textWidth();
    if (width != m_measuredWidth) {
        m_heights.clear();
        m_measuredWidth = width;
    }
    const QString text = index.data(Qt::DisplayRole).toString();
    const QString source = index.data(PanelRowsModel::SourceRole).toString();
    const QUuid id = index.data(PanelRowsModel::IdRole).toUuid();
    const auto found = m_heights.constFind(id);
    if (found != m_heights.constEnd() && found->text == text)
        return found->height;

    const QFontMetrics metrics(Theme::noteFont());
    const int lines = lineCount(noteText(index), metrics, width);
    int height = 2 * cardPaddingV + lines * metrics.lineSpacing();
    if (!source.isEmpty())
        height += sourceSpacing + QFontMetrics(Theme::captionFont()).height();
    height += 2 * rowPadding;
    m_heights.insert(id, {text, height});
    return height;
}

void NoteRowDelegate::paint(
    QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const ThemeColors colors = Theme::currentColors();
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const QRect rect = option.rect;

    if (index.data(PanelRowsModel::IsSectionRole).toBool()) {
        painter->setFont(Theme::sectionFont());
        const bool active = index.data(PanelRowsModel::IsActiveSectionRole).toBool();
        painter->setPen(active ? colors.accent : colors.greyStrong);
        const QRect textRect = rect.adjusted(4, 0, -4, -4);
        const QString title = index.data(Qt::DisplayRole).toString().toUpper();
        const int remaining = index.data(PanelRowsModel::RemainingCountRole).toInt();
        painter->drawText(textRect, Qt::AlignLeft | Qt::AlignBottom, title);
        if (remaining > 0) {
            painter->setPen(colors.greyLight);
            painter->drawText(
                textRect, Qt::AlignRight | Qt::AlignBottom, QString::number(remaining));
        }
        painter->setPen(QPen(colors.sectionHairline, 1));
        painter->drawLine(QPointF(rect.left() + 4, rect.bottom() - 0.5),
            QPointF(rect.right() - 4, rect.bottom() - 0.5));
        painter->restore();
        return;
    }

    const bool done = index.data(PanelRowsModel::IsDoneRole).toBool();
    const bool selected = index.data(PanelRowsModel::IsSelectedRole).toBool();
    const bool hovered = option.state & QStyle::State_MouseOver;
    const QRectF card = QRectF(rect).adjusted(0.5, rowPadding + 0.5, -0.5, -rowPadding - 0.5);
    QPainterPath path;
    path.addRoundedRect(card, cardRadius, cardRadius);
    painter->fillPath(path,
        done ? colors.noteFillDone
             : (selected || hovered ? colors.noteFillSelected : colors.noteFill));
    painter->setPen(
        QPen(selected ? colors.accentStrong : colors.surfaceStroke, selected ? 1.5 : 1));
    painter->drawPath(path);

    QFont font = Theme::noteFont();
    font.setStrikeOut(done);
    painter->setFont(font);
    const QFontMetrics metrics(font);
    const int width = textWidth();
    const QString text = noteText(index);
    const int lines = lineCount(text, metrics, width);
    const QRect textRect(rect.left() + cardPaddingH, rect.top() + rowPadding + cardPaddingV, width,
        lines * metrics.lineSpacing());
    painter->setPen(done ? colors.greyLight : colors.text);
    painter->setClipRect(textRect);
    painter->drawText(textRect, Qt::TextWordWrap, text);
    painter->setClipping(false);

    const QString source = index.data(PanelRowsModel::SourceRole).toString();
    if (!source.isEmpty()) {
        const QFont caption = Theme::captionFont();
        painter->setFont(caption);
        painter->setPen(colors.tertiaryText);
        const QFontMetrics captionMetrics(caption);
        const QRect sourceRect(
            textRect.left(), textRect.bottom() + 1 + sourceSpacing, width, captionMetrics.height());
        painter->drawText(sourceRect, Qt::AlignLeft | Qt::AlignVCenter,
            captionMetrics.elidedText(source, Qt::ElideRight, width));
    }
    painter->restore();
}

} // namespace Vesko
