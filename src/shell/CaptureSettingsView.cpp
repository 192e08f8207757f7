// SPDX-License-Identifier: GPL-3.0-or-later

#include "shell/CaptureSettingsView.h"

#include "capture/AccessibilityPermission.h"
#include "capture/CaptureEngine.h"
#include "capture/HotKeyCenter.h"
#include "platform/portal/ShortcutTrigger.h"
#include "shell/CaptureStatus.h"
#include "shell/Preferences.h"
#include "shell/SettingsForm.h"
#include "shell/ShortcutRecorderView.h"
#include "shell/Theme.h"

#include <QCheckBox>
#include <QClipboard>
#include <QFontDatabase>
#include <QGridLayout>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
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
    , m_portalMessage(makeFootnote(QString()))
    , m_bindingAdvice(makeFootnote(QString()))
    , m_swayLines(new QPlainTextEdit)
    , m_copySwayLines(new QPushButton(tr("Copy")))
    , m_doubleShift(new QCheckBox(tr("Capture with Shift pressed twice")))
    , m_listener(new QLabel)
    , m_kwinLines(new QPlainTextEdit)
    , m_copyKwinLines(new QPushButton(tr("Copy")))
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
    // Each capability on a line of its own: a mark, then what it does here.
    auto *capabilities = new QWidget;
    auto *capabilityGrid = new QGridLayout(capabilities);
    capabilityGrid->setContentsMargins(0, 0, 0, 0);
    capabilityGrid->setColumnStretch(1, 1);
    for (int row = 0; row < 5; ++row) {
        auto *icon = new QLabel;
        auto *text = new QLabel;
        text->setWordWrap(true);
        capabilityGrid->addWidget(icon, row, 0, Qt::AlignTop);
        capabilityGrid->addWidget(text, row, 1);
        m_capabilityIcons.append(icon);
        m_capabilityTexts.append(text);
    }
    permission->addRow(capabilities);
    for (QLabel *line : {m_reason, m_advice}) {
        line->setForegroundRole(QPalette::WindowText);
        permission->addRow(line);
    }
    permission->addRow(makeFootnote(tr("Vesko reads the selected text only when you capture, and "
                                       "watches only the Shift key for double Shift. Nothing is "
                                       "recorded or sent anywhere.")));
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
    QFont mono = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    // KDE Plasma: the commands that have KWin pass each lone Shift release.
    m_kwinLines->setReadOnly(true);
    m_kwinLines->setFont(mono);
    m_kwinLines->setLineWrapMode(QPlainTextEdit::NoWrap);
    m_kwinLines->setAccessibleName(tr("Commands that turn on double Shift in KWin"));
    m_kwinLines->setFixedHeight(
        m_kwinLines->fontMetrics().lineSpacing() * 3 + 2 * m_kwinLines->frameWidth() + 8);
    doubleShift->addRow(m_kwinLines);
    doubleShift->addButtons({m_copyKwinLines});
    layout->addWidget(doubleShift);

    auto *shortcuts = new SettingsGroup(tr("Shortcuts"), this);
    m_portalMessage->setForegroundRole(QPalette::WindowText);
    shortcuts->addRow(m_portalMessage);
    shortcuts->addRow(m_bindingAdvice);
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
        // Where the desktop gives Vesko no shortcuts: the command to bind.
        auto *command = new QLabel(actionCommand(action));
        command->setFont(mono);
        command->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        command->setAccessibleName(tr("Command for “%1”").arg(title(action)));
        m_commands.append(command);
        rowLayout->addWidget(command, 2, 0, 1, 2);
        rowLayout->setColumnStretch(0, 1);
        shortcuts->addRow(row);
    }
    m_swayLines->setReadOnly(true);
    m_swayLines->setFont(mono);
    m_swayLines->setLineWrapMode(QPlainTextEdit::NoWrap);
    m_swayLines->setAccessibleName(tr("Lines for the sway configuration"));
    m_swayLines->setFixedHeight(
        m_swayLines->fontMetrics().lineSpacing() * 7 + 2 * m_swayLines->frameWidth() + 8);
    shortcuts->addRow(m_swayLines);
    shortcuts->addButtons({m_copySwayLines});
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
    // The desktop's word on its shortcuts comes later than the registrations.
    connect(&m_services.hotKeys, &HotKeyCenter::registrationsChanged, this,
        &CaptureSettingsView::refreshPermission);
    // Recorded keys change the lines to paste.
    connect(&m_services.hotKeys, &HotKeyCenter::combosChanged, this,
        &CaptureSettingsView::refreshPermission);
    connect(m_copySwayLines, &QPushButton::clicked, this,
        [this] { QGuiApplication::clipboard()->setText(m_swayLines->toPlainText()); });
    connect(m_copyKwinLines, &QPushButton::clicked, this,
        [this] { QGuiApplication::clipboard()->setText(m_kwinLines->toPlainText()); });
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

CaptureCapabilities CaptureSettingsView::capabilities() const
{
    if (m_services.capabilities)
        return m_services.capabilities();
    if (!m_services.permission.isTrusted())
        return {};
    using C = CaptureCapabilities;
    return {C::HotKeys::KeyGrab, C::Selection::PrimarySelection, C::Source::WindowProperties,
        C::Copy::SyntheticKeys, C::DoubleShift::KeyMonitor};
}

QString CaptureSettingsView::swayLines() const
{
    return m_swayLines->isVisibleTo(this) ? m_swayLines->toPlainText() : QString();
}

QString CaptureSettingsView::kwinLines() const
{
    return m_kwinLines->isVisibleTo(this) ? m_kwinLines->toPlainText() : QString();
}

void CaptureSettingsView::refreshPermission()
{
    const bool available = m_services.permission.isTrusted();
    const CaptureObstacle obstacle = available || !m_services.captureObstacle
        ? CaptureObstacle::None
        : m_services.captureObstacle();
    const QColor good(0x2e, 0xa0, 0x43);
    const QColor wanting(0xd9, 0x8e, 0x04);
    m_permissionIcon->setPixmap(
        symbolIcon(available ? QStringLiteral("checkmark.circle.fill")
                             : QStringLiteral("exclamationmark.triangle.fill"),
            available ? good : wanting, 16)
            .pixmap(16, 16));
    m_permissionTitle->setText(available ? tr("Capture works in this session")
                                         : tr("Capture is not set up in this session"));
    const CaptureCapabilities found = capabilities();
    const ShortcutDesktop desktop = shortcutDesktop(m_services.currentDesktop);
    const QList<CapabilityLine> lines = capabilityLines(found, desktop);
    for (qsizetype i = 0; i < m_capabilityTexts.size() && i < lines.size(); ++i) {
        const CapabilityLine &line = lines.at(i);
        m_capabilityIcons.at(i)->setPixmap(
            symbolIcon(line.works ? QStringLiteral("checkmark.circle.fill")
                                  : QStringLiteral("exclamationmark.triangle.fill"),
                line.works ? good : wanting, 12)
                .pixmap(12, 12));
        m_capabilityTexts.at(i)->setText(tr("%1: %2").arg(line.title, line.text));
    }
    m_reason->setText(captureObstacleReason(obstacle));
    m_reason->setVisible(!available && !m_reason->text().isEmpty());
    m_advice->setText(captureObstacleAdvice(obstacle));
    m_advice->setVisible(!available && !m_advice->text().isEmpty());
    const bool leadSomewhere = !available && bool(m_services.openShortcutSettings);
    m_grantAccess->setVisible(leadSomewhere);
    m_openSystemSettings->setVisible(leadSomewhere);

    // Shortcuts: Vesko's own, the desktop's, or commands bound by hand.
    const std::optional<PortalShortcutsState> portal
        = m_services.portalState ? m_services.portalState() : std::nullopt;
    const QString portalMessage = portal ? portalShortcutsMessage(*portal) : QString();
    m_portalMessage->setText(portalMessage);
    m_portalMessage->setVisible(!portalMessage.isEmpty());
    const bool byHand = found.hotKeys == CaptureCapabilities::HotKeys::None;
    const bool sway = byHand && desktop == ShortcutDesktop::Sway;
    m_bindingAdvice->setText(byHand ? commandBindingAdvice(desktop) : QString());
    m_bindingAdvice->setVisible(byHand);
    for (QLabel *command : std::as_const(m_commands))
        command->setVisible(byHand && !sway);
    const bool ownedByDesktop = found.hotKeys == CaptureCapabilities::HotKeys::Portal;
    for (ShortcutRecorderView *recorder : std::as_const(m_recorders)) {
        recorder->setCaptureAvailable(available && !byHand);
        recorder->setDesktopOwned(ownedByDesktop, m_services.openShortcutSettings);
        // The keys recorded here only serve where Vesko holds them, or in
        // sway's lines below.
        recorder->setVisible(!byHand || sway);
    }
    if (sway) {
        const HotKeyCenter &hotKeys = m_services.hotKeys;
        m_swayLines->setPlainText(swayBindings([&hotKeys](HotKeyAction action) {
            const std::optional<KeyCombo> combo = hotKeys.combo(action);
            return combo ? swayKeyCombo(combo->keyCode, combo->modifiers) : QString();
        }));
    }
    m_swayLines->setVisible(sway);
    m_copySwayLines->setVisible(sway);
    // Where KWin does not pass Shift taps yet, and Vesko hears no keys itself.
    const bool kwinOff = desktop == ShortcutDesktop::Kde
        && found.doubleShift == CaptureCapabilities::DoubleShift::None;
    if (kwinOff)
        m_kwinLines->setPlainText(kwinShiftCommands(m_services.plasmaVersion));
    m_kwinLines->setVisible(kwinOff);
    m_copyKwinLines->setVisible(kwinOff);
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
