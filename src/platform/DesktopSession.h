// SPDX-License-Identifier: GPL-3.0-or-later
//
// The desktop session as a capture needs it: which application is in front,
// what it has selected, and a synthetic copy. The X11 implementation reads
// the active window's properties and the PRIMARY selection and sends Ctrl+C
// through XTEST; tests use their own.

#pragma once

#include <QString>

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

    virtual std::optional<FrontApplication> frontApplication() = 0;
    //! The text of the primary selection when its owner belongs to \a processID.
    virtual std::optional<QString> primarySelection(qint64 processID) = 0;
    //! Sends Ctrl+C: attempt 1 to the focused window, attempt 2 to the whole
    //! session. False when the key events could not be made.
    virtual bool sendCopy(int attempt) = 0;
};

} // namespace Vesko
