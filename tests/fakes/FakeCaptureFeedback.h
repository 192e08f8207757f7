// SPDX-License-Identifier: GPL-3.0-or-later
//
// What a capture would show the user, recorded: the panel's shows and
// toggles, and each toast as "message|symbol".

#pragma once

#include "capture/CaptureEngine.h"

#include <QList>
#include <QPair>
#include <QStringList>

namespace Vesko::Test {

class FakeCaptureFeedback : public CaptureFeedback
{
public:
    void showPanel(bool activate, bool focusComposer) override
    {
        shows.append(qMakePair(activate, focusComposer));
    }
    void togglePanel() override { ++toggles; }
    void toast(const QString &message, const QString &symbol) override
    {
        toasts.append(message + u'|' + symbol);
    }

    QList<QPair<bool, bool>> shows;
    int toggles = 0;
    QStringList toasts;
};

} // namespace Vesko::Test
