// SPDX-License-Identifier: GPL-3.0-or-later
//
// A registrar of global keys in memory: a combination is held under one
// identity at a time, as the desktop would; the test presses keys through
// the installed handler.

#pragma once

#include "platform/HotKeyRegistrar.h"

#include <QMap>
#include <QPair>
#include <QSet>
#include <QString>

namespace Vesko::Test {

class FakeHotKeyRegistrar : public HotKeyRegistrar
{
public:
    bool isAvailable() const override { return available; }
    void installHandler(std::function<void(int)> h) override { handler = std::move(h); }
    void removeHandler() override { handler = nullptr; }
    int registerKey(int id, quint16 keyCode, quint64 modifiers) override
    {
        held.remove(id);
        if (keyCode == 0) { // no combination: nothing to hold twice
            held.insert(id, qMakePair(keyCode, modifiers));
            return 0;
        }
        if (taken.contains(qMakePair(keyCode, modifiers)))
            return takenStatus;
        for (auto it = held.cbegin(); it != held.cend(); ++it) {
            if (it.value() == qMakePair(keyCode, modifiers))
                return takenStatus;
        }
        held.insert(id, qMakePair(keyCode, modifiers));
        return 0;
    }
    void unregisterKey(int id) override { held.remove(id); }
    bool desktopOwnsCombinations() const override { return !desktopTriggers.isEmpty(); }
    QString assignedTrigger(int id) const override { return desktopTriggers.value(id); }

    bool available = true;
    QMap<int, QPair<quint16, quint64>> held;
    //! Combinations another program holds.
    QSet<QPair<quint16, quint64>> taken;
    std::function<void(int)> handler;
    //! Where set, the desktop owns the combinations and gave these keys.
    QMap<int, QString> desktopTriggers;
};

} // namespace Vesko::Test
