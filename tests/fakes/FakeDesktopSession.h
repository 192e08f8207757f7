// SPDX-License-Identifier: GPL-3.0-or-later
//
// A desktop session of the test's making: the application in front, a
// primary selection owned by one process, and a record of the synthetic
// copies asked for. Answers come at once or when the test lets them.

#pragma once

#include "FakeAnswers.h"

#include "platform/DesktopSession.h"

#include <QList>

namespace Vesko::Test {

class FakeDesktopSession : public DesktopSession
{
public:
    void frontApplication(std::function<void(std::optional<FrontApplication>)> done) override
    {
        done(front);
    }
    void readPrimarySelection(
        qint64 processID, std::function<void(std::optional<QString>)> done) override
    {
        const std::optional<QString> text = processID == primaryOwner ? primary : std::nullopt;
        primaryAnswers.answer([done, text] { done(text); });
    }
    void sendCopy(int attempt, std::function<void(bool sent)> done) override
    {
        copyAnswers.answer([this, attempt, done] {
            copies.append(attempt);
            if (onCopy)
                onCopy(attempt);
            done(true);
        });
    }
    bool sendsCopy() const override { return copyKeys; }

    std::optional<FrontApplication> front;
    std::optional<QString> primary;
    qint64 primaryOwner = 0;
    //! The attempts of the copies sent, in order.
    QList<int> copies;
    //! Runs as each copy goes out: the application's answer.
    std::function<void(int attempt)> onCopy;
    //! Whether the session has copy keys at all.
    bool copyKeys = true;
    FakeAnswers primaryAnswers;
    FakeAnswers copyAnswers;
};

} // namespace Vesko::Test
