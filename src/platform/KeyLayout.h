// SPDX-License-Identifier: GPL-3.0-or-later
//
// The current keyboard layout, asked what a key shows, and telling when that
// may have changed (another layout chosen, or the keymap replaced). The X11
// implementation reads it through libxkbcommon; tests use their own.

#pragma once

#include <QObject>
#include <QString>

#include <optional>

namespace Vesko {

//! The text a key shows in the current keyboard layout.
class KeyLayout : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;
    ~KeyLayout() override = default;
    virtual std::optional<QString> keyText(quint16 keyCode) const = 0;

Q_SIGNALS:
    //! The keys may show other texts now: whoever shows them reads them again.
    void changed();
};

} // namespace Vesko
