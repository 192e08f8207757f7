// SPDX-License-Identifier: GPL-3.0-or-later
//
// The desktop's registration of global key combinations: the interface the
// hot-key center registers through. The X11 implementation grabs keys on the
// root window; tests use their own.

#pragma once

#include <QtGlobal>

#include <functional>

namespace Vesko {

//! The desktop's registration of global key combinations.
class HotKeyRegistrar
{
public:
    virtual ~HotKeyRegistrar() = default;

    //! Receives the identity of each registered combination pressed.
    virtual void installHandler(std::function<void(int id)> handler) = 0;
    virtual void removeHandler() = 0;
    //! 0 when the combination is now held under \a id, else the desktop's error code.
    virtual int registerKey(int id, quint16 keyCode, quint64 modifiers) = 0;
    virtual void unregisterKey(int id) = 0;
};

} // namespace Vesko
