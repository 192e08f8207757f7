// SPDX-License-Identifier: GPL-3.0-or-later

#include "shell/SettingsView.h"

#include "shell/AboutSettingsView.h"
#include "shell/GeneralSettingsView.h"
#include "shell/SettingsForm.h"
#include "shell/Theme.h"

#include <QScrollArea>
#include <QTabBar>

namespace Vesko {

SettingsView::SettingsView(const Services &services, QWidget *parent)
    : QTabWidget(parent)
    , m_general(new GeneralSettingsView(services.preferences, services.panel, services.loginItem))
    , m_capture(new CaptureSettingsView(services.capture))
    , m_storage(new StorageSettingsView(services.storage))
{
    setDocumentMode(true);
    const QColor tint = palette().color(QPalette::WindowText);
    addTab(makeSettingsPage(m_general), symbolIcon(QStringLiteral("gearshape"), tint, 16),
        tr("General"));
    addTab(makeSettingsPage(m_capture), symbolIcon(QStringLiteral("text.viewfinder"), tint, 16),
        tr("Capture"));
    addTab(makeSettingsPage(m_storage), symbolIcon(QStringLiteral("internaldrive"), tint, 16),
        tr("Storage"));
    addTab(new AboutSettingsView, symbolIcon(QStringLiteral("info.circle"), tint, 16), tr("About"));
}

int SettingsView::preferredHeight() const
{
    return tabBar()->sizeHint().height() + m_general->sizeHint().height() + 12;
}

} // namespace Vesko
