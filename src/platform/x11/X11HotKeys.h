// SPDX-License-Identifier: GPL-3.0-or-later
//
// Global key combinations on X11: XGrabKey on the root window for each one,
// repeated with the Caps Lock and Num Lock masks so that those locks do not
// block it. A grab that another client holds already comes back as BadAccess:
// a refused registration.

#pragma once

#include "platform/HotKeyRegistrar.h"

#include <QHash>

#include <xcb/xcb.h>

#include <memory>

namespace Vesko {

class X11Connection;

class X11HotKeys : public HotKeyRegistrar
{
public:
    X11HotKeys();
    ~X11HotKeys() override;

    void installHandler(std::function<void(int id)> handler) override;
    void removeHandler() override;
    int registerKey(int id, quint16 keyCode, quint64 modifiers) override;
    void unregisterKey(int id) override;

private:
    void handleEvent(xcb_generic_event_t *event);

    struct Grab
    {
        quint8 keyCode;
        uint16_t mask;
    };

    std::unique_ptr<X11Connection> m_connection;
    QHash<int, Grab> m_grabs;
    std::function<void(int)> m_handler;
};

} // namespace Vesko
