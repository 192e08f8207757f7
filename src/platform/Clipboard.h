// SPDX-License-Identifier: GPL-3.0-or-later
//
// The desktop's clipboard as the logic needs it: plain text out, and a
// snapshot of everything on it (every format with its bytes) that can be put
// back after a synthetic copy. Reading may mean a transfer from another
// program, which can be slow to answer: reads therefore answer through a
// callback on the main thread and never hold the event loop.

#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>

#include <functional>
#include <optional>

namespace Vesko {

class Clipboard
{
public:
    //! One entry per item on the clipboard: its formats (MIME types) and bytes.
    using Snapshot = QList<QMap<QString, QByteArray>>;

    virtual ~Clipboard() = default;

    //! Replaces the clipboard's content by \a text, as plain text only.
    virtual void setText(const QString &text) = 0;
    //! Hands a snapshot of the clipboard to \a done: at once when the content
    //! is at hand, later when its owner must send it. Formats the owner
    //! refuses are left out. Nothing when the snapshot could not be taken
    //! whole (the owner did not send every format in time): such a snapshot
    //! is not one to put back.
    virtual void requestSnapshot(std::function<void(std::optional<Snapshot>)> done) = 0;
    //! Empties the clipboard, then puts \a items back; an empty snapshot leaves it empty.
    virtual void restore(const Snapshot &items) = 0;
    //! Raised by every change of the clipboard's content, whoever made it.
    virtual quint64 changeCount() const = 0;
    //! Hands the clipboard's plain text to \a done, or nothing when it holds
    //! no text; at once or later, as requestSnapshot.
    virtual void requestText(std::function<void(std::optional<QString>)> done) = 0;
};

} // namespace Vesko
