// SPDX-License-Identifier: GPL-3.0-or-later
//
// The desktop's clipboard as the logic needs it: plain text out, and a
// snapshot of everything on it (every format with its bytes) that can be put
// back after a synthetic copy. The Qt implementation lives beside the widgets;
// tests of the logic can use their own.

#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>

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
    virtual Snapshot snapshot() const = 0;
    //! Empties the clipboard, then puts \a items back; an empty snapshot leaves it empty.
    virtual void restore(const Snapshot &items) = 0;
    //! Raised by every change of the clipboard's content, whoever made it.
    virtual quint64 changeCount() const = 0;
    //! The clipboard's plain text; nothing when it holds no text.
    virtual std::optional<QString> text() const = 0;
};

} // namespace Vesko
