// SPDX-License-Identifier: GPL-3.0-or-later
//
// The General tab of Settings: the panel's appearance, place and size, how
// Vesko shows itself on the desktop (on all workspaces, on top, in the system
// tray, in the taskbar, at login), and how lists are copied.

#pragma once

#include "shell/LoginItem.h"

#include <QWidget>

class QCheckBox;
class QComboBox;
class QLabel;

namespace Vesko {

class PanelController;
class Preferences;

class GeneralSettingsView : public QWidget
{
    Q_OBJECT

public:
    GeneralSettingsView(Preferences &preferences, PanelController &panel, LoginItem loginItem,
        QWidget *parent = nullptr);

    //! The failure of the last change of "Open at login", or empty.
    QString launchError() const { return m_launchError; }

private:
    void refresh();
    void setLaunchAtLogin(bool enabled);

    Preferences &m_preferences;
    PanelController &m_panel;
    LoginItem m_loginItem;
    QString m_launchError;

    QComboBox *m_appearance;
    QComboBox *m_edge;
    QCheckBox *m_allWorkspaces;
    QCheckBox *m_onTop;
    QCheckBox *m_tray;
    QCheckBox *m_taskbar;
    QCheckBox *m_launchAtLogin;
    QLabel *m_launchErrorLine;
    QComboBox *m_listStyle;
    QCheckBox *m_keepMarkdown;
};

} // namespace Vesko
