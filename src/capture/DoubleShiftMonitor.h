// SPDX-License-Identifier: GPL-3.0-or-later
//
// Recognises a Shift key tapped twice in quick succession with nothing else
// involved, from the key monitor's events. Strict on purpose: a Shift held
// too long, pressed with another modifier or around any other key never
// counts. Recognised on the release of the second tap.

#pragma once

#include "platform/KeyMonitor.h"

#include <functional>

namespace Vesko {

class DoubleShiftMonitor
{
public:
    //! The Shift keys: left and right count alike (X key codes).
    static constexpr quint16 leftShiftKeyCode = 50;
    static constexpr quint16 rightShiftKeyCode = 62;

    //! \a interval gives the preference doubleShiftInterval at each use;
    //! \a isTrusted whether capture is available.
    DoubleShiftMonitor(
        KeyMonitor &keys, std::function<double()> interval, std::function<bool()> isTrusted);
    ~DoubleShiftMonitor();

    //! Called on a recognised gesture.
    std::function<void()> onTrigger;

    //! Begins listening; does nothing while running or without capture.
    void start();
    //! Ends listening and forgets any tap in progress.
    void stop();
    bool isListening() const { return m_keys.isRunning(); }

    //! The state machine: one event of the key monitor.
    void handle(const KeyEvent &event);

    //! The longest pause between the taps and the longest hold of a tap, in
    //! seconds, for a stored interval.
    static double gapLimit(double interval);
    static double holdLimit(double interval);

private:
    void press(quint64 other, double time);
    void release(quint64 other, double time);
    void spoil();

    KeyMonitor &m_keys;
    std::function<double()> m_interval;
    std::function<bool()> m_isTrusted;
    bool m_shiftIsDown = false;
    bool m_currentPressIsClean = false;
    bool m_isSecondTap = false;
    double m_shiftDownTime = 0;
    double m_lastReleaseTime = 0;
};

} // namespace Vesko
