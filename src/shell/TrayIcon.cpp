// SPDX-License-Identifier: GPL-3.0-or-later

#include "shell/TrayIcon.h"

#include "panel/PanelController.h"
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
    refreshToolTip();
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
    const QString failure = m_store.saveFailure();
    m_icon->setToolTip(failure.isEmpty() ? QStringLiteral("Vesko") : tr("Not saved: ") + failure);
}

void TrayIcon::applyVisibility()
{
    m_icon->setVisible(m_preferences.showsInMenuBar());
}

void TrayIcon::rebuildMenu()
{
    m_menu->clear();
    m_menu->addAction(m_panel.isPanelShown() ? tr("Hide Vesko") : tr("Show Vesko"), this,
        [this] { m_panel.toggle(); });
    m_menu->addAction(tr("Capture Selection"), this, &TrayIcon::captureRequested);
    m_menu->addAction(tr("Add a Note"), this, [this] { m_panel.show(true, true); });
    m_menu->addSeparator();
    m_menu->addAction(tr("Settings"),
        QKeySequence(QKeyCombination(Qt::ControlModifier, Qt::Key_Comma)), this,
        &TrayIcon::settingsRequested);
    m_menu->addAction(tr("Quit Vesko"), QKeySequence::Quit, this, &TrayIcon::quitRequested);
}

} // namespace Vesko
