// SPDX-License-Identifier: GPL-3.0-or-later
//
// The desktop's registration of global key combinations: the interface the
// hot-key center registers through. The X11 implementation grabs keys on the
// root window, the portal one asks the desktop to bind them; tests use their own.

#pragma once

#include <QString>
#include <QtGlobal>

#include <functional>

namespace Vesko {

//! The desktop's registration of global key combinations.
class HotKeyRegistrar
{
public:
    //! The status of a registration refused because the combination is taken,
    //! by another program or by another of Vesko's own actions.
    static constexpr int takenStatus = 10;

    virtual ~HotKeyRegistrar() = default;

    //! Whether this registrar can give a program global keys in this session
    //! (X key grabs cannot on Wayland; the portal cannot where the desktop
    //! has none). When it cannot, nothing is registered and nothing counts
    //! as refused.
    virtual bool isAvailable() const = 0;
    //! Receives the identity of each registered combination pressed, once per
    //! press: the keyboard's auto-repeat does not report it again.
    virtual void installHandler(std::function<void(int id)> handler) = 0;
    virtual void removeHandler() = 0;
    //! 0 when the combination is now held under \a id; takenStatus when it is
    //! held already, by another program or under another identity; else the
    //! desktop's error code. Key code 0 is no combination: a desktop that owns
    //! the combinations is offered the action without a wish.
    virtual int registerKey(int id, quint16 keyCode, quint64 modifiers) = 0;
    //! Releases what \a id holds, and nothing else.
    virtual void unregisterKey(int id) = 0;

    //! Whether the desktop, not Vesko, owns the combinations: a registration
    //! only offers one, and the user changes it in the desktop's settings.
    virtual bool desktopOwnsCombinations() const { return false; }
    //! The combination the desktop gave \a id, in the desktop's words; empty
    //! when it owns none or has not said.
    virtual QString assignedTrigger(int id) const
    {
        Q_UNUSED(id);
        return {};
    }
    //! Called whenever what the desktop reports (its triggers, whether it
    //! holds the keys at all) changes later than a registration.
    virtual void setChangeHandler(std::function<void()> handler) { Q_UNUSED(handler); }
};

} // namespace Vesko
