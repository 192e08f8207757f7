// SPDX-License-Identifier: GPL-3.0-or-later
//
// The desktop session as a capture reads it where the compositor lets no
// client read another's selection or type keys into it (GNOME): the front
// application from a lookup given (the accessibility bus), "Unknown" when
// it has no answer; the primary selection as the panel takes the focus
// (FocusSelectionReader); no synthetic copy.

#pragma once

#include "platform/DesktopSession.h"

namespace Vesko {

class FocusSelectionReader;

class FocusSelectionSession : public DesktopSession
{
public:
    using FrontLookup = std::function<void(std::function<void(std::optional<FrontApplication>)>)>;

    FocusSelectionSession(FrontLookup front, FocusSelectionReader &reader);

    void frontApplication(std::function<void(std::optional<FrontApplication>)> done) override;
    //! The selection belongs to whichever client owns it: \a processID is not checked.
    void readPrimarySelection(
        qint64 processID, std::function<void(std::optional<QString>)> done) override;
    void sendCopy(int attempt, std::function<void(bool sent)> done) override;
    bool sendsCopy() const override { return false; }

private:
    FrontLookup m_front;
    FocusSelectionReader &m_reader;
};

} // namespace Vesko
