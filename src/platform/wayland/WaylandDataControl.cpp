// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/wayland/WaylandDataControl.h"

#include "platform/Logging.h"
#include "platform/wayland/WaylandGlobals.h"
#include "platform/wayland/WaylandPipeReader.h"

#include "ext-data-control-v1-client-protocol.h"
#include "wlr-data-control-unstable-v1-client-protocol.h"

#include <QPointer>
#include <QSocketNotifier>
#include <QTimer>

#include <wayland-client.h>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace Vesko {

namespace {

// The two protocols share their opcodes and the layout of their events.
enum Interface { Manager, Device, Source, Offer };
const wl_interface *const extInterfaces[]
    = {&ext_data_control_manager_v1_interface, &ext_data_control_device_v1_interface,
        &ext_data_control_source_v1_interface, &ext_data_control_offer_v1_interface};
const wl_interface *const wlrInterfaces[]
    = {&zwlr_data_control_manager_v1_interface, &zwlr_data_control_device_v1_interface,
        &zwlr_data_control_source_v1_interface, &zwlr_data_control_offer_v1_interface};

static_assert(EXT_DATA_CONTROL_MANAGER_V1_CREATE_DATA_SOURCE
    == ZWLR_DATA_CONTROL_MANAGER_V1_CREATE_DATA_SOURCE);
static_assert(
    EXT_DATA_CONTROL_MANAGER_V1_GET_DATA_DEVICE == ZWLR_DATA_CONTROL_MANAGER_V1_GET_DATA_DEVICE);
static_assert(EXT_DATA_CONTROL_MANAGER_V1_DESTROY == ZWLR_DATA_CONTROL_MANAGER_V1_DESTROY);
static_assert(
    EXT_DATA_CONTROL_DEVICE_V1_SET_SELECTION == ZWLR_DATA_CONTROL_DEVICE_V1_SET_SELECTION);
static_assert(EXT_DATA_CONTROL_DEVICE_V1_DESTROY == ZWLR_DATA_CONTROL_DEVICE_V1_DESTROY);
static_assert(EXT_DATA_CONTROL_SOURCE_V1_OFFER == ZWLR_DATA_CONTROL_SOURCE_V1_OFFER);
static_assert(EXT_DATA_CONTROL_SOURCE_V1_DESTROY == ZWLR_DATA_CONTROL_SOURCE_V1_DESTROY);
static_assert(EXT_DATA_CONTROL_OFFER_V1_RECEIVE == ZWLR_DATA_CONTROL_OFFER_V1_RECEIVE);
static_assert(EXT_DATA_CONTROL_OFFER_V1_DESTROY == ZWLR_DATA_CONTROL_OFFER_V1_DESTROY);

struct DeviceListener
{
    void (*dataOffer)(void *, wl_proxy *, wl_proxy *);
    void (*selection)(void *, wl_proxy *, wl_proxy *);
    void (*finished)(void *, wl_proxy *);
    void (*primarySelection)(void *, wl_proxy *, wl_proxy *);
};
static_assert(sizeof(DeviceListener) == sizeof(zwlr_data_control_device_v1_listener));
static_assert(sizeof(DeviceListener) == sizeof(ext_data_control_device_v1_listener));

struct OfferListener
{
    void (*offer)(void *, wl_proxy *, const char *);
};

struct SourceListener
{
    void (*send)(void *, wl_proxy *, const char *, qint32);
    void (*cancelled)(void *, wl_proxy *);
};

template<typename Listener> void listen(wl_proxy *proxy, const Listener &listener, void *data)
{
    wl_proxy_add_listener(
        proxy, reinterpret_cast<void (**)(void)>(const_cast<Listener *>(&listener)), data);
}

void destroy(wl_proxy *proxy, quint32 opcode)
{
    wl_proxy_marshal_flags(
        proxy, opcode, nullptr, wl_proxy_get_version(proxy), WL_MARSHAL_FLAG_DESTROY);
}

//! Writes bytes into a pipe another client reads, on the event loop; gives
//! up after a while, so a reader that stops reading costs nothing.
void writeInto(int fd, QByteArray bytes)
{
    ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) | O_NONBLOCK);
    auto *notifier = new QSocketNotifier(fd, QSocketNotifier::Write);
    auto *deadline = new QTimer(notifier);
    auto written = std::make_shared<qsizetype>(0);
    // Ends once, whichever comes first: the last byte, a reader that left,
    // or the deadline. The descriptor's number may be reused after the close.
    auto ended = std::make_shared<bool>(false);
    const auto end = [notifier, deadline, fd, ended] {
        if (std::exchange(*ended, true))
            return;
        deadline->stop();
        notifier->setEnabled(false);
        ::close(fd);
        notifier->deleteLater();
    };
    QObject::connect(notifier, &QSocketNotifier::activated, notifier, [=] {
        if (*ended)
            return;
        while (*written < bytes.size()) {
            const ssize_t count
                = ::write(fd, bytes.constData() + *written, size_t(bytes.size() - *written));
            if (count > 0) {
                *written += count;
                continue;
            }
            if (count < 0 && errno == EINTR)
                continue;
            if (count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK))
                return; // the reader has not taken the rest yet
            break;
        }
        end();
    });
    deadline->setSingleShot(true);
    QObject::connect(deadline, &QTimer::timeout, notifier, end);
    deadline->start(5000);
}

const QStringList textFormats
    = {QStringLiteral("text/plain;charset=utf-8"), QStringLiteral("UTF8_STRING"),
        QStringLiteral("text/plain"), QStringLiteral("TEXT"), QStringLiteral("STRING")};

} // namespace

struct WaylandDataControl::Source
{
    wl_proxy *proxy = nullptr;
    QMap<QString, QByteArray> formats;
};

WaylandDataControl::WaylandDataControl(WaylandGlobals &globals, QObject *parent)
    : QObject(parent)
    , m_globals(globals)
{
    // A reader that closes its end while Vesko writes would end the program
    // with SIGPIPE: the write fails with EPIPE instead.
    std::signal(SIGPIPE, SIG_IGN);
    bindManager();
    connect(&globals, &WaylandGlobals::announced, this, [this] {
        if (!m_device)
            bindManager();
    });
    connect(&globals, &WaylandGlobals::withdrawn, this, [this](quint32 name) {
        if (name == m_managerName || name == m_globals.seatName())
            release();
    });
}

WaylandDataControl::~WaylandDataControl()
{
    release();
}

void WaylandDataControl::bindManager()
{
    release();
    if (!m_globals.seat())
        return;
    // A diagnostic switch: capture as where the compositor has no data
    // control (GNOME), reading the selection as the panel takes the focus.
    if (qEnvironmentVariable("VESKO_WAYLAND_DATA_CONTROL") == u"off") {
        qCInfo(lcCapture, "Data control is switched off (VESKO_WAYLAND_DATA_CONTROL=off)");
        return;
    }
    // The stable form first.
    m_interfaces = extInterfaces;
    m_manager = m_globals.bind(&ext_data_control_manager_v1_interface, 1, &m_managerName);
    if (!m_manager) {
        m_interfaces = wlrInterfaces;
        m_manager = m_globals.bind(&zwlr_data_control_manager_v1_interface, 2, &m_managerName);
    }
    if (!m_manager)
        return;
    m_version = wl_proxy_get_version(m_manager);
    m_device = wl_proxy_marshal_flags(m_manager, EXT_DATA_CONTROL_MANAGER_V1_GET_DATA_DEVICE,
        m_interfaces[Interface::Device], m_version, 0, nullptr, m_globals.seat());
    static const DeviceListener deviceListener
        = {&WaylandDataControl::dataOffer, &WaylandDataControl::selection,
            &WaylandDataControl::finished, &WaylandDataControl::primarySelection};
    listen(m_device, deviceListener, this);
    m_globals.flush();
    qCInfo(lcCapture, "Data control through %s version %u", m_interfaces[Interface::Manager]->name,
        m_version);
}

void WaylandDataControl::release()
{
    const bool hadClipboard = m_clipboard != nullptr;
    for (Source *source : std::as_const(m_sources)) {
        destroy(source->proxy, EXT_DATA_CONTROL_SOURCE_V1_DESTROY);
        delete source;
    }
    m_sources.clear();
    for (auto it = m_offers.cbegin(); it != m_offers.cend(); ++it)
        destroy(it.key(), EXT_DATA_CONTROL_OFFER_V1_DESTROY);
    m_offers.clear();
    m_clipboard = nullptr;
    m_primary = nullptr;
    if (m_device)
        destroy(m_device, EXT_DATA_CONTROL_DEVICE_V1_DESTROY);
    if (m_manager)
        destroy(m_manager, EXT_DATA_CONTROL_MANAGER_V1_DESTROY);
    m_device = nullptr;
    m_manager = nullptr;
    m_managerName = 0;
    m_globals.flush();
    if (hadClipboard) {
        ++m_clipboardChanges;
        Q_EMIT clipboardChanged();
    }
}

bool WaylandDataControl::hasPrimarySelection() const
{
    return m_device
        && (m_interfaces == extInterfaces
            || m_version >= ZWLR_DATA_CONTROL_DEVICE_V1_PRIMARY_SELECTION_SINCE_VERSION);
}

QStringList WaylandDataControl::formats(Selection selection) const
{
    wl_proxy *offer = selection == Selection::Clipboard ? m_clipboard : m_primary;
    return offer ? m_offers.value(offer) : QStringList();
}

bool WaylandDataControl::isOwned(Selection selection) const
{
    return (selection == Selection::Clipboard ? m_clipboard : m_primary) != nullptr;
}

QString WaylandDataControl::textFormat(const QStringList &formats)
{
    for (const QString &format : textFormats) {
        if (formats.contains(format))
            return format;
    }
    for (const QString &format : formats) {
        if (format.startsWith(QLatin1String("text/plain")))
            return format;
    }
    return {};
}

void WaylandDataControl::read(
    Selection selection, const QString &format, Read done, qsizetype cap, int timeoutMilliseconds)
{
    wl_proxy *offer = selection == Selection::Clipboard ? m_clipboard : m_primary;
    int fds[2];
    if (!offer || ::pipe2(fds, O_CLOEXEC) != 0) {
        done(std::nullopt);
        return;
    }
    wl_proxy_marshal_flags(offer, EXT_DATA_CONTROL_OFFER_V1_RECEIVE, nullptr,
        wl_proxy_get_version(offer), 0, format.toUtf8().constData(), fds[1]);
    m_globals.flush();
    ::close(fds[1]); // the owner holds its own copy now
    WaylandPipeReader::read(fds[0], cap, timeoutMilliseconds, std::move(done), this);
}

void WaylandDataControl::setClipboard(const QMap<QString, QByteArray> &formats)
{
    if (!m_device)
        return;
    wl_proxy *proxy = nullptr;
    if (!formats.isEmpty()) {
        proxy = wl_proxy_marshal_flags(m_manager, EXT_DATA_CONTROL_MANAGER_V1_CREATE_DATA_SOURCE,
            m_interfaces[Interface::Source], m_version, 0, nullptr);
        static const SourceListener sourceListener
            = {&WaylandDataControl::sendFormat, &WaylandDataControl::cancelled};
        listen(proxy, sourceListener, this);
        for (auto it = formats.cbegin(); it != formats.cend(); ++it) {
            wl_proxy_marshal_flags(proxy, EXT_DATA_CONTROL_SOURCE_V1_OFFER, nullptr,
                wl_proxy_get_version(proxy), 0, it.key().toUtf8().constData());
        }
        m_sources.append(new Source {proxy, formats});
    }
    wl_proxy_marshal_flags(m_device, EXT_DATA_CONTROL_DEVICE_V1_SET_SELECTION, nullptr,
        wl_proxy_get_version(m_device), 0, proxy);
    m_globals.flush();
}

void WaylandDataControl::dataOffer(void *data, wl_proxy *, wl_proxy *offer)
{
    auto *self = static_cast<WaylandDataControl *>(data);
    static const OfferListener offerListener = {&WaylandDataControl::offerFormat};
    listen(offer, offerListener, self);
    self->m_offers.insert(offer, {});
}

void WaylandDataControl::offerFormat(void *data, wl_proxy *offer, const char *format)
{
    auto *self = static_cast<WaylandDataControl *>(data);
    const auto found = self->m_offers.find(offer);
    if (found != self->m_offers.end())
        found->append(QString::fromUtf8(format));
}

void WaylandDataControl::setOffer(wl_proxy *&slot, wl_proxy *offer)
{
    wl_proxy *previous = slot;
    slot = offer;
    if (previous && previous != offer && previous != m_clipboard && previous != m_primary)
        dropOffer(previous);
}

void WaylandDataControl::dropOffer(wl_proxy *offer)
{
    if (m_offers.remove(offer))
        destroy(offer, EXT_DATA_CONTROL_OFFER_V1_DESTROY);
}

void WaylandDataControl::selection(void *data, wl_proxy *, wl_proxy *offer)
{
    auto *self = static_cast<WaylandDataControl *>(data);
    self->setOffer(self->m_clipboard, offer);
    ++self->m_clipboardChanges;
    Q_EMIT self->clipboardChanged();
}

void WaylandDataControl::primarySelection(void *data, wl_proxy *, wl_proxy *offer)
{
    auto *self = static_cast<WaylandDataControl *>(data);
    self->setOffer(self->m_primary, offer);
}

void WaylandDataControl::finished(void *data, wl_proxy *)
{
    auto *self = static_cast<WaylandDataControl *>(data);
    qCInfo(lcCapture, "The compositor ended data control");
    // Deferred: the device may not be destroyed inside its own event.
    QTimer::singleShot(0, self, [self] { self->release(); });
}

void WaylandDataControl::sendFormat(void *data, wl_proxy *proxy, const char *format, qint32 fd)
{
    auto *self = static_cast<WaylandDataControl *>(data);
    for (const Source *source : std::as_const(self->m_sources)) {
        if (source->proxy == proxy) {
            writeInto(fd, source->formats.value(QString::fromUtf8(format)));
            return;
        }
    }
    ::close(fd);
}

void WaylandDataControl::cancelled(void *data, wl_proxy *proxy)
{
    auto *self = static_cast<WaylandDataControl *>(data);
    for (qsizetype i = 0; i < self->m_sources.size(); ++i) {
        if (self->m_sources.at(i)->proxy == proxy) {
            delete self->m_sources.takeAt(i);
            destroy(proxy, EXT_DATA_CONTROL_SOURCE_V1_DESTROY);
            return;
        }
    }
}

} // namespace Vesko
