// SPDX-License-Identifier: GPL-3.0-or-later
//
// The clipboard of a Wayland seat through data control, read and set
// whichever window has the focus: the snapshot reads the formats the
// owner offers one after another, bounded in number, in bytes in all and in
// time, and a restore makes Vesko serve them again.

#pragma once

#include "platform/Clipboard.h"

#include <memory>

namespace Vesko {

class WaylandDataControl;

class WaylandClipboard : public Clipboard
{
public:
    //! A snapshot of more formats than this is not taken.
    static constexpr int maximumFormats = 64;
    //! A snapshot gives up above this many bytes in all, as on X11.
    static constexpr qsizetype maximumSize = qsizetype(256) << 20;
    //! How long the whole snapshot may take, as on X11.
    static constexpr int snapshotTimeoutMilliseconds = 2000;

    explicit WaylandClipboard(WaylandDataControl &dataControl);

    void setText(const QString &text) override;
    void requestSnapshot(std::function<void(std::optional<Snapshot>)> done) override;
    void restore(const Snapshot &items) override;
    quint64 changeCount() const override;
    void requestText(std::function<void(std::optional<QString>)> done) override;

private:
    struct Gathering;
    //! Reads the next format of \a gathering, or answers once none is left.
    static void readNext(WaylandDataControl &dataControl, std::shared_ptr<Gathering> gathering);

    WaylandDataControl &m_dataControl;
};

} // namespace Vesko
