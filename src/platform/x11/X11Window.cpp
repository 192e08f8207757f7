// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/x11/X11Window.h"

#include "platform/x11/X11Connection.h"

#include <QGuiApplication>
#include <QRegion>
#include <QWindow>

#include <xcb/xcb.h>

#include <algorithm>
#include <cstdlib>

namespace Vesko::X11Window {

namespace {

xcb_connection_t *connection()
{
    auto *x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return x11 ? x11->connection() : nullptr;
}

xcb_atom_t atom(xcb_connection_t *c, const char *name)
{
    return X11Connection::atom(c, name);
}

xcb_window_t rootWindow(xcb_connection_t *c)
{
    return X11Connection::root(c);
}

uint32_t currentDesktop(xcb_connection_t *c)
{
    return X11Connection::cardinal(
        c, rootWindow(c), atom(c, "_NET_CURRENT_DESKTOP"), XCB_ATOM_CARDINAL)
        .value_or(0);
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

void requestActivation(QWindow *window)
{
    xcb_connection_t *c = connection();
    if (!c || !window || !window->isVisible())
        return;
    xcb_client_message_event_t event = {};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = xcb_window_t(window->winId());
    event.type = atom(c, "_NET_ACTIVE_WINDOW");
    event.data.data32[0] = 2; // from a pager: the user's own choice
    event.data.data32[1] = XCB_CURRENT_TIME;
    event.data.data32[2] = XCB_WINDOW_NONE;
    xcb_send_event(c, 0, rootWindow(c),
        XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
        reinterpret_cast<const char *>(&event));
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

namespace {

//! KWin keeps the atom of its blur request among the root window's
//! properties while its blur effect is loaded.
bool blurEffectLoaded(xcb_connection_t *c)
{
    const xcb_atom_t blur = atom(c, "_KDE_NET_WM_BLUR_BEHIND_REGION");
    if (blur == XCB_ATOM_NONE)
        return false;
    xcb_list_properties_reply_t *reply
        = xcb_list_properties_reply(c, xcb_list_properties(c, rootWindow(c)), nullptr);
    if (!reply)
        return false;
    const xcb_atom_t *atoms = xcb_list_properties_atoms(reply);
    const int count = xcb_list_properties_atoms_length(reply);
    const bool loaded = std::find(atoms, atoms + count, blur) != atoms + count;
    std::free(reply);
    return loaded;
}

} // namespace

bool setBlurBehind(QWindow *window, const QRegion &region)
{
    xcb_connection_t *c = connection();
    if (!c || !window)
        return false;
    const xcb_window_t id = xcb_window_t(window->winId());
    const xcb_atom_t blur = atom(c, "_KDE_NET_WM_BLUR_BEHIND_REGION");
    const bool offered = !region.isEmpty() && hasCompositingManager() && blurEffectLoaded(c);
    if (!offered) {
        xcb_delete_property(c, id, blur);
        xcb_flush(c);
        return false;
    }
    // The region as rectangles of x, y, width and height, in device pixels.
    const qreal scale = window->devicePixelRatio();
    QList<uint32_t> data;
    for (const QRect &rect : region) {
        const QRect device(QPoint(qRound(rect.x() * scale), qRound(rect.y() * scale)),
            QSize(qRound(rect.width() * scale), qRound(rect.height() * scale)));
        data << uint32_t(device.x()) << uint32_t(device.y()) << uint32_t(device.width())
             << uint32_t(device.height());
    }
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, id, blur, XCB_ATOM_CARDINAL, 32,
        uint32_t(data.size()), data.constData());
    xcb_flush(c);
    return true;
}

} // namespace Vesko::X11Window
