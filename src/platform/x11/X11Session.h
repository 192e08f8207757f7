// SPDX-License-Identifier: GPL-3.0-or-later
//
// The desktop session of an X11 display as a capture reads it, put together
// from one piece per job over a connection of its own: the front window and
// its process (X11FrontWindow), the PRIMARY selection of that process
// (X11PrimarySelection) and the synthetic copy, Ctrl+Insert through XTEST
// (X11SyntheticKeys).

#pragma once

#include "platform/CaptureSupport.h"
#include "platform/DesktopSession.h"

#include <memory>

namespace Vesko {

class X11Connection;
class X11FrontWindow;
class X11Keyboard;
class X11PrimarySelection;
class X11SelectionConverter;
class X11SyntheticKeys;

class X11Session : public DesktopSession
{
public:
    X11Session();
    ~X11Session() override;

    //! The session is an X11 one, with an X server that has XInput 2, XTEST
    //! and X-Resource.
    static bool isCaptureAvailable();
    //! What keeps capture from working here, or None.
    static CaptureObstacle captureObstacle();

    std::optional<FrontApplication> frontApplication() override;
    void readPrimarySelection(
        qint64 processID, std::function<void(std::optional<QString>)> done) override;
    void sendCopy(int attempt, std::function<void(bool sent)> done) override;

private:
    std::unique_ptr<X11Connection> m_connection;
    std::unique_ptr<X11Keyboard> m_keyboard;
    std::unique_ptr<X11SelectionConverter> m_converter;
    std::unique_ptr<X11FrontWindow> m_front;
    std::unique_ptr<X11PrimarySelection> m_primary;
    std::unique_ptr<X11SyntheticKeys> m_keys;
};

} // namespace Vesko
