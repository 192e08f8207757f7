// SPDX-License-Identifier: GPL-3.0-or-later
//
// A clipboard in memory: one item of formats, a change count, and reads that
// answer at once or when the test lets them.

#pragma once

#include "FakeAnswers.h"

#include "platform/Clipboard.h"

namespace Vesko::Test {

class FakeClipboard : public Clipboard
{
public:
    void setText(const QString &text) override;
    void requestSnapshot(std::function<void(std::optional<Snapshot>)> done) override;
    void restore(const Snapshot &snapshot) override;
    quint64 changeCount() const override { return count; }
    void requestText(std::function<void(std::optional<QString>)> done) override;

    //! The plain text now, as a reader would get it.
    std::optional<QString> text() const;

    Snapshot items;
    quint64 count = 0;
    //! False: snapshots come back as not taken whole, as from an owner that
    //! did not send every format.
    bool snapshotsWhole = true;
    FakeAnswers answers;
};

} // namespace Vesko::Test
