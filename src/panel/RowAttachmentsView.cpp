// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/RowAttachmentsView.h"

#include "shell/Theme.h"

#include <QLocale>
#include <QPainter>

namespace Vesko {

namespace {

constexpr int iconSize = 12;
constexpr int iconGap = 5;
constexpr int lineGap = 3;

} // namespace

RowAttachmentsView::RowAttachmentsView(QWidget *parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void RowAttachmentsView::setAttachments(
    const QList<NoteAttachment> &attachments, const QUuid &noteID)
{
    if (m_attachments == attachments && m_noteID == noteID)
        return;
    m_attachments = attachments;
    m_noteID = noteID;
    update();
}

void RowAttachmentsView::setExpanded(bool expanded)
{
    if (m_expanded == expanded)
        return;
    m_expanded = expanded;
    update();
}

int RowAttachmentsView::heightForWidth(int) const
{
    if (m_attachments.isEmpty())
        return 0;
    const int line = std::max(iconSize, QFontMetrics(Theme::captionFont()).height());
    const int lines = m_expanded ? int(m_attachments.size()) : 1;
    return lines * line + (lines - 1) * lineGap;
}

QString RowAttachmentsView::lineText(const NoteAttachment &attachment) const
{
    if (!attachment.byteCount)
        return attachment.fileName;
    return attachment.fileName + QStringLiteral("  ")
        + QLocale().formattedDataSize(*attachment.byteCount);
}

void RowAttachmentsView::paintEvent(QPaintEvent *)
{
    if (m_attachments.isEmpty())
        return;
    const ThemeColors colors = Theme::currentColors();
    QPainter painter(this);
    const QFont font = Theme::captionFont();
    painter.setFont(font);
    const QFontMetrics metrics(font);
    const int line = std::max(iconSize, metrics.height());
    const QIcon clip = symbolIcon(QStringLiteral("paperclip"), colors.greyStrong, iconSize);
    QStringList names;
    for (const NoteAttachment &attachment : m_attachments)
        names.append(attachment.fileName);
    const QStringList lines = m_expanded ? [&] {
        QStringList all;
        for (const NoteAttachment &attachment : m_attachments)
            all.append(lineText(attachment));
        return all;
    }()
                                         : QStringList {names.join(QStringLiteral(", "))};
    int y = 0;
    for (const QString &text : lines) {
        clip.paint(&painter, QRect(0, y + (line - iconSize) / 2, iconSize, iconSize));
        painter.setPen(colors.greyStrong);
        const QRect textRect(iconSize + iconGap, y, width() - iconSize - iconGap, line);
        painter.drawText(textRect, Qt::AlignLeft | Qt::AlignVCenter,
            metrics.elidedText(text, Qt::ElideRight, textRect.width()));
        y += line + lineGap;
    }
}

} // namespace Vesko
