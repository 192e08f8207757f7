// SPDX-License-Identifier: GPL-3.0-or-later
//
// The primary selection as the compositor offers it to the client with the
// keyboard focus (zwp_primary_selection_device_manager_v1), through a device
// of Vesko's own on Qt's wl_display: where no data control lets Vesko read
// another client's selection (GNOME), this is how it is read. The text is
// read through a pipe on the event loop, capped and bounded in time, so that
// an owner that never sends, or never stops, costs the panel nothing.

#pragma once

#include <QHash>
#include <QObject>
#include <QStringList>

#include <functional>
#include <optional>

struct zwp_primary_selection_device_manager_v1;
struct zwp_primary_selection_device_v1;
struct zwp_primary_selection_offer_v1;

namespace Vesko {

class WaylandGlobals;

class WaylandPrimarySelection : public QObject
{
    Q_OBJECT

public:
    //! The most the text may weigh: a larger selection is not read.
    static constexpr qsizetype capBytes = 32 * 1024 * 1024;
    //! How long the selection's owner may take to send it whole.
    static constexpr int readTimeoutMilliseconds = 500;

    explicit WaylandPrimarySelection(WaylandGlobals &globals, QObject *parent = nullptr);
    ~WaylandPrimarySelection() override;

    //! The compositor offers the primary selection protocol, and a seat.
    bool isAvailable() const { return m_device != nullptr; }
    //! The formats of the selection last offered; none when it is empty.
    QStringList formats() const;

    //! Hands \a done the text of the selection last offered, later on the
    //! event loop; nothing when there is none, it holds no text, or its owner
    //! does not send it whole within the bounds.
    void readText(std::function<void(std::optional<QString>)> done);

Q_SIGNALS:
    //! The compositor offered a selection, or said there is none: it does so
    //! as Vesko takes the keyboard focus, and while it has it.
    void offered();

private:
    void bind();
    void release();
    void dropOffers();

    static void dataOffer(
        void *data, zwp_primary_selection_device_v1 *device, zwp_primary_selection_offer_v1 *offer);
    static void selection(
        void *data, zwp_primary_selection_device_v1 *device, zwp_primary_selection_offer_v1 *offer);
    static void offerFormat(void *data, zwp_primary_selection_offer_v1 *offer, const char *format);

    WaylandGlobals &m_globals;
    zwp_primary_selection_device_manager_v1 *m_manager = nullptr;
    quint32 m_managerName = 0;
    zwp_primary_selection_device_v1 *m_device = nullptr;
    //! Every offer alive, with the formats it announced: the selection, and
    //! those announced for a selection that has not come yet.
    QHash<zwp_primary_selection_offer_v1 *, QStringList> m_offers;
    zwp_primary_selection_offer_v1 *m_offer = nullptr;
};

} // namespace Vesko
