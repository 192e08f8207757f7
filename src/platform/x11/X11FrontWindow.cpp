// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/x11/X11FrontWindow.h"

#include "platform/x11/X11Connection.h"

#include <QFile>

#include <cstdlib>

namespace Vesko {

namespace {

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

X11FrontWindow::X11FrontWindow(X11Connection &connection)
    : m_connection(connection)
{ }

xcb_window_t X11FrontWindow::activeWindow()
{
    if (!m_connection.isValid())
        return 0;
    const std::optional<uint32_t> active = m_connection.cardinal(
        m_connection.root(), m_connection.atom("_NET_ACTIVE_WINDOW"), XCB_ATOM_WINDOW);
    if (active && *active != 0)
        return *active;
    xcb_connection_t *c = m_connection.get();
    xcb_get_input_focus_reply_t *focus
        = xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr);
    xcb_window_t window = focus ? focus->focus : 0;
    std::free(focus);
    if (window == XCB_INPUT_FOCUS_POINTER_ROOT || window == m_connection.root())
        return 0;
    return window;
}

std::optional<QString> X11FrontWindow::windowTitle(xcb_window_t window)
{
    if (const std::optional<QByteArray> name = m_connection.property(
            window, m_connection.atom("_NET_WM_NAME"), m_connection.atom("UTF8_STRING")))
        return QString::fromUtf8(*name);
    if (const std::optional<QByteArray> name
        = m_connection.property(window, XCB_ATOM_WM_NAME, XCB_ATOM_ANY))
        return QString::fromLocal8Bit(*name);
    return std::nullopt;
}

std::optional<FrontApplication> X11FrontWindow::frontApplication()
{
    const xcb_window_t window = activeWindow();
    if (window == 0)
        return std::nullopt;
    FrontApplication front;
    front.processID = m_connection.processOf(window).value_or(0);
    front.windowTitle = windowTitle(window);

    QString instance;
    QString windowClass;
    if (const std::optional<QByteArray> classes
        = m_connection.property(window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING)) {
        const QList<QByteArray> parts = classes->split('\0');
        instance = QString::fromLocal8Bit(parts.value(0));
        windowClass = QString::fromLocal8Bit(parts.value(1));
    }
    QStringList candidates;
    for (const char *name : {"_GTK_APPLICATION_ID", "_KDE_NET_WM_DESKTOP_FILE"}) {
        if (const std::optional<QByteArray> id
            = m_connection.property(window, m_connection.atom(name), XCB_ATOM_ANY)) {
            candidates.append(QString::fromUtf8(*id).remove(QChar(0)));
        }
    }
    candidates.append(windowClass);
    candidates.append(instance);
    candidates.removeAll(QString());

    const std::optional<X11DesktopEntries::Entry> entry = m_entries.find(candidates, windowClass);
    if (entry && !entry->name.isEmpty())
        front.name = entry->name;
    else if (!windowClass.isEmpty())
        front.name = windowClass;
    else if (front.processID > 0) {
        QFile comm(QStringLiteral("/proc/%1/comm").arg(front.processID));
        if (comm.open(QIODevice::ReadOnly))
            front.name = QString::fromLocal8Bit(comm.readAll()).trimmed();
    }
    if (entry)
        front.identifier = entry->id;
    else if (!instance.isEmpty())
        front.identifier = instance;
    front.isTerminal = (entry && entry->isTerminal)
        || terminalClasses.contains(windowClass.toLower())
        || terminalClasses.contains(instance.toLower());
    return front;
}

} // namespace Vesko
