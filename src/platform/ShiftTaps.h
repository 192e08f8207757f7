// SPDX-License-Identifier: GPL-3.0-or-later
//
// The key monitor of a session where Vesko hears no keys: the compositor
// runs `vesko shift` on each lone Shift release (sway's `bindsym --release`,
// or KWin calling ShiftTapped on the bus), and each such tap arrives here as
// a Shift press and release at the time it came in. Where the compositor
// reports the press too (`vesko shift-press`), the tap's press is that one,
// so that a Shift held too long is no tap. The double-Shift logic reads them
// as it reads a real monitor's, with the same limits.

#pragma once

#include "platform/KeyMonitor.h"

namespace Vesko {

class ShiftTaps : public KeyMonitor
{
public:
    //! \a clock gives the time in seconds; a steady clock when none.
    //! \a passed tells whether the compositor can pass Shift taps at all:
    //! where it cannot, the monitor does not start. Always, when none.
    explicit ShiftTaps(std::function<double()> clock = {}, std::function<bool()> passed = {});

    bool start(std::function<void(const KeyEvent &)> receiver) override;
    void stop() override;
    bool isRunning() const override { return bool(m_receiver); }

    //! Shift went down now; dropped while not running.
    void press();
    //! One lone Shift tap, released now: pressed when press() said, else
    //! just before. Dropped while not running.
    void tap();

private:
    std::function<double()> m_clock;
    std::function<bool()> m_passed;
    //! The reported press of the tap under way; 0: none.
    double m_pressTime = 0;
    std::function<void(const KeyEvent &)> m_receiver;
};

} // namespace Vesko
