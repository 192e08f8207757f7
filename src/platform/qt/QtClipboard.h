// SPDX-License-Identifier: GPL-3.0-or-later
//
// The clipboard of the desktop session through QClipboard (Clipboard mode).
// Reads answer at once, through QClipboard's own transfer. Needs a
// QGuiApplication; main thread only.

#pragma once

#include "platform/Clipboard.h"

#include <QObject>

namespace Vesko {

class QtClipboard : public Clipboard
{
public:
    QtClipboard();
    ~QtClipboard() override;

    void setText(const QString &text) override;
    void requestSnapshot(std::function<void(std::optional<Snapshot>)> done) override;
    void restore(const Snapshot &items) override;
    quint64 changeCount() const override { return m_changeCount; }
    void requestText(std::function<void(std::optional<QString>)> done) override;

protected:
    //! What Qt holds now: every format with its bytes.
    static Snapshot snapshotNow();
    static std::optional<QString> textNow();

private:
    quint64 m_changeCount = 0;
    QMetaObject::Connection m_changes;
};

} // namespace Vesko
