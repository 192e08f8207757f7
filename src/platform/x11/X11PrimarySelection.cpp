// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/x11/X11PrimarySelection.h"

#include "platform/x11/X11Connection.h"
#include "platform/x11/X11SelectionConverter.h"

#include <cstdlib>

namespace Vesko {

X11PrimarySelection::X11PrimarySelection(
    X11Connection &connection, X11SelectionConverter &converter)
    : m_connection(connection)
    , m_converter(converter)
{ }

void X11PrimarySelection::read(qint64 processID, std::function<void(std::optional<QString>)> done)
{
    if (!m_connection.isValid() || processID <= 0) {
        done(std::nullopt);
        return;
    }
    xcb_connection_t *c = m_connection.get();
    xcb_get_selection_owner_reply_t *owner
        = xcb_get_selection_owner_reply(c, xcb_get_selection_owner(c, XCB_ATOM_PRIMARY), nullptr);
    const xcb_window_t ownerWindow = owner ? owner->owner : xcb_window_t(XCB_WINDOW_NONE);
    std::free(owner);
    // Another program's selection is not what the user selected in front.
    if (ownerWindow == XCB_WINDOW_NONE || m_connection.processOf(ownerWindow) != processID) {
        done(std::nullopt);
        return;
    }
    m_converter.readText(XCB_ATOM_PRIMARY, answerTimeoutMilliseconds, std::move(done));
}

} // namespace Vesko
