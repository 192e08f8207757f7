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

ShiftTaps::ShiftTaps(std::function<double()> clock, std::function<bool()> passed)
    : m_clock(clock ? std::move(clock) : &steadySeconds)
    , m_passed(std::move(passed))
{ }

bool ShiftTaps::start(std::function<void(const KeyEvent &)> receiver)
{
    // Nothing would ever come: not listening, as the Capture tab then says.
    if (m_passed && !m_passed())
        return false;
    m_receiver = std::move(receiver);
    m_pressTime = 0;
    return true;
}

void ShiftTaps::stop()
{
    m_receiver = nullptr;
    m_pressTime = 0;
}

void ShiftTaps::press()
{
    // A press whose release never came is replaced: only a lone release
    // ends a tap, and the gesture judges its hold.
    if (m_receiver)
        m_pressTime = m_clock();
}

void ShiftTaps::tap()
{
    if (!m_receiver)
        return;
    // The release is what the compositor reports; without a reported press
    // it is taken as just before, so the tap is short enough.
    const double now = m_clock();
    const double pressed = m_pressTime > 0 && m_pressTime <= now ? m_pressTime : now;
    m_pressTime = 0;
    const auto receiver = m_receiver; // a trigger may stop the monitor
    receiver({KeyEvent::FlagsChanged, shiftKeyCode, ModifierFlag::Shift, pressed});
    receiver({KeyEvent::FlagsChanged, shiftKeyCode, 0, now});
}

} // namespace Vesko
