// SPDX-License-Identifier: GPL-3.0-or-later
//
// The desktop session of an X11 display as a capture reads it: the window of
// _NET_ACTIVE_WINDOW, its process, its application's name from the desktop
// entry, its title; the PRIMARY selection when that window's own process owns
// it (X-Resource); and Ctrl+C through XTEST.

#pragma once

#include "platform/CaptureSupport.h"
#include "platform/DesktopSession.h"

#include <QHash>
#include <QObject>

#include <xcb/xcb.h>

#include <memory>

namespace Vesko {

class X11Connection;
class X11Keyboard;

class X11Session : public DesktopSession
{
public:
    //! How long a read of the selection may hold the main thread.
    static constexpr int selectionTimeoutMilliseconds = 250;
    //! How long a synthetic copy waits for keys the user still holds.
    static constexpr int heldKeysTimeoutMilliseconds = 250;

    X11Session();
    ~X11Session() override;

    //! The session has an X server with XInput 2, XTEST and X-Resource.
    static bool isCaptureAvailable();
    //! What keeps capture from working here, or None.
    static CaptureObstacle captureObstacle();

    std::optional<FrontApplication> frontApplication() override;
    std::optional<QString> primarySelection(qint64 processID) override;
    bool sendCopy(int attempt) override;

private:
    struct DesktopEntry
    {
        QString id;
        QString name;
        bool isTerminal = false;
    };

    xcb_window_t activeWindow();
    std::optional<qint64> processOf(xcb_window_t window);
    std::optional<QString> windowTitle(xcb_window_t window);
    std::optional<DesktopEntry> desktopEntry(const QStringList &candidates, const QString &wmClass);
    void loadDesktopEntries();
    void releaseHeldModifiers();

    std::unique_ptr<X11Connection> m_connection;
    std::unique_ptr<X11Keyboard> m_keyboard;
    xcb_window_t m_requestor = 0;
    bool m_entriesLoaded = false;
    QHash<QString, DesktopEntry> m_entriesByID;
    QHash<QString, DesktopEntry> m_entriesByWMClass;
};

} // namespace Vesko
