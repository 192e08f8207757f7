// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/wayland/FocusSelectionSession.h"

#include "platform/wayland/FocusSelectionReader.h"

namespace Vesko {

FocusSelectionSession::FocusSelectionSession(FrontLookup front, FocusSelectionReader &reader)
    : m_front(std::move(front))
    , m_reader(reader)
{ }

void FocusSelectionSession::frontApplication(
    std::function<void(std::optional<FrontApplication>)> done)
{
    // Unknown is still a source: the selection is read all the same.
    if (!m_front) {
        done(FrontApplication {});
        return;
    }
    m_front([done = std::move(done)](std::optional<FrontApplication> front) {
        done(front.value_or(FrontApplication {}));
    });
}

void FocusSelectionSession::readPrimarySelection(
    qint64 processID, std::function<void(std::optional<QString>)> done)
{
    Q_UNUSED(processID)
    m_reader.read(std::move(done));
}

void FocusSelectionSession::sendCopy(int attempt, std::function<void(bool sent)> done)
{
    Q_UNUSED(attempt)
    done(false);
}

} // namespace Vesko
