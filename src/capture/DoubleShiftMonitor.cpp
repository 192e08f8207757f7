// SPDX-License-Identifier: GPL-3.0-or-later

#include "capture/DoubleShiftMonitor.h"

#include "platform/Logging.h"

#include <algorithm>
#include <cmath>

namespace Vesko {

namespace {

// A gap or hold equal to its limit counts; differences of event times carry
// rounding errors far below this.
constexpr double timeTolerance = 1e-9;

} // namespace

DoubleShiftMonitor::DoubleShiftMonitor(
    KeyMonitor &keys, std::function<double()> interval, std::function<bool()> isTrusted)
    : m_keys(keys)
    , m_interval(std::move(interval))
    , m_isTrusted(std::move(isTrusted))
{ }

DoubleShiftMonitor::~DoubleShiftMonitor()
{
    stop();
}

double DoubleShiftMonitor::gapLimit(double interval)
{
    // NaN and anything at or above the top give the top.
    if (std::isnan(interval) || interval >= 1.0)
        return 1.0;
    return std::max(interval, 0.2);
}

double DoubleShiftMonitor::holdLimit(double interval)
{
    return std::max(gapLimit(interval), 0.65);
}

void DoubleShiftMonitor::start()
{
    if (m_keys.isRunning())
        return;
    if (!m_isTrusted()) {
        qCInfo(lcDoubleShift, "Listener not started because Accessibility access is unavailable");
        return;
    }
    if (!m_keys.start([this](const KeyEvent &event) { handle(event); })) {
        qCCritical(lcDoubleShift, "Could not create the Accessibility event tap");
        return;
    }
    qCInfo(lcDoubleShift, "Double-Shift listener started");
}

void DoubleShiftMonitor::stop()
{
    m_keys.stop();
    m_shiftIsDown = false;
    m_currentPressIsClean = false;
    m_isSecondTap = false;
    m_shiftDownTime = 0;
    m_lastReleaseTime = 0;
}

void DoubleShiftMonitor::handle(const KeyEvent &event)
{
    const quint64 other = event.flags & ModifierFlag::Other;
    if (event.type == KeyEvent::KeyDown) {
        spoil();
        return;
    }
    const bool isShiftKey = event.keyCode == leftShiftKeyCode || event.keyCode == rightShiftKeyCode;
    if (!isShiftKey) {
        if (other != 0)
            spoil();
        return;
    }
    const bool shiftFlag = event.flags & ModifierFlag::Shift;
    if (shiftFlag && !m_shiftIsDown)
        press(other, event.timestamp);
    else if (!shiftFlag && m_shiftIsDown)
        release(other, event.timestamp);
}

void DoubleShiftMonitor::spoil()
{
    m_currentPressIsClean = false;
    m_isSecondTap = false;
    m_lastReleaseTime = 0;
}

void DoubleShiftMonitor::press(quint64 other, double time)
{
    m_shiftIsDown = true;
    m_currentPressIsClean = other == 0;
    m_shiftDownTime = time;
    if (m_currentPressIsClean && m_lastReleaseTime > 0) {
        m_isSecondTap = time - m_lastReleaseTime <= gapLimit(m_interval()) + timeTolerance;
    } else if (m_currentPressIsClean) {
        m_isSecondTap = false;
    } else {
        m_isSecondTap = false;
        m_lastReleaseTime = 0;
    }
}

void DoubleShiftMonitor::release(quint64 other, double time)
{
    m_shiftIsDown = false;
    if (m_currentPressIsClean && other == 0
        && time - m_shiftDownTime <= holdLimit(m_interval()) + timeTolerance) {
        const bool wasSecondTap = m_isSecondTap;
        m_currentPressIsClean = false;
        m_isSecondTap = false;
        m_shiftDownTime = 0;
        if (!wasSecondTap) {
            m_lastReleaseTime = time;
            return;
        }
        m_lastReleaseTime = 0;
        qCInfo(lcDoubleShift, "Double-Shift gesture recognized");
        if (onTrigger)
            onTrigger();
        return;
    }
    m_currentPressIsClean = false;
    m_isSecondTap = false;
    m_shiftDownTime = 0;
    m_lastReleaseTime = 0;
}

} // namespace Vesko
