// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/x11/X11ClipboardReader.h"

#include "platform/x11/X11Connection.h"

#include <QPointer>

#include <cstdlib>

namespace Vesko {

X11ClipboardReader::X11ClipboardReader(QObject *parent)
    : QObject(parent)
    , m_connection(std::make_unique<X11Connection>())
{
    m_silence.setSingleShot(true);
    m_silence.setInterval(silenceTimeoutMilliseconds);
    connect(&m_silence, &QTimer::timeout, this, [this] { finish(std::nullopt); });
    if (!m_connection->isValid())
        return;

    xcb_connection_t *c = m_connection->get();
    m_clipboard = m_connection->atom("CLIPBOARD");
    m_property = m_connection->atom("VESKO_CLIPBOARD");
    m_incr = m_connection->atom("INCR");
    m_targets = m_connection->atom("TARGETS");

    // An unmapped window to receive the data on; its property changes drive
    // the transfer of large data.
    m_window = xcb_generate_id(c);
    const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(c, XCB_COPY_FROM_PARENT, m_window, m_connection->root(), -1, -1, 1, 1, 0,
        XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    xcb_flush(c);
    m_connection->setEventHandler([this](xcb_generic_event_t *event) { handleEvent(event); });
}

X11ClipboardReader::~X11ClipboardReader()
{
    // Reads still waiting end without an answer: whoever asked goes too.
    if (m_connection->isValid() && m_window)
        xcb_destroy_window(m_connection->get(), m_window);
}

bool X11ClipboardReader::isValid() const
{
    return m_connection->isValid();
}

xcb_atom_t X11ClipboardReader::atom(const QString &name)
{
    return m_connection->atom(name.toLatin1().constData());
}

void X11ClipboardReader::offers(std::function<void(const QStringList &formats)> done)
{
    if (!isValid()) {
        done({});
        return;
    }
    QPointer<X11ClipboardReader> guard(this);
    m_queue.enqueue(
        {m_targets, [guard, done](const std::optional<QByteArray> &data) {
             QStringList formats;
             if (guard && data) {
                 const auto *atoms = reinterpret_cast<const xcb_atom_t *>(data->constData());
                 const qsizetype count = data->size() / qsizetype(sizeof(xcb_atom_t));
                 // Ask for every name first, then collect the answers.
                 xcb_connection_t *c = guard->m_connection->get();
                 QList<xcb_get_atom_name_cookie_t> cookies;
                 for (qsizetype i = 0; i < count; ++i)
                     cookies.append(xcb_get_atom_name(c, atoms[i]));
                 for (const xcb_get_atom_name_cookie_t &cookie : cookies) {
                     xcb_get_atom_name_reply_t *reply = xcb_get_atom_name_reply(c, cookie, nullptr);
                     if (!reply)
                         continue;
                     formats.append(QString::fromLatin1(
                         xcb_get_atom_name_name(reply), xcb_get_atom_name_name_length(reply)));
                     std::free(reply);
                 }
                 guard->dispatchSoon();
             }
             done(formats);
         }});
    if (!m_current)
        startNext();
}

void X11ClipboardReader::read(const QString &format, Done done)
{
    if (!isValid()) {
        done(std::nullopt);
        return;
    }
    m_queue.enqueue({atom(format), std::move(done)});
    dispatchSoon();
    if (!m_current)
        startNext();
}

void X11ClipboardReader::startNext()
{
    if (m_current || m_queue.isEmpty())
        return;
    m_current = m_queue.dequeue();
    m_incremental = false;
    m_received.clear();
    xcb_connection_t *c = m_connection->get();
    xcb_delete_property(c, m_window, m_property);
    xcb_convert_selection(
        c, m_window, m_clipboard, m_current->target, m_property, XCB_CURRENT_TIME);
    xcb_flush(c);
    m_silence.start();
}

std::optional<QByteArray> X11ClipboardReader::takeProperty(xcb_atom_t *type)
{
    xcb_connection_t *c = m_connection->get();
    xcb_get_property_reply_t *reply = xcb_get_property_reply(
        c, xcb_get_property(c, 1, m_window, m_property, XCB_ATOM_ANY, 0, 0x1fffffff), nullptr);
    dispatchSoon();
    if (!reply)
        return std::nullopt;
    *type = reply->type;
    // The length is in bytes, whatever the format.
    const QByteArray bytes(static_cast<const char *>(xcb_get_property_value(reply)),
        xcb_get_property_value_length(reply));
    std::free(reply);
    return bytes;
}

void X11ClipboardReader::handleEvent(xcb_generic_event_t *event)
{
    if (!m_current)
        return;
    const uint8_t kind = event->response_type & 0x7F;
    if (kind == XCB_SELECTION_NOTIFY) {
        const auto *notify = reinterpret_cast<xcb_selection_notify_event_t *>(event);
        if (notify->requestor != m_window || m_incremental)
            return;
        if (notify->property == XCB_ATOM_NONE) {
            finish(std::nullopt); // refused, or nobody owns the clipboard
            return;
        }
        xcb_atom_t type = XCB_ATOM_NONE;
        const std::optional<QByteArray> data = takeProperty(&type);
        if (data && type == m_incr) {
            // Deleting the property asked the owner for the first piece.
            m_incremental = true;
            xcb_flush(m_connection->get());
            m_silence.start();
            return;
        }
        finish(data);
        return;
    }
    if (kind == XCB_PROPERTY_NOTIFY && m_incremental) {
        const auto *notify = reinterpret_cast<xcb_property_notify_event_t *>(event);
        if (notify->window != m_window || notify->atom != m_property
            || notify->state != XCB_PROPERTY_NEW_VALUE)
            return;
        xcb_atom_t type = XCB_ATOM_NONE;
        const std::optional<QByteArray> piece = takeProperty(&type);
        xcb_flush(m_connection->get());
        if (!piece) {
            finish(std::nullopt);
            return;
        }
        if (piece->isEmpty()) {
            finish(m_received); // an empty piece ends the transfer
            return;
        }
        m_received.append(*piece);
        m_silence.start();
    }
}

void X11ClipboardReader::finish(const std::optional<QByteArray> &data)
{
    m_silence.stop();
    if (!m_current)
        return;
    const Request request = *m_current;
    m_current.reset();
    m_incremental = false;
    m_received.clear();
    if (request.done)
        request.done(data);
    startNext();
}

void X11ClipboardReader::dispatchSoon()
{
    QMetaObject::invokeMethod(m_connection.get(), &X11Connection::dispatch, Qt::QueuedConnection);
}

} // namespace Vesko
