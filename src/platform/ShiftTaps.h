// SPDX-License-Identifier: GPL-3.0-or-later
//
// The key monitor of a session where Vesko hears no keys: the compositor
// runs `vesko shift` on each lone Shift release (sway's `bindsym --release`),
// and each such tap arrives here as a Shift press and release at the time it
// came in. The double-Shift logic reads them as it reads a real monitor's.

#pragma once

#include "platform/KeyMonitor.h"

namespace Vesko {

class ShiftTaps : public KeyMonitor
{
public:
    //! \a clock gives the time in seconds; a steady clock when none.
    explicit ShiftTaps(std::function<double()> clock = {});

    bool start(std::function<void(const KeyEvent &)> receiver) override;
    void stop() override { m_receiver = nullptr; }
    bool isRunning() const override { return bool(m_receiver); }

    //! One lone Shift tap, released now; dropped while not running.
    void tap();

private:
    std::function<double()> m_clock;
    std::function<void(const KeyEvent &)> m_receiver;
};

} // namespace Vesko
