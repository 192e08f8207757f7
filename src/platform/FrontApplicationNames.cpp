// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/FrontApplicationNames.h"

#include <QFile>
#include <QStringList>

namespace Vesko {

namespace {

//! Terminal emulators by window class (X11) or app_id (Wayland), in lower case.
const QStringList terminalClasses = {QStringLiteral("xterm"), QStringLiteral("uxterm"),
    QStringLiteral("urxvt"), QStringLiteral("rxvt"), QStringLiteral("gnome-terminal-server"),
    QStringLiteral("gnome-terminal"), QStringLiteral("konsole"), QStringLiteral("alacritty"),
    QStringLiteral("kitty"), QStringLiteral("terminator"), QStringLiteral("tilix"),
    QStringLiteral("xfce4-terminal"), QStringLiteral("lxterminal"), QStringLiteral("mate-terminal"),
    QStringLiteral("st-256color"), QStringLiteral("wezterm"), QStringLiteral("foot"),
    QStringLiteral("org.wezfurlong.wezterm"), QStringLiteral("org.gnome.console"),
    QStringLiteral("kgx"), QStringLiteral("qterminal"), QStringLiteral("sakura"),
    QStringLiteral("terminology"), QStringLiteral("guake"), QStringLiteral("tilda"),
    QStringLiteral("cool-retro-term")};

} // namespace

bool isTerminalClass(const QString &windowClass)
{
    return !windowClass.isEmpty() && terminalClasses.contains(windowClass.toLower());
}

void nameFrontApplication(FrontApplication &front, const std::optional<DesktopEntry> &entry,
    const QString &windowClass, const QString &instance)
{
    if (entry && !entry->name.isEmpty()) {
        front.name = entry->name;
    } else if (!windowClass.isEmpty()) {
        front.name = windowClass;
    } else if (front.processID > 0) {
        // A file of the kernel's, read at once.
        QFile comm(QStringLiteral("/proc/%1/comm").arg(front.processID));
        if (comm.open(QIODevice::ReadOnly))
            front.name = QString::fromLocal8Bit(comm.readAll()).trimmed();
    }
    if (entry)
        front.identifier = entry->id;
    else if (!instance.isEmpty())
        front.identifier = instance;
    else if (!windowClass.isEmpty())
        front.identifier = windowClass;
    front.isTerminal = (entry && entry->isTerminal) || isTerminalClass(windowClass)
        || isTerminalClass(instance);
}

} // namespace Vesko
