// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/qt/QtClipboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QThread>

namespace Vesko {

namespace {

QClipboard *clipboard()
{
    Q_ASSERT(QThread::currentThread() == QCoreApplication::instance()->thread());
    return QGuiApplication::clipboard();
}

} // namespace

QtClipboard::QtClipboard()
{
    // On X11 Qt learns of other clients' changes through XFixes.
    m_changes
        = QObject::connect(clipboard(), &QClipboard::dataChanged, [this] { ++m_changeCount; });
}

QtClipboard::~QtClipboard()
{
    QObject::disconnect(m_changes);
}

void QtClipboard::requestText(std::function<void(std::optional<QString>)> done)
{
    done(textNow());
}

std::optional<QString> QtClipboard::textNow()
{
    const QMimeData *data = clipboard()->mimeData(QClipboard::Clipboard);
    if (!data || !data->hasText())
        return std::nullopt;
    return data->text();
}

void QtClipboard::setText(const QString &text)
{
    clipboard()->setText(text, QClipboard::Clipboard);
}

void QtClipboard::requestSnapshot(std::function<void(std::optional<Snapshot>)> done)
{
    done(snapshotNow());
}

Clipboard::Snapshot QtClipboard::snapshotNow()
{
    const QMimeData *data = clipboard()->mimeData(QClipboard::Clipboard);
    if (!data)
        return {};
    QMap<QString, QByteArray> formats;
    for (const QString &format : data->formats()) {
        const QByteArray bytes = data->data(format);
        if (!bytes.isNull())
            formats.insert(format, bytes);
    }
    if (formats.isEmpty())
        return {};
    return {formats};
}

void QtClipboard::restore(const Snapshot &items)
{
    clipboard()->clear(QClipboard::Clipboard);
    if (items.isEmpty())
        return;
    // The clipboard of a desktop session holds one item: the first is put back.
    auto *data = new QMimeData;
    const QMap<QString, QByteArray> &formats = items.first();
    for (auto it = formats.cbegin(); it != formats.cend(); ++it)
        data->setData(it.key(), it.value());
    clipboard()->setMimeData(data, QClipboard::Clipboard);
}

} // namespace Vesko
