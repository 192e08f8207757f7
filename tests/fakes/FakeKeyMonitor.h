// SPDX-License-Identifier: GPL-3.0-or-later
//
// A key monitor the test feeds by hand: events go to whoever started it.

#pragma once

#include "platform/KeyMonitor.h"

namespace Vesko::Test {

class FakeKeyMonitor : public KeyMonitor
{
public:
    bool start(std::function<void(const KeyEvent &)> r) override
    {
        receiver = std::move(r);
        return true;
    }
    void stop() override { receiver = nullptr; }
    bool isRunning() const override { return bool(receiver); }

    std::function<void(const KeyEvent &)> receiver;
};

} // namespace Vesko::Test
