// SPDX-License-Identifier: GPL-3.0-or-later
//
// The clipboard of the desktop session through QClipboard (Clipboard mode).
// Needs a QGuiApplication; main thread only.

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
    Snapshot snapshot() const override;
    void restore(const Snapshot &items) override;
    quint64 changeCount() const override { return m_changeCount; }
    std::optional<QString> text() const override;

private:
    quint64 m_changeCount = 0;
    QMetaObject::Connection m_changes;
};

} // namespace Vesko
