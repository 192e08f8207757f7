// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/atspi/AtspiBus.h"

#include "platform/Logging.h"

#include <QAtomicInteger>
#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCall>
#include <QDBusVariant>

namespace Vesko {

namespace {

const QString registryService = QStringLiteral("org.a11y.atspi.Registry");
const QString rootPath = QStringLiteral("/org/a11y/atspi/accessible/root");
const QString accessibleInterface = QStringLiteral("org.a11y.atspi.Accessible");

// The roles of a top-level window and the ACTIVE state, as AT-SPI numbers them.
constexpr uint roleDialog = 16;
constexpr uint roleFrame = 23;
constexpr uint roleWindow = 69;
constexpr uint stateActive = 1;

//! At most this many windows claim to be active: stale states of a
//! program that froze, say.
constexpr int maxActiveWindows = 4;

//! An accessible object: the application's name on the bus and the object's path.
struct Reference
{
    QString service;
    QString path;
};

QDBusMessage accessibleCall(const Reference &object, const QString &method)
{
    return QDBusMessage::createMethodCall(object.service, object.path, accessibleInterface, method);
}

QDBusMessage propertyCall(const Reference &object, const QString &interface, const QString &name)
{
    QDBusMessage call = QDBusMessage::createMethodCall(object.service, object.path,
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    call << interface << name;
    return call;
}

//! The first argument of \a reply in its marshalled form, when it has \a signature.
std::optional<QDBusArgument> marshalled(const QDBusMessage &reply, const char *signature)
{
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
        return std::nullopt;
    const QVariant value = reply.arguments().constFirst();
    if (value.userType() != qMetaTypeId<QDBusArgument>())
        return std::nullopt;
    auto argument = value.value<QDBusArgument>();
    if (argument.currentSignature() != QLatin1String(signature))
        return std::nullopt;
    return argument;
}

//! The objects of an a(so) reply, at most \a limit of them.
QList<Reference> references(const QDBusMessage &reply, int limit)
{
    QList<Reference> objects;
    const std::optional<QDBusArgument> argument = marshalled(reply, "a(so)");
    if (!argument)
        return objects;
    argument->beginArray();
    while (!argument->atEnd() && objects.size() < limit) {
        Reference object;
        QDBusObjectPath path;
        argument->beginStructure();
        *argument >> object.service >> path;
        argument->endStructure();
        object.path = path.path();
        if (!object.service.isEmpty() && !object.path.isEmpty())
            objects.append(object);
    }
    argument->endArray();
    return objects;
}

bool isActive(const QDBusMessage &reply)
{
    const std::optional<QDBusArgument> argument = marshalled(reply, "au");
    if (!argument)
        return false;
    QList<uint> words;
    *argument >> words;
    return !words.isEmpty() && (words.constFirst() & (1u << stateActive));
}

std::optional<uint> number(const QDBusMessage &reply)
{
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
        return std::nullopt;
    const QVariant value = reply.arguments().constFirst();
    if (value.userType() != QMetaType::UInt)
        return std::nullopt;
    return value.toUInt();
}

std::optional<QString> text(const QDBusMessage &reply)
{
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
        return std::nullopt;
    const QVariant value = reply.arguments().constFirst();
    if (value.userType() != qMetaTypeId<QDBusVariant>())
        return std::nullopt;
    const QVariant inner = value.value<QDBusVariant>().variant();
    if (inner.userType() != QMetaType::QString)
        return std::nullopt;
    return inner.toString();
}

bool isTopLevelRole(std::optional<uint> role)
{
    return role && (*role == roleFrame || *role == roleWindow || *role == roleDialog);
}

} // namespace

AtspiBus::AtspiBus()
{
    static QAtomicInteger<quint64> connections;
    m_connectionName = QStringLiteral("vesko-accessibility-%1").arg(++connections);
}

AtspiBus::~AtspiBus()
{
    disconnect();
}

void AtspiBus::disconnect()
{
    if (!m_bus)
        return;
    m_bus.reset();
    QDBusConnection::disconnectFromBus(m_connectionName);
}

bool AtspiBus::connect()
{
    if (m_bus && m_bus->isConnected())
        return true;
    disconnect();
    // The address the session gives, as the accessibility library itself
    // reads it, else the one the session bus's launcher hands out.
    QString address = qEnvironmentVariable("AT_SPI_BUS_ADDRESS");
    if (address.isEmpty()) {
        QDBusConnection session = QDBusConnection::sessionBus();
        if (!session.isConnected())
            return false;
        const QDBusMessage reply
            = session.call(QDBusMessage::createMethodCall(QStringLiteral("org.a11y.Bus"),
                               QStringLiteral("/org/a11y/bus"), QStringLiteral("org.a11y.Bus"),
                               QStringLiteral("GetAddress")),
                QDBus::Block, addressTimeoutMilliseconds);
        if (reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().isEmpty())
            address = reply.arguments().constFirst().toString();
        if (address.isEmpty()) {
            qCInfo(lcCapture, "No accessibility bus: %s", qUtf8Printable(reply.errorMessage()));
            return false;
        }
    }
    QDBusConnection bus = QDBusConnection::connectToBus(address, m_connectionName);
    if (!bus.isConnected()) {
        qCInfo(lcCapture, "The accessibility bus does not answer: %s",
            qUtf8Printable(bus.lastError().message()));
        QDBusConnection::disconnectFromBus(m_connectionName);
        return false;
    }
    m_bus = bus;
    return true;
}

std::optional<ActiveFrame> AtspiBus::activeFrame()
{
    if (!connect())
        return std::nullopt;

    // Every round asks all its objects at once and waits for the slowest,
    // which the time-out bounds.
    const auto ask = [this](const QList<QDBusMessage> &calls) {
        QList<QDBusPendingCall> pending;
        pending.reserve(calls.size());
        for (const QDBusMessage &call : calls)
            pending.append(m_bus->asyncCall(call, callTimeoutMilliseconds));
        QList<QDBusMessage> replies;
        replies.reserve(calls.size());
        for (QDBusPendingCall &call : pending) {
            call.waitForFinished();
            replies.append(call.reply());
        }
        return replies;
    };

    const QDBusMessage registry
        = ask({accessibleCall({registryService, rootPath}, QStringLiteral("GetChildren"))})
              .constFirst();
    if (registry.type() == QDBusMessage::ErrorMessage) {
        qCInfo(lcCapture, "The accessibility registry does not answer: %s",
            qUtf8Printable(registry.errorMessage()));
        if (!m_bus->isConnected())
            disconnect(); // found again at the next read
        return std::nullopt;
    }
    const QList<Reference> applications = references(registry, maxApplications);

    QList<QDBusMessage> calls;
    for (const Reference &application : applications)
        calls.append(accessibleCall(application, QStringLiteral("GetChildren")));
    QList<Reference> windows;
    QList<int> owners; // the application of each window
    const QList<QDBusMessage> children = ask(calls);
    for (int i = 0; i < children.size(); ++i) {
        for (const Reference &window : references(children.at(i), maxWindows)) {
            windows.append(window);
            owners.append(i);
        }
    }

    calls.clear();
    for (const Reference &window : windows)
        calls.append(accessibleCall(window, QStringLiteral("GetState")));
    QList<int> active;
    const QList<QDBusMessage> states = ask(calls);
    for (int i = 0; i < states.size() && active.size() < maxActiveWindows; ++i) {
        if (isActive(states.at(i)))
            active.append(i);
    }
    if (active.isEmpty())
        return std::nullopt;

    // Role, title, application name and process of each active window, together.
    calls.clear();
    const auto processCall = [](const QString &service) {
        QDBusMessage call = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
            QStringLiteral("/org/freedesktop/DBus"), QStringLiteral("org.freedesktop.DBus"),
            QStringLiteral("GetConnectionUnixProcessID"));
        call << service;
        return call;
    };
    for (const int i : std::as_const(active)) {
        const Reference &window = windows.at(i);
        const Reference &application = applications.at(owners.at(i));
        calls.append(accessibleCall(window, QStringLiteral("GetRole")));
        calls.append(propertyCall(window, accessibleInterface, QStringLiteral("Name")));
        calls.append(propertyCall(application, accessibleInterface, QStringLiteral("Name")));
        calls.append(processCall(application.service));
    }
    const QList<QDBusMessage> details = ask(calls);
    for (int k = 0; k < active.size(); ++k) {
        if (!isTopLevelRole(number(details.at(4 * k))))
            continue;
        ActiveFrame frame;
        frame.service = applications.at(owners.at(active.at(k))).service;
        frame.title = text(details.at(4 * k + 1)).value_or(QString());
        frame.applicationName = text(details.at(4 * k + 2)).value_or(QString());
        frame.processID = number(details.at(4 * k + 3)).value_or(0);
        return frame;
    }
    return std::nullopt;
}

} // namespace Vesko
