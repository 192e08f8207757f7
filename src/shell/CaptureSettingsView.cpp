// SPDX-License-Identifier: GPL-3.0-or-later

#include "shell/CaptureSettingsView.h"

#include "capture/AccessibilityPermission.h"
#include "capture/CaptureEngine.h"
#include "shell/CaptureStatus.h"
#include "shell/Preferences.h"
#include "shell/SettingsForm.h"
#include "shell/ShortcutRecorderView.h"
#include "shell/Theme.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSlider>
#include <QVBoxLayout>

#include <cmath>

namespace Vesko {

namespace {

QString shortcutDescription(HotKeyAction action)
{
    switch (action) {
    case HotKeyAction::TogglePanel:
        return CaptureSettingsView::tr("Bring the panel forward, or send it away.");
    case HotKeyAction::QuickAdd:
        return CaptureSettingsView::tr("Open the panel with the composer already focused.");
    case HotKeyAction::CaptureSelection:
        return CaptureSettingsView::tr("Save whatever text is selected in the app in front.");
    case HotKeyAction::CopySelectionAsList:
        return CaptureSettingsView::tr("Put the selected notes on the clipboard as a list.");
    }
    return {};
}

} // namespace

CaptureSettingsView::CaptureSettingsView(const Services &services, QWidget *parent)
    : QWidget(parent)
    , m_services(services)
    , m_permissionIcon(new QLabel)
    , m_permissionTitle(new QLabel)
    , m_reason(makeFootnote(QString()))
    , m_advice(makeFootnote(QString()))
    , m_grantAccess(new QPushButton(tr("Grant Access…")))
    , m_openSystemSettings(new QPushButton(tr("Open System Settings…")))
    , m_doubleShift(new QCheckBox(tr("Capture with Shift pressed twice")))
    , m_listener(new QLabel)
    , m_interval(new QSlider(Qt::Horizontal))
    , m_intervalValue(new QLabel)
    , m_showPanel(new QCheckBox(tr("Bring the panel forward on capture")))
{
    auto *layout = new QVBoxLayout(this);

    auto *permission = new SettingsGroup(tr("Permission"), this);
    auto *heading = new QWidget;
    auto *headingLayout = new QHBoxLayout(heading);
    headingLayout->setContentsMargins(0, 0, 0, 0);
    headingLayout->addWidget(m_permissionIcon);
    headingLayout->addWidget(m_permissionTitle, 1);
    QFont bold = m_permissionTitle->font();
    bold.setBold(true);
    m_permissionTitle->setFont(bold);
    permission->addRow(heading);
    for (QLabel *line : {m_reason, m_advice}) {
        line->setForegroundRole(QPalette::WindowText);
        permission->addRow(line);
    }
    permission->addRow(makeFootnote(tr("Vesko uses it to read your text selection and listen for "
                                       "double Shift. Nothing is recorded or sent anywhere.")));
    permission->addButtons({m_grantAccess, m_openSystemSettings});
    layout->addWidget(permission);

    auto *doubleShift = new SettingsGroup(tr("Double Shift"), this);
    doubleShift->addRow(m_doubleShift);
    doubleShift->addRow(tr("Listener"), m_listener);
    auto *intervalRow = new QWidget;
    auto *intervalLayout = new QHBoxLayout(intervalRow);
    intervalLayout->setContentsMargins(0, 0, 0, 0);
    m_interval->setRange(shortestInterval / intervalStep, longestInterval / intervalStep);
    m_interval->setSingleStep(1);
    m_interval->setPageStep(2);
    m_interval->setAccessibleName(tr("Time between presses"));
    m_intervalValue->setMinimumWidth(
        m_intervalValue->fontMetrics().horizontalAdvance(QStringLiteral("0000 ms")));
    m_intervalValue->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    intervalLayout->addWidget(m_interval, 1);
    intervalLayout->addWidget(m_intervalValue);
    doubleShift->addRow(tr("Time between presses"), intervalRow);
    layout->addWidget(doubleShift);

    auto *shortcuts = new SettingsGroup(tr("Shortcuts"), this);
    for (HotKeyAction action : allHotKeyActions) {
        auto *row = new QWidget;
        auto *rowLayout = new QGridLayout(row);
        rowLayout->setContentsMargins(0, 0, 0, 0);
        auto *name = new QLabel(title(action));
        auto *description = makeFootnote(shortcutDescription(action));
        auto *recorder
            = new ShortcutRecorderView(action, m_services.hotKeys, m_services.keyLayout, row);
        m_recorders.append(recorder);
        rowLayout->addWidget(name, 0, 0);
        rowLayout->addWidget(description, 1, 0);
        rowLayout->addWidget(recorder, 0, 1, 2, 1, Qt::AlignRight | Qt::AlignTop);
        rowLayout->setColumnStretch(0, 1);
        shortcuts->addRow(row);
    }
    layout->addWidget(shortcuts);

    auto *captured = new SettingsGroup(tr("Captured notes"), this);
    captured->addRow(m_showPanel);
    layout->addWidget(captured);

    // Nothing is granted on this desktop: both lead to its keyboard-shortcut
    // settings, where the user binds Vesko's commands, then read the answer
    // again and keep looking for a while.
    connect(m_grantAccess, &QPushButton::clicked, this, [this] {
        if (m_services.openShortcutSettings)
            m_services.openShortcutSettings();
        m_services.permission.requestAccess();
    });
    connect(m_openSystemSettings, &QPushButton::clicked, this, [this] {
        if (m_services.openShortcutSettings)
            m_services.openShortcutSettings();
        m_services.permission.openSystemSettings();
    });
    connect(&m_services.permission, &AccessibilityPermission::isTrustedChanged, this,
        &CaptureSettingsView::refreshPermission);
    connect(m_doubleShift, &QCheckBox::toggled, this, [this](bool enabled) {
        m_services.preferences.setDoubleShiftEnabled(enabled);
        m_services.engine.refreshDoubleShift();
    });
    connect(&m_services.engine, &CaptureEngine::isListeningForDoubleShiftChanged, this,
        &CaptureSettingsView::refreshDoubleShift);
    connect(m_interval, &QSlider::valueChanged, this, [this](int steps) {
        m_services.preferences.setDoubleShiftInterval(steps * intervalStep / 1000.0);
    });
    connect(&m_services.preferences, &Preferences::doubleShiftEnabledChanged, this,
        &CaptureSettingsView::refreshDoubleShift);
    connect(&m_services.preferences, &Preferences::doubleShiftIntervalChanged, this,
        &CaptureSettingsView::refreshDoubleShift);
    connect(m_showPanel, &QCheckBox::toggled, &m_services.preferences,
        &Preferences::setShowPanelOnCapture);
    connect(&m_services.preferences, &Preferences::showPanelOnCaptureChanged, this, [this] {
        const QSignalBlocker blocker(m_showPanel);
        m_showPanel->setChecked(m_services.preferences.showPanelOnCapture());
    });
    m_showPanel->setChecked(m_services.preferences.showPanelOnCapture());
    refreshPermission();
    refreshDoubleShift();
}

ShortcutRecorderView *CaptureSettingsView::recorder(HotKeyAction action) const
{
    for (ShortcutRecorderView *recorder : m_recorders) {
        if (recorder->action() == action)
            return recorder;
    }
    return nullptr;
}

QString CaptureSettingsView::intervalText(double seconds)
{
    return tr("%1 ms").arg(qRound64(seconds * 1000));
}

void CaptureSettingsView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    m_services.permission.refresh();
    refreshPermission();
}

void CaptureSettingsView::refreshPermission()
{
    const bool available = m_services.permission.isTrusted();
    const CaptureObstacle obstacle = available || !m_services.captureObstacle
        ? CaptureObstacle::None
        : m_services.captureObstacle();
    const QColor tint = available ? QColor(0x2e, 0xa0, 0x43) : QColor(0xd9, 0x8e, 0x04);
    m_permissionIcon->setPixmap(
        symbolIcon(available ? QStringLiteral("checkmark.circle.fill")
                             : QStringLiteral("exclamationmark.triangle.fill"),
            tint, 16)
            .pixmap(16, 16));
    m_permissionTitle->setText(available ? tr("Capture works in this session")
                                         : tr("Capture is not set up in this session"));
    m_reason->setText(captureObstacleReason(obstacle));
    m_reason->setVisible(!available && !m_reason->text().isEmpty());
    m_advice->setText(captureObstacleAdvice(obstacle));
    m_advice->setVisible(!available && !m_advice->text().isEmpty());
    const bool leadSomewhere = !available && bool(m_services.openShortcutSettings);
    m_grantAccess->setVisible(leadSomewhere);
    m_openSystemSettings->setVisible(leadSomewhere);
    for (ShortcutRecorderView *recorder : std::as_const(m_recorders))
        recorder->setCaptureAvailable(available);
}

void CaptureSettingsView::refreshDoubleShift()
{
    const Preferences &preferences = m_services.preferences;
    {
        const QSignalBlocker blocker(m_doubleShift);
        m_doubleShift->setChecked(preferences.doubleShiftEnabled());
    }
    m_listener->setText(
        m_services.engine.isListeningForDoubleShift() ? tr("Listening") : tr("Not listening"));
    {
        // A value beyond the bounds shows at the end of the slider and stays as it is.
        const QSignalBlocker blocker(m_interval);
        m_interval->setValue(
            int(std::lround(preferences.doubleShiftInterval() * 1000 / intervalStep)));
    }
    const QString text = intervalText(preferences.doubleShiftInterval());
    m_intervalValue->setText(text);
    m_interval->setAccessibleDescription(text);
}

} // namespace Vesko
