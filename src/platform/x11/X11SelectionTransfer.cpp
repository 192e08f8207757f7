// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/x11/X11SelectionTransfer.h"

#include "platform/Logging.h"
#include "platform/x11/X11Connection.h"

#include <algorithm>
#include <cstdlib>
#include <poll.h>

namespace Vesko {

namespace {

//! Targets about the selection itself, or handles that mean nothing elsewhere.
const QByteArrayList describingTargets
    = {"TARGETS", "MULTIPLE", "TIMESTAMP", "SAVE_TARGETS", "DELETE", "INSERT_SELECTION",
        "INSERT_PROPERTY", "LENGTH", "PIXMAP", "BITMAP", "DRAWABLE", "COLORMAP", "ATOM_PAIR"};

//! The text targets, best first; the first offered is kept as "text/plain".
const QByteArrayList textTargets = {"UTF8_STRING", "STRING", "TEXT"};

//! At most this many formats of an owner are looked at.
constexpr qsizetype maximumOffers = 1024;

//! Properties taken in turn, so that a late answer to a copy given up on
//! seldom lands where a later one is awaited.
constexpr int propertyCount = 64;

//! How long one wait for the server may last before a cancel is looked at.
constexpr int pollSliceMilliseconds = 50;

} // namespace

//! One target asked for, and how far its answer has come.
struct X11SelectionTransfer::Conversion
{
    enum class State { Asked, Piecewise, Answered, Refused, TooLarge };

    xcb_atom_t target = XCB_ATOM_NONE;
    xcb_atom_t property = XCB_ATOM_NONE;
    State state = State::Asked;
    xcb_atom_t type = XCB_ATOM_NONE;
    QByteArray bytes;

    bool isOpen() const { return state == State::Asked || state == State::Piecewise; }
    static Conversion of(xcb_atom_t target)
    {
        Conversion conversion;
        conversion.target = target;
        return conversion;
    }
};

X11SelectionTransfer::X11SelectionTransfer(const std::atomic_bool *cancelled)
    : m_cancelled(cancelled)
{
    xcb_connection_t *connection = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(connection)) {
        xcb_disconnect(connection);
        return;
    }
    m_connection = connection;
    m_window = xcb_generate_id(m_connection);
    // Property changes bring the timestamps and the pieces of large answers.
    const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, m_window,
        X11Connection::root(m_connection), 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
        XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    xcb_flush(m_connection);
}

X11SelectionTransfer::~X11SelectionTransfer()
{
    if (m_connection)
        xcb_disconnect(m_connection);
}

QString X11SelectionTransfer::formatOfTarget(const QByteArray &target)
{
    if (target.isEmpty() || describingTargets.contains(target))
        return {};
    if (textTargets.contains(target))
        return QStringLiteral("text/plain");
    return QString::fromLatin1(target);
}

xcb_atom_t X11SelectionTransfer::atom(const QByteArray &name)
{
    if (const auto known = m_atoms.constFind(name); known != m_atoms.cend())
        return *known;
    const xcb_atom_t atom = X11Connection::atom(m_connection, name.constData());
    if (atom != XCB_ATOM_NONE)
        m_atoms.insert(name, atom);
    return atom;
}

QList<QByteArray> X11SelectionTransfer::atomNames(const QList<xcb_atom_t> &atoms)
{
    QList<xcb_get_atom_name_cookie_t> cookies;
    for (const xcb_atom_t atom : atoms)
        cookies.append(xcb_get_atom_name(m_connection, atom));
    QList<QByteArray> names;
    for (const xcb_get_atom_name_cookie_t cookie : cookies) {
        xcb_get_atom_name_reply_t *reply = xcb_get_atom_name_reply(m_connection, cookie, nullptr);
        names.append(reply
                ? QByteArray(xcb_get_atom_name_name(reply), xcb_get_atom_name_name_length(reply))
                : QByteArray());
        std::free(reply);
    }
    return names;
}

xcb_atom_t X11SelectionTransfer::nextProperty()
{
    if (m_properties.size() < propertyCount) {
        m_properties.append(atom("VESKO_TRANSFER_" + QByteArray::number(m_properties.size())));
        return m_properties.last();
    }
    const xcb_atom_t property = m_properties.at(m_nextProperty);
    m_nextProperty = (m_nextProperty + 1) % propertyCount;
    return property;
}

xcb_generic_event_t *X11SelectionTransfer::nextEvent(QDeadlineTimer deadline)
{
    for (;;) {
        if (xcb_generic_event_t *event = xcb_poll_for_event(m_connection))
            return event;
        if ((m_cancelled && *m_cancelled) || deadline.hasExpired()
            || xcb_connection_has_error(m_connection))
            return nullptr;
        pollfd descriptor {xcb_get_file_descriptor(m_connection), POLLIN, 0};
        const qint64 left = deadline.remainingTime();
        ::poll(&descriptor, 1,
            int(left < 0 ? pollSliceMilliseconds : std::min<qint64>(left, pollSliceMilliseconds)));
    }
}

std::optional<xcb_timestamp_t> X11SelectionTransfer::timestamp(QDeadlineTimer deadline)
{
    const xcb_atom_t property = atom("VESKO_TIMESTAMP");
    xcb_change_property(
        m_connection, XCB_PROP_MODE_APPEND, m_window, property, XCB_ATOM_STRING, 8, 0, nullptr);
    xcb_flush(m_connection);
    while (xcb_generic_event_t *event = nextEvent(deadline)) {
        std::optional<xcb_timestamp_t> time;
        if ((event->response_type & 0x7F) == XCB_PROPERTY_NOTIFY) {
            const auto *notify = reinterpret_cast<xcb_property_notify_event_t *>(event);
            if (notify->window == m_window && notify->atom == property)
                time = notify->time;
        }
        // Anything else is a late answer to a copy given up on.
        std::free(event);
        if (time)
            return time;
    }
    return std::nullopt;
}

std::optional<QByteArray> X11SelectionTransfer::takeProperty(xcb_atom_t property, xcb_atom_t *type)
{
    QByteArray bytes;
    uint32_t offset = 0; // in 32-bit units
    for (;;) {
        // Deleted by the server with the read that reaches its end.
        xcb_get_property_reply_t *reply = xcb_get_property_reply(m_connection,
            xcb_get_property(m_connection, 1, m_window, property, XCB_ATOM_ANY, offset, 1 << 20),
            nullptr);
        if (!reply || reply->type == XCB_ATOM_NONE) {
            std::free(reply);
            return offset == 0 ? std::nullopt : std::optional<QByteArray>(bytes);
        }
        *type = reply->type;
        const int length = xcb_get_property_value_length(reply);
        bytes.append(static_cast<const char *>(xcb_get_property_value(reply)), length);
        const uint32_t after = reply->bytes_after;
        std::free(reply);
        if (after == 0 || length == 0 || bytes.size() > maximumSize)
            return bytes;
        offset += uint32_t(length) / 4;
    }
}

void X11SelectionTransfer::convert(
    xcb_atom_t selection, QList<Conversion> &conversions, QDeadlineTimer deadline)
{
    if (conversions.isEmpty())
        return;
    const std::optional<xcb_timestamp_t> time = timestamp(deadline);
    if (!time)
        return;
    for (Conversion &conversion : conversions) {
        conversion.property = nextProperty();
        xcb_delete_property(m_connection, m_window, conversion.property);
        xcb_convert_selection(
            m_connection, m_window, selection, conversion.target, conversion.property, *time);
    }
    xcb_flush(m_connection);
    const xcb_atom_t incr = atom("INCR");
    qsizetype total = 0;
    const auto isOpen = [&conversions] {
        return std::any_of(conversions.cbegin(), conversions.cend(),
            [](const Conversion &conversion) { return conversion.isOpen(); });
    };
    while (isOpen()) {
        xcb_generic_event_t *event = nextEvent(deadline);
        if (!event) {
            for (const Conversion &conversion : std::as_const(conversions)) {
                if (conversion.state == Conversion::State::Asked)
                    m_unanswered.insert(conversion.target);
            }
            return;
        }
        const uint8_t type = event->response_type & 0x7F;
        if (type == XCB_SELECTION_NOTIFY) {
            const auto *notify = reinterpret_cast<xcb_selection_notify_event_t *>(event);
            Conversion *answered = nullptr;
            for (Conversion &conversion : conversions) {
                if (conversion.state == Conversion::State::Asked
                    && conversion.target == notify->target)
                    answered = &conversion;
            }
            // The answer to this request and no other: owners echo the
            // request's time; one stamped CurrentTime is tied to it by its
            // property, which no recent request used, or is a refusal.
            bool current = answered && notify->requestor == m_window
                && notify->selection == selection
                && (notify->time == *time || notify->time == XCB_CURRENT_TIME)
                && (notify->property == answered->property || notify->property == XCB_ATOM_NONE);
            // A refusal stamped CurrentTime may still answer a request of a
            // copy that gave up: taken for that one, it would drop a format.
            if (current && notify->time == XCB_CURRENT_TIME && notify->property == XCB_ATOM_NONE
                && m_unanswered.remove(answered->target)) {
                current = false;
            }
            if (current && notify->property == XCB_ATOM_NONE) {
                answered->state = Conversion::State::Refused;
            } else if (current) {
                std::optional<QByteArray> bytes = takeProperty(answered->property, &answered->type);
                if (!bytes) {
                    answered->state = Conversion::State::Refused;
                } else if (answered->type == incr) {
                    // Deleting the property asked for the first piece.
                    answered->state = Conversion::State::Piecewise;
                    xcb_flush(m_connection);
                } else {
                    answered->bytes = *std::move(bytes);
                    answered->state = Conversion::State::Answered;
                    total += answered->bytes.size();
                }
            }
        } else if (type == XCB_PROPERTY_NOTIFY) {
            const auto *notify = reinterpret_cast<xcb_property_notify_event_t *>(event);
            Conversion *piece = nullptr;
            for (Conversion &conversion : conversions) {
                if (conversion.state == Conversion::State::Piecewise
                    && conversion.property == notify->atom)
                    piece = &conversion;
            }
            if (piece && notify->window == m_window && notify->state == XCB_PROPERTY_NEW_VALUE) {
                xcb_atom_t pieceType = XCB_ATOM_NONE;
                const std::optional<QByteArray> bytes = takeProperty(piece->property, &pieceType);
                xcb_flush(m_connection);
                if (!bytes || bytes->isEmpty()) {
                    // A piece of no length ends the transfer.
                    piece->state = Conversion::State::Answered;
                } else {
                    if (piece->bytes.isEmpty())
                        piece->type = pieceType;
                    piece->bytes.append(*bytes);
                    total += bytes->size();
                }
            }
        }
        std::free(event);
        if (total > maximumSize) {
            qCInfo(lcCapture, "A selection larger than %lld bytes was given up",
                qlonglong(maximumSize));
            for (Conversion &conversion : conversions) {
                if (conversion.isOpen() || conversion.state == Conversion::State::Answered) {
                    conversion.state = Conversion::State::TooLarge;
                    conversion.bytes.clear();
                }
            }
            return;
        }
    }
}

std::optional<QMap<QString, QByteArray>> X11SelectionTransfer::copyAll(
    const char *selectionName, QDeadlineTimer deadline)
{
    if (!isValid())
        return std::nullopt;
    const xcb_atom_t selection = atom(selectionName);
    xcb_get_selection_owner_reply_t *owner = xcb_get_selection_owner_reply(
        m_connection, xcb_get_selection_owner(m_connection, selection), nullptr);
    const xcb_window_t ownerWindow = owner ? owner->owner : xcb_window_t(XCB_WINDOW_NONE);
    std::free(owner);
    if (ownerWindow == XCB_WINDOW_NONE)
        return QMap<QString, QByteArray> {};
    // Requests given up on were another owner's: this one owes them nothing.
    if (ownerWindow != m_lastOwner)
        m_unanswered.clear();
    m_lastOwner = ownerWindow;

    // Which formats there are: without that list, nothing can be copied whole.
    const xcb_atom_t targets = atom("TARGETS");
    QList<Conversion> list {Conversion::of(targets)};
    convert(selection, list, deadline);
    const Conversion &offers = list.first();
    if (offers.state != Conversion::State::Answered
        || (offers.type != XCB_ATOM_ATOM && offers.type != targets)
        || offers.bytes.size() % 4 != 0) {
        qCInfo(lcCapture, "The owner of %s did not tell its formats", selectionName);
        return std::nullopt;
    }
    const auto *atoms = reinterpret_cast<const xcb_atom_t *>(offers.bytes.constData());
    const QList<xcb_atom_t> offered(
        atoms, atoms + std::min<qsizetype>(offers.bytes.size() / 4, maximumOffers));
    const QList<QByteArray> names = atomNames(offered);

    // One target per format: of the text targets, the best offered.
    QMap<QString, xcb_atom_t> chosen;
    qsizetype textRank = textTargets.size();
    for (qsizetype i = 0; i < offered.size(); ++i) {
        const QString format = formatOfTarget(names.at(i));
        if (format.isEmpty())
            continue;
        const qsizetype rank = textTargets.indexOf(names.at(i));
        if (rank >= 0) {
            if (rank < textRank) {
                textRank = rank;
                chosen.insert(format, offered.at(i));
            }
        } else if (!chosen.contains(format)) {
            chosen.insert(format, offered.at(i));
        }
    }
    QList<Conversion> conversions;
    for (const xcb_atom_t target : std::as_const(chosen))
        conversions.append(Conversion::of(target));
    convert(selection, conversions, deadline);

    QMap<QString, QByteArray> formats;
    for (auto it = chosen.cbegin(); it != chosen.cend(); ++it) {
        const Conversion &conversion = *std::find_if(conversions.cbegin(), conversions.cend(),
            [target = it.value()](const Conversion &c) { return c.target == target; });
        switch (conversion.state) {
        case Conversion::State::Answered:
            formats.insert(it.key(),
                conversion.type == XCB_ATOM_STRING ? QString::fromLatin1(conversion.bytes).toUtf8()
                                                   : conversion.bytes);
            break;
        case Conversion::State::Refused:
            break; // nothing to keep
        case Conversion::State::Asked:
        case Conversion::State::Piecewise:
        case Conversion::State::TooLarge:
            qCInfo(lcCapture, "The owner of %s did not send %s in time", selectionName,
                qUtf8Printable(it.key()));
            return std::nullopt;
        }
    }
    return formats;
}

std::optional<QString> X11SelectionTransfer::text(
    const char *selectionName, QDeadlineTimer deadline)
{
    if (!isValid())
        return std::nullopt;
    const xcb_atom_t selection = atom(selectionName);
    for (const xcb_atom_t target : {atom("UTF8_STRING"), xcb_atom_t(XCB_ATOM_STRING)}) {
        QList<Conversion> list {Conversion::of(target)};
        convert(selection, list, deadline);
        const Conversion &conversion = list.first();
        if (conversion.state == Conversion::State::Answered) {
            return conversion.type == XCB_ATOM_STRING ? QString::fromLatin1(conversion.bytes)
                                                      : QString::fromUtf8(conversion.bytes);
        }
        if (conversion.state != Conversion::State::Refused)
            return std::nullopt; // silent: not asked again
    }
    return std::nullopt;
}

} // namespace Vesko
