// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/text/SearchFieldView.h"

#include "panel/window/PanelSurface.h"
#include "shell/Theme.h"
#include "store/Store.h"

#include <QEvent>
#include <QGraphicsOpacityEffect>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPropertyAnimation>
#include <QToolButton>

namespace Vesko {

namespace {
constexpr int symbolSize = 11;
constexpr int hoverMilliseconds = 140;
} // namespace

SearchFieldView::SearchFieldView(Store &store, QWidget *parent)
    : QWidget(parent)
    , m_store(store)
    , m_icon(new QLabel(this))
    , m_field(new QLineEdit(this))
    , m_clear(new QToolButton(this))
    , m_clearOpacity(new QGraphicsOpacityEffect(m_clear))
    , m_clearFade(new QPropertyAnimation(m_clearOpacity, "opacity", this))
    , m_hover(new EaseOutValue(this, hoverMilliseconds))
{
    setObjectName(QStringLiteral("VeskoSearchField"));
    setAttribute(Qt::WA_Hover);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(9, 0, 6, 0);
    layout->setSpacing(6);

    m_icon->setAccessibleName(QString());
    m_icon->setFocusPolicy(Qt::NoFocus);
    layout->addWidget(m_icon);

    m_field->setObjectName(QStringLiteral("VeskoSearchEditor"));
    m_field->setFrame(false);
    m_field->setPlaceholderText(tr("Search"));
    m_field->setAccessibleName(tr("Search"));
    m_field->setFont(Theme::searchFont());
    m_field->setAttribute(Qt::WA_MacShowFocusRect, false);
    m_field->installEventFilter(this);
    layout->addWidget(m_field, 1);

    m_clear->setAutoRaise(true);
    m_clear->setFocusPolicy(Qt::NoFocus);
    m_clear->setAccessibleName(tr("Clear search"));
    m_clear->setToolTip(tr("Clear search"));
    m_clear->setCursor(Qt::ArrowCursor);
    m_clear->setFixedSize(18, 18);
    m_clear->setGraphicsEffect(m_clearOpacity);
    m_clearFade->setDuration(clearFadeMilliseconds);
    m_clearFade->setEasingCurve(QEasingCurve::OutCubic);
    connect(m_clearFade, &QPropertyAnimation::finished, this, [this] {
        if (m_clearOpacity->opacity() < 0.01)
            m_clear->hide();
    });
    layout->addWidget(m_clear);

    connect(m_field, &QLineEdit::textEdited, this, &SearchFieldView::textEdited);
    connect(m_clear, &QToolButton::clicked, this, &SearchFieldView::clear);
    connect(&m_store, &Store::searchTextChanged, this, &SearchFieldView::showStoreText);

    applyTheme();
    showStoreText();
    m_clear->setVisible(!m_field->text().isEmpty());
    m_clearOpacity->setOpacity(m_field->text().isEmpty() ? 0.0 : 1.0);
}

QSize SearchFieldView::sizeHint() const
{
    return {200, height};
}

bool SearchFieldView::showsClearButton() const
{
    return m_clear->isVisibleTo(this) && m_clearFade->endValue().toDouble() != 0.0;
}

void SearchFieldView::focusField()
{
    m_field->setFocus(Qt::OtherFocusReason);
}

void SearchFieldView::applyTheme()
{
    const ThemeColors colors = Theme::currentColors();
    m_icon->setPixmap(
        symbolIcon(QStringLiteral("magnifyingglass"), colors.greyStrong, symbolSize + 3)
            .pixmap(symbolSize + 3, symbolSize + 3));
    m_clear->setIcon(
        symbolIcon(QStringLiteral("xmark.circle.fill"), colors.greyLight, symbolSize + 2));
    m_clear->setIconSize(QSize(symbolSize + 2, symbolSize + 2));
    QPalette palette = m_field->palette();
    palette.setColor(QPalette::Base, Qt::transparent);
    palette.setColor(QPalette::Text, colors.text);
    palette.setColor(QPalette::PlaceholderText, colors.tertiaryText);
    m_field->setPalette(palette);
    update();
}

void SearchFieldView::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange)
        applyTheme();
}

void SearchFieldView::showStoreText()
{
    const QString text = m_store.searchText();
    if (m_field->text() != text)
        m_field->setText(text);
    updateClearButton();
}

void SearchFieldView::textEdited(const QString &text)
{
    // The Store compares first: an unchanged text goes the plain way.
    m_store.setSearchText(text);
    updateClearButton();
}

void SearchFieldView::clear()
{
    m_store.setSearchText(QString());
    showStoreText();
    Q_EMIT focusRequested(PanelFocusTarget::Search);
    focusField();
}

void SearchFieldView::updateClearButton()
{
    const bool shows = !m_field->text().isEmpty();
    const double target = shows ? 1.0 : 0.0;
    if (m_clearFade->state() == QAbstractAnimation::Running
            ? m_clearFade->endValue().toDouble() == target
            : m_clearOpacity->opacity() == target && m_clear->isVisibleTo(this) == shows)
        return;
    m_clearFade->stop();
    if (shows)
        m_clear->show();
    if (!isVisible()) {
        m_clearOpacity->setOpacity(target);
        m_clear->setVisible(shows);
        m_clearFade->setEndValue(target);
        return;
    }
    m_clearFade->setStartValue(m_clearOpacity->opacity());
    m_clearFade->setEndValue(target);
    m_clearFade->start();
}

bool SearchFieldView::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_field
        && (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut))
        update();
    if (watched == m_field && event->type() == QEvent::KeyPress) {
        auto *key = static_cast<QKeyEvent *>(event);
        if (key->key() == Qt::Key_Escape && !(key->modifiers() & ~Qt::KeypadModifier)) {
            // The first Escape clears the text, the second hands the keyboard on.
            if (!m_field->text().isEmpty()) {
                m_store.setSearchText(QString());
                showStoreText();
            } else {
                Q_EMIT focusRequested(PanelFocusTarget::List);
            }
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void SearchFieldView::enterEvent(QEnterEvent *event)
{
    QWidget::enterEvent(event);
    m_hover->setTarget(true);
}

void SearchFieldView::leaveEvent(QEvent *event)
{
    QWidget::leaveEvent(event);
    m_hover->setTarget(false);
}

void SearchFieldView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const double emphasis = std::max(m_hover->value(), m_field->hasFocus() ? 1.0 : 0.0);
    paintElevatedSurface(painter, rect(), height / 2.0 - 4, Theme::currentColors(), emphasis);
}

} // namespace Vesko
