// SPDX-License-Identifier: GPL-3.0-or-later

#include "FakeDesktopSession.h"

namespace Vesko::Test {

void FakeDesktopSession::readPrimarySelection(
    qint64 processID, std::function<void(std::optional<QString>)> done)
{
    const std::optional<QString> text = processID == primaryOwner ? primary : std::nullopt;
    primaryAnswers.answer([done, text] { done(text); });
}

void FakeDesktopSession::sendCopy(int attempt, std::function<void(bool)> done)
{
    copyAnswers.answer([this, attempt, done] {
        copies.append(attempt);
        if (onCopy)
            onCopy(attempt);
        done(true);
    });
}

} // namespace Vesko::Test
