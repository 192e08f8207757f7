// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/wayland/WaylandClipboard.h"

#include "platform/Logging.h"
#include "platform/wayland/WaylandDataControl.h"

#include <QDeadlineTimer>

#include <algorithm>
#include <memory>

namespace Vesko {

using Selection = WaylandDataControl::Selection;

WaylandClipboard::WaylandClipboard(WaylandDataControl &dataControl)
    : m_dataControl(dataControl)
{ }

void WaylandClipboard::setText(const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    QMap<QString, QByteArray> formats;
    for (const char *format :
        {"text/plain;charset=utf-8", "text/plain", "UTF8_STRING", "TEXT", "STRING"})
        formats.insert(QLatin1String(format), bytes);
    m_dataControl.setClipboard(formats);
}

struct WaylandClipboard::Gathering
{
    QStringList formats;
    QMap<QString, QByteArray> item;
    qsizetype total = 0;
    QDeadlineTimer deadline;
    std::function<void(std::optional<Snapshot>)> done;
};

void WaylandClipboard::requestSnapshot(std::function<void(std::optional<Snapshot>)> done)
{
    const QStringList formats = m_dataControl.formats(Selection::Clipboard);
    if (formats.isEmpty()) {
        done(Snapshot {}); // an empty clipboard, put back as empty
        return;
    }
    if (formats.size() > maximumFormats) {
        qCInfo(lcCapture, "The clipboard's owner offers %lld formats: too many to keep",
            qlonglong(formats.size()));
        done(std::nullopt);
        return;
    }
    // One format at a time, each within what is left of the bytes and the
    // time: one pipe open at once, and never more than the bound in memory.
    auto gathering = std::make_shared<Gathering>(Gathering {formats, {}, 0,
        QDeadlineTimer(snapshotTimeoutMilliseconds), std::move(done)});
    readNext(m_dataControl, std::move(gathering));
}

void WaylandClipboard::readNext(WaylandDataControl &dataControl, std::shared_ptr<Gathering> gathering)
{
    if (gathering->formats.isEmpty()) {
        gathering->done(Snapshot {gathering->item});
        return;
    }
    const int timeLeft = int(gathering->deadline.remainingTime());
    const qsizetype bytesLeft = maximumSize - gathering->total;
    if (timeLeft <= 0 || bytesLeft <= 0) {
        qCInfo(lcCapture, "The clipboard could not be read whole within %d ms and %lld bytes",
            snapshotTimeoutMilliseconds, qlonglong(maximumSize));
        gathering->done(std::nullopt);
        return;
    }
    const QString format = gathering->formats.takeFirst();
    // The answer comes while the data control lives, whatever became of this.
    WaylandDataControl *reader = &dataControl;
    dataControl.read(
        Selection::Clipboard, format,
        [reader, gathering, format](std::optional<QByteArray> bytes) {
            if (!bytes) {
                qCInfo(lcCapture, "The clipboard's owner did not send every format whole");
                gathering->done(std::nullopt);
                return;
            }
            if (!bytes->isEmpty()) { // an empty answer is a refusal
                gathering->total += bytes->size();
                gathering->item.insert(format, *bytes);
            }
            readNext(*reader, gathering);
        },
        std::min(bytesLeft, WaylandDataControl::capBytes),
        std::min(timeLeft, WaylandDataControl::readTimeoutMilliseconds));
}

void WaylandClipboard::restore(const Snapshot &items)
{
    m_dataControl.setClipboard(items.value(0));
}

quint64 WaylandClipboard::changeCount() const
{
    return m_dataControl.clipboardChanges();
}

void WaylandClipboard::requestText(std::function<void(std::optional<QString>)> done)
{
    const QString format
        = WaylandDataControl::textFormat(m_dataControl.formats(Selection::Clipboard));
    if (format.isEmpty()) {
        done(std::nullopt);
        return;
    }
    m_dataControl.read(
        Selection::Clipboard, format, [done = std::move(done)](std::optional<QByteArray> bytes) {
            if (bytes)
                done(QString::fromUtf8(*bytes));
            else
                done(std::nullopt);
        });
}

} // namespace Vesko
