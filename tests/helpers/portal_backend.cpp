// SPDX-License-Identifier: GPL-3.0-or-later
//
// portal_backend: a desktop's global-shortcuts backend for the real
// xdg-desktop-portal, on the session bus as com.vesko.TestPortal. It serves
// org.freedesktop.impl.portal.GlobalShortcuts (and the Session objects the
// frontend closes), and takes orders from the test on the same object under
// com.vesko.TestPortal.Control:
//   SetResponse(s step, u response)  the answer to "session" or "bind" (0 = yes,
//                                    99 = no answer at all)
//   Activate(s id [, s token]),      a shortcut's keys going down (with an
//   Deactivate(s id)                 activation token) and up
//   ChangeTrigger(s id, s text)      the user gave the shortcut other keys
//   CloseSessions()                  the desktop ends every session
// A bound shortcut's trigger is described as "Desktop " and the preferred trigger.

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QDateTime>
#include <QHash>
#include <QSet>

#include <cstdio>

namespace {

struct Shortcut
{
    QString id;
    QVariantMap properties;
};

QDBusArgument &operator<<(QDBusArgument &argument, const Shortcut &shortcut)
{
    argument.beginStructure();
    argument << shortcut.id << shortcut.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, Shortcut &shortcut)
{
    argument.beginStructure();
    argument >> shortcut.id >> shortcut.properties;
    argument.endStructure();
    return argument;
}

} // namespace

Q_DECLARE_METATYPE(Shortcut)

namespace {

const QString rootPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString implInterface = QStringLiteral("org.freedesktop.impl.portal.GlobalShortcuts");
const QString sessionInterface = QStringLiteral("org.freedesktop.impl.portal.Session");
const QString controlInterface = QStringLiteral("com.vesko.TestPortal.Control");

class Backend : public QDBusVirtualObject
{
public:
    QString introspect(const QString &path) const override
    {
        if (path != rootPath)
            return QStringLiteral("<interface name=\"%1\"><method name=\"Close\"/>"
                                  "<signal name=\"Closed\"/></interface>")
                .arg(sessionInterface);
        return QStringLiteral(
            "<interface name=\"org.freedesktop.impl.portal.GlobalShortcuts\">"
            "<method name=\"CreateSession\"><arg type=\"o\" direction=\"in\"/>"
            "<arg type=\"o\" direction=\"in\"/><arg type=\"s\" direction=\"in\"/>"
            "<arg type=\"a{sv}\" direction=\"in\"/><arg type=\"u\" direction=\"out\"/>"
            "<arg type=\"a{sv}\" direction=\"out\"/></method>"
            "<method name=\"BindShortcuts\"><arg type=\"o\" direction=\"in\"/>"
            "<arg type=\"o\" direction=\"in\"/><arg type=\"a(sa{sv})\" direction=\"in\"/>"
            "<arg type=\"s\" direction=\"in\"/><arg type=\"a{sv}\" direction=\"in\"/>"
            "<arg type=\"u\" direction=\"out\"/><arg type=\"a{sv}\" direction=\"out\"/></method>"
            "<method name=\"ListShortcuts\"><arg type=\"o\" direction=\"in\"/>"
            "<arg type=\"o\" direction=\"in\"/><arg type=\"u\" direction=\"out\"/>"
            "<arg type=\"a{sv}\" direction=\"out\"/></method>"
            "<property name=\"version\" type=\"u\" access=\"read\"/></interface>");
    }

    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override
    {
        QDBusConnection bus(connection);
        const QString member = message.member();
        const QList<QVariant> in = message.arguments();
        if (message.interface() == u"org.freedesktop.DBus.Properties") {
            if (member == u"GetAll")
                bus.send(message.createReply(
                    QVariant::fromValue(QVariantMap {{QStringLiteral("version"), 1u}})));
            else
                bus.send(message.createReply(QVariant::fromValue(QDBusVariant(1u))));
            return true;
        }
        if (message.interface() == sessionInterface && member == u"Close") {
            m_sessions.remove(message.path());
            bus.send(message.createReply());
            return true;
        }
        if (message.interface() == implInterface && member == u"CreateSession") {
            const QString session = in.value(1).value<QDBusObjectPath>().path();
            if (m_sessionResponse == silent)
                return true;
            if (m_sessionResponse == 0)
                m_sessions.insert(session);
            std::printf(
                "session %s for \"%s\"\n", qPrintable(session), qPrintable(in.value(2).toString()));
            std::fflush(stdout);
            // The frontend reads the session's shortcuts from the results.
            bus.send(message.createReply({m_sessionResponse,
                QVariant::fromValue(QVariantMap {{QStringLiteral("session_handle"), session},
                    {QStringLiteral("shortcuts"), QVariant::fromValue(QList<Shortcut>())}})}));
            return true;
        }
        if (message.interface() == implInterface && member == u"BindShortcuts") {
            if (m_bindResponse == silent)
                return true;
            QList<Shortcut> wanted;
            in.value(2).value<QDBusArgument>() >> wanted;
            QList<Shortcut> bound;
            for (const Shortcut &shortcut : std::as_const(wanted)) {
                const QString trigger
                    = shortcut.properties.value(QStringLiteral("preferred_trigger")).toString();
                bound.append({shortcut.id,
                    {{QStringLiteral("description"),
                         shortcut.properties.value(QStringLiteral("description"))},
                        {QStringLiteral("trigger_description"),
                            QStringLiteral("Desktop ") + trigger}}});
            }
            m_bound = bound;
            bus.send(message.createReply({m_bindResponse,
                QVariant::fromValue(
                    QVariantMap {{QStringLiteral("shortcuts"), QVariant::fromValue(bound)}})}));
            return true;
        }
        if (message.interface() == controlInterface)
            return control(bus, message);
        return false;
    }

private:
    bool control(QDBusConnection &bus, const QDBusMessage &message)
    {
        const QString member = message.member();
        const QList<QVariant> in = message.arguments();
        if (member == u"SetResponse") {
            (in.value(0).toString() == u"session" ? m_sessionResponse : m_bindResponse)
                = in.value(1).toUInt();
        } else if (member == u"Activate" || member == u"Deactivate") {
            QVariantMap options;
            if (!in.value(1).toString().isEmpty())
                options.insert(QStringLiteral("activation_token"), in.value(1).toString());
            for (const QString &session : std::as_const(m_sessions)) {
                QDBusMessage signal = QDBusMessage::createSignal(rootPath, implInterface,
                    member == u"Activate" ? QStringLiteral("Activated")
                                          : QStringLiteral("Deactivated"));
                signal << QVariant::fromValue(QDBusObjectPath(session)) << in.value(0).toString()
                       << quint64(QDateTime::currentMSecsSinceEpoch()) * 1000 << options;
                bus.send(signal);
            }
        } else if (member == u"ChangeTrigger") {
            for (Shortcut &shortcut : m_bound) {
                if (shortcut.id == in.value(0).toString())
                    shortcut.properties.insert(
                        QStringLiteral("trigger_description"), in.value(1).toString());
            }
            for (const QString &session : std::as_const(m_sessions)) {
                QDBusMessage signal = QDBusMessage::createSignal(
                    rootPath, implInterface, QStringLiteral("ShortcutsChanged"));
                signal << QVariant::fromValue(QDBusObjectPath(session))
                       << QVariant::fromValue(m_bound);
                bus.send(signal);
            }
        } else if (member == u"CloseSessions") {
            for (const QString &session : std::as_const(m_sessions))
                bus.send(QDBusMessage::createSignal(
                    session, sessionInterface, QStringLiteral("Closed")));
            m_sessions.clear();
        } else {
            return false;
        }
        bus.send(message.createReply());
        return true;
    }

    static constexpr uint silent = 99;
    uint m_sessionResponse = 0;
    uint m_bindResponse = 0;
    QSet<QString> m_sessions;
    QList<Shortcut> m_bound;
};

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    qDBusRegisterMetaType<Shortcut>();
    qDBusRegisterMetaType<QList<Shortcut>>();
    QDBusConnection bus = QDBusConnection::sessionBus();
    Backend backend;
    if (!bus.registerVirtualObject(rootPath, &backend, QDBusConnection::SubPath)
        || !bus.registerService(QStringLiteral("com.vesko.TestPortal"))) {
        std::fprintf(stderr, "portal_backend: %s\n", qPrintable(bus.lastError().message()));
        return 1;
    }
    std::printf("ready\n");
    std::fflush(stdout);
    return app.exec();
}
