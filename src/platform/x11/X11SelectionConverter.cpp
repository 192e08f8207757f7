// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/x11/X11SelectionConverter.h"

#include "platform/Logging.h"
#include "platform/x11/X11Connection.h"

#include <QPointer>

#include <cstdlib>

namespace Vesko {

namespace {

//! Properties used in turn, so that a late answer to an abandoned request
//! does not land where the current one is awaited.
constexpr int propertyCount = 8;

} // namespace

X11SelectionConverter::X11SelectionConverter(X11Connection &connection, QObject *parent)
    : QObject(parent)
    , m_connection(connection)
{
    m_deadline.setSingleShot(true);
    connect(&m_deadline, &QTimer::timeout, this, &X11SelectionConverter::giveUp);
    if (!m_connection.isValid())
        return;
    xcb_connection_t *c = m_connection.get();
    m_window = xcb_generate_id(c);
    // Property changes on it bring the timestamps and the pieces of large answers.
    const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(c, XCB_COPY_FROM_PARENT, m_window, m_connection.root(), 0, 0, 1, 1, 0,
        XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    m_timestampProperty = m_connection.atom("VESKO_TIMESTAMP");
    m_incr = m_connection.atom("INCR");
    for (int i = 0; i < propertyCount; ++i)
        m_properties.append(
            m_connection.atom(qPrintable(QStringLiteral("VESKO_SELECTION_%1").arg(i))));
    xcb_flush(c);
}

X11SelectionConverter::~X11SelectionConverter()
{
    if (m_connection.isValid() && m_window != XCB_WINDOW_NONE) {
        xcb_destroy_window(m_connection.get(), m_window);
        xcb_flush(m_connection.get());
    }
}

void X11SelectionConverter::convert(
    xcb_atom_t selection, xcb_atom_t target, int timeoutMilliseconds, Done done)
{
    if (!m_connection.isValid()) {
        done({});
        return;
    }
    m_queue.append(Request {selection, target, timeoutMilliseconds, std::move(done)});
    if (m_stage == Stage::Idle)
        startNext();
}

void X11SelectionConverter::readText(
    xcb_atom_t selection, int timeoutMilliseconds, std::function<void(std::optional<QString>)> done)
{
    const xcb_atom_t utf8 = m_connection.isValid() ? m_connection.atom("UTF8_STRING") : 0;
    QPointer<X11SelectionConverter> self(this);
    convert(selection, utf8, timeoutMilliseconds,
        [self, selection, timeoutMilliseconds, done](Result utf8) {
            if (const std::optional<Answer> &answer = utf8.answer) {
                done(answer->type == XCB_ATOM_STRING ? QString::fromLatin1(answer->bytes)
                                                     : QString::fromUtf8(answer->bytes));
                return;
            }
            if (!self) {
                done(std::nullopt);
                return;
            }
            self->convert(selection, XCB_ATOM_STRING, timeoutMilliseconds, [done](Result latin1) {
                if (latin1.answer)
                    done(QString::fromLatin1(latin1.answer->bytes));
                else
                    done(std::nullopt);
            });
        });
}

void X11SelectionConverter::startNext()
{
    if (m_queue.isEmpty())
        return;
    m_current = m_queue.takeFirst();
    m_pieces = {};
    // A timestamp of the server's own: a zero-length append to a property of
    // the window reports the server's time in its PropertyNotify.
    m_stage = Stage::Timestamp;
    xcb_change_property(m_connection.get(), XCB_PROP_MODE_APPEND, m_window, m_timestampProperty,
        XCB_ATOM_STRING, 8, 0, nullptr);
    xcb_flush(m_connection.get());
    m_deadline.start(m_current.timeout);
}

void X11SelectionConverter::convertNow(xcb_timestamp_t time)
{
    xcb_connection_t *c = m_connection.get();
    m_time = time;
    m_property = m_properties.at(m_nextProperty);
    m_nextProperty = (m_nextProperty + 1) % propertyCount;
    xcb_delete_property(c, m_window, m_property);
    xcb_convert_selection(c, m_window, m_current.selection, m_current.target, m_property, m_time);
    xcb_flush(c);
    m_stage = Stage::Converting;
    m_deadline.start(m_current.timeout);
}

std::optional<X11SelectionConverter::Answer> X11SelectionConverter::takeProperty(
    xcb_atom_t property)
{
    xcb_connection_t *c = m_connection.get();
    Answer answer;
    uint32_t offset = 0; // in 32-bit units
    for (;;) {
        // Deleted by the server with the read that reaches its end.
        xcb_get_property_reply_t *reply = xcb_get_property_reply(
            c, xcb_get_property(c, 1, m_window, property, XCB_ATOM_ANY, offset, 1 << 20), nullptr);
        if (!reply || reply->type == XCB_ATOM_NONE) {
            std::free(reply);
            return offset == 0 ? std::nullopt : std::optional<Answer>(answer);
        }
        answer.type = reply->type;
        const int length = xcb_get_property_value_length(reply);
        answer.bytes.append(static_cast<const char *>(xcb_get_property_value(reply)), length);
        const uint32_t after = reply->bytes_after;
        std::free(reply);
        if (after == 0 || length == 0 || answer.bytes.size() > maximumSize)
            return answer;
        offset += uint32_t(length) / 4;
    }
}

bool X11SelectionConverter::handleEvent(xcb_generic_event_t *event)
{
    const uint8_t type = event->response_type & 0x7F;
    if (type == XCB_PROPERTY_NOTIFY) {
        auto *notify = reinterpret_cast<xcb_property_notify_event_t *>(event);
        if (notify->window != m_window)
            return false;
        if (notify->state != XCB_PROPERTY_NEW_VALUE)
            return true;
        if (m_stage == Stage::Timestamp && notify->atom == m_timestampProperty) {
            convertNow(notify->time);
        } else if (m_stage == Stage::Piecewise && notify->atom == m_property) {
            const std::optional<Answer> piece = takeProperty(m_property);
            if (!piece || piece->bytes.isEmpty()) {
                // A piece of no length ends the transfer.
                finish({m_pieces});
                return true;
            }
            if (m_pieces.bytes.isEmpty())
                m_pieces.type = piece->type;
            m_pieces.bytes.append(piece->bytes);
            if (m_pieces.bytes.size() > maximumSize) {
                qCInfo(lcCapture, "A selection larger than %lld bytes was given up",
                    qlonglong(maximumSize));
                finish({});
                return true;
            }
            m_deadline.start(m_current.timeout);
        }
        return true;
    }
    if (type != XCB_SELECTION_NOTIFY)
        return false;
    auto *notify = reinterpret_cast<xcb_selection_notify_event_t *>(event);
    if (notify->requestor != m_window)
        return false;
    // The answer to the request under way, and to no other: an owner echoes
    // the request's time (some send CurrentTime, which the property and
    // target still tie to this request).
    const bool current = m_stage == Stage::Converting && notify->selection == m_current.selection
        && notify->target == m_current.target
        && (notify->property == m_property || notify->property == XCB_ATOM_NONE)
        && (notify->time == m_time || notify->time == XCB_CURRENT_TIME);
    if (!current) {
        if (notify->property != XCB_ATOM_NONE && notify->property != m_property)
            xcb_delete_property(m_connection.get(), m_window, notify->property);
        return true;
    }
    if (notify->property == XCB_ATOM_NONE) {
        finish({}); // refused
        return true;
    }
    std::optional<Answer> answer = takeProperty(m_property);
    if (answer && answer->type == m_incr) {
        // Piecewise: deleting the property asked for the first piece.
        m_stage = Stage::Piecewise;
        xcb_flush(m_connection.get());
        m_deadline.start(m_current.timeout);
        return true;
    }
    finish({answer});
    return true;
}

void X11SelectionConverter::giveUp()
{
    if (m_stage == Stage::Idle)
        return;
    qCInfo(lcCapture, "The selection's owner did not answer within %d ms", m_current.timeout);
    finish({std::nullopt, true});
}

void X11SelectionConverter::finish(Result result)
{
    m_deadline.stop();
    m_stage = Stage::Idle;
    Done done = std::move(m_current.done);
    m_current = {};
    QPointer<X11SelectionConverter> self(this);
    if (done)
        done(std::move(result));
    if (self && m_stage == Stage::Idle)
        startNext();
}

} // namespace Vesko
