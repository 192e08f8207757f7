// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/PanelRootView.h"

#include "panel/PanelListView.h"
#include "panel/SaveStatusView.h"
#include "shell/Theme.h"
#include "store/Store.h"

#include <QEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPainterPath>
#include <QVBoxLayout>

namespace Vesko {

namespace {

//! The rounded box around the composer, emphasised while it holds the focus.
class ComposerBox : public QWidget
{
public:
    using QWidget::QWidget;

    void setEmphasised(bool emphasised)
    {
        if (m_emphasised == emphasised)
            return;
        m_emphasised = emphasised;
        update();
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        const ThemeColors colors = Theme::currentColors();
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        QPainterPath path;
        path.addRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 12, 12);
        painter.fillPath(path, m_emphasised ? colors.noteFillSelected : colors.noteFill);
        painter.setPen(QPen(m_emphasised ? colors.accentSoft : colors.surfaceStroke, 1));
        painter.drawPath(path);
    }

private:
    bool m_emphasised = false;
};

} // namespace

PanelRootView::PanelRootView(Store &store, PanelState &state, QWidget *parent)
    : QWidget(parent)
    , m_store(store)
    , m_state(state)
{
    const ThemeColors colors = Theme::currentColors();
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(10, 10, 10, 10);
    layout->setSpacing(10);

    // The list fills the panel; the composer floats over its foot and the
    // rows scroll beneath it.
    m_list = new PanelListView(store, state, this);
    m_list->installEventFilter(this);
    layout->addWidget(m_list, 1);

    m_emptyState = new QWidget(m_list->viewport());
    auto *emptyLayout = new QVBoxLayout(m_emptyState);
    emptyLayout->setContentsMargins(24, 0, 24, 0);
    m_emptyTitle = new QLabel(m_emptyState);
    QFont titleFont = Theme::noteFont();
    titleFont.setWeight(QFont::Medium);
    m_emptyTitle->setFont(titleFont);
    m_emptyTitle->setAlignment(Qt::AlignCenter);
    m_emptyHint = new QLabel(m_emptyState);
    m_emptyHint->setFont(Theme::captionFont());
    m_emptyHint->setAlignment(Qt::AlignCenter);
    m_emptyHint->setWordWrap(true);
    QPalette hintPalette = m_emptyHint->palette();
    hintPalette.setColor(QPalette::WindowText, colors.tertiaryText);
    m_emptyHint->setPalette(hintPalette);
    QPalette titlePalette = m_emptyTitle->palette();
    titlePalette.setColor(QPalette::WindowText, colors.greyStrong);
    m_emptyTitle->setPalette(titlePalette);
    emptyLayout->addStretch();
    emptyLayout->addWidget(m_emptyTitle);
    emptyLayout->addWidget(m_emptyHint);
    emptyLayout->addStretch();

    auto *box = new ComposerBox(this);
    m_composerBox = box;
    box->setMinimumHeight(56);
    auto *boxLayout = new QVBoxLayout(box);
    boxLayout->setContentsMargins(10, 9, 10, 9);
    m_composer = new QLineEdit(box);
    m_composer->setObjectName(composerEditorName);
    m_composer->setFrame(false);
    m_composer->setFont(Theme::noteFont());
    m_composer->setAttribute(Qt::WA_MacShowFocusRect, false);
    QPalette composerPalette = m_composer->palette();
    composerPalette.setColor(QPalette::Base, Qt::transparent);
    m_composer->setPalette(composerPalette);
    m_composer->installEventFilter(this);
    boxLayout->addWidget(m_composer);
    box->raise();
    layout->addWidget(new SaveStatusView(store, this));

    connect(m_composer, &QLineEdit::returnPressed, this, &PanelRootView::commitComposer);
    connect(&m_state, &PanelState::focusRequestChanged, this, &PanelRootView::applyFocusRequest);
    connect(&m_store, &Store::rowsChanged, this, [this] {
        refreshComposerPlaceholder();
        refreshEmptyState();
    });
    refreshComposerPlaceholder();
    refreshEmptyState();
}

void PanelRootView::setFocusTarget(PanelFocusTarget target)
{
    m_focus = target;
    switch (target) {
    case PanelFocusTarget::Composer:
        m_composer->setFocus(Qt::OtherFocusReason);
        break;
    case PanelFocusTarget::List:
        m_list->setFocus(Qt::OtherFocusReason);
        break;
    case PanelFocusTarget::Search:
    case PanelFocusTarget::None:
        break;
    }
    static_cast<ComposerBox *>(m_composerBox)->setEmphasised(m_focus == PanelFocusTarget::Composer);
}

void PanelRootView::applyFocusRequest()
{
    if (m_state.focusTarget() != PanelFocusTarget::None)
        setFocusTarget(m_state.focusTarget());
}

void PanelRootView::commitComposer()
{
    const QString text = m_composer->text().trimmed();
    if (text.isEmpty())
        return;
    if (m_store.addNote(text, m_store.activeSection().id))
        m_composer->clear();
}

void PanelRootView::refreshComposerPlaceholder()
{
    m_composer->setPlaceholderText(tr("Add to ") + m_store.activeSection().title);
}

void PanelRootView::refreshEmptyState()
{
    const bool empty = m_store.rows().isEmpty();
    m_emptyState->setVisible(empty);
    if (!empty)
        return;
    if (m_store.isSearching()) {
        m_emptyTitle->setText(tr("No matches"));
        m_emptyHint->setText(tr("Try a different word."));
    } else {
        m_emptyTitle->setText(tr("Nothing here yet"));
        m_emptyHint->setText(
            tr("Select text anywhere and press Shift twice, or Ctrl+Shift+N for a new section."));
    }
    m_emptyState->setGeometry(m_list->viewport()->rect());
}

void PanelRootView::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    placeComposer();
}

void PanelRootView::placeComposer()
{
    const QRect list = m_list->geometry();
    const int height = std::max(m_composerBox->minimumHeight(), m_composerBox->sizeHint().height());
    m_composerBox->setGeometry(list.left(), list.bottom() + 1 - height, list.width(), height);
    // The rows run under the composer, with its height and 10 px above it.
    m_list->setContentMargins(0, height + 10);
}

bool PanelRootView::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::FocusIn) {
        if (watched == m_composer)
            setFocusTarget(PanelFocusTarget::Composer);
        else if (watched == m_list)
            setFocusTarget(PanelFocusTarget::List);
    } else if (event->type() == QEvent::Resize && watched == m_list) {
        m_emptyState->setGeometry(m_list->viewport()->rect());
        placeComposer();
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace Vesko
