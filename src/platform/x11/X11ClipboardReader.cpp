// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/x11/X11ClipboardReader.h"

#include "platform/x11/X11Connection.h"

#include <QPointer>

#include <cstdlib>

namespace Vesko {

namespace {

// How many properties the answers rotate through.
constexpr int answerPropertyCount = 8;

} // namespace

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
    // Every name asked for at once, then the answers taken.
    QList<QByteArray> names {"CLIPBOARD", "INCR", "TARGETS"};
    for (int i = 0; i < answerPropertyCount; ++i)
        names.append("VESKO_CLIPBOARD_" + QByteArray::number(i));
    QList<xcb_intern_atom_cookie_t> cookies;
    for (const QByteArray &name : std::as_const(names))
        cookies.append(xcb_intern_atom(c, 0, uint16_t(name.size()), name.constData()));
    QList<xcb_atom_t> atoms;
    for (const xcb_intern_atom_cookie_t &cookie : std::as_const(cookies)) {
        xcb_intern_atom_reply_t *reply = xcb_intern_atom_reply(c, cookie, nullptr);
        atoms.append(reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE));
        std::free(reply);
    }
    for (qsizetype i = 0; i < names.size(); ++i) {
        m_atoms.insert(QString::fromLatin1(names.at(i)), atoms.at(i));
        m_names.insert(atoms.at(i), QString::fromLatin1(names.at(i)));
    }
    m_clipboard = atoms.at(0);
    m_incr = atoms.at(1);
    m_targets = atoms.at(2);
    m_properties = atoms.mid(3);

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

void X11ClipboardReader::setSilenceTimeout(int milliseconds)
{
    m_silence.setInterval(milliseconds);
}

xcb_atom_t X11ClipboardReader::atom(const QString &name)
{
    if (const auto known = m_atoms.constFind(name); known != m_atoms.cend())
        return *known;
    const xcb_atom_t atom = m_connection->atom(name.toLatin1().constData());
    m_atoms.insert(name, atom);
    m_names.insert(atom, name);
    return atom;
}

QStringList X11ClipboardReader::atomNames(const QList<xcb_atom_t> &atoms)
{
    xcb_connection_t *c = m_connection->get();
    QList<xcb_atom_t> unknown;
    QList<xcb_get_atom_name_cookie_t> cookies;
    for (const xcb_atom_t atom : atoms) {
        if (atom != XCB_ATOM_NONE && !m_names.contains(atom) && !unknown.contains(atom)) {
            unknown.append(atom);
            cookies.append(xcb_get_atom_name(c, atom));
        }
    }
    for (qsizetype i = 0; i < unknown.size(); ++i) {
        xcb_get_atom_name_reply_t *reply = xcb_get_atom_name_reply(c, cookies.at(i), nullptr);
        if (!reply)
            continue;
        const QString name = QString::fromLatin1(
            xcb_get_atom_name_name(reply), xcb_get_atom_name_name_length(reply));
        std::free(reply);
        m_names.insert(unknown.at(i), name);
        m_atoms.insert(name, unknown.at(i));
    }
    if (!unknown.isEmpty())
        dispatchSoon();

    QStringList names;
    for (const xcb_atom_t atom : atoms) {
        if (const auto name = m_names.constFind(atom); name != m_names.cend())
            names.append(*name);
    }
    return names;
}

void X11ClipboardReader::offers(std::function<void(const QStringList &formats)> done)
{
    if (!isValid()) {
        done({});
        return;
    }
    QPointer<X11ClipboardReader> guard(this);
    enqueue(m_targets, [guard, done = std::move(done)](const std::optional<Value> &value) {
        QStringList formats;
        // A list of atoms, as asked; anything else is no answer.
        if (guard && value && value->format == 32
            && (value->type == XCB_ATOM_ATOM || value->type == guard->m_targets)) {
            const auto *atoms = reinterpret_cast<const xcb_atom_t *>(value->bytes.constData());
            const qsizetype count = std::min<qsizetype>(
                value->bytes.size() / qsizetype(sizeof(xcb_atom_t)), maximumOffers);
            formats = guard->atomNames(QList<xcb_atom_t>(atoms, atoms + count));
        }
        done(formats);
    });
}

void X11ClipboardReader::read(const QString &format, Done done)
{
    if (!isValid()) {
        done(std::nullopt);
        return;
    }
    enqueue(atom(format), [done = std::move(done)](const std::optional<Value> &value) {
        done(value ? std::optional(value->bytes) : std::nullopt);
    });
}

void X11ClipboardReader::enqueue(xcb_atom_t target, Finish finish)
{
    m_queue.enqueue({target, XCB_ATOM_NONE, std::move(finish)});
    dispatchSoon();
    if (!m_current)
        startNext();
}

void X11ClipboardReader::startNext()
{
    if (m_current || m_queue.isEmpty())
        return;
    m_current = m_queue.dequeue();
    m_current->property = m_properties.at(m_nextProperty);
    m_nextProperty = (m_nextProperty + 1) % m_properties.size();
    m_incremental = false;
    m_received.clear();
    xcb_connection_t *c = m_connection->get();
    xcb_delete_property(c, m_window, m_current->property);
    xcb_convert_selection(
        c, m_window, m_clipboard, m_current->target, m_current->property, XCB_CURRENT_TIME);
    xcb_flush(c);
    m_silence.start();
}

std::optional<X11ClipboardReader::Value> X11ClipboardReader::takeProperty(xcb_atom_t property)
{
    xcb_connection_t *c = m_connection->get();
    xcb_get_property_reply_t *reply = xcb_get_property_reply(
        c, xcb_get_property(c, 1, m_window, property, XCB_ATOM_ANY, 0, 0x1fffffff), nullptr);
    dispatchSoon();
    if (!reply)
        return std::nullopt;
    // The length is in bytes, whatever the format.
    Value value {QByteArray(static_cast<const char *>(xcb_get_property_value(reply)),
                     xcb_get_property_value_length(reply)),
        reply->type, reply->format};
    std::free(reply);
    return value;
}

void X11ClipboardReader::handleEvent(xcb_generic_event_t *event)
{
    xcb_connection_t *c = m_connection->get();
    const uint8_t kind = event->response_type & 0x7F;
    if (kind == XCB_SELECTION_NOTIFY) {
        const auto *notify = reinterpret_cast<xcb_selection_notify_event_t *>(event);
        if (notify->requestor != m_window || notify->selection != m_clipboard)
            return;
        const bool answersCurrent = m_current && !m_incremental
            && notify->target == m_current->target
            && (notify->property == XCB_ATOM_NONE || notify->property == m_current->property);
        if (!answersCurrent) {
            // The late answer to a read given up on: cleared away, never taken
            // for the answer to the read under way.
            if (notify->property != XCB_ATOM_NONE
                && (!m_current || notify->property != m_current->property)) {
                xcb_delete_property(c, m_window, notify->property);
                xcb_flush(c);
            }
            return;
        }
        if (notify->property == XCB_ATOM_NONE) {
            finish(std::nullopt); // refused, or nobody owns the clipboard
            return;
        }
        const std::optional<Value> value = takeProperty(m_current->property);
        if (value && value->type == m_incr) {
            // Deleting the property asked the owner for the first piece.
            m_incremental = true;
            xcb_flush(c);
            m_silence.start();
            return;
        }
        finish(value);
        return;
    }
    if (kind == XCB_PROPERTY_NOTIFY && m_current && m_incremental) {
        const auto *notify = reinterpret_cast<xcb_property_notify_event_t *>(event);
        if (notify->window != m_window || notify->atom != m_current->property
            || notify->state != XCB_PROPERTY_NEW_VALUE)
            return;
        const std::optional<Value> piece = takeProperty(m_current->property);
        xcb_flush(c);
        if (!piece) {
            finish(std::nullopt);
            return;
        }
        if (piece->bytes.isEmpty()) {
            // An empty piece ends the transfer.
            finish(Value {m_received, piece->type, piece->format});
            return;
        }
        m_received.append(piece->bytes);
        m_silence.start();
    }
}

void X11ClipboardReader::finish(const std::optional<Value> &value)
{
    m_silence.stop();
    if (!m_current)
        return;
    const Request request = *m_current;
    m_current.reset();
    m_incremental = false;
    m_received.clear();
    if (request.finish)
        request.finish(value);
    startNext();
}

void X11ClipboardReader::dispatchSoon()
{
    QMetaObject::invokeMethod(m_connection.get(), &X11Connection::dispatch, Qt::QueuedConnection);
}

} // namespace Vesko
