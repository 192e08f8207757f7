// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/x11/X11FrontWindow.h"

#include "platform/FrontApplicationNames.h"
#include "platform/x11/X11Connection.h"

#include <cstdlib>
#include <cstring>

namespace Vesko {

X11FrontWindow::X11FrontWindow(X11Connection &connection)
    : m_connection(connection)
{ }

xcb_atom_t X11FrontWindow::atom(const char *name)
{
    const QByteArray key(name);
    if (const auto known = m_atoms.constFind(key); known != m_atoms.cend())
        return *known;
    const xcb_atom_t atom = m_connection.atom(name);
    if (atom != XCB_ATOM_NONE)
        m_atoms.insert(key, atom);
    return atom;
}

xcb_window_t X11FrontWindow::activeWindow()
{
    if (!m_connection.isValid())
        return 0;
    const std::optional<uint32_t> active
        = m_connection.cardinal(m_connection.root(), atom("_NET_ACTIVE_WINDOW"), XCB_ATOM_WINDOW);
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

void X11FrontWindow::frontApplication(std::function<void(std::optional<FrontApplication>)> done)
{
    const xcb_window_t window = activeWindow();
    if (window == 0) {
        done(std::nullopt);
        return;
    }
    // The window's properties, asked for together: one wait for the server.
    xcb_connection_t *c = m_connection.get();
    const xcb_atom_t utf8 = atom("UTF8_STRING");
    const auto ask = [&](xcb_atom_t property, xcb_atom_t type) {
        return xcb_get_property(c, 0, window, property, type, 0, 1 << 16);
    };
    const xcb_get_property_cookie_t netName = ask(atom("_NET_WM_NAME"), utf8);
    const xcb_get_property_cookie_t name = ask(XCB_ATOM_WM_NAME, XCB_ATOM_ANY);
    const xcb_get_property_cookie_t classes = ask(XCB_ATOM_WM_CLASS, XCB_ATOM_STRING);
    const xcb_get_property_cookie_t gtkID = ask(atom("_GTK_APPLICATION_ID"), XCB_ATOM_ANY);
    const xcb_get_property_cookie_t kdeID = ask(atom("_KDE_NET_WM_DESKTOP_FILE"), XCB_ATOM_ANY);
    const xcb_get_property_cookie_t pid = ask(atom("_NET_WM_PID"), XCB_ATOM_CARDINAL);
    const auto take = [c](xcb_get_property_cookie_t cookie) -> std::optional<QByteArray> {
        xcb_get_property_reply_t *reply = xcb_get_property_reply(c, cookie, nullptr);
        std::optional<QByteArray> bytes;
        if (reply && reply->type != XCB_ATOM_NONE) {
            bytes = QByteArray(static_cast<const char *>(xcb_get_property_value(reply)),
                xcb_get_property_value_length(reply));
        }
        std::free(reply);
        return bytes;
    };

    FrontApplication front;
    const std::optional<QByteArray> netTitle = take(netName);
    const std::optional<QByteArray> title = take(name);
    if (netTitle)
        front.windowTitle = QString::fromUtf8(*netTitle);
    else if (title)
        front.windowTitle = QString::fromLocal8Bit(*title);
    QString instance;
    QString windowClass;
    if (const std::optional<QByteArray> both = take(classes)) {
        const QList<QByteArray> parts = both->split('\0');
        instance = QString::fromLocal8Bit(parts.value(0));
        windowClass = QString::fromLocal8Bit(parts.value(1));
    }
    QStringList candidates;
    for (const xcb_get_property_cookie_t cookie : {gtkID, kdeID}) {
        if (const std::optional<QByteArray> id = take(cookie))
            candidates.append(QString::fromUtf8(*id).remove(QChar(0)));
    }
    candidates.append(windowClass);
    candidates.append(instance);
    candidates.removeAll(QString());
    if (const std::optional<QByteArray> id = take(pid); id && id->size() >= 4) {
        quint32 value = 0;
        std::memcpy(&value, id->constData(), 4);
        front.processID = value;
    } else {
        front.processID = m_connection.processOf(window).value_or(0); // through X-Resource
    }

    m_entries.find(candidates, windowClass,
        [front, instance, windowClass, done = std::move(done)](
            std::optional<X11DesktopEntries::Entry> entry) mutable {
            nameFrontApplication(front, entry, windowClass, instance);
            done(front);
        });
}

} // namespace Vesko
