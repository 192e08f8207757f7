// SPDX-License-Identifier: GPL-3.0-or-later
//
// Reads the CLIPBOARD selection of the X server without waiting for its
// owner: each read is a conversation of requests and events on a connection
// of Vesko's own, answered later on the main thread. Large data come in
// pieces (INCR). An owner that stops answering ends the read after a bound,
// so the program goes on whatever another application does; its answer, if
// it comes later still, is told apart from the answer to the next read.

#pragma once

#include <QByteArray>
#include <QHash>
#include <QObject>
#include <QQueue>
#include <QStringList>
#include <QTimer>

#include <xcb/xcb.h>

#include <functional>
#include <memory>
#include <optional>

namespace Vesko {

class X11Connection;

class X11ClipboardReader : public QObject
{
    Q_OBJECT

public:
    //! How long an owner may stay silent before the read gives up.
    static constexpr int silenceTimeoutMilliseconds = 3000;
    //! At most this many formats of an owner are looked at.
    static constexpr int maximumOffers = 1024;

    explicit X11ClipboardReader(QObject *parent = nullptr);
    ~X11ClipboardReader() override;

    //! There is an X server to read from.
    bool isValid() const;

    //! Changes the bound on an owner's silence; for tests.
    void setSilenceTimeout(int milliseconds);

    using Done = std::function<void(const std::optional<QByteArray> &data)>;
    //! The formats the clipboard's owner offers; empty without an owner.
    void offers(std::function<void(const QStringList &formats)> done);
    //! The clipboard's data in \a format, or nothing when the owner refuses,
    //! has gone, or stays silent too long. Reads run one after another.
    void read(const QString &format, Done done);

private:
    //! A property's value as the owner set it.
    struct Value
    {
        QByteArray bytes;
        xcb_atom_t type = XCB_ATOM_NONE;
        uint8_t format = 0;
    };
    using Finish = std::function<void(const std::optional<Value> &value)>;
    struct Request
    {
        xcb_atom_t target = XCB_ATOM_NONE;
        //! Where the owner is asked to put its answer: one of several, in
        //! turn, so that a late answer to an earlier request lands elsewhere.
        xcb_atom_t property = XCB_ATOM_NONE;
        Finish finish;
    };

    void enqueue(xcb_atom_t target, Finish finish);
    void startNext();
    void handleEvent(xcb_generic_event_t *event);
    //! Takes \a property's value and deletes it; nothing when it cannot be read.
    std::optional<Value> takeProperty(xcb_atom_t property);
    void finish(const std::optional<Value> &value);
    //! The atom of \a name, from what is known or else from the server.
    xcb_atom_t atom(const QString &name);
    //! The names of \a atoms in their order; those not known yet are asked
    //! for all at once, and remembered.
    QStringList atomNames(const QList<xcb_atom_t> &atoms);
    //! Reads events that a reply may have left waiting in the connection's queue.
    void dispatchSoon();

    std::unique_ptr<X11Connection> m_connection;
    xcb_window_t m_window = 0;
    xcb_atom_t m_clipboard = XCB_ATOM_NONE;
    xcb_atom_t m_incr = XCB_ATOM_NONE;
    xcb_atom_t m_targets = XCB_ATOM_NONE;
    QList<xcb_atom_t> m_properties;
    qsizetype m_nextProperty = 0;
    QHash<xcb_atom_t, QString> m_names;
    QHash<QString, xcb_atom_t> m_atoms;

    QQueue<Request> m_queue;
    std::optional<Request> m_current;
    bool m_incremental = false;
    QByteArray m_received;
    QTimer m_silence;
};

} // namespace Vesko
