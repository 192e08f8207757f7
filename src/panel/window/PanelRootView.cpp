// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/window/PanelRootView.h"

#include "panel/layers/PanelLayerView.h"
#include "panel/layers/PanelPromptView.h"
#include "panel/layers/PanelPrompts.h"
#include "panel/layers/ProjectSwitcherView.h"
#include "panel/layers/SectionSwitcherView.h"
#include "panel/layers/ShortcutSheetView.h"
#include "panel/list/PanelListView.h"
#include "panel/text/ComposerView.h"
#include "panel/text/NativeInlineTextField.h"
#include "panel/text/SearchFieldView.h"
#include "panel/window/PanelCommands.h"
#include "panel/window/PanelMenus.h"
#include "panel/window/SaveStatusView.h"
#include "panel/window/TextEditing.h"
#include "panel/window/UnreadableLibraryView.h"
#include "shell/Preferences.h"
#include "shell/Theme.h"
#include "store/Store.h"

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QEvent>
#include <QGraphicsOpacityEffect>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QPainterPath>
#include <QPlainTextEdit>
#include <QPropertyAnimation>
#include <QTextDocument>
#include <QTextEdit>
#include <QToolButton>
#include <QVBoxLayout>

namespace Vesko {

namespace {

PanelRootView::LayerFactory &layerFactory()
{
    static PanelRootView::LayerFactory factory;
    return factory;
}

//! A layer that has no view of its own: the dim alone, which a click or
//! Escape takes down.
class LayerDim : public QWidget
{
public:
    LayerDim(PanelState &state, PanelLayer layer, QWidget *parent)
        : QWidget(parent)
        , m_state(state)
        , m_layer(layer)
    {
        setFocusPolicy(Qt::StrongFocus);
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        PanelLayerView::paintDim(painter, rect());
    }
    void mousePressEvent(QMouseEvent *) override { m_state.setShowing(m_layer, false); }
    void keyPressEvent(QKeyEvent *event) override
    {
        if (event->key() == Qt::Key_Escape)
            m_state.setShowing(m_layer, false);
        else
            QWidget::keyPressEvent(event);
    }

private:
    PanelState &m_state;
    PanelLayer m_layer;
};

void fadeIn(QWidget *widget)
{
    auto *opacity = new QGraphicsOpacityEffect(widget);
    opacity->setOpacity(0.0);
    widget->setGraphicsEffect(opacity);
    auto *fade = new QPropertyAnimation(opacity, "opacity", widget);
    fade->setDuration(PanelRootView::layerFadeMilliseconds);
    fade->setEasingCurve(QEasingCurve::OutCubic);
    fade->setStartValue(0.0);
    fade->setEndValue(1.0);
    // Once in, the effect goes: the layer draws directly again.
    QObject::connect(fade, &QPropertyAnimation::finished, widget,
        [widget] { widget->setGraphicsEffect(nullptr); });
    fade->start(QAbstractAnimation::DeleteWhenStopped);
}

//! The widget takes typed text: a text editor or a spin box.
bool takesText(const QWidget *widget)
{
    return isTextEditor(widget) || qobject_cast<const QAbstractSpinBox *>(widget);
}

//! The widget of \a root that the panel's key presses go to. The window's own
//! focus widget, not the application's: after the X input focus was moved
//! behind the window manager's back (a copy typed into the front window while
//! the panel was in front), Qt may consider no window active while the panel
//! still has the keyboard and its presses still reach this widget.
QWidget *keyboardWidget(const QWidget &root)
{
    QWidget *focus = root.window()->focusWidget();
    return focus && (focus == &root || root.isAncestorOf(focus)) ? focus : nullptr;
}

//! Hands the key presses made in one panel to its key handler before the
//! focused widget sees them; a press the handler ignores goes on as usual.
class KeyRouter : public QObject
{
public:
    KeyRouter(QWidget &root, PanelKeyHandler &keys)
        : QObject(&root)
        , m_root(root)
        , m_keys(keys)
    { }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        // Only the first delivery, to the panel's focused widget: a press the
        // widget ignores travels up its parents and is not decided again.
        if (event->type() != QEvent::KeyPress || !watched->isWidgetType()
            || watched != keyboardWidget(m_root))
            return false;
        auto *widget = static_cast<QWidget *>(watched);
        const auto *key = static_cast<QKeyEvent *>(event);
        // A button that has the keyboard (those of the lines at the foot) is
        // pressed by its own keys, which the list would otherwise take.
        if (qobject_cast<QAbstractButton *>(widget) && key->modifiers() == Qt::NoModifier
            && (key->key() == Qt::Key_Space || key->key() == Qt::Key_Return
                || key->key() == Qt::Key_Enter))
            return false;
        return m_keys.handleKeyPress(key->key(), key->modifiers())
            == PanelKeyHandler::Result::Handled;
    }

private:
    QWidget &m_root;
    PanelKeyHandler &m_keys;
};

} // namespace

void PanelRootView::setLayerFactory(LayerFactory factory)
{
    layerFactory() = std::move(factory);
}

PanelRootView::PanelRootView(
    Store &store, PanelState &state, Preferences &preferences, QWidget *parent)
    : QWidget(parent)
    , m_store(store)
    , m_state(state)
    , m_preferences(preferences)
    , m_keys(store, state)
{
    m_keys.setHooks({
        .focusTarget = [this] { return m_focus; },
        .textFieldFocused =
            [this] {
                // Behind a layer the composer and the search field hold no keys.
                QWidget *focus = keyboardWidget(*this);
                if (m_state.frontLayer() != PanelLayer::None && focus
                    && (m_composer->isAncestorOf(focus) || m_search->isAncestorOf(focus)))
                    return false;
                return takesText(focus);
            },
        .textFieldCanUndo
        = [this](bool redo) { return canUndoTyping(keyboardWidget(*this), redo); },
        .hidePanel = [this] { Q_EMIT hideRequested(); },
        .showContextMenu =
            [this] {
                // A layer in front holds the keyboard; the list's menus wait under it.
                if (m_state.frontLayer() == PanelLayer::None)
                    m_list->showKeyboardMenu();
            },
    });
    setObjectName(QStringLiteral("VeskoPanelRoot"));

    // The list first: the bars stand over it.
    m_list = new PanelListView(store, state, this);
    m_list->setObjectName(QStringLiteral("VeskoNoteList"));
    m_list->installEventFilter(this);
    // Every key press inside the panel, the list's included, passes the key
    // handler first, from whichever part holds the keyboard (before the
    // widget's own Tab handling too). The list's own arrow keys stand down.
    m_list->setKeyHandler([](QKeyEvent *) { return false; });
    qApp->installEventFilter(new KeyRouter(*this, m_keys));

    m_emptyState = new QWidget(this);
    m_emptyState->setAttribute(Qt::WA_TransparentForMouseEvents);
    auto *emptyLayout = new QVBoxLayout(m_emptyState);
    emptyLayout->setContentsMargins(24, 0, 24, 0);
    emptyLayout->setSpacing(4);
    m_emptyTitle = new QLabel(m_emptyState);
    QFont titleFont = Theme::noteFont();
    titleFont.setWeight(QFont::Medium);
    m_emptyTitle->setFont(titleFont);
    m_emptyTitle->setAlignment(Qt::AlignCenter);
    m_emptyHint = new QLabel(m_emptyState);
    m_emptyHint->setFont(Theme::captionFont());
    m_emptyHint->setAlignment(Qt::AlignCenter);
    m_emptyHint->setWordWrap(true);
    emptyLayout->addStretch();
    emptyLayout->addWidget(m_emptyTitle);
    emptyLayout->addWidget(m_emptyHint);
    emptyLayout->addStretch();

    m_header = new QWidget(this);
    auto *headerLayout = new QHBoxLayout(m_header);
    headerLayout->setContentsMargins(0, 0, 0, 0);
    headerLayout->setSpacing(headerSpacing);
    m_search = new SearchFieldView(store, m_header);
    m_search->field()->installEventFilter(this);
    headerLayout->addWidget(m_search, 1);
    m_overflow = new QToolButton(m_header);
    m_overflow->setObjectName(QStringLiteral("VeskoOverflowButton"));
    m_overflow->setAutoRaise(true);
    m_overflow->setFixedSize(overflowButtonSize, overflowButtonSize);
    m_overflow->setFocusPolicy(Qt::NoFocus);
    m_overflow->setAccessibleName(tr("More options"));
    m_overflow->setToolTip(tr("More options"));
    headerLayout->addWidget(m_overflow);

    m_composer = new ComposerView(store, this);
    m_composer->field()->editor()->installEventFilter(this);
    // Under the composer: the line that says when the library file could not
    // be read, and the one that says when the library cannot be saved.
    auto *foot = new QWidget(this);
    auto *footLayout = new QVBoxLayout(foot);
    footLayout->setContentsMargins(0, 0, 0, 0);
    footLayout->setSpacing(4);
    footLayout->addWidget(
        new UnreadableLibraryView(store, &PanelCommands::showInFileManager, foot));
    footLayout->addWidget(new SaveStatusView(store, foot));
    setFootView(foot);

    connect(m_search, &SearchFieldView::focusRequested, this, &PanelRootView::setFocusTarget);
    connect(m_composer, &ComposerView::focusRequested, this, &PanelRootView::setFocusTarget);
    connect(m_overflow, &QToolButton::clicked, this, &PanelRootView::showOverflowMenu);
    connect(&m_state, &PanelState::focusRequestChanged, this, &PanelRootView::applyFocusRequest);
    connect(&m_state, &PanelState::layersChanged, this, &PanelRootView::refreshLayer);
    connect(&m_store, &Store::rowsChanged, this, &PanelRootView::refreshEmptyState);
    connect(&m_store, &Store::searchTextChanged, this, &PanelRootView::refreshEmptyState);

    const ThemeColors colors = Theme::currentColors();
    QPalette titlePalette = m_emptyTitle->palette();
    titlePalette.setColor(QPalette::WindowText, colors.greyStrong);
    m_emptyTitle->setPalette(titlePalette);
    QPalette hintPalette = m_emptyHint->palette();
    hintPalette.setColor(QPalette::WindowText, colors.tertiaryText);
    m_emptyHint->setPalette(hintPalette);
    m_overflow->setIcon(symbolIcon(QStringLiteral("ellipsis"), colors.greyStrong, 15));
    m_overflow->setIconSize(QSize(15, 15));

    refreshEmptyState();
    setFocusTarget(PanelFocusTarget::Composer);
    refreshLayer();
}

PanelRootView::~PanelRootView() = default;

void PanelRootView::setFootView(QWidget *view)
{
    if (m_foot == view)
        return;
    delete m_foot;
    m_foot = view;
    if (view) {
        view->setParent(this);
        // It shows and hides itself; the panel makes room for it then.
        view->installEventFilter(this);
    }
    layOut();
}

void PanelRootView::setRowsRunUnderBars(bool under)
{
    if (m_rowsUnderBars == under)
        return;
    m_rowsUnderBars = under;
    layOut();
}

void PanelRootView::setFocusTarget(PanelFocusTarget target)
{
    if (target == PanelFocusTarget::None)
        return;
    const bool changed = target != m_focus;
    m_focus = target;
    switch (target) {
    case PanelFocusTarget::Search:
        m_search->focusField();
        break;
    case PanelFocusTarget::List:
        m_list->setFocus(Qt::OtherFocusReason);
        break;
    case PanelFocusTarget::Composer:
        // Taken at once when the window is ready, else when it is.
        if (!m_layer && isVisible())
            m_composer->field()->setFocus(Qt::OtherFocusReason);
        break;
    case PanelFocusTarget::None:
        break;
    }
    applyComposerFocus();
    if (changed)
        Q_EMIT focusTargetChanged(m_focus);
}

QWidget *PanelRootView::focusWidgetFor(PanelFocusTarget target) const
{
    switch (target) {
    case PanelFocusTarget::Composer:
        return m_composer->field()->editor();
    case PanelFocusTarget::Search:
        return m_search->field();
    case PanelFocusTarget::List:
        return m_list;
    case PanelFocusTarget::None:
        break;
    }
    return nullptr;
}

void PanelRootView::applyComposerFocus()
{
    // A layer holds the keyboard while it is up; the composer waits under it.
    m_composer->setFocused(m_focus == PanelFocusTarget::Composer && !m_layer);
}

void PanelRootView::applyFocusRequest()
{
    setFocusTarget(m_state.focusTarget());
}

bool PanelRootView::showsEmptyState() const
{
    return m_emptyState->isVisibleTo(this);
}

QString PanelRootView::emptyTitle() const
{
    return m_emptyTitle->text();
}

QString PanelRootView::emptyHint() const
{
    return m_emptyHint->text();
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
}

void PanelRootView::showOverflowMenu()
{
    auto *menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->setObjectName(QStringLiteral("VeskoOverflowMenu"));
    menu->setAccessibleName(tr("More options"));
    fillOverflowMenu(*menu, m_store, m_state, m_preferences);
    m_overflow->setDown(true);
    connect(
        menu, &QMenu::aboutToHide, m_overflow, [button = m_overflow] { button->setDown(false); });
    menu->popup(m_overflow->mapToGlobal(
        QPoint(m_overflow->width() - menu->sizeHint().width(), m_overflow->height() + 4)));
}

QWidget *PanelRootView::makeLayerView(PanelLayer layer)
{
    if (const std::optional<PanelPrompt> prompt = panelPrompt(layer, m_store)) {
        return new PanelPromptView(
            prompt->title, prompt->placeholder, prompt->initialText,
            [this, layer](const std::optional<QString> &name) {
                commitPanelPrompt(layer, m_store, m_state, name);
            },
            this);
    }
    if (layer == PanelLayer::SectionSwitcher)
        return new SectionSwitcherView(m_store, m_state, this);
    if (layer == PanelLayer::ProjectSwitcher)
        return new ProjectSwitcherView(m_store, m_state, this);
    if (const LayerFactory &factory = layerFactory()) {
        if (QWidget *view = factory(layer, this))
            return view;
    }
    if (layer == PanelLayer::Shortcuts)
        return new ShortcutSheetView(m_store, m_state, nullptr, nullptr, this);
    return new LayerDim(m_state, layer, this);
}

void PanelRootView::refreshLayer()
{
    const PanelLayer front = m_state.frontLayer();
    if (front == m_shownLayer)
        return;
    retireLayer();
    m_shownLayer = front;
    if (front != PanelLayer::None) {
        m_layer = makeLayerView(front);
        m_layer->setGeometry(rect());
        m_layer->show();
        m_layer->raise();
        if (isVisible())
            fadeIn(m_layer);
        if (m_layer->focusPolicy() != Qt::NoFocus)
            m_layer->setFocus(Qt::OtherFocusReason);
    }
    applyComposerFocus();
    if (!m_layer) {
        // Back from a layer: the panel's own focus target takes the keyboard again.
        setFocusTarget(m_focus);
    }
}

void PanelRootView::retireLayer()
{
    if (!m_layer)
        return;
    QWidget *old = m_layer;
    m_layer = nullptr;
    m_shownLayer = PanelLayer::None;
    old->setAttribute(Qt::WA_TransparentForMouseEvents);
    old->clearFocus();
    if (!isVisible()) {
        old->deleteLater();
        return;
    }
    auto *opacity = new QGraphicsOpacityEffect(old);
    old->setGraphicsEffect(opacity);
    auto *fade = new QPropertyAnimation(opacity, "opacity", old);
    fade->setDuration(layerFadeMilliseconds);
    fade->setEasingCurve(QEasingCurve::OutCubic);
    fade->setStartValue(1.0);
    fade->setEndValue(0.0);
    connect(fade, &QPropertyAnimation::finished, old, &QObject::deleteLater);
    fade->start(QAbstractAnimation::DeleteWhenStopped);
}

void PanelRootView::layOut()
{
    const QRect inner = rect().adjusted(padding, padding, -padding, -padding);
    const int headerHeight = SearchFieldView::height;
    m_header->setGeometry(inner.left(), inner.top(), inner.width(), headerHeight);

    int bottom = inner.bottom() + 1;
    // A foot whose lines are all hidden takes no room.
    int footHeight = 0;
    if (m_foot && !m_foot->isHidden()) {
        footHeight = m_foot->hasHeightForWidth() ? m_foot->heightForWidth(inner.width())
                                                 : m_foot->sizeHint().height();
    }
    if (footHeight > 0) {
        m_foot->setGeometry(inner.left(), bottom - footHeight, inner.width(), footHeight);
        bottom -= footHeight + 4;
    }
    const int composerHeight = std::max(ComposerView::minimumBoxHeight,
        m_composer->heightForWidth(inner.width()) > 0 ? m_composer->heightForWidth(inner.width())
                                                      : m_composer->sizeHint().height());
    m_composer->setGeometry(inner.left(), bottom - composerHeight, inner.width(), composerHeight);

    const int topMargin = headerHeight + padding;
    const int bottomMargin = inner.bottom() + 1 - m_composer->y() + padding;
    if (m_rowsUnderBars) {
        // The list takes the whole inner area; its rows run under the two bars.
        m_list->setGeometry(inner);
        m_list->setContentMargins(std::max(topMargin, PanelListView::minimumTopMargin),
            std::max(bottomMargin, PanelListView::minimumBottomMargin));
    } else {
        // The rows stop at the bars: nothing scrolls beneath them.
        const int top = inner.top() + headerHeight + barGap;
        const int bottom = m_composer->y() - barGap;
        m_list->setGeometry(inner.left(), top, inner.width(), std::max(0, bottom - top));
        m_list->setContentMargins(0, 0);
    }
    // The empty state stands in the clear area between the bars.
    m_emptyState->setGeometry(inner.left(), inner.top() + topMargin, inner.width(),
        std::max(0, m_composer->y() - padding - (inner.top() + topMargin)));
    m_emptyState->raise();
    m_header->raise();
    m_composer->raise();
    if (m_foot)
        m_foot->raise();
    if (m_layer)
        m_layer->raise();
    if (m_layer)
        m_layer->setGeometry(rect());
}

bool PanelRootView::event(QEvent *event)
{
    if (event->type() == QEvent::LayoutRequest)
        layOut();
    return QWidget::event(event);
}

void PanelRootView::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    layOut();
}

bool PanelRootView::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_foot && (event->type() == QEvent::Show || event->type() == QEvent::Hide))
        QMetaObject::invokeMethod(this, &PanelRootView::layOut, Qt::QueuedConnection);
    if (event->type() == QEvent::FocusIn) {
        if (static_cast<QFocusEvent *>(event)->reason() == Qt::ActiveWindowFocusReason) {
            // The window's first focus on activation is not the user's choice:
            // the panel's own target takes the keyboard.
            if (!m_layer && watched != focusWidgetFor(m_focus))
                QMetaObject::invokeMethod(
                    this, [this] { setFocusTarget(m_focus); }, Qt::QueuedConnection);
            return QWidget::eventFilter(watched, event);
        }
        // Focus that arrives by the pointer or by Tab moves the panel's target.
        PanelFocusTarget target = PanelFocusTarget::None;
        if (watched == m_composer->field()->editor())
            target = PanelFocusTarget::Composer;
        else if (watched == m_search->field())
            target = PanelFocusTarget::Search;
        else if (watched == m_list)
            target = PanelFocusTarget::List;
        if (target != PanelFocusTarget::None && target != m_focus) {
            m_focus = target;
            applyComposerFocus();
            Q_EMIT focusTargetChanged(m_focus);
        }
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace Vesko
