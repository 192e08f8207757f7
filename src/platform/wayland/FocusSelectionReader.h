// SPDX-License-Identifier: GPL-3.0-or-later
//
// Reads the primary selection where the compositor hands it only to the
// client with the keyboard focus and lets no other client read it (GNOME's
// mutter has no data control): brings Vesko's panel forward, with the
// activation token that came with the command, reads the selection its own
// primary selection device is offered once the panel has the focus, and
// sends the panel back when it was not on screen before. The waits for the
// focus, for the offer and for the owner's bytes run on the event loop,
// each bounded.

#pragma once

#include "platform/wayland/WaylandPrimarySelection.h"

#include <QObject>
#include <QTimer>

#include <functional>
#include <optional>

namespace Vesko {

class FocusSelectionReader : public QObject
{
    Q_OBJECT

public:
    //! How long the panel may take to get the focus.
    static constexpr int focusTimeoutMilliseconds = 1500;
    //! How long the compositor may take, once the panel has the focus, to
    //! offer it the selection.
    static constexpr int offerTimeoutMilliseconds = 250;

    //! The panel as the reader moves it.
    struct Panel
    {
        std::function<bool()> isShown;
        //! Shows the panel and asks for the keyboard focus.
        std::function<void()> bringForward;
        std::function<void()> sendBack;
    };
    //! Reads through a primary selection device on the seat of \a globals.
    FocusSelectionReader(Panel panel, WaylandGlobals &globals, QObject *parent = nullptr);

    //! The compositor offers the primary selection protocol: Vesko can read
    //! the selection once it has the focus.
    bool isAvailable() const { return m_selection.isAvailable(); }

    //! Hands \a done, later and on the main thread, the selection's text,
    //! or nothing when it is empty or the panel got no focus in time. One
    //! read at a time: a read asked for during another gets nothing.
    void read(std::function<void(std::optional<QString>)> done);
    bool isReading() const { return bool(m_done); }

private:
    void focusChanged();
    void offered();
    void readNow();
    void finish(std::optional<QString> text);

    Panel m_panel;
    WaylandPrimarySelection m_selection;
    QTimer m_focusTimeout;
    QTimer m_offerTimeout;

    // The read under way.
    std::function<void(std::optional<QString>)> m_done;
    bool m_wasShown = false;
    bool m_hasFocus = false;
    bool m_offerCame = false;
    bool m_reading = false;
};

} // namespace Vesko
