// SPDX-License-Identifier: GPL-3.0-or-later
//
// The clipboard of an X11 session. Written through Qt; read from another
// program without holding the event loop: the owner's formats (TARGETS), then
// each format in turn, are converted over a connection of Vesko's own and
// arrive as events, large ones piecewise. Each answer is awaited at most a
// second, and after one goes unanswered the owner is asked nothing more.
// While Vesko itself owns the clipboard, Qt's own data is read.

#pragma once

#include "platform/qt/QtClipboard.h"

#include <xcb/xcb.h>

#include <memory>

namespace Vesko {

class X11Connection;
class X11SelectionConverter;

class X11Clipboard : public QtClipboard
{
public:
    //! How long the owner may take to answer one format.
    static constexpr int answerTimeoutMilliseconds = 1000;

    X11Clipboard();
    ~X11Clipboard() override;

    void requestSnapshot(std::function<void(Snapshot)> done) override;
    void requestText(std::function<void(std::optional<QString>)> done) override;

private:
    struct Reading;

    //! Another program owns the clipboard, and it can be read here.
    bool readsFromOwner();
    void readNext(const std::shared_ptr<Reading> &reading);

    std::unique_ptr<X11Connection> m_connection;
    std::unique_ptr<X11SelectionConverter> m_converter;
    xcb_atom_t m_clipboard = XCB_ATOM_NONE;
};

} // namespace Vesko
