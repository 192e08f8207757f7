// SPDX-License-Identifier: GPL-3.0-or-later
//
// Reads the CLIPBOARD selection of the X server without waiting for its
// owner, for pasting files and images: the formats on offer (TARGETS, their
// names looked up together and remembered) and the data in one format.
// The conversations themselves are X11SelectionConverter's, on a connection
// of Vesko's own, so a late answer to a read given up on is never taken for
// the answer to the next one.

#pragma once

#include <QByteArray>
#include <QHash>
#include <QObject>
#include <QStringList>

#include <xcb/xcb.h>

#include <functional>
#include <memory>
#include <optional>

namespace Vesko {

class X11Connection;
class X11SelectionConverter;

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
    void setSilenceTimeout(int milliseconds) { m_timeout = milliseconds; }

    using Done = std::function<void(const std::optional<QByteArray> &data)>;
    //! The formats the clipboard's owner offers; empty without an owner.
    void offers(std::function<void(const QStringList &formats)> done);
    //! The clipboard's data in \a format, or nothing when the owner refuses,
    //! has gone, or stays silent too long. Reads run one after another.
    void read(const QString &format, Done done);

private:
    //! The atom of \a name, from what is known or else from the server.
    xcb_atom_t atom(const QString &name);
    //! The names of \a atoms in their order; those not known yet are asked
    //! for all at once, and remembered.
    QStringList atomNames(const QList<xcb_atom_t> &atoms);

    std::unique_ptr<X11Connection> m_connection;
    std::unique_ptr<X11SelectionConverter> m_converter;
    xcb_atom_t m_clipboard = XCB_ATOM_NONE;
    xcb_atom_t m_targets = XCB_ATOM_NONE;
    int m_timeout = silenceTimeoutMilliseconds;
    QHash<xcb_atom_t, QString> m_names;
    QHash<QString, xcb_atom_t> m_atoms;
};

} // namespace Vesko
