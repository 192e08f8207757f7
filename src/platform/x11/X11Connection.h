// SPDX-License-Identifier: GPL-3.0-or-later
//
// A connection of Vesko's own to the X server, apart from Qt's, read on the
// main thread: the key monitor, the hot keys, the session and the clipboard
// each keep one, so that what they select and grab does not mix with Qt's own
// windows and events. Events are read when the socket has data, and those a
// reply read left queued are handed out before the event loop sleeps.

#pragma once

#include <QObject>

#include <xcb/xcb.h>

#include <functional>
#include <optional>

class QSocketNotifier;

namespace Vesko {

class X11Connection : public QObject
{
    Q_OBJECT

public:
    //! Connects to $DISPLAY; isValid() tells whether it worked.
    explicit X11Connection(QObject *parent = nullptr);
    ~X11Connection() override;

    bool isValid() const { return m_connection != nullptr; }
    xcb_connection_t *get() const { return m_connection; }
    xcb_window_t root() const { return m_root; }

    xcb_atom_t atom(const char *name);
    //! The first major opcode of an extension the server offers, if it does.
    std::optional<uint8_t> extensionOpcode(const char *name);
    //! Selects XInput 2's raw key events in \a mask (XCB_INPUT_XI_EVENT_MASK_RAW_KEY_…)
    //! of every master device on the root window. From XInput 2.1 on the
    //! server sends them whatever grab or focus the keys go to. The XInput
    //! opcode when it worked.
    std::optional<uint8_t> selectRawKeyEvents(uint32_t mask);

    //! Every event read from the connection goes to \a handler, on the main thread.
    void setEventHandler(std::function<void(xcb_generic_event_t *)> handler);
    //! Reads what is waiting now.
    void dispatch();
    //! Hands out events already read from the socket, without reading more.
    void dispatchQueued();

    //! The process of the client that made \a window: _NET_WM_PID, else X-Resource.
    std::optional<qint64> processOf(xcb_window_t window);

    //! A property's bytes (of any type when \a type is XCB_ATOM_ANY), if set.
    std::optional<QByteArray> property(xcb_window_t window, xcb_atom_t property,
        xcb_atom_t type = XCB_ATOM_ANY, xcb_atom_t *actualType = nullptr);
    //! A 32-bit property's first value.
    std::optional<uint32_t> cardinal(xcb_window_t window, xcb_atom_t property, xcb_atom_t type);

    // The same requests on any connection, Qt's own included.
    static xcb_atom_t atom(xcb_connection_t *connection, const char *name);
    static xcb_window_t root(xcb_connection_t *connection);
    static std::optional<QByteArray> property(xcb_connection_t *connection, xcb_window_t window,
        xcb_atom_t property, xcb_atom_t type = XCB_ATOM_ANY, xcb_atom_t *actualType = nullptr);
    static std::optional<uint32_t> cardinal(
        xcb_connection_t *connection, xcb_window_t window, xcb_atom_t property, xcb_atom_t type);

private:
    xcb_connection_t *m_connection = nullptr;
    xcb_window_t m_root = 0;
    QSocketNotifier *m_notifier = nullptr;
    std::function<void(xcb_generic_event_t *)> m_handler;
};

} // namespace Vesko
