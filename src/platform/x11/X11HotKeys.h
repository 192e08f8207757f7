// SPDX-License-Identifier: GPL-3.0-or-later
//
// Global key combinations on X11: XGrabKey on the root window for each one,
// repeated with the Caps Lock and Num Lock masks so that those locks do not
// block it. A grab that another client holds already comes back as BadAccess:
// a refused registration. The server would let this client grab the same
// combination twice, so a combination held under one identity is refused to
// another here. Each press is reported once: XKB's detectable auto-repeat
// turns the keyboard's repeats into presses without releases, and a press of
// a key still down is dropped. A key counts as down until it goes up, wherever
// its release went: XInput 2's raw releases tell also of those that reach
// another client, so a grab that ended under a held key does not leave its
// combination deaf to the next press. On a Wayland session nothing is grabbed.

#pragma once

#include "platform/HotKeyRegistrar.h"

#include <QHash>

#include <xcb/xcb.h>

#include <memory>
#include <optional>

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
    //! The connection that holds the grabs; a held combination's key keeps
    //! the keyboard grabbed by it until the key goes up. Null when unavailable.
    X11Connection *connection() const { return m_connection.get(); }

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
    //! The key is up, whichever client its release went to.
    void keyReleased(quint8 keyCode);
    void ungrab(const Grab &grab);

    std::unique_ptr<X11Connection> m_connection;
    bool m_detectableAutoRepeat = false;
    //! The XInput extension's opcode, when raw releases are selected.
    std::optional<uint8_t> m_xinputOpcode;
    QHash<int, Grab> m_grabs;
    std::function<void(int)> m_handler;
};

} // namespace Vesko
