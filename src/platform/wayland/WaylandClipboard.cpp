// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/wayland/WaylandClipboard.h"

#include "platform/Logging.h"
#include "platform/wayland/WaylandDataControl.h"

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

void WaylandClipboard::requestSnapshot(std::function<void(std::optional<Snapshot>)> done)
{
    const QStringList formats = m_dataControl.formats(Selection::Clipboard);
    if (formats.isEmpty()) {
        done(Snapshot {}); // an empty clipboard, put back as empty
        return;
    }
    // Every format asked for at once; the answer once the last is in.
    struct Gathering
    {
        qsizetype waiting;
        bool whole = true;
        QMap<QString, QByteArray> item;
        std::function<void(std::optional<Snapshot>)> done;
    };
    auto gathering
        = std::make_shared<Gathering>(Gathering {formats.size(), true, {}, std::move(done)});
    for (const QString &format : formats) {
        m_dataControl.read(
            Selection::Clipboard, format, [gathering, format](std::optional<QByteArray> bytes) {
                if (bytes) {
                    if (!bytes->isEmpty()) // an empty answer is a refusal
                        gathering->item.insert(format, *bytes);
                } else {
                    gathering->whole = false;
                }
                if (--gathering->waiting > 0)
                    return;
                if (!gathering->whole) {
                    qCInfo(lcCapture, "The clipboard's owner did not send every format in time");
                    gathering->done(std::nullopt);
                } else {
                    gathering->done(Snapshot {gathering->item});
                }
            });
    }
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
