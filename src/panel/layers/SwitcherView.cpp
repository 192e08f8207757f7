// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/layers/SwitcherView.h"

#include "panel/window/PanelState.h"
#include "shell/Theme.h"
#include "store/Store.h"

#include <QCursor>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMouseEvent>
#include <QStackedWidget>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

namespace Vesko {

namespace {

constexpr int cardPadding = 12;
constexpr int selectedRole = Qt::UserRole + 1;
//! The row's icon stands after its title: the mark of the active item.
constexpr int trailingIconRole = Qt::UserRole + 2;

//! Draws the mark of the active item at the row's trailing end, so that
//! every title starts at the same place.
class SwitcherRowDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override
    {
        QStyledItemDelegate::initStyleOption(option, index);
        if (index.data(trailingIconRole).toBool())
            option->decorationPosition = QStyleOptionViewItem::Right;
    }
};

} // namespace

QLabel *SwitcherView::hintLabel(const QString &text, QWidget *parent)
{
    auto *label = new QLabel(text, parent);
    label->setFont(Theme::captionFont());
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, Theme::currentColors().tertiaryText);
    label->setPalette(palette);
    return label;
}

QLineEdit *SwitcherView::roundedField(const QString &placeholder, QWidget *parent)
{
    const ThemeColors colors = Theme::currentColors();
    auto *field = new QLineEdit(parent);
    field->setPlaceholderText(placeholder);
    field->setAccessibleName(placeholder);
    field->setFont(Theme::noteFont());
    field->setStyleSheet(
        QStringLiteral("QLineEdit { border: 0.5px solid %1; border-radius: 9px;"
                       " padding: 7px 9px; background: %2; color: %3; }")
            .arg(colors.surfaceStroke.name(QColor::HexArgb), colors.noteFill.name(QColor::HexArgb),
                colors.text.name(QColor::HexArgb)));
    return field;
}

SwitcherView::SwitcherView(
    Store &store, PanelState &state, PanelLayer layer, bool offersCreate, QWidget *parent)
    : PanelLayerView(parent)
    , m_store(store)
    , m_state(state)
    , m_rows({}, offersCreate)
    , m_layer(layer)
{ }

void SwitcherView::build(const QString &placeholder, const QString &hint, int maximumListHeight,
    const std::optional<QUuid> &current)
{
    const ThemeColors colors = Theme::currentColors();
    m_maximumListHeight = maximumListHeight;
    auto *cardLayout = new QVBoxLayout(card());
    cardLayout->setContentsMargins(cardPadding, cardPadding, cardPadding, cardPadding);
    m_pages = new QStackedWidget(card());
    cardLayout->addWidget(m_pages);

    auto *page = new QWidget(m_pages);
    auto *layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(8);
    m_filter = roundedField(placeholder, page);
    m_filter->addAction(symbolIcon(QStringLiteral("magnifyingglass"), colors.greyStrong, 16),
        QLineEdit::LeadingPosition);
    m_filter->installEventFilter(this);
    layout->addWidget(m_filter);

    m_list = new QListWidget(page);
    m_list->setFrameShape(QFrame::NoFrame);
    m_list->setFocusPolicy(Qt::NoFocus);
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_list->setMouseTracking(true);
    m_list->setItemDelegate(new SwitcherRowDelegate(m_list));
    m_list->viewport()->installEventFilter(this);
    QColor selected = colors.accent;
    selected.setAlphaF(0.18f);
    m_list->setStyleSheet(
        QStringLiteral("QListWidget { background: transparent; }"
                       " QListWidget::item { border-radius: 8px; padding: 7px 9px;"
                       " color: %1; }"
                       " QListWidget::item:selected { background: %2; color: %1; }")
            .arg(colors.text.name(QColor::HexArgb), selected.name(QColor::HexArgb)));
    m_list->setFont(Theme::noteFont());
    layout->addWidget(m_list);
    layout->addWidget(hintLabel(hint, page));
    m_pages->addWidget(page);

    connect(m_filter, &QLineEdit::textChanged, this, [this](const QString &text) {
        m_rows.setQuery(text);
        refreshRows();
    });
    connect(m_list, &QListWidget::itemClicked, this, [this](QListWidgetItem *item) {
        m_rows.setSelection(m_rows.rowAt(m_list->row(item)));
        commit();
    });

    m_rows.setItems(currentItems());
    m_rows.selectInitial(current);
    refreshRows();

    // The field takes the keyboard once the switcher has appeared.
    focusWhenShown(m_filter);
}

void SwitcherView::setRenamePage(QWidget *page)
{
    m_pages->addWidget(page);
}

void SwitcherView::showRenamePage(bool shown)
{
    m_pages->setCurrentIndex(shown ? 1 : 0);
    placeCard();
}

QStringList SwitcherView::rowTexts() const
{
    QStringList texts;
    for (int i = 0; i < m_list->count(); ++i)
        texts.append(m_list->item(i)->text());
    return texts;
}

void SwitcherView::refreshRows()
{
    const ThemeColors colors = Theme::currentColors();
    m_refreshing = true;
    m_list->clear();
    const std::optional<QUuid> active = activeItem();
    for (const SwitcherItem &item : m_rows.filtered()) {
        auto *row = new QListWidgetItem(item.title, m_list);
        if (active && *active == item.id) {
            row->setIcon(symbolIcon(QStringLiteral("checkmark"), colors.accent, 12));
            row->setData(trailingIconRole, true);
        }
    }
    if (m_rows.createOffered()) {
        new QListWidgetItem(symbolIcon(QStringLiteral("plus"), colors.text, 12),
            tr("Create “%1”").arg(m_rows.trimmedQuery()), m_list);
    }
    int height = 0;
    for (int i = 0; i < m_list->count(); ++i)
        height += m_list->sizeHintForRow(i);
    m_list->setFixedHeight(std::min(m_maximumListHeight, height + 2));
    m_refreshing = false;
    showSelection();
    placeCard();
}

void SwitcherView::showSelection()
{
    const std::optional<int> index = m_rows.selectedIndex();
    m_refreshing = true;
    if (index) {
        m_list->setCurrentRow(*index);
        m_list->scrollToItem(m_list->item(*index));
    } else {
        m_list->clearSelection();
        m_list->setCurrentRow(-1);
    }
    // Only the selected row tells a screen reader it is selected.
    for (int i = 0; i < m_list->count(); ++i)
        m_list->item(i)->setData(selectedRole, index && *index == i);
    m_refreshing = false;
}

void SwitcherView::moveSelection(int delta)
{
    // The pointer's next report, if it has not moved, is not a choice.
    m_lastPointerLocation = QCursor::pos();
    m_rows.move(delta);
    showSelection();
}

void SwitcherView::pointerMoved(const QPoint &viewportPosition)
{
    const QPoint location = QCursor::pos();
    if (m_lastPointerLocation && *m_lastPointerLocation == location)
        return;
    m_lastPointerLocation = location;
    if (QListWidgetItem *item = m_list->itemAt(viewportPosition)) {
        m_rows.setSelection(m_rows.rowAt(m_list->row(item)));
        showSelection();
    }
}

void SwitcherView::commit()
{
    const std::optional<SwitcherSelection> target = m_rows.commitTarget();
    if (!target)
        return;
    if (target->isCreate)
        create();
    else
        choose(target->id);
}

void SwitcherView::close()
{
    m_state.setShowing(m_layer, false);
}

bool SwitcherView::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_filter && event->type() == QEvent::KeyPress) {
        const auto *key = static_cast<QKeyEvent *>(event);
        switch (key->key()) {
        case Qt::Key_Up:
            moveSelection(-1);
            return true;
        case Qt::Key_Down:
            moveSelection(1);
            return true;
        case Qt::Key_Tab:
            moveSelection(key->modifiers() & Qt::ShiftModifier ? -1 : 1);
            return true;
        case Qt::Key_Backtab:
            moveSelection(-1);
            return true;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            commit();
            return true;
        case Qt::Key_F2:
            beginRename();
            return true;
        case Qt::Key_Escape:
            close();
            return true;
        default:
            break;
        }
    }
    if (m_list && watched == m_list->viewport() && event->type() == QEvent::MouseMove)
        pointerMoved(static_cast<QMouseEvent *>(event)->position().toPoint());
    return PanelLayerView::eventFilter(watched, event);
}

QRect SwitcherView::cardGeometry() const
{
    const int width = std::min(300, std::max(0, this->width() - 2 * 20));
    // Before build() the card has no content yet.
    if (QLayout *layout = card()->layout())
        layout->activate();
    const int height = std::min(card()->sizeHint().height(), std::max(0, this->height() - 40));
    // The card stands in the upper part of the panel, where the eye is.
    return QRect((this->width() - width) / 2, std::max(20, this->height() / 6), width, height);
}

} // namespace Vesko
