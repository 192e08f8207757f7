// SPDX-License-Identifier: GPL-3.0-or-later
//
// The clipboard of an X11 session. Written through Qt. Read from another
// program on a worker thread of its own (X11SelectionTransfer), so that a
// slow owner or a large content never holds the main thread: a snapshot asks
// for every format at once and must have them all within one bound, the text
// within a shorter one. While Vesko itself owns the clipboard, Qt's own data
// is read.

#pragma once

#include "platform/qt/QtClipboard.h"

#include <memory>

namespace Vesko {

class SerialQueue;

class X11Clipboard : public QtClipboard
{
public:
    //! How long the owner may take to send all of its formats.
    static constexpr int snapshotTimeoutMilliseconds = 2000;
    //! How long the owner may take to send its text.
    static constexpr int answerTimeoutMilliseconds = 1000;

    X11Clipboard();
    //! Gives up a read under way; its answer is not delivered.
    ~X11Clipboard() override;

    void requestSnapshot(std::function<void(std::optional<Snapshot>)> done) override;
    void requestText(std::function<void(std::optional<QString>)> done) override;

private:
    struct Worker;

    //! Another program owns the clipboard, and it can be read here.
    bool readsFromOwner() const;

    std::shared_ptr<Worker> m_worker;
    std::unique_ptr<QObject> m_receiver;
    std::unique_ptr<SerialQueue> m_queue;
};

} // namespace Vesko
