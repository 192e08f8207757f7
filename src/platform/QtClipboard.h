// SPDX-License-Identifier: GPL-3.0-or-later
//
// The clipboard of the desktop session through QClipboard (Clipboard mode).
// Needs a QGuiApplication; main thread only.

#pragma once

#include "platform/Clipboard.h"

namespace Vesko {

class QtClipboard : public Clipboard
{
public:
    void setText(const QString &text) override;
    Snapshot snapshot() const override;
    void restore(const Snapshot &items) override;
};

} // namespace Vesko
