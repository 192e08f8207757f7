// SPDX-License-Identifier: GPL-3.0-or-later
//
// Vesko's icon in the desktop's system tray, shown while showsInMenuBar is
// on, with its menu built afresh each time it opens; its tool tip says when
// the library cannot be saved. Without a tray the program runs all the same.

#pragma once

#include <QObject>

class QMenu;
class QSystemTrayIcon;

namespace Vesko {

class PanelController;
class Preferences;
class Store;

class TrayIcon : public QObject
{
    Q_OBJECT

public:
    TrayIcon(
        Store &store, PanelController &panel, Preferences &preferences, QObject *parent = nullptr);
    ~TrayIcon() override;

    //! "Vesko", or "Not saved: " and the reason while the library cannot be saved.
    QString toolTip() const;

Q_SIGNALS:
    void captureRequested();
    void settingsRequested();
    void quitRequested();

private:
    void rebuildMenu();
    void applyVisibility();
    void refreshToolTip();

    Store &m_store;
    PanelController &m_panel;
    Preferences &m_preferences;
    QSystemTrayIcon *m_icon = nullptr;
    QMenu *m_menu = nullptr;
};

} // namespace Vesko
