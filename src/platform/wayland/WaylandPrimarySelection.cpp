// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/wayland/WaylandPrimarySelection.h"

#include "platform/Logging.h"
#include "platform/wayland/WaylandDataControl.h"
#include "platform/wayland/WaylandGlobals.h"
#include "platform/wayland/WaylandPipeReader.h"

#include "primary-selection-unstable-v1-client-protocol.h"

#include <wayland-client.h>

#include <fcntl.h>
#include <unistd.h>

namespace Vesko {

WaylandPrimarySelection::WaylandPrimarySelection(WaylandGlobals &globals, QObject *parent)
    : QObject(parent)
    , m_globals(globals)
{
    bind();
    connect(&globals, &WaylandGlobals::announced, this, [this] {
        if (!m_device)
            bind();
    });
    connect(&globals, &WaylandGlobals::withdrawn, this, [this](quint32 name) {
        if (name == m_managerName || name == m_globals.seatName())
            release();
    });
}

WaylandPrimarySelection::~WaylandPrimarySelection()
{
    release();
}

void WaylandPrimarySelection::bind()
{
    release();
    if (!m_globals.seat())
        return;
    m_manager = reinterpret_cast<zwp_primary_selection_device_manager_v1 *>(
        m_globals.bind(&zwp_primary_selection_device_manager_v1_interface, 1, &m_managerName));
    if (!m_manager)
        return;
    m_device = zwp_primary_selection_device_manager_v1_get_device(m_manager, m_globals.seat());
    static const zwp_primary_selection_device_v1_listener deviceListener
        = {&WaylandPrimarySelection::dataOffer, &WaylandPrimarySelection::selection};
    zwp_primary_selection_device_v1_add_listener(m_device, &deviceListener, this);
    m_globals.flush();
}

void WaylandPrimarySelection::release()
{
    dropOffers();
    if (m_device)
        zwp_primary_selection_device_v1_destroy(m_device);
    if (m_manager)
        zwp_primary_selection_device_manager_v1_destroy(m_manager);
    m_device = nullptr;
    m_manager = nullptr;
    m_managerName = 0;
    m_globals.flush();
}

void WaylandPrimarySelection::dropOffers()
{
    for (auto it = m_offers.cbegin(); it != m_offers.cend(); ++it)
        zwp_primary_selection_offer_v1_destroy(it.key());
    m_offers.clear();
    m_offer = nullptr;
}

QStringList WaylandPrimarySelection::formats() const
{
    return m_offer ? m_offers.value(m_offer) : QStringList();
}

void WaylandPrimarySelection::readText(std::function<void(std::optional<QString>)> done)
{
    const QString format = WaylandDataControl::textFormat(formats());
    int fds[2];
    if (!m_offer || format.isEmpty() || ::pipe2(fds, O_CLOEXEC) != 0) {
        done(std::nullopt);
        return;
    }
    zwp_primary_selection_offer_v1_receive(m_offer, format.toUtf8().constData(), fds[1]);
    m_globals.flush();
    ::close(fds[1]); // the owner holds its own copy now
    WaylandPipeReader::read(
        fds[0], capBytes, readTimeoutMilliseconds,
        [done = std::move(done)](std::optional<QByteArray> bytes) {
            if (bytes)
                done(QString::fromUtf8(*bytes));
            else
                done(std::nullopt);
        },
        this);
}

void WaylandPrimarySelection::dataOffer(
    void *data, zwp_primary_selection_device_v1 *, zwp_primary_selection_offer_v1 *offer)
{
    auto *self = static_cast<WaylandPrimarySelection *>(data);
    static const zwp_primary_selection_offer_v1_listener offerListener
        = {&WaylandPrimarySelection::offerFormat};
    zwp_primary_selection_offer_v1_add_listener(offer, &offerListener, self);
    self->m_offers.insert(offer, {});
}

void WaylandPrimarySelection::offerFormat(
    void *data, zwp_primary_selection_offer_v1 *offer, const char *format)
{
    auto *self = static_cast<WaylandPrimarySelection *>(data);
    const auto found = self->m_offers.find(offer);
    if (found != self->m_offers.end())
        found->append(QString::fromUtf8(format));
}

void WaylandPrimarySelection::selection(
    void *data, zwp_primary_selection_device_v1 *, zwp_primary_selection_offer_v1 *offer)
{
    auto *self = static_cast<WaylandPrimarySelection *>(data);
    // The offer before is over: a read of it under way has its own pipe.
    if (self->m_offer && self->m_offer != offer && self->m_offers.remove(self->m_offer))
        zwp_primary_selection_offer_v1_destroy(self->m_offer);
    self->m_offer = offer && self->m_offers.contains(offer) ? offer : nullptr;
    Q_EMIT self->offered();
}

} // namespace Vesko
