// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the system-wide key monitor delivers: key presses and modifier changes
// with the modifier flags held after the event and the event's own time. The
// flag values are the program's own; on X11, Command is Ctrl, Control is
// Super, Option is Alt, and the secondary Fn flag is AltGr.

#pragma once

#include <QtGlobal>

#include <functional>

namespace Vesko {

namespace ModifierFlag {
constexpr quint64 CapsLock = 0x10000;
constexpr quint64 Shift = 0x20000;
constexpr quint64 Control = 0x40000;
constexpr quint64 Option = 0x80000;
constexpr quint64 Command = 0x100000;
constexpr quint64 SecondaryFn = 0x800000;
//! The modifiers that spoil a Shift tap.
constexpr quint64 Other = Control | Option | Command | SecondaryFn;
//! The modifiers a hot key needs at least one of.
constexpr quint64 HotKeyModifiers = Shift | Control | Option | Command;
} // namespace ModifierFlag

struct KeyEvent
{
    enum Type { KeyDown, FlagsChanged };

    Type type;
    //! The platform's key code (on X11 the XKB key code, evdev + 8).
    quint16 keyCode;
    quint64 flags;
    //! The event's time in seconds, from the event itself.
    double timestamp;
};

//! A listener to every key of the session. It only observes: nothing is
//! grabbed, swallowed or changed. Events arrive in order on the main thread.
class KeyMonitor
{
public:
    virtual ~KeyMonitor() = default;

    //! Begins delivering to \a receiver; false when the session cannot be watched.
    virtual bool start(std::function<void(const KeyEvent &)> receiver) = 0;
    virtual void stop() = 0;
    virtual bool isRunning() const = 0;
};

} // namespace Vesko
