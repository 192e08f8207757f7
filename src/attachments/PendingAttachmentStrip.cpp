// SPDX-License-Identifier: GPL-3.0-or-later

#include "attachments/PendingAttachmentStrip.h"

#include "shell/Theme.h"

#include <QFileInfo>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QScrollArea>
#include <QScrollBar>
#include <QToolButton>
#include <QWheelEvent>

namespace Vesko {

namespace {

constexpr int chipHorizontalPadding = 7;
constexpr int chipVerticalPadding = 4;

QFont chipFont()
{
    QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    font.setPointSizeF(10.5 * 72.0 / 96.0);
    return font;
}

// One file of the strip: a paperclip, the name and the button that takes it out.
class PendingChip : public QWidget
{
public:
    PendingChip(const QString &name, QWidget *parent)
        : QWidget(parent)
    {
        const ThemeColors colors = Theme::currentColors();
        auto *layout = new QHBoxLayout(this);
        layout->setContentsMargins(
            chipHorizontalPadding, chipVerticalPadding, chipHorizontalPadding, chipVerticalPadding);
        layout->setSpacing(PendingAttachmentStrip::chipSpacing);

        const int symbolSize = QFontMetrics(chipFont()).height();
        // The paperclip is decoration, drawn into its place rather than being
        // a widget: a screen reader meets only the name and the button.
        m_clip = new QSpacerItem(symbolSize, symbolSize, QSizePolicy::Fixed, QSizePolicy::Fixed);
        m_clipIcon = symbolIcon(QStringLiteral("paperclip"), colors.greyStrong, symbolSize);
        layout->addItem(m_clip);

        auto *label = new QLabel(name, this);
        label->setFont(chipFont());
        QPalette palette = label->palette();
        palette.setColor(QPalette::WindowText, colors.greyStrong);
        label->setPalette(palette);
        layout->addWidget(label);

        removeButton = new QToolButton(this);
        removeButton->setAutoRaise(true);
        removeButton->setFocusPolicy(Qt::NoFocus);
        removeButton->setCursor(Qt::PointingHandCursor);
        removeButton->setIcon(
            symbolIcon(QStringLiteral("xmark.circle.fill"), colors.greyStrong, symbolSize));
        removeButton->setIconSize(QSize(symbolSize, symbolSize));
        removeButton->setAccessibleName(PendingAttachmentStrip::tr("Remove %1").arg(name));
        removeButton->setToolTip(removeButton->accessibleName());
        removeButton->setStyleSheet(QStringLiteral("QToolButton { border: none; padding: 0; }"));
        layout->addWidget(removeButton);
        setAccessibleName(name);
    }

    QToolButton *removeButton;

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const ThemeColors colors = Theme::currentColors();
        QPainterPath shape;
        const QRectF area = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
        shape.addRoundedRect(area, area.height() / 2, area.height() / 2);
        painter.fillPath(shape, colors.surfaceFill);
        painter.setPen(QPen(colors.surfaceStroke, 1));
        painter.drawPath(shape);
        m_clipIcon.paint(&painter, m_clip->geometry());
    }

private:
    QSpacerItem *m_clip;
    QIcon m_clipIcon;
};

// A sideways row: the wheel's vertical turns scroll it too.
class SidewaysScrollArea : public QScrollArea
{
public:
    using QScrollArea::QScrollArea;

protected:
    void wheelEvent(QWheelEvent *event) override
    {
        const QPoint delta = event->angleDelta();
        const int step = std::abs(delta.x()) > std::abs(delta.y()) ? delta.x() : delta.y();
        horizontalScrollBar()->setValue(horizontalScrollBar()->value() - step / 2);
        event->accept();
    }
};

} // namespace

PendingAttachmentStrip::PendingAttachmentStrip(QWidget *parent)
    : QWidget(parent)
    , m_scrollArea(new SidewaysScrollArea(this))
    , m_row(new QWidget)
    , m_rowLayout(new QHBoxLayout(m_row))
{
    m_rowLayout->setContentsMargins(0, 0, 0, 0);
    m_rowLayout->setSpacing(chipSpacing);
    m_rowLayout->addStretch(1);
    m_row->setAutoFillBackground(false);

    m_scrollArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_scrollArea->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_scrollArea->setFrameShape(QFrame::NoFrame);
    m_scrollArea->setWidgetResizable(true);
    m_scrollArea->setWidget(m_row);
    m_scrollArea->viewport()->setAutoFillBackground(false);
    m_scrollArea->setStyleSheet(QStringLiteral("QScrollArea { background: transparent; }"));

    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_scrollArea);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setVisible(false);
}

PendingAttachmentStrip::~PendingAttachmentStrip() = default;

void PendingAttachmentStrip::setUrls(const QList<QUrl> &urls)
{
    if (urls == m_urls && (m_chips.isEmpty() || !m_chips.first().url.isEmpty()))
        return;
    m_urls = urls;
    QList<Chip> chips;
    for (const QUrl &url : urls)
        chips.append({QFileInfo(url.path()).fileName(), url, {}});
    rebuild(chips);
    Q_EMIT urlsChanged();
}

void PendingAttachmentStrip::setAttachments(const QList<NoteAttachment> &attachments)
{
    m_urls.clear();
    QList<Chip> chips;
    for (const NoteAttachment &attachment : attachments)
        chips.append({attachment.fileName, {}, attachment.id});
    rebuild(chips);
}

QStringList PendingAttachmentStrip::chipNames() const
{
    QStringList names;
    for (const Chip &chip : m_chips)
        names.append(chip.name);
    return names;
}

void PendingAttachmentStrip::rebuild(const QList<Chip> &chips)
{
    m_chips = chips;
    while (m_rowLayout->count() > 1) {
        // The chip may be the sender of the click that got here: it goes later.
        QLayoutItem *item = m_rowLayout->takeAt(0);
        item->widget()->hide();
        item->widget()->deleteLater();
        delete item;
    }
    int height = 0;
    for (qsizetype i = 0; i < chips.size(); ++i) {
        const Chip chip = chips.at(i);
        auto *widget = new PendingChip(chip.name, m_row);
        connect(widget->removeButton, &QToolButton::clicked, this, [this, chip] { remove(chip); });
        m_rowLayout->insertWidget(int(i), widget);
        height = std::max(height, widget->sizeHint().height());
    }
    m_scrollArea->setFixedHeight(height);
    setVisible(!chips.isEmpty());
    updateGeometry();
}

void PendingAttachmentStrip::remove(const Chip &chip)
{
    if (!chip.attachmentID.isNull()) {
        Q_EMIT removeRequested(chip.attachmentID);
        return;
    }
    QList<QUrl> urls = m_urls;
    urls.removeAll(chip.url);
    setUrls(urls);
}

} // namespace Vesko
