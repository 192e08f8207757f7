// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/X11Window.h"

#include <QGuiApplication>
#include <QWindow>

#include <xcb/xcb.h>

#include <cstdlib>
#include <cstring>

namespace Vesko::X11Window {

namespace {

xcb_connection_t *connection()
{
    auto *x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return x11 ? x11->connection() : nullptr;
}

xcb_atom_t atom(xcb_connection_t *c, const char *name)
{
    const xcb_intern_atom_cookie_t cookie = xcb_intern_atom(c, 0, uint16_t(strlen(name)), name);
    xcb_intern_atom_reply_t *reply = xcb_intern_atom_reply(c, cookie, nullptr);
    const xcb_atom_t result = reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
    std::free(reply);
    return result;
}

xcb_window_t rootWindow(xcb_connection_t *c)
{
    const xcb_setup_t *setup = xcb_get_setup(c);
    return xcb_setup_roots_iterator(setup).data->root;
}

uint32_t currentDesktop(xcb_connection_t *c)
{
    const xcb_get_property_cookie_t cookie = xcb_get_property(
        c, 0, rootWindow(c), atom(c, "_NET_CURRENT_DESKTOP"), XCB_ATOM_CARDINAL, 0, 1);
    xcb_get_property_reply_t *reply = xcb_get_property_reply(c, cookie, nullptr);
    uint32_t desktop = 0;
    if (reply && xcb_get_property_value_length(reply) == 4)
        desktop = *static_cast<const uint32_t *>(xcb_get_property_value(reply));
    std::free(reply);
    return desktop;
}

} // namespace

void setOnAllDesktops(QWindow *window, bool onAll)
{
    xcb_connection_t *c = connection();
    if (!c || !window)
        return;
    const xcb_window_t id = xcb_window_t(window->winId());
    const xcb_atom_t desktopAtom = atom(c, "_NET_WM_DESKTOP");
    const uint32_t desktop = onAll ? 0xFFFFFFFFu : currentDesktop(c);
    if (window->isVisible()) {
        // A mapped window asks the window manager.
        xcb_client_message_event_t event = {};
        event.response_type = XCB_CLIENT_MESSAGE;
        event.format = 32;
        event.window = id;
        event.type = desktopAtom;
        event.data.data32[0] = desktop;
        event.data.data32[1] = 1; // from an application
        xcb_send_event(c, 0, rootWindow(c),
            XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
            reinterpret_cast<const char *>(&event));
    } else if (onAll) {
        xcb_change_property(
            c, XCB_PROP_MODE_REPLACE, id, desktopAtom, XCB_ATOM_CARDINAL, 32, 1, &desktop);
    } else {
        xcb_delete_property(c, id, desktopAtom);
    }
    xcb_flush(c);
}

bool hasCompositingManager()
{
    xcb_connection_t *c = connection();
    if (!c)
        return QGuiApplication::platformName() == QLatin1String("wayland");
    const xcb_get_selection_owner_cookie_t cookie
        = xcb_get_selection_owner(c, atom(c, "_NET_WM_CM_S0"));
    xcb_get_selection_owner_reply_t *reply = xcb_get_selection_owner_reply(c, cookie, nullptr);
    const bool owned = reply && reply->owner != XCB_WINDOW_NONE;
    std::free(reply);
    return owned;
}

} // namespace Vesko::X11Window
