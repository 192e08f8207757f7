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
        return Texts::tr(
            "This is a Wayland session: it keeps other applications' keys and selected "
            "text away from Vesko.");
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

} // namespace Vesko
