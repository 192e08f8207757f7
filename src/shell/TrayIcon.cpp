// SPDX-License-Identifier: GPL-3.0-or-later

#include "shell/TrayIcon.h"

#include "panel/window/PanelController.h"
#include "panel/window/PanelState.h"
#include "shell/MenuBarDashboard.h"
#include "shell/MenuBarMenu.h"
#include "shell/Preferences.h"
#include "shell/Theme.h"
#include "store/Store.h"

#include <QMenu>
#include <QSystemTrayIcon>

namespace Vesko {

TrayIcon::TrayIcon(Store &store, PanelController &panel, Preferences &preferences, QObject *parent)
    : QObject(parent)
    , m_store(store)
    , m_panel(panel)
    , m_preferences(preferences)
    , m_icon(new QSystemTrayIcon(Theme::applicationIcon(), this))
    , m_menu(new QMenu)
{
    m_menu->setObjectName(QStringLiteral("VeskoTrayMenu"));
    refreshToolTip();
    connect(&m_store, &Store::libraryChanged, this, &TrayIcon::refreshToolTip);
    connect(&m_store, &Store::saveFailureChanged, this, &TrayIcon::refreshToolTip);
    m_icon->setContextMenu(m_menu);
    connect(m_menu, &QMenu::aboutToShow, this, &TrayIcon::rebuildMenu);
    connect(m_icon, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason r) {
        if (r == QSystemTrayIcon::Trigger)
            m_panel.toggle();
    });
    connect(&m_preferences, &Preferences::showsInMenuBarChanged, this, &TrayIcon::applyVisibility);
    rebuildMenu();
    applyVisibility();
}

TrayIcon::~TrayIcon()
{
    delete m_menu;
}

QString TrayIcon::toolTip() const
{
    return m_icon->toolTip();
}

void TrayIcon::refreshToolTip()
{
    const QString tip = menuBarToolTip(
        m_store.activeProject().name, openNoteCount(m_store), m_store.saveFailure());
    // Tray hosts repaint or resend the tip at each assignment.
    if (m_icon->toolTip() != tip)
        m_icon->setToolTip(tip);
}

void TrayIcon::applyVisibility()
{
    m_icon->setVisible(m_preferences.showsInMenuBar());
}

void TrayIcon::fillMenu(QMenu &menu)
{
    MenuBarCommands commands;
    commands.isPanelShown = [this] { return m_panel.isPanelShown(); };
    commands.hidePanel = [this] { m_panel.hide(); };
    commands.showPanel = [this](bool focusComposer) { m_panel.show(true, focusComposer); };
    commands.captureSelection = [this] { Q_EMIT captureRequested(); };
    commands.openSettings = [this] { Q_EMIT settingsRequested(); };
    commands.quit = [this] { Q_EMIT quitRequested(); };
    rebuildMenuBarMenu(menu, m_store, PanelState::shared(), commands);
}

void TrayIcon::rebuildMenu()
{
    fillMenu(*m_menu);
}

} // namespace Vesko
