// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/qt/QtDesktopFiles.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDesktopServices>
#include <QFileInfo>
#include <QUrl>

namespace Vesko {

QtDesktopFiles::QtDesktopFiles(QObject *parent)
    : QObject(parent)
{ }

QtDesktopFiles::~QtDesktopFiles() = default;

QtDesktopFiles &QtDesktopFiles::shared()
{
    static QtDesktopFiles *const files = new QtDesktopFiles;
    return *files;
}

void QtDesktopFiles::open(const QString &path)
{
    QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}

void QtDesktopFiles::openFolderOf(const QString &path)
{
    QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(path).absolutePath()));
    Q_EMIT revealHandled(path, false);
}

void QtDesktopFiles::reveal(const QString &path)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        openFolderOf(path);
        return;
    }
    QDBusMessage call
        = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.FileManager1"),
            QStringLiteral("/org/freedesktop/FileManager1"),
            QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    call << QStringList {QUrl::fromLocalFile(path).toString(QUrl::FullyEncoded)} << QString();
    auto *watcher
        = new QDBusPendingCallWatcher(bus.asyncCall(call, revealTimeoutMilliseconds), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
        [this, path](QDBusPendingCallWatcher *w) {
            // No file manager on the bus, or it failed: the folder at least.
            if (w->isError())
                openFolderOf(path);
            else
                Q_EMIT revealHandled(path, true);
            w->deleteLater();
        });
}

} // namespace Vesko
