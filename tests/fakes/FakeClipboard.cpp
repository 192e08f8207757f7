// SPDX-License-Identifier: GPL-3.0-or-later

#include "FakeClipboard.h"

namespace Vesko::Test {

void FakeClipboard::setText(const QString &text)
{
    restore({{{QStringLiteral("text/plain"), text.toUtf8()}}});
}

void FakeClipboard::requestSnapshot(std::function<void(std::optional<Snapshot>)> done)
{
    // What is there when the answer goes out, as with a real owner.
    answers.answer([this, done] { done(snapshotsWhole ? std::optional(items) : std::nullopt); });
}

void FakeClipboard::restore(const Snapshot &snapshot)
{
    items = snapshot;
    ++count;
}

std::optional<QString> FakeClipboard::text() const
{
    if (items.isEmpty() || !items.first().contains(QStringLiteral("text/plain")))
        return std::nullopt;
    return QString::fromUtf8(items.first().value(QStringLiteral("text/plain")));
}

void FakeClipboard::requestText(std::function<void(std::optional<QString>)> done)
{
    answers.answer([this, done] { done(text()); });
}

} // namespace Vesko::Test
