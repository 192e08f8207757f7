// SPDX-License-Identifier: GPL-3.0-or-later
//
// How a fake of the desktop answers an asynchronous request: at once, or
// kept until the test lets it go, so that a test can act while the request
// is still open.

#pragma once

#include <QList>

#include <utility>

#include <functional>

namespace Vesko::Test {

class FakeAnswers
{
public:
    //! When set, answers wait for release().
    bool holding = false;

    void answer(std::function<void()> reply)
    {
        if (holding)
            m_held.append(std::move(reply));
        else
            reply();
    }
    //! Gives every held answer, in the order asked.
    void release()
    {
        const QList<std::function<void()>> held = std::exchange(m_held, {});
        for (const std::function<void()> &reply : held)
            reply();
    }
    qsizetype heldCount() const { return m_held.size(); }

private:
    QList<std::function<void()>> m_held;
};

} // namespace Vesko::Test
