// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/window/PanelController.h"

#include "panel/list/PanelListView.h"
#include "panel/window/PanelPlacement.h"
#include "panel/window/PanelRootView.h"
#include "panel/window/PanelState.h"
#include "panel/window/PanelWindow.h"
#include "platform/qt/DesktopScreens.h"
#include "platform/x11/X11Window.h"
#include "shell/Theme.h"
#include "store/Store.h"

#include <QCursor>
#include <QPropertyAnimation>
#include <QTimer>

namespace Vesko {

PanelController::PanelController(
    Store &store, PanelState &state, Preferences &preferences, QObject *parent)
    : QObject(parent)
    , m_store(store)
    , m_state(state)
    , m_preferences(preferences)
    , m_showsInTaskbar(preferences.showsInDock())
{
    connect(&m_preferences, &Preferences::pinOnTopChanged, this,
        &PanelController::applyPanelAppearance);
    connect(&m_preferences, &Preferences::joinsAllSpacesChanged, this,
        &PanelController::applyPanelAppearance);
}

PanelController::~PanelController()
{
    delete m_panel;
}

PanelController &PanelController::shared()
{
    static PanelController *const controller
        = new PanelController(Store::shared(), PanelState::shared(), Preferences::shared());
    return *controller;
}

Qt::WindowFlags PanelController::windowFlags() const
{
    Qt::WindowFlags flags = m_showsInTaskbar ? Qt::Window : Qt::Tool;
    flags |= Qt::FramelessWindowHint;
    if (m_preferences.pinOnTop())
        flags |= Qt::WindowStaysOnTopHint;
    return flags;
}

void PanelController::makePanel()
{
    m_panel = new PanelWindow(windowFlags());
    m_panel->setWindowIcon(Theme::applicationIcon());
    m_panel->resize(int(m_preferences.panelWidth()), int(m_preferences.panelHeight()));
    replaceContent();
    connect(
        m_panel, &PanelWindow::cancelOperationRequested, this, &PanelController::cancelOperation);
    connect(m_panel, &PanelWindow::moved, this, &PanelController::recordFrame);
    connect(m_panel, &PanelWindow::resized, this, &PanelController::recordFrame);
    connect(m_panel, &PanelWindow::becameActive, this, [this] { m_state.setVisible(true); });
    connect(m_panel, &PanelWindow::becameInactive, this, [this] { m_keyRequested = false; });
    connect(m_panel, &PanelWindow::framePainted, this, &PanelController::fadeBegan);

    m_fade = new QPropertyAnimation(m_panel, "windowOpacity", this);
    connect(m_fade, &QPropertyAnimation::finished, this, [this] {
        if (!m_fadingOut)
            return;
        m_fadingOut = false;
        m_panel->hide();
        m_panel->setWindowOpacity(1.0);
    });
}

void PanelController::replaceContent()
{
    auto *root = new PanelRootView(m_store, m_state, m_preferences);
    connect(root, &PanelRootView::hideRequested, this, &PanelController::hide);
    root->setRowsRunUnderBars(m_panel->isGlass());
    m_panel->setContent(root);
}

bool PanelController::isPanelShown() const
{
    return m_panel && m_panel->isVisible() && !m_fadingOut;
}

void PanelController::show(bool activate, bool focusComposer)
{
    if (!m_panel)
        makePanel();
    // A note's edit in place that was left open when the user went to
    // another window ends here, saved, as leaving its field would have ended
    // it: the keyboard is about to go elsewhere and the draft must not stay behind.
    endNoteEdit();
    applyPanelAppearance();
    if (!isPanelShown()) {
        const bool wasFadingOut = m_fadingOut;
        m_fadingOut = false;
        m_fade->stop();
        if (!wasFadingOut) {
            const QRectF frame = presentationFrame(
                m_preferences.storedPanelFrame(), currentScreenAreas(), presetFrame());
            placeFrame(frame);
            m_panel->setWindowOpacity(0.0);
        }
        m_panel->show();
        m_panel->raise();
        fade(1.0, fadeInMilliseconds);
    } else {
        m_panel->raise();
    }
    if (activate || focusComposer) {
        m_keyRequested = true;
        m_panel->raise();
        m_panel->activateWindow();
    }
    m_state.setVisible(true);
    if (focusComposer) {
        m_state.requestFocus(PanelFocusTarget::Composer);
        QTimer::singleShot(0, this, [this] { this->focusComposer(1); });
    }
}

void PanelController::focusComposer(int attempt)
{
    if (!m_panel || !m_panel->isVisible())
        return;
    auto *editor = m_panel->findChild<QWidget *>(PanelRootView::composerEditorName);
    if (editor) {
        editor->setFocus(Qt::ActiveWindowFocusReason);
        if (m_panel->focusWidget() == editor) {
            m_state.requestFocus(PanelFocusTarget::Composer);
            return;
        }
    }
    if (attempt < composerFocusAttempts)
        QTimer::singleShot(0, this, [this, attempt] { focusComposer(attempt + 1); });
}

void PanelController::hide()
{
    if (!isPanelShown())
        return;
    // The edit ends with the panel, keeping what was typed.
    endNoteEdit();
    m_store.setEditingNoteID(std::nullopt);
    m_fadingOut = true;
    m_keyRequested = false;
    fade(0.0, fadeOutMilliseconds);
    m_state.setVisible(false);
}

void PanelController::endNoteEdit()
{
    if (auto *root = qobject_cast<PanelRootView *>(m_panel->content()))
        root->list()->endNoteEdit();
}

void PanelController::fade(double to, int milliseconds)
{
    m_fade->stop();
    m_fade->setDuration(milliseconds);
    m_fade->setEasingCurve(to > 0 ? QEasingCurve::OutCubic : QEasingCurve::InCubic);
    m_fade->setStartValue(m_panel->windowOpacity());
    m_fade->setEndValue(to);
    m_fade->start();
    // The first frame of the fade is the next paint of the window.
    m_panel->requestFrame();
}

void PanelController::toggle()
{
    // Right after show() the window manager may not have handed the panel
    // the keyboard yet: a second toggle then still hides it.
    if (isPanelShown() && (m_panel->isActiveWindow() || m_keyRequested))
        hide();
    else
        show(true, true);
}

void PanelController::cancelOperation()
{
    if (m_store.editingNoteID()) {
        m_store.setEditingNoteID(std::nullopt);
        return;
    }
    if (m_state.renamingSectionID()) {
        m_state.setRenamingSectionID(std::nullopt);
        return;
    }
    hide();
}

void PanelController::applyPanelAppearance()
{
    if (!m_panel)
        return;
    const Qt::WindowFlags flags = windowFlags();
    if (m_panel->windowFlags() != flags) {
        const bool visible = m_panel->isVisible();
        const QRect frame = m_panel->geometry();
        m_isRestoringFrame = true;
        m_panel->setWindowFlags(flags);
        if (visible && !m_panel->isVisible()) {
            m_panel->setGeometry(frame);
            m_panel->show();
        }
        m_isRestoringFrame = false;
    }
    m_panel->winId(); // the native window must exist for the desktop property
    X11Window::setOnAllDesktops(m_panel->windowHandle(), m_preferences.joinsAllSpaces());
    m_panel->refreshMaterial();
    if (auto *root = qobject_cast<PanelRootView *>(m_panel->content()))
        root->setRowsRunUnderBars(m_panel->isGlass());
    m_panel->setPalette(QPalette());
    m_panel->update();
}

void PanelController::refreshAppearance()
{
    if (!m_panel)
        return;
    replaceContent();
    applyPanelAppearance();
}

std::optional<QRect> PanelController::panelScreenArea() const
{
    const QList<ScreenArea> screens = currentScreenAreas();
    if (m_panel) {
        const QPointF centre = QRectF(m_panel->geometry()).center();
        for (const ScreenArea &screen : screens) {
            if (screen.frame.contains(centre))
                return screen.available.toRect();
        }
    }
    if (const std::optional<ScreenArea> screen = screenAt(screens, QCursor::pos()))
        return screen->available.toRect();
    return std::nullopt;
}

QRectF PanelController::presetFrame() const
{
    const std::optional<QRect> area = panelScreenArea();
    return presetPanelFrame(area ? std::optional<QRectF>(QRectF(*area)) : std::nullopt,
        m_preferences.panelEdge(), m_preferences.panelWidth(), m_preferences.panelHeight(),
        m_preferences.panelInset(), m_panel ? QRectF(m_panel->geometry()) : QRectF());
}

void PanelController::placeFrame(const QRectF &frame)
{
    m_isRestoringFrame = true;
    m_placedFrame = frame.toRect();
    m_panel->setGeometry(m_placedFrame);
    m_placedFrame = m_panel->geometry(); // after the minimum and maximum sizes
    m_isRestoringFrame = false;
}

void PanelController::recordFrame()
{
    if (m_isRestoringFrame || !m_panel || !m_panel->isVisible())
        return;
    const QRect frame = m_panel->geometry();
    if (frame == m_placedFrame)
        return;
    m_placedFrame = frame;
    m_preferences.setStoredPanelFrame(frame);
}

void PanelController::applyPanelEdge(PanelEdge edge)
{
    m_preferences.setPanelEdge(edge);
    resetPanelPosition();
}

void PanelController::resetPanelPosition()
{
    m_preferences.clearStoredPanelFrame();
    if (m_panel)
        placeFrame(presetFrame());
}

void PanelController::resetPanelSize()
{
    const std::optional<QRect> area = m_panel ? panelScreenArea() : std::nullopt;
    if (!area) {
        m_preferences.setPanelWidth(340);
        m_preferences.setPanelHeight(560);
        return;
    }
    const QRectF frame = resetPanelSizeFrame(
        QRectF(*area), QRectF(m_panel->geometry()), m_preferences.panelInset());
    placeFrame(frame);
    m_preferences.setStoredPanelFrame(QRectF(m_placedFrame));
}

void PanelController::setShowsInTaskbar(bool shows)
{
    if (m_showsInTaskbar == shows)
        return;
    m_showsInTaskbar = shows;
    applyPanelAppearance();
    if (shows && isPanelShown())
        m_panel->activateWindow();
}

} // namespace Vesko
