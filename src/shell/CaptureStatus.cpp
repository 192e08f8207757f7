// SPDX-License-Identifier: GPL-3.0-or-later

#include "shell/CaptureStatus.h"

#include <QCoreApplication>

namespace Vesko {

namespace {

// The texts of this file, in the translation context "CaptureSettingsView".
struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(CaptureSettingsView)
};

} // namespace

QString captureObstacleReason(CaptureObstacle obstacle)
{
    switch (obstacle) {
    case CaptureObstacle::None:
        break;
    case CaptureObstacle::WaylandSession:
        return Texts::tr("This Wayland desktop does not let Vesko read the text selected in other "
                  "applications.");
    case CaptureObstacle::XWayland:
        return Texts::tr("Vesko runs here as an X11 program (XWayland), which cannot read the text "
                         "selected in other applications.");
    case CaptureObstacle::NoXServer:
        return Texts::tr(
            "Vesko is not running on an X server, so it cannot see other applications' "
            "keys and selected text.");
    case CaptureObstacle::NoXInput2:
        return Texts::tr("The X server lacks the XInput 2 extension, which tells Vesko about Shift "
                         "presses.");
    case CaptureObstacle::NoXTest:
        return Texts::tr("The X server lacks XTEST, which Vesko uses to copy the selected text.");
    case CaptureObstacle::NoXResource:
        return Texts::tr("The X server lacks the X-Resource extension, which tells Vesko which "
                         "application owns the selected text.");
    }
    return {};
}

QString captureObstacleAdvice(CaptureObstacle obstacle)
{
    switch (obstacle) {
    case CaptureObstacle::None:
        break;
    case CaptureObstacle::WaylandSession:
        return Texts::tr("Here you can still bind Vesko's commands to keys, paste text into the "
                  "composer and drop files on notes. In an X11 (Xorg) session capture works "
                  "in full.");
    case CaptureObstacle::XWayland:
        return Texts::tr("Start Vesko on Qt's Wayland platform, with %1 in its environment, to "
                         "capture on this desktop.")
            .arg(QStringLiteral("QT_QPA_PLATFORM=wayland"));
    case CaptureObstacle::NoXServer:
        return Texts::tr("To capture with double Shift and the shortcuts, log in to an X11 (Xorg) "
                         "session. Here you can still open the panel from the system tray, paste "
                         "text into the composer and drop files on notes.");
    case CaptureObstacle::NoXInput2:
    case CaptureObstacle::NoXTest:
    case CaptureObstacle::NoXResource:
        return Texts::tr(
            "Enable the extension in the X server's configuration and start Vesko "
            "again. Until then, paste text into the composer and drop files on notes.");
    }
    return {};
}

QStringList keyboardShortcutSettingsCommand(const QString &currentDesktop)
{
    static const std::pair<QLatin1String, QStringList> pages[] = {
        {QLatin1String("GNOME"),
            {QStringLiteral("gnome-control-center"), QStringLiteral("keyboard")}},
        {QLatin1String("KDE"), {QStringLiteral("systemsettings"), QStringLiteral("kcm_keys")}},
        {QLatin1String("XFCE"), {QStringLiteral("xfce4-keyboard-settings")}},
        {QLatin1String("X-Cinnamon"),
            {QStringLiteral("cinnamon-settings"), QStringLiteral("keyboard")}},
        {QLatin1String("MATE"), {QStringLiteral("mate-keybinding-properties")}},
    };
    for (const QStringView desktop : QStringView(currentDesktop).split(u':')) {
        for (const auto &[name, command] : pages) {
            if (desktop.compare(name, Qt::CaseInsensitive) == 0)
                return command;
        }
    }
    return {};
}

QList<CapabilityLine> capabilityLines(
    const CaptureCapabilities &capabilities, ShortcutDesktop desktop)
{
    using C = CaptureCapabilities;
    QList<CapabilityLine> lines;
    switch (capabilities.hotKeys) {
    case C::HotKeys::KeyGrab:
        lines.append({Texts::tr("Shortcuts"), true, Texts::tr("Vesko holds its shortcuts itself.")});
        break;
    case C::HotKeys::Portal:
        lines.append({Texts::tr("Shortcuts"), true,
            Texts::tr("Your desktop keeps Vesko's shortcuts; you change them in its settings.")});
        break;
    case C::HotKeys::None:
        lines.append({Texts::tr("Shortcuts"), false,
            Texts::tr("This desktop gives Vesko no shortcuts of its own. Bind the commands below to "
               "keys in its keyboard settings.")});
        break;
    }
    switch (capabilities.selection) {
    case C::Selection::PrimarySelection:
        lines.append({Texts::tr("Selected text"), true,
            Texts::tr("Read from the application in front when you capture.")});
        break;
    case C::Selection::OnPanelFocus:
        lines.append({Texts::tr("Selected text"), true,
            Texts::tr("Read as the panel comes forward, so capture with a shortcut that runs “%1”.")
                .arg(actionCommand(HotKeyAction::CaptureSelection))});
        break;
    case C::Selection::None:
        lines.append({Texts::tr("Selected text"), false,
            Texts::tr("This desktop does not let Vesko read it. Paste text into the composer "
               "instead.")});
        break;
    }
    switch (capabilities.source) {
    case C::Source::WindowProperties:
    case C::Source::ForeignToplevel:
        lines.append({Texts::tr("Source"), true,
            Texts::tr("Captured notes are filed under the application and window they came from.")});
        break;
    case C::Source::Accessibility:
        lines.append({Texts::tr("Source"), true,
            Texts::tr("The application and window in front are read through the accessibility bus, "
               "and captured notes are filed under them.")});
        break;
    case C::Source::None:
        lines.append({Texts::tr("Source"), false,
            Texts::tr("This desktop does not tell which application is in front, so captured notes "
               "are filed under “Unknown”.")});
        break;
    }
    switch (capabilities.copy) {
    case C::Copy::SyntheticKeys:
        lines.append({Texts::tr("Copy"), true,
            Texts::tr("When an application keeps no selection, Vesko presses Ctrl+Insert for you.")});
        break;
    case C::Copy::None:
        lines.append({Texts::tr("Copy"), false,
            Texts::tr("Vesko cannot press Ctrl+Insert here: select the text before you capture.")});
        break;
    }
    switch (capabilities.doubleShift) {
    case C::DoubleShift::KeyMonitor:
        lines.append(
            {Texts::tr("Double Shift"), true, Texts::tr("Vesko sees the Shift key when you turn it on.")});
        break;
    case C::DoubleShift::CompositorBinding:
        lines.append(
            {Texts::tr("Double Shift"), true, Texts::tr("Your desktop passes each Shift release to Vesko.")});
        break;
    case C::DoubleShift::CompositorCanBind:
        lines.append({Texts::tr("Double Shift"), false,
            Texts::tr("Add “bindsym --release Shift_L exec %1” to your sway configuration to have "
                      "sway pass each lone Shift release to Vesko.")
                .arg(QStringLiteral("vesko shift"))});
        break;
    case C::DoubleShift::None:
        // KWin calls Vesko on a lone Shift release once told to.
        lines.append({Texts::tr("Double Shift"), false,
            desktop == ShortcutDesktop::Kde
                ? Texts::tr("Run the two commands under Double Shift once to have KWin pass each "
                            "lone Shift release to Vesko.")
                : Texts::tr("Not available on this desktop; use the capture shortcut instead.")});
        break;
    }
    return lines;
}

bool canCaptureAtAll(const CaptureCapabilities &capabilities)
{
    return capabilities.selection != CaptureCapabilities::Selection::None;
}

QString portalShortcutsMessage(PortalShortcutsState state)
{
    using State = PortalShortcutsState;
    switch (state) {
    case State::Probing:
    case State::Absent:
    case State::Connecting:
    case State::Bound:
        break;
    case State::Refused:
        return Texts::tr("The desktop refused Vesko's shortcuts. Bind the commands below in its "
                  "keyboard settings instead.");
    case State::Closed:
        return Texts::tr("The desktop ended Vesko's shortcuts. Start Vesko again to bind them, or "
                  "bind the commands below in its keyboard settings.");
    case State::NoAnswer:
        return Texts::tr("The desktop did not answer when Vesko asked for its shortcuts. Bind the "
                  "commands below in its keyboard settings instead.");
    }
    return {};
}

QString currentDesktopNames()
{
    const QString named = qEnvironmentVariable("XDG_CURRENT_DESKTOP");
    // sway sets no XDG_CURRENT_DESKTOP of its own, but always its socket.
    if (named.isEmpty() && qEnvironmentVariableIsSet("SWAYSOCK"))
        return QStringLiteral("sway");
    return named;
}

ShortcutDesktop shortcutDesktop(const QString &currentDesktop)
{
    for (const QStringView desktop : QStringView(currentDesktop).split(u':')) {
        if (desktop.compare(u"GNOME", Qt::CaseInsensitive) == 0)
            return ShortcutDesktop::Gnome;
        if (desktop.compare(u"KDE", Qt::CaseInsensitive) == 0)
            return ShortcutDesktop::Kde;
        if (desktop.compare(u"sway", Qt::CaseInsensitive) == 0)
            return ShortcutDesktop::Sway;
    }
    return ShortcutDesktop::Other;
}

QString actionCommand(HotKeyAction action)
{
    switch (action) {
    case HotKeyAction::TogglePanel:
        return QStringLiteral("vesko toggle");
    case HotKeyAction::CaptureSelection:
        return QStringLiteral("vesko capture");
    case HotKeyAction::QuickAdd:
        return QStringLiteral("vesko quick-add");
    case HotKeyAction::CopySelectionAsList:
        return QStringLiteral("vesko copy-list");
    }
    return {};
}

QString commandBindingAdvice(ShortcutDesktop desktop)
{
    switch (desktop) {
    case ShortcutDesktop::Gnome:
        return Texts::tr("In Settings > Keyboard > Custom Shortcuts (under “View and Customize "
                  "Shortcuts”), add a shortcut for each command: a name, the command, and "
                  "the keys.");
    case ShortcutDesktop::Kde:
        return Texts::tr("In System Settings > Keyboard > Shortcuts, choose “Add New” > “Command or "
                  "Script” for each command and give it keys.");
    case ShortcutDesktop::Sway:
        return Texts::tr("Add these lines to your sway configuration (~/.config/sway/config), then "
                  "reload sway:");
    case ShortcutDesktop::Other:
        break;
    }
    return Texts::tr("In your desktop's keyboard settings, bind keys to each command.");
}

QString swayBindings(const std::function<QString(HotKeyAction)> &keys)
{
    QStringList lines;
    for (HotKeyAction action : allHotKeyActions) {
        const QString combination = keys(action);
        lines.append(combination.isEmpty()
                ? QStringLiteral("# bindsym KEYS exec %1").arg(actionCommand(action))
                : QStringLiteral("bindsym %1 exec %2").arg(combination, actionCommand(action)));
    }
    // Each release of a lone Shift, left or right, is a tap of the double-Shift gesture.
    lines.append(QStringLiteral("bindsym --release Shift_L exec vesko shift"));
    lines.append(QStringLiteral("bindsym --release Shift_R exec vesko shift"));
    return lines.join(u'\n') + u'\n';
}

namespace {

//! kwinrc's value that has KWin call ShiftTapped on the running Vesko
//! (ApplicationBus): service, object, interface and method. The service is
//! the name the bus cannot start Vesko by, so a tap after quitting is lost.
QString kwinShiftCall()
{
    return QStringLiteral(
        "com.vesko.Vesko.ShiftTaps,/com/vesko/Vesko,com.vesko.Vesko.Notes,ShiftTapped");
}

} // namespace

QString kwinShiftCommands(const QString &plasmaVersion)
{
    // Plasma 6 names its tools after itself; Plasma 5 sets no version at all on X11.
    const QString version = plasmaVersion.toInt() >= 6 ? plasmaVersion : QStringLiteral("5");
    return QStringLiteral("kwriteconfig%1 --file kwinrc --group ModifierOnlyShortcuts --key Shift "
                          "\"%2\"\n"
                          "dbus-send --session --type=method_call --dest=org.kde.KWin /KWin "
                          "org.kde.KWin.reconfigure\n")
        .arg(version, kwinShiftCall());
}

bool kwinPassesShiftTaps(QStringView kwinrc)
{
    bool inGroup = false;
    for (QStringView line : kwinrc.split(u'\n')) {
        line = line.trimmed();
        if (line.startsWith(u'[')) {
            inGroup = line == u"[ModifierOnlyShortcuts]";
            continue;
        }
        const qsizetype equals = line.indexOf(u'=');
        if (inGroup && equals > 0 && line.first(equals).trimmed() == u"Shift")
            return line.sliced(equals + 1).trimmed() == kwinShiftCall();
    }
    return false;
}

} // namespace Vesko
