// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/qt/QtDesktopFiles.h"

#include "platform/SerialQueue.h"
#include "platform/qt/MimeApplications.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDesktopServices>
#include <QFileInfo>
#include <QPointer>
#include <QUrl>

namespace Vesko {

namespace {

//! In a sandbox the desktop's portal chooses the application itself.
bool portalChooses()
{
    return QFileInfo::exists(QStringLiteral("/.flatpak-info"))
        || !qEnvironmentVariableIsEmpty("SNAP");
}

} // namespace

QtDesktopFiles::QtDesktopFiles(QObject *parent)
    : QObject(parent)
{ }

QtDesktopFiles::~QtDesktopFiles() = default;

QtDesktopFiles &QtDesktopFiles::shared()
{
    static QtDesktopFiles *const files = new QtDesktopFiles;
    return *files;
}

void QtDesktopFiles::open(const QString &path, Unhandled unhandled)
{
    openWhenTaken(path, false, {}, std::move(unhandled));
}

void QtDesktopFiles::openWhenTaken(
    const QString &path, bool folder, std::function<void()> opened, Unhandled unhandled)
{
    const QString target = folder ? QFileInfo(path).absolutePath() : path;
    auto hand = [target, opened, unhandled](bool taken) {
        if (taken && QDesktopServices::openUrl(QUrl::fromLocalFile(target))) {
            if (opened)
                opened();
        } else if (unhandled) {
            unhandled();
        }
    };
    if (portalChooses()) {
        hand(true);
        return;
    }
    if (!m_lookups)
        m_lookups = std::make_unique<SerialQueue>(QStringLiteral("vesko-desktop-files"));
    QPointer<QtDesktopFiles> self(this);
    m_lookups->async([self, target, folder, hand] {
        const QStringList types = folder ? QStringList {QStringLiteral("inode/directory")}
                                         : MimeApplications::typesOf(target);
        const bool taken = MimeApplications::hasApplicationFor(types);
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [self, hand, taken] {
                if (self)
                    hand(taken);
            },
            Qt::QueuedConnection);
    });
}

void QtDesktopFiles::reveal(const QString &path, Unhandled unhandled)
{
    auto openFolder = [this, path, unhandled] {
        QPointer<QtDesktopFiles> self(this);
        openWhenTaken(
            path, true,
            [self, path] {
                if (self)
                    Q_EMIT self->revealHandled(path, false);
            },
            unhandled);
    };
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        openFolder();
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
        [this, path, openFolder](QDBusPendingCallWatcher *w) {
            // No file manager on the bus, or it failed: the folder at least.
            if (w->isError())
                openFolder();
            else
                Q_EMIT revealHandled(path, true);
            w->deleteLater();
        });
}

} // namespace Vesko
