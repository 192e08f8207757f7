// SPDX-License-Identifier: GPL-3.0-or-later
//
// The desktop session as a capture needs it: which application is in front,
// what it has selected, and a synthetic copy. What depends on another
// program's answer or on the user's keys answers through a callback on the
// main thread, within a bound, and never holds the event loop. The X11
// implementation reads the active window's properties and the PRIMARY
// selection and sends Ctrl+Insert through XTEST; tests use their own.

#pragma once

#include <QString>

#include <functional>
#include <optional>

namespace Vesko {

struct FrontApplication
{
    //! The application's name as the desktop shows it; empty when unknown.
    QString name;
    //! The desktop entry id (such as org.gnome.Terminal) or the window class.
    std::optional<QString> identifier;
    qint64 processID = 0;
    //! The focused window's title as it stands.
    std::optional<QString> windowTitle;
    //! A terminal emulator, where Ctrl+C interrupts instead of copying.
    bool isTerminal = false;
};

class DesktopSession
{
public:
    virtual ~DesktopSession() = default;

    //! Hands \a done the application in front now, or nothing when there is none.
    virtual void frontApplication(std::function<void(std::optional<FrontApplication>)> done) = 0;
    //! Hands \a done the text of the primary selection when its owner belongs
    //! to \a processID, else nothing.
    virtual void readPrimarySelection(
        qint64 processID, std::function<void(std::optional<QString>)> done)
        = 0;
    //! Sends the copy keys (Ctrl+Insert on X11): attempt 1 to the focused
    //! window, attempt 2 to the whole session, never mixed with keys the user
    //! still holds. \a done learns once the keys are out, or false when none
    //! were sent (they could not be made, or the user's keys stayed down).
    virtual void sendCopy(int attempt, std::function<void(bool sent)> done) = 0;
    //! Whether copy keys can be sent here at all; where they cannot, capture
    //! reads the selection alone and leaves the clipboard untouched.
    virtual bool sendsCopy() const { return true; }
};

} // namespace Vesko
