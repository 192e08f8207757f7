// SPDX-License-Identifier: GPL-3.0-or-later
//
// The content of the Settings window: the tabs "General", "Capture",
// "Storage" and "About", in that order.

#pragma once

#include "shell/CaptureSettingsView.h"
#include "shell/LoginItem.h"
#include "shell/StorageSettingsView.h"

#include <QTabWidget>

namespace Vesko {

class GeneralSettingsView;
class PanelController;

enum class SettingsTab { General, Capture, Storage, About };

class SettingsView : public QTabWidget
{
    Q_OBJECT

public:
    struct Services
    {
        Preferences &preferences;
        PanelController &panel;
        LoginItem loginItem;
        CaptureSettingsView::Services capture;
        StorageSettingsView::Services storage;
    };

    explicit SettingsView(const Services &services, QWidget *parent = nullptr);

    void showTab(SettingsTab tab) { setCurrentIndex(int(tab)); }
    //! The height at which the General tab shows whole.
    int preferredHeight() const;
    GeneralSettingsView *general() const { return m_general; }
    CaptureSettingsView *capture() const { return m_capture; }
    StorageSettingsView *storage() const { return m_storage; }

private:
    GeneralSettingsView *m_general;
    CaptureSettingsView *m_capture;
    StorageSettingsView *m_storage;
};

} // namespace Vesko
