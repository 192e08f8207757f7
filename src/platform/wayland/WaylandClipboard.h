// SPDX-License-Identifier: GPL-3.0-or-later
//
// The clipboard of a Wayland seat through data control, read and set
// whichever window has the focus: the snapshot reads every format the
// owner offers, each bounded in time, and a restore makes Vesko serve them
// again.

#pragma once

#include "platform/Clipboard.h"

namespace Vesko {

class WaylandDataControl;

class WaylandClipboard : public Clipboard
{
public:
    explicit WaylandClipboard(WaylandDataControl &dataControl);

    void setText(const QString &text) override;
    void requestSnapshot(std::function<void(std::optional<Snapshot>)> done) override;
    void restore(const Snapshot &items) override;
    quint64 changeCount() const override;
    void requestText(std::function<void(std::optional<QString>)> done) override;

private:
    WaylandDataControl &m_dataControl;
};

} // namespace Vesko
