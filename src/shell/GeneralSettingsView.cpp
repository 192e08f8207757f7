// SPDX-License-Identifier: GPL-3.0-or-later

#include "shell/GeneralSettingsView.h"

#include "panel/window/PanelController.h"
#include "shell/Preferences.h"
#include "shell/SettingsForm.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace Vesko {

namespace {

void selectData(QComboBox *box, int value)
{
    const QSignalBlocker blocker(box);
    box->setCurrentIndex(box->findData(value));
}

void check(QCheckBox *box, bool checked)
{
    const QSignalBlocker blocker(box);
    box->setChecked(checked);
}

} // namespace

GeneralSettingsView::GeneralSettingsView(
    Preferences &preferences, PanelController &panel, LoginItem loginItem, QWidget *parent)
    : QWidget(parent)
    , m_preferences(preferences)
    , m_panel(panel)
    , m_loginItem(std::move(loginItem))
    , m_appearance(new QComboBox)
    , m_edge(new QComboBox)
    , m_allWorkspaces(new QCheckBox(tr("Show on all workspaces")))
    , m_onTop(new QCheckBox(tr("Always on top")))
    , m_tray(new QCheckBox(tr("Show in the system tray")))
    , m_taskbar(new QCheckBox(tr("Show in the taskbar")))
    , m_launchAtLogin(new QCheckBox(tr("Open at login")))
    , m_launchErrorLine(makeErrorLine())
    , m_listStyle(new QComboBox)
    , m_keepMarkdown(new QCheckBox(tr("Keep Markdown when copying")))
{
    auto *layout = new QVBoxLayout(this);

    auto *panelGroup = new SettingsGroup(tr("Panel"), this);
    m_appearance->addItem(tr("System"), int(AppAppearance::System));
    m_appearance->addItem(tr("Light"), int(AppAppearance::Light));
    m_appearance->addItem(tr("Dark"), int(AppAppearance::Dark));
    panelGroup->addRow(tr("Appearance"), m_appearance);
    m_edge->addItem(tr("Left"), int(PanelEdge::Left));
    m_edge->addItem(tr("Center"), int(PanelEdge::Center));
    m_edge->addItem(tr("Right"), int(PanelEdge::Right));
    panelGroup->addRow(tr("Window position"), m_edge);
    auto *resetPosition = new QPushButton(tr("Reset Window Position"));
    auto *resetSize = new QPushButton(tr("Reset Window Size"));
    panelGroup->addButtons({resetPosition, resetSize});
    panelGroup->addRow(
        makeFootnote(tr("Choose a preset or drag and resize the window; Vesko remembers both.")));
    layout->addWidget(panelGroup);

    auto *behaviour = new SettingsGroup(tr("Behaviour"), this);
    for (QCheckBox *box : {m_allWorkspaces, m_onTop, m_tray, m_taskbar, m_launchAtLogin})
        behaviour->addRow(box);
    behaviour->addRow(m_launchErrorLine);
    layout->addWidget(behaviour);

    auto *lists = new SettingsGroup(tr("Lists"), this);
    m_listStyle->addItem(tr("1. 2. 3."), int(ListStyle::Numbered));
    m_listStyle->addItem(tr("- - -"), int(ListStyle::Dash));
    m_listStyle->addItem(tr("No marker"), int(ListStyle::Plain));
    lists->addRow(tr("Copy as List uses"), m_listStyle);
    lists->addRow(m_keepMarkdown);
    layout->addWidget(lists);

    connect(m_appearance, &QComboBox::activated, this, [this] {
        m_preferences.setAppearance(AppAppearance(m_appearance->currentData().toInt()));
    });
    connect(m_edge, &QComboBox::activated, this,
        [this] { m_panel.applyPanelEdge(PanelEdge(m_edge->currentData().toInt())); });
    connect(resetPosition, &QPushButton::clicked, &m_panel, &PanelController::resetPanelPosition);
    connect(resetSize, &QPushButton::clicked, &m_panel, &PanelController::resetPanelSize);
    connect(m_allWorkspaces, &QCheckBox::toggled, &m_preferences, &Preferences::setJoinsAllSpaces);
    connect(m_onTop, &QCheckBox::toggled, &m_preferences, &Preferences::setPinOnTop);
    connect(m_tray, &QCheckBox::toggled, &m_preferences, &Preferences::setShowsInMenuBar);
    connect(m_taskbar, &QCheckBox::toggled, &m_preferences, &Preferences::setShowsInDock);
    connect(m_launchAtLogin, &QCheckBox::toggled, this, &GeneralSettingsView::setLaunchAtLogin);
    connect(m_listStyle, &QComboBox::activated, this,
        [this] { m_preferences.setListStyle(ListStyle(m_listStyle->currentData().toInt())); });
    connect(
        m_keepMarkdown, &QCheckBox::toggled, &m_preferences, &Preferences::setCopyIncludesMarkdown);

    // The controls follow the preferences, whoever changes them.
    for (auto changed : {&Preferences::appearanceChanged, &Preferences::panelEdgeChanged,
             &Preferences::joinsAllSpacesChanged, &Preferences::pinOnTopChanged,
             &Preferences::showsInMenuBarChanged, &Preferences::showsInDockChanged,
             &Preferences::listStyleChanged, &Preferences::copyIncludesMarkdownChanged})
        connect(&m_preferences, changed, this, &GeneralSettingsView::refresh);
    refresh();
}

void GeneralSettingsView::refresh()
{
    selectData(m_appearance, int(m_preferences.appearance()));
    selectData(m_edge, int(m_preferences.panelEdge()));
    check(m_allWorkspaces, m_preferences.joinsAllSpaces());
    check(m_onTop, m_preferences.pinOnTop());
    check(m_tray, m_preferences.showsInMenuBar());
    check(m_taskbar, m_preferences.showsInDock());
    check(m_launchAtLogin, m_loginItem.isEnabled());
    selectData(m_listStyle, int(m_preferences.listStyle()));
    check(m_keepMarkdown, m_preferences.copyIncludesMarkdown());
}

void GeneralSettingsView::setLaunchAtLogin(bool enabled)
{
    const std::optional<QString> failure = m_loginItem.setEnabled(enabled);
    m_launchError = failure.value_or(QString());
    m_launchErrorLine->setText(m_launchError);
    m_launchErrorLine->setVisible(failure.has_value());
    m_launchAtLogin->setAccessibleDescription(m_launchError);
    // Back to the truth, whatever happened.
    check(m_launchAtLogin, m_loginItem.isEnabled());
}

} // namespace Vesko
