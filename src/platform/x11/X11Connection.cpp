// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/x11/X11Connection.h"

#include <QAbstractEventDispatcher>
#include <QSocketNotifier>

#include <xcb/res.h>
#include <xcb/xinput.h>

#include <cstdlib>
#include <cstring>

namespace Vesko {

X11Connection::X11Connection(QObject *parent)
    : QObject(parent)
{
    xcb_connection_t *connection = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(connection)) {
        xcb_disconnect(connection);
        return;
    }
    m_connection = connection;
    m_root = root(m_connection);
    m_notifier
        = new QSocketNotifier(xcb_get_file_descriptor(m_connection), QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &X11Connection::dispatch);
    // A blocking reply read can take events off the socket with it; the
    // notifier would not see them, so they are handed out before the loop sleeps.
    if (QAbstractEventDispatcher *dispatcher = QAbstractEventDispatcher::instance(thread())) {
        connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, this,
            &X11Connection::dispatchQueued);
    }
}

X11Connection::~X11Connection()
{
    if (m_connection)
        xcb_disconnect(m_connection);
}

xcb_atom_t X11Connection::atom(const char *name)
{
    return atom(m_connection, name);
}

xcb_atom_t X11Connection::atom(xcb_connection_t *connection, const char *name)
{
    xcb_intern_atom_reply_t *reply = xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 0, uint16_t(std::strlen(name)), name), nullptr);
    const xcb_atom_t result = reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
    std::free(reply);
    return result;
}

xcb_window_t X11Connection::root(xcb_connection_t *connection)
{
    return xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
}

std::optional<uint8_t> X11Connection::extensionOpcode(const char *name)
{
    xcb_query_extension_reply_t *reply = xcb_query_extension_reply(m_connection,
        xcb_query_extension(m_connection, uint16_t(std::strlen(name)), name), nullptr);
    std::optional<uint8_t> opcode;
    if (reply && reply->present)
        opcode = reply->major_opcode;
    std::free(reply);
    return opcode;
}

std::optional<uint8_t> X11Connection::selectRawKeyEvents(uint32_t mask)
{
    const std::optional<uint8_t> opcode = extensionOpcode("XInputExtension");
    if (!opcode)
        return std::nullopt;
    xcb_input_xi_query_version_reply_t *version = xcb_input_xi_query_version_reply(
        m_connection, xcb_input_xi_query_version(m_connection, 2, 2), nullptr);
    const bool hasRawEvents = version
        && (version->major_version > 2
            || (version->major_version == 2 && version->minor_version >= 1));
    std::free(version);
    if (!hasRawEvents)
        return std::nullopt;
    struct
    {
        xcb_input_event_mask_t header;
        uint32_t bits;
    } selection;
    selection.header.deviceid = XCB_INPUT_DEVICE_ALL_MASTER;
    selection.header.mask_len = 1;
    selection.bits = mask;
    xcb_generic_error_t *error = xcb_request_check(m_connection,
        xcb_input_xi_select_events_checked(m_connection, m_root, 1, &selection.header));
    const bool selected = error == nullptr;
    std::free(error);
    return selected ? opcode : std::nullopt;
}

void X11Connection::setEventHandler(std::function<void(xcb_generic_event_t *)> handler)
{
    m_handler = std::move(handler);
}

void X11Connection::dispatch()
{
    if (!m_connection)
        return;
    while (xcb_generic_event_t *event = xcb_poll_for_event(m_connection)) {
        if (m_handler)
            m_handler(event);
        std::free(event);
    }
}

void X11Connection::dispatchQueued()
{
    if (!m_connection)
        return;
    while (xcb_generic_event_t *event = xcb_poll_for_queued_event(m_connection)) {
        if (m_handler)
            m_handler(event);
        std::free(event);
    }
}

std::optional<qint64> X11Connection::processOf(xcb_window_t window)
{
    if (!m_connection || window == XCB_WINDOW_NONE)
        return std::nullopt;
    if (const std::optional<uint32_t> pid
        = cardinal(window, atom("_NET_WM_PID"), XCB_ATOM_CARDINAL))
        return qint64(*pid);
    // The X-Resource extension knows the process of a local client.
    xcb_res_client_id_spec_t spec {window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    xcb_res_query_client_ids_reply_t *reply = xcb_res_query_client_ids_reply(
        m_connection, xcb_res_query_client_ids(m_connection, 1, &spec), nullptr);
    std::optional<qint64> pid;
    if (reply) {
        xcb_res_client_id_value_iterator_t it = xcb_res_query_client_ids_ids_iterator(reply);
        for (; it.rem; xcb_res_client_id_value_next(&it)) {
            if ((it.data->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID)
                && xcb_res_client_id_value_value_length(it.data) >= 1) {
                pid = qint64(*xcb_res_client_id_value_value(it.data));
                break;
            }
        }
        std::free(reply);
    }
    return pid;
}

std::optional<QByteArray> X11Connection::property(
    xcb_window_t window, xcb_atom_t property, xcb_atom_t type, xcb_atom_t *actualType)
{
    return X11Connection::property(m_connection, window, property, type, actualType);
}

std::optional<uint32_t> X11Connection::cardinal(
    xcb_window_t window, xcb_atom_t property, xcb_atom_t type)
{
    return X11Connection::cardinal(m_connection, window, property, type);
}

std::optional<QByteArray> X11Connection::property(xcb_connection_t *connection, xcb_window_t window,
    xcb_atom_t property, xcb_atom_t type, xcb_atom_t *actualType)
{
    xcb_get_property_reply_t *reply = xcb_get_property_reply(
        connection, xcb_get_property(connection, 0, window, property, type, 0, 1 << 20), nullptr);
    if (!reply || reply->type == XCB_ATOM_NONE) {
        std::free(reply);
        return std::nullopt;
    }
    if (actualType)
        *actualType = reply->type;
    const QByteArray bytes(static_cast<const char *>(xcb_get_property_value(reply)),
        xcb_get_property_value_length(reply));
    std::free(reply);
    return bytes;
}

std::optional<uint32_t> X11Connection::cardinal(
    xcb_connection_t *connection, xcb_window_t window, xcb_atom_t property, xcb_atom_t type)
{
    const std::optional<QByteArray> bytes
        = X11Connection::property(connection, window, property, type);
    if (!bytes || bytes->size() < 4)
        return std::nullopt;
    uint32_t value = 0;
    std::memcpy(&value, bytes->constData(), 4);
    return value;
}

} // namespace Vesko
