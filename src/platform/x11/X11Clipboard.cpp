// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/x11/X11Clipboard.h"

#include "platform/Logging.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11SelectionConverter.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QPointer>

#include <cstdlib>

namespace Vesko {

namespace {

//! Targets about the selection itself, or handles that mean nothing elsewhere.
const QByteArrayList describingTargets
    = {"TARGETS", "MULTIPLE", "TIMESTAMP", "SAVE_TARGETS", "DELETE", "INSERT_SELECTION",
        "INSERT_PROPERTY", "LENGTH", "PIXMAP", "BITMAP", "DRAWABLE", "COLORMAP", "ATOM_PAIR"};

//! The text targets, best first; the first offered is kept as "text/plain".
const QByteArrayList textTargets = {"UTF8_STRING", "STRING", "TEXT"};

//! The format a target is kept under: "text/plain" for the text targets,
//! else the target's own name; empty for targets that describe the
//! selection rather than hold its content.
QString formatOfTarget(const QByteArray &targetName)
{
    if (targetName.isEmpty() || describingTargets.contains(targetName))
        return {};
    if (textTargets.contains(targetName))
        return QStringLiteral("text/plain");
    return QString::fromLatin1(targetName);
}

} // namespace

//! One snapshot under way: the formats still to read, in order, and what came.
struct X11Clipboard::Reading
{
    QList<QPair<QString, xcb_atom_t>> pending;
    QMap<QString, QByteArray> formats;
    std::function<void(Snapshot)> done;
};

X11Clipboard::X11Clipboard()
{
    if (QGuiApplication::platformName() != QLatin1String("xcb"))
        return;
    m_connection = std::make_unique<X11Connection>();
    if (!m_connection->isValid()) {
        m_connection.reset();
        return;
    }
    m_converter = std::make_unique<X11SelectionConverter>(*m_connection);
    m_clipboard = m_connection->atom("CLIPBOARD");
    m_connection->setEventHandler(
        [this](xcb_generic_event_t *event) { m_converter->handleEvent(event); });
}

X11Clipboard::~X11Clipboard() = default;

bool X11Clipboard::readsFromOwner()
{
    return m_converter && !QGuiApplication::clipboard()->ownsClipboard();
}

void X11Clipboard::requestText(std::function<void(std::optional<QString>)> done)
{
    if (!readsFromOwner()) {
        QtClipboard::requestText(std::move(done));
        return;
    }
    m_converter->readText(m_clipboard, answerTimeoutMilliseconds, std::move(done));
}

void X11Clipboard::requestSnapshot(std::function<void(Snapshot)> done)
{
    if (!readsFromOwner()) {
        QtClipboard::requestSnapshot(std::move(done));
        return;
    }
    auto reading = std::make_shared<Reading>();
    reading->done = std::move(done);
    const xcb_atom_t targets = m_connection->atom("TARGETS");
    QPointer<X11SelectionConverter> converter(m_converter.get());
    m_converter->convert(m_clipboard, targets, answerTimeoutMilliseconds,
        [this, converter, reading](X11SelectionConverter::Result result) {
            const std::optional<X11SelectionConverter::Answer> &answer = result.answer;
            if (!converter || !answer || answer->bytes.size() % 4 != 0) {
                reading->done({});
                return;
            }
            // The names of the offered targets, asked together.
            xcb_connection_t *c = m_connection->get();
            const qsizetype count = answer->bytes.size() / 4;
            const auto *atoms = reinterpret_cast<const xcb_atom_t *>(answer->bytes.constData());
            QList<xcb_get_atom_name_cookie_t> cookies;
            for (qsizetype i = 0; i < count; ++i)
                cookies.append(xcb_get_atom_name(c, atoms[i]));
            QMap<QString, xcb_atom_t> chosen;
            int textRank = int(textTargets.size());
            for (qsizetype i = 0; i < count; ++i) {
                xcb_get_atom_name_reply_t *name = xcb_get_atom_name_reply(c, cookies[i], nullptr);
                if (!name)
                    continue;
                const QByteArray target(
                    xcb_get_atom_name_name(name), xcb_get_atom_name_name_length(name));
                std::free(name);
                const QString format = formatOfTarget(target);
                if (format.isEmpty())
                    continue;
                const int rank = int(textTargets.indexOf(target));
                if (rank >= 0) {
                    if (rank < textRank) {
                        textRank = rank;
                        chosen.insert(format, atoms[i]);
                    }
                } else if (!chosen.contains(format)) {
                    chosen.insert(format, atoms[i]);
                }
            }
            for (auto it = chosen.cbegin(); it != chosen.cend(); ++it)
                reading->pending.append({it.key(), it.value()});
            readNext(reading);
        });
}

void X11Clipboard::readNext(const std::shared_ptr<Reading> &reading)
{
    if (reading->pending.isEmpty() || !m_converter) {
        reading->done(reading->formats.isEmpty() ? Snapshot {} : Snapshot {reading->formats});
        return;
    }
    const auto next = reading->pending.takeFirst();
    const QString format = next.first;
    m_converter->convert(m_clipboard, next.second, answerTimeoutMilliseconds,
        [this, reading, format](X11SelectionConverter::Result result) {
            const std::optional<X11SelectionConverter::Answer> &answer = result.answer;
            if (result.isSilent) {
                // An owner that keeps silent is asked nothing more: what came is the snapshot.
                qCInfo(lcCapture, "The clipboard's owner did not send %s", qUtf8Printable(format));
                reading->pending.clear();
            } else if (!answer) {
                // Refused: the other formats may still come.
            } else if (answer->type == XCB_ATOM_STRING) {
                reading->formats.insert(format, QString::fromLatin1(answer->bytes).toUtf8());
            } else {
                reading->formats.insert(format, answer->bytes);
            }
            readNext(reading);
        });
}

} // namespace Vesko
