// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/qt/DesktopNotifier.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QGuiApplication>
#include <QVariantMap>

#include <utility>

namespace Vesko {

namespace {

const QString service = QStringLiteral("org.freedesktop.Notifications");
const QString path = QStringLiteral("/org/freedesktop/Notifications");

QDBusMessage notificationCall(const QString &method)
{
    return QDBusMessage::createMethodCall(service, path, service, method);
}

} // namespace

DesktopNotifier::DesktopNotifier(const QString &applicationName, QObject *parent)
    : QObject(parent)
    , m_applicationName(applicationName)
{ }

void DesktopNotifier::notify(
    const QString &summary, const QString &iconName, int expiryMilliseconds)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        Q_EMIT failed(summary, QStringLiteral("no session bus"));
        return;
    }
    QVariantMap hints {
        {QStringLiteral("transient"), true},
        {QStringLiteral("urgency"), QVariant::fromValue(uchar(0))},
    };
    if (!QGuiApplication::desktopFileName().isEmpty())
        hints.insert(QStringLiteral("desktop-entry"), QGuiApplication::desktopFileName());
    const uint replaced = m_shownId;
    QDBusMessage call = notificationCall(QStringLiteral("Notify"));
    call << m_applicationName << replaced << iconName << summary << QString() << QStringList()
         << hints << qint32(expiryMilliseconds);
    const quint64 serial = ++m_calls;
    auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(call, callTimeoutMilliseconds), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
        [this, serial, replaced, summary](QDBusPendingCallWatcher *answer) {
            answer->deleteLater();
            const QDBusPendingReply<uint> reply = *answer;
            const bool latest = serial == m_calls;
            if (reply.isError()) {
                if (latest)
                    Q_EMIT failed(summary, reply.error().message());
                return;
            }
            const uint id = reply.value();
            if (latest) {
                m_shownId = id;
            } else if (id != replaced && id != m_shownId) {
                // Overtaken before its answer came: a new notification that
                // the later one did not replace goes, and the last one wins.
                closeNotification(id);
            }
        });
}

void DesktopNotifier::close()
{
    ++m_calls; // an answer still on its way is overtaken, and closed when it comes
    if (m_shownId != 0)
        closeNotification(std::exchange(m_shownId, 0));
}

void DesktopNotifier::closeNotification(uint id)
{
    QDBusMessage call = notificationCall(QStringLiteral("CloseNotification"));
    call << id;
    QDBusConnection::sessionBus().send(call); // its answer says nothing of use
}

} // namespace Vesko
