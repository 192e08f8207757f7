// SPDX-License-Identifier: GPL-3.0-or-later
//
// The desktop session of a Wayland compositor as a capture reads it: the
// activated window from the foreign toplevel list (its app_id names the
// desktop entry, as a window class does on X11), the primary selection
// through data control, and the synthetic copy, Ctrl+Insert through a
// virtual keyboard. Without a toplevel list, a fallback given by the owner
// names the front application, else it is unknown. Nothing here reads the
// user's keys: the copy waits a fixed moment for the shortcut's keys to be
// let go, unless told when they are.

#pragma once

#include "platform/CaptureCapabilities.h"
#include "platform/DesktopSession.h"
#include "platform/x11/X11DesktopEntries.h"

#include <QObject>

#include <memory>

namespace Vesko {

class WaylandDataControl;
class WaylandGlobals;
class WaylandToplevels;
class WaylandVirtualKeyboard;

class WaylandSession : public DesktopSession
{
public:
    using FrontLookup = std::function<void(std::function<void(std::optional<FrontApplication>)>)>;
    //! How long the first copy waits for the keys that started the capture to be released.
    static constexpr int keyReleaseWaitMilliseconds = 250;

    //! \a fallback names the front application where the compositor keeps
    //! its windows to itself.
    WaylandSession(
        WaylandGlobals &globals, WaylandDataControl &dataControl, FrontLookup fallback = {});
    ~WaylandSession() override;

    //! The compositor names the activated window.
    bool knowsFrontWindow() const;
    //! The primary selection can be read.
    bool readsSelection() const;
    //! Copy keys can be sent.
    bool sendsCopy() const override;

    //! What this compositor lets capture do, hot keys aside (the desktop's).
    //! The double Shift needs a compositor binding on Shift releases, which
    //! sway offers.
    CaptureCapabilities capabilities() const;

    //! Replaces the fixed wait for the shortcut's keys by \a wait, which
    //! calls its argument once they are up (a portal's Deactivated, say).
    void setKeyReleaseWait(std::function<void(std::function<void()>)> wait);

    void frontApplication(std::function<void(std::optional<FrontApplication>)> done) override;
    void readPrimarySelection(
        qint64 processID, std::function<void(std::optional<QString>)> done) override;
    void sendCopy(int attempt, std::function<void(bool sent)> done) override;

private:
    WaylandDataControl &m_dataControl;
    std::unique_ptr<QObject> m_context;
    std::unique_ptr<WaylandToplevels> m_toplevels;
    std::unique_ptr<WaylandVirtualKeyboard> m_keyboard;
    X11DesktopEntries m_entries;
    FrontLookup m_fallback;
    std::function<void(std::function<void()>)> m_keyReleaseWait;
};

} // namespace Vesko
