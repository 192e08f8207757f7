// SPDX-License-Identifier: GPL-3.0-or-later
//
// The seat's clipboard and primary selection through data control:
// ext_data_control_manager_v1 where the compositor offers it, else
// zwlr_data_control_manager_v1 (version 2 for the primary selection). Both
// speak the same requests and events in the same order, so one client
// serves both. Offers are read through a pipe on the event loop, capped and
// bounded in time; what Vesko puts on the clipboard is served the same way,
// and a reader that leaves early costs a failed write, not the program
// (SIGPIPE is ignored from the first data control on).

#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QMap>
#include <QObject>
#include <QStringList>

#include <functional>
#include <optional>

struct wl_proxy;
struct wl_interface;

namespace Vesko {

class WaylandGlobals;

class WaylandDataControl : public QObject
{
    Q_OBJECT

public:
    enum class Selection { Clipboard, Primary };

    //! The most a format may weigh: a larger one is not read.
    static constexpr qsizetype capBytes = 32 * 1024 * 1024;
    //! How long a selection's owner may take to send a format.
    static constexpr int readTimeoutMilliseconds = 500;

    explicit WaylandDataControl(WaylandGlobals &globals, QObject *parent = nullptr);
    ~WaylandDataControl() override;

    //! The compositor offers data control, and a seat.
    bool isAvailable() const { return m_device != nullptr; }
    //! The primary selection can be read too.
    bool hasPrimarySelection() const;

    //! The formats (MIME types) the selection's owner offers; none when it is empty.
    QStringList formats(Selection selection) const;
    //! Whether the selection has an owner at all.
    bool isOwned(Selection selection) const;
    //! Raised by every new clipboard, whoever set it.
    quint64 clipboardChanges() const { return m_clipboardChanges; }

    using Read = std::function<void(std::optional<QByteArray>)>;
    //! Hands \a done the bytes of \a format, later on the event loop; nothing
    //! when the selection is empty or its owner does not send the format whole,
    //! at most \a cap bytes, within \a timeoutMilliseconds.
    void read(Selection selection, const QString &format, Read done, qsizetype cap = capBytes,
        int timeoutMilliseconds = readTimeoutMilliseconds);
    //! The format that holds text, the richest first, or empty.
    static QString textFormat(const QStringList &formats);

    //! Makes Vesko own the clipboard with \a formats; empty formats empty it.
    void setClipboard(const QMap<QString, QByteArray> &formats);

Q_SIGNALS:
    void clipboardChanged();

private:
    struct Source;

    void bindManager();
    void release();

    static void dataOffer(void *data, wl_proxy *device, wl_proxy *offer);
    static void selection(void *data, wl_proxy *device, wl_proxy *offer);
    static void finished(void *data, wl_proxy *device);
    static void primarySelection(void *data, wl_proxy *device, wl_proxy *offer);
    static void offerFormat(void *data, wl_proxy *offer, const char *format);
    static void sendFormat(void *data, wl_proxy *source, const char *format, qint32 fd);
    static void cancelled(void *data, wl_proxy *source);

    void setOffer(wl_proxy *&slot, wl_proxy *offer);
    void dropOffer(wl_proxy *offer);

    WaylandGlobals &m_globals;
    //! The interfaces of the protocol bound: ext or wlr.
    const wl_interface *const *m_interfaces = nullptr;
    wl_proxy *m_manager = nullptr;
    quint32 m_managerName = 0;
    quint32 m_version = 0;
    wl_proxy *m_device = nullptr;
    //! Every offer alive, with the formats it announced.
    QHash<wl_proxy *, QStringList> m_offers;
    wl_proxy *m_clipboard = nullptr;
    wl_proxy *m_primary = nullptr;
    quint64 m_clipboardChanges = 0;
    QList<Source *> m_sources;
};

} // namespace Vesko
