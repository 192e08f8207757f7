// SPDX-License-Identifier: GPL-3.0-or-later

#include "shell/SettingsWindowController.h"

#include "capture/AccessibilityPermission.h"
#include "platform/SettingsFile.h"
#include "shell/WindowCloseKeys.h"

#include <QGuiApplication>
#include <QScreen>
#include <QTimer>
#include <QVBoxLayout>
#include <QWidget>

#include <algorithm>

namespace Vesko {

namespace {

// The window itself: it keeps its place in the settings file whenever it
// moves, is resized or is closed. Ctrl+W and Escape close it.
class SettingsWindow : public QWidget
{
    Q_DECLARE_TR_FUNCTIONS(SettingsWindow)

public:
    SettingsWindow()
    {
        setWindowTitle(tr("Vesko Settings"));
        setAccessibleName(tr("Vesko Settings"));
        auto *layout = new QVBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        m_saveFrame.setSingleShot(true);
        m_saveFrame.setInterval(250);
        QObject::connect(&m_saveFrame, &QTimer::timeout, this, [this] { saveFrame(); });
        new WindowCloseKeys(this);
    }

    void setContent(SettingsView *view)
    {
        if (m_view) {
            m_view->hide();
            m_view->deleteLater();
        }
        m_view = view;
        layout()->addWidget(view);
    }
    SettingsView *view() const { return m_view; }

    bool restoreFrame()
    {
        const QByteArray frame
            = settingValue(QLatin1String(SettingsWindowController::frameKey)).toByteArray();
        return !frame.isEmpty() && restoreGeometry(frame);
    }

    void saveFrame()
    {
        if (isVisible())
            SettingsWriter::shared().setValue(
                QLatin1String(SettingsWindowController::frameKey), saveGeometry());
    }

protected:
    void moveEvent(QMoveEvent *event) override
    {
        QWidget::moveEvent(event);
        m_saveFrame.start();
    }
    void resizeEvent(QResizeEvent *event) override
    {
        QWidget::resizeEvent(event);
        m_saveFrame.start();
    }
    void closeEvent(QCloseEvent *event) override
    {
        // Closing hides the window; it is kept for the next show.
        saveFrame();
        QWidget::closeEvent(event);
    }

private:
    SettingsView *m_view = nullptr;
    QTimer m_saveFrame;
};

} // namespace

SettingsWindowController::SettingsWindowController(QObject *parent)
    : QObject(parent)
{ }

SettingsWindowController::~SettingsWindowController()
{
    delete m_window;
}

SettingsWindowController &SettingsWindowController::shared()
{
    static SettingsWindowController *const controller = new SettingsWindowController;
    return *controller;
}

void SettingsWindowController::setServices(
    const SettingsView::Services &services, AccessibilityPermission &permission)
{
    m_services.emplace(services);
    m_permission = &permission;
}

SettingsView *SettingsWindowController::view() const
{
    return m_window ? static_cast<SettingsWindow *>(m_window.data())->view() : nullptr;
}

void SettingsWindowController::show()
{
    Q_ASSERT_X(m_services, "SettingsWindowController::show", "services are not set");
    if (m_permission)
        m_permission->refresh();
    if (!m_window)
        makeWindow();
    bringForward();
}

void SettingsWindowController::show(SettingsTab tab)
{
    show();
    view()->showTab(tab);
}

void SettingsWindowController::makeWindow()
{
    auto *window = new SettingsWindow;
    m_window = window;
    window->setContent(new SettingsView(*m_services));
    // Tall enough for the General tab to show whole, where the screen allows.
    int height = std::max(contentHeight, window->view()->preferredHeight());
    if (const QScreen *screen = QGuiApplication::primaryScreen())
        height = std::min(height, screen->availableGeometry().height() * 9 / 10);
    window->resize(contentWidth, std::max(height, contentHeight));
    if (!window->restoreFrame()) {
        if (const QScreen *screen = QGuiApplication::primaryScreen()) {
            QRect frame(QPoint(), window->size());
            frame.moveCenter(screen->availableGeometry().center());
            window->move(frame.topLeft());
        }
    }
}

void SettingsWindowController::refreshAppearance()
{
    auto *window = static_cast<SettingsWindow *>(m_window.data());
    if (!window)
        return;
    const int tab = window->view() ? window->view()->currentIndex() : 0;
    window->setContent(new SettingsView(*m_services));
    window->view()->setCurrentIndex(tab);
}

void SettingsWindowController::bringForward()
{
    QWidget *window = m_window;
    if (window->isMinimized())
        window->showNormal();
    window->show();
    window->raise();
    window->activateWindow();
    // Asked again once the window is mapped: the first request often comes
    // before the window manager has taken the window on.
    QTimer::singleShot(0, window, [window] {
        window->raise();
        window->activateWindow();
    });
}

} // namespace Vesko
