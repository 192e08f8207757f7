// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/layers/ShortcutSheetView.h"

#include "capture/HotKeyCenter.h"
#include "capture/KeyCombo.h"
#include "panel/window/PanelState.h"
#include "shell/Theme.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QScrollArea>
#include <QVBoxLayout>

namespace Vesko {

namespace {

constexpr int cardPadding = 14;
constexpr int cardSpacing = 12;
constexpr int headingSpacing = 5;
constexpr int symbolColumn = 15;
constexpr int rowPadding = 8;
constexpr int separatorInset = 10;

void setTextColor(QWidget *widget, const QColor &color)
{
    QPalette palette = widget->palette();
    palette.setColor(QPalette::WindowText, color);
    widget->setPalette(palette);
}

//! A group's rows on a rounded surface, with hairlines between them.
class GroupSurface : public QWidget
{
public:
    using QWidget::QWidget;

protected:
    void paintEvent(QPaintEvent *) override
    {
        const ThemeColors colors = Theme::currentColors();
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        QPainterPath path;
        path.addRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 8, 8);
        painter.fillPath(path, colors.noteFill);
        QColor line = colors.text;
        line.setAlphaF(0.35f * 0.35f);
        painter.setPen(QPen(line, 0.5));
        const QList<QWidget *> rows = findChildren<QWidget *>(Qt::FindDirectChildrenOnly);
        for (qsizetype i = 0; i + 1 < rows.size(); ++i) {
            const qreal y = rows.at(i)->geometry().bottom() + 0.5;
            painter.drawLine(QPointF(separatorInset, y), QPointF(width() - separatorInset, y));
        }
    }
};

QLabel *secondaryLabel(const QString &text, QWidget *parent)
{
    auto *label = new QLabel(text, parent);
    label->setFont(Theme::captionFont());
    setTextColor(label, Theme::currentColors().greyStrong);
    return label;
}

//! One row: symbol column, title, gap, keys. Returns the keys' label.
QLabel *addRow(QWidget *group, const QString &symbol, const QString &title, const QString &keys)
{
    const ThemeColors colors = Theme::currentColors();
    auto *row = new QWidget(group);
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(rowPadding, rowPadding, rowPadding, rowPadding);
    layout->setSpacing(6);
    auto *icon = new QLabel(row);
    icon->setFixedWidth(symbolColumn);
    if (!symbol.isEmpty())
        icon->setPixmap(symbolIcon(symbol, colors.greyStrong, 12).pixmap(12, 12));
    layout->addWidget(icon);
    auto *name = new QLabel(title, row);
    name->setFont(Theme::captionFont());
    // A long title wraps; the keys keep their width.
    name->setWordWrap(true);
    name->setMinimumWidth(0);
    // A policy set anew drops the height-for-width that word wrap asked for.
    QSizePolicy namePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    namePolicy.setHeightForWidth(true);
    name->setSizePolicy(namePolicy);
    setTextColor(name, colors.text);
    layout->addWidget(name, 1);
    auto *value = new QLabel(keys, row);
    QFont keyFont = Theme::captionFont();
    keyFont.setWeight(QFont::Medium);
    value->setFont(keyFont);
    value->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    value->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
    setTextColor(value, colors.greyStrong);
    layout->addWidget(value);
    row->setAccessibleName(title + u' ' + keys);
    group->layout()->addWidget(row);
    return value;
}

QWidget *addGroup(QVBoxLayout *body, const QString &heading, QWidget *parent)
{
    auto *box = new QVBoxLayout;
    box->setSpacing(headingSpacing);
    auto *title = secondaryLabel(heading, parent);
    QFont font = title->font();
    font.setWeight(QFont::DemiBold);
    title->setFont(font);
    box->addWidget(title);
    auto *surface = new GroupSurface(parent);
    auto *rows = new QVBoxLayout(surface);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(0);
    box->addWidget(surface);
    body->addLayout(box);
    return surface;
}

} // namespace

ShortcutSheetView::ShortcutSheetView(Store &store, PanelState &state, HotKeyCenter *hotKeys,
    const KeyLayout *layout, QWidget *parent)
    : PanelLayerView(parent)
    , m_store(store)
    , m_state(state)
    , m_hotKeys(hotKeys)
    , m_layout(layout)
{
    setObjectName(QStringLiteral("VeskoShortcutSheet"));
    setAccessibleName(tr("Keyboard Shortcuts"));
    // The sheet takes the keyboard, so that Escape reaches the panel's keys.
    setFocusPolicy(Qt::StrongFocus);
    const ThemeColors colors = Theme::currentColors();

    auto *cardLayout = new QVBoxLayout(card());
    cardLayout->setContentsMargins(cardPadding, cardPadding, cardPadding, cardPadding);
    cardLayout->setSpacing(cardSpacing);

    auto *header = new QHBoxLayout;
    header->setSpacing(6);
    auto *icon = new QLabel(card());
    icon->setPixmap(symbolIcon(QStringLiteral("keyboard"), colors.text, 14).pixmap(14, 14));
    header->addWidget(icon);
    auto *title = new QLabel(tr("Keyboard Shortcuts"), card());
    QFont titleFont = Theme::noteFont();
    titleFont.setWeight(QFont::DemiBold);
    title->setFont(titleFont);
    setTextColor(title, colors.text);
    header->addWidget(title, 1);
    header->addWidget(secondaryLabel(tr("esc to close"), card()));
    cardLayout->addLayout(header);

    auto *scroll = new QScrollArea(card());
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setFocusPolicy(Qt::NoFocus);
    scroll->viewport()->setAutoFillBackground(false);
    auto *content = new QWidget(scroll);
    content->setAutoFillBackground(false);
    auto *body = new QVBoxLayout(content);
    body->setContentsMargins(0, 0, 0, 0);
    body->setSpacing(cardSpacing);

    QWidget *window = addGroup(body, tr("In this window"), content);
    for (Shortcut shortcut : windowShortcuts())
        addRow(window, Shortcuts::symbolName(shortcut), Shortcuts::title(shortcut),
            Shortcuts::displayText(shortcut));
    QWidget *composing = addGroup(body, tr("While composing"), content);
    for (Shortcut shortcut : composingShortcuts())
        addRow(composing, Shortcuts::symbolName(shortcut), Shortcuts::title(shortcut),
            Shortcuts::displayText(shortcut));
    QWidget *systemWide = addGroup(body, tr("SYSTEM-WIDE"), content);
    for (HotKeyAction action : allHotKeyActions)
        m_systemWideKeys.append(addRow(systemWide, QString(), Vesko::title(action), QString()));
    body->addStretch();
    scroll->setWidget(content);
    scroll->setMaximumHeight(maximumBodyHeight);
    cardLayout->addWidget(scroll);

    if (m_hotKeys) {
        connect(
            m_hotKeys, &HotKeyCenter::combosChanged, this, &ShortcutSheetView::refreshSystemWide);
        // The desktop tells its keys later, where it owns them.
        connect(m_hotKeys, &HotKeyCenter::registrationsChanged, this,
            &ShortcutSheetView::refreshSystemWide);
    }
    if (m_layout)
        connect(m_layout, &KeyLayout::changed, this, &ShortcutSheetView::refreshSystemWide);
    refreshSystemWide();
}

QList<Shortcut> ShortcutSheetView::windowShortcuts()
{
    QList<Shortcut> shortcuts;
    for (Shortcut shortcut : Shortcuts::allCases()) {
        if (!composingShortcuts().contains(shortcut))
            shortcuts.append(shortcut);
    }
    return shortcuts;
}

QList<Shortcut> ShortcutSheetView::composingShortcuts()
{
    return {Shortcut::commitNote, Shortcut::newLine, Shortcut::hashtagSection};
}

QStringList ShortcutSheetView::rowTexts() const
{
    QStringList rows;
    for (const QWidget *group : card()->findChildren<QWidget *>()) {
        if (!dynamic_cast<const GroupSurface *>(group))
            continue;
        for (const QWidget *row : group->findChildren<QWidget *>(Qt::FindDirectChildrenOnly)) {
            const QList<QLabel *> parts = row->findChildren<QLabel *>();
            if (parts.size() == 3)
                rows.append(parts.at(1)->text() + u'\t' + parts.at(2)->text());
        }
    }
    return rows;
}

void ShortcutSheetView::refreshSystemWide()
{
    for (qsizetype i = 0; i < m_systemWideKeys.size(); ++i) {
        const HotKeyAction action = allHotKeyActions.at(std::size_t(i));
        if (m_hotKeys && m_hotKeys->desktopOwnsCombinations()) {
            const QString trigger = m_hotKeys->desktopTrigger(action);
            m_systemWideKeys.at(i)->setText(trigger.isEmpty() ? tr("—") : trigger);
            continue;
        }
        const std::optional<KeyCombo> combo = m_hotKeys ? m_hotKeys->combo(action) : std::nullopt;
        m_systemWideKeys.at(i)->setText(combo ? displayString(*combo, m_layout) : tr("—"));
    }
}

void ShortcutSheetView::dismiss()
{
    m_state.setShowing(PanelLayer::Shortcuts, false);
}

QRect ShortcutSheetView::cardGeometry() const
{
    const int width = std::min(cardWidth, std::max(0, this->width() - 2 * 10));
    const int height = std::min(card()->sizeHint().height(), std::max(0, this->height() - 2 * 10));
    return QRect((this->width() - width) / 2, (this->height() - height) / 2, width, height);
}

} // namespace Vesko
