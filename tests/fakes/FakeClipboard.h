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
    void setText(const QString &text) override
    {
        restore({{{QStringLiteral("text/plain"), text.toUtf8()}}});
    }
    void requestSnapshot(std::function<void(std::optional<Snapshot>)> done) override
    {
        // What is there when the answer goes out, as with a real owner.
        answers.answer(
            [this, done] { done(snapshotsWhole ? std::optional(items) : std::nullopt); });
    }
    void restore(const Snapshot &snapshot) override
    {
        items = snapshot;
        ++count;
    }
    quint64 changeCount() const override { return count; }
    void requestText(std::function<void(std::optional<QString>)> done) override
    {
        answers.answer([this, done] { done(text()); });
    }

    //! The plain text now, as a reader would get it.
    std::optional<QString> text() const
    {
        if (items.isEmpty() || !items.first().contains(QStringLiteral("text/plain")))
            return std::nullopt;
        return QString::fromUtf8(items.first().value(QStringLiteral("text/plain")));
    }

    Snapshot items;
    quint64 count = 0;
    //! False: snapshots come back as not taken whole, as from an owner that
    //! did not send every format.
    bool snapshotsWhole = true;
    FakeAnswers answers;
};

} // namespace Vesko::Test
