// SPDX-License-Identifier: GPL-3.0-or-later
//
// Global key combinations on X11: XGrabKey on the root window for each one,
// repeated with the Caps Lock and Num Lock masks so that those locks do not
// block it. A grab that another client holds already comes back as BadAccess:
// a refused registration. The server would let this client grab the same
// combination twice, so a combination held under one identity is refused to
// another here. Each press is reported once: XKB's detectable auto-repeat
// turns the keyboard's repeats into presses without releases, and a press of
// a key still down is dropped. On a Wayland session nothing is grabbed.

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

    bool isAvailable() const override;
    void installHandler(std::function<void(int id)> handler) override;
    void removeHandler() override;
    int registerKey(int id, quint16 keyCode, quint64 modifiers) override;
    void unregisterKey(int id) override;

    //! The server reports repeats as presses without releases between.
    bool hasDetectableAutoRepeat() const { return m_detectableAutoRepeat; }

private:
    struct Grab
    {
        quint8 keyCode = 0;
        uint16_t mask = 0;
        //! Which lock variants this grab holds (bits of the variant table).
        quint8 variants = 0;
        //! Pressed and not yet released: further presses are the keyboard's repeats.
        bool isDown = false;
        //! Server time of the last release.
        xcb_timestamp_t releaseTime = 0;
    };

    void handleEvent(xcb_generic_event_t *event);
    void ungrab(const Grab &grab);

    std::unique_ptr<X11Connection> m_connection;
    bool m_detectableAutoRepeat = false;
    QHash<int, Grab> m_grabs;
    std::function<void(int)> m_handler;
};

} // namespace Vesko
