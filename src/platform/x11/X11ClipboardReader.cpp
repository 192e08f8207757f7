// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/x11/X11ClipboardReader.h"

#include "platform/x11/X11Connection.h"
#include "platform/x11/X11SelectionConverter.h"

#include <QPointer>

#include <cstdlib>

namespace Vesko {

X11ClipboardReader::X11ClipboardReader(QObject *parent)
    : QObject(parent)
    , m_connection(std::make_unique<X11Connection>())
{
    if (!m_connection->isValid())
        return;
    m_converter = std::make_unique<X11SelectionConverter>(*m_connection);
    m_connection->setEventHandler(
        [this](xcb_generic_event_t *event) { m_converter->handleEvent(event); });

    // Both names asked for at once, then the answers taken.
    xcb_connection_t *c = m_connection->get();
    const QList<QByteArray> names {"CLIPBOARD", "TARGETS"};
    QList<xcb_intern_atom_cookie_t> cookies;
    for (const QByteArray &name : names)
        cookies.append(xcb_intern_atom(c, 0, uint16_t(name.size()), name.constData()));
    for (qsizetype i = 0; i < names.size(); ++i) {
        xcb_intern_atom_reply_t *reply = xcb_intern_atom_reply(c, cookies.at(i), nullptr);
        const xcb_atom_t atom = reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
        std::free(reply);
        m_atoms.insert(QString::fromLatin1(names.at(i)), atom);
        m_names.insert(atom, QString::fromLatin1(names.at(i)));
    }
    m_clipboard = m_atoms.value(QStringLiteral("CLIPBOARD"));
    m_targets = m_atoms.value(QStringLiteral("TARGETS"));
}

// Reads still waiting end without an answer: whoever asked goes too.
X11ClipboardReader::~X11ClipboardReader() = default;

bool X11ClipboardReader::isValid() const
{
    return m_converter != nullptr;
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
    m_converter->convert(m_clipboard, m_targets, m_timeout,
        [guard, done = std::move(done)](const X11SelectionConverter::Result &result) {
            QStringList formats;
            const std::optional<X11SelectionConverter::Answer> &answer = result.answer;
            // A list of atoms, as asked; anything else is no answer.
            if (guard && answer
                && (answer->type == XCB_ATOM_ATOM || answer->type == guard->m_targets)) {
                const auto *atoms = reinterpret_cast<const xcb_atom_t *>(answer->bytes.constData());
                const qsizetype count = std::min<qsizetype>(
                    answer->bytes.size() / qsizetype(sizeof(xcb_atom_t)), maximumOffers);
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
    m_converter->convert(m_clipboard, atom(format), m_timeout,
        [done = std::move(done)](const X11SelectionConverter::Result &result) {
            done(result.answer ? std::optional(result.answer->bytes) : std::nullopt);
        });
}

} // namespace Vesko
