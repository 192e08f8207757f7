// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/ShiftTaps.h"

#include <chrono>

namespace Vesko {

namespace {

//! The left Shift's key code, as the double-Shift logic knows it.
constexpr quint16 shiftKeyCode = 50;

double steadySeconds()
{
    using namespace std::chrono;
    return duration<double>(steady_clock::now().time_since_epoch()).count();
}

} // namespace

ShiftTaps::ShiftTaps(std::function<double()> clock)
    : m_clock(clock ? std::move(clock) : &steadySeconds)
{ }

bool ShiftTaps::start(std::function<void(const KeyEvent &)> receiver)
{
    m_receiver = std::move(receiver);
    return true;
}

void ShiftTaps::tap()
{
    if (!m_receiver)
        return;
    // The release is what the compositor reports; the press is taken as
    // just before it, so a tap is always short enough.
    const double now = m_clock();
    const auto receiver = m_receiver; // a trigger may stop the monitor
    receiver({KeyEvent::FlagsChanged, shiftKeyCode, ModifierFlag::Shift, now});
    receiver({KeyEvent::FlagsChanged, shiftKeyCode, 0, now});
}

} // namespace Vesko
