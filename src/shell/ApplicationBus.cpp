// SPDX-License-Identifier: GPL-3.0-or-later

#include "shell/ApplicationBus.h"

#include "platform/ActivationToken.h"
#include "platform/Logging.h"
#include "shell/NoteRequests.h"

#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusContext>
#include <QDBusMessage>
#include <QJsonDocument>

namespace Vesko {

namespace {

// org.freedesktop.Application, as the desktop entry's DBusActivatable asks.
class ApplicationAdaptor : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    explicit ApplicationAdaptor(ApplicationBus *bus)
        : QDBusAbstractAdaptor(bus)
        , m_bus(bus)
    { }

public Q_SLOTS:
    void Activate(const QVariantMap &platformData)
    {
        ApplicationBus::takeActivationToken(platformData);
        m_bus->requests().handle({{QStringLiteral("command"), QStringLiteral("action")},
                                     {QStringLiteral("name"), QStringLiteral("show")}},
            [](const QJsonObject &) {});
    }

    void ActivateAction(
        const QString &name, const QVariantList &parameter, const QVariantMap &platformData)
    {
        if (!parameter.isEmpty()) {
            m_bus->sendErrorReply(QDBusError::InvalidArgs,
                QStringLiteral("The action “%1” takes no parameter.").arg(name));
            return;
        }
        if (!m_bus->requests().hasAction(name)) {
            m_bus->sendErrorReply(
                QDBusError::InvalidArgs, QStringLiteral("Unknown action “%1”.").arg(name));
            return;
        }
        ApplicationBus::takeActivationToken(platformData);
        m_bus->requests().handle(
            {{QStringLiteral("command"), QStringLiteral("action")}, {QStringLiteral("name"), name}},
            [](const QJsonObject &) {});
    }

    // The desktop entry names no file types: there is nothing to open.
    void Open(const QStringList &uris, const QVariantMap &platformData)
    {
        Q_UNUSED(uris)
        Q_UNUSED(platformData)
    }

private:
    ApplicationBus *m_bus;
};

// Vesko's own interface: one JSON request, one JSON answer.
class NotesAdaptor : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.vesko.Vesko.Notes")

public:
    explicit NotesAdaptor(ApplicationBus *bus)
        : QDBusAbstractAdaptor(bus)
        , m_bus(bus)
    { }

public Q_SLOTS:
    //! The name of the library's instance that this process serves.
    QString Instance() { return m_bus->instanceName(); }

    //! One lone Shift tap, as `vesko shift` reports it, for a desktop that
    //! calls a method without arguments on a modifier's release (KWin's
    //! modifier-only shortcuts).
    void ShiftTapped() { action(QStringLiteral("shift")); }
    //! A Shift press, where the desktop reports presses too.
    void ShiftPressed() { action(QStringLiteral("shift-press")); }

private:
    void action(const QString &name)
    {
        m_bus->requests().handle(
            {{QStringLiteral("command"), QStringLiteral("action")},
                {QStringLiteral("name"), name}},
            [](const QJsonObject &) {});
    }

public Q_SLOTS:

    QString Request(const QString &request)
    {
        QJsonParseError error;
        const QJsonDocument document = QJsonDocument::fromJson(request.toUtf8(), &error);
        if (!document.isObject()) {
            m_bus->sendErrorReply(
                QDBusError::InvalidArgs, QStringLiteral("The request is not a JSON object."));
            return {};
        }
        // A search answers later: the reply goes out when it does.
        m_bus->setDelayedReply(true);
        const QDBusMessage call = m_bus->message();
        QDBusConnection bus = m_bus->connection();
        m_bus->requests().handle(document.object(), [call, bus](const QJsonObject &answer) {
            QDBusConnection(bus).send(call.createReply(
                QString::fromUtf8(QJsonDocument(answer).toJson(QJsonDocument::Compact))));
        });
        return {};
    }

private:
    ApplicationBus *m_bus;
};

} // namespace

ApplicationBus::ApplicationBus(NoteRequests &requests, QObject *parent)
    : QObject(parent)
    , m_requests(requests)
{
    new ApplicationAdaptor(this);
    new NotesAdaptor(this);
}

std::optional<QString> ApplicationBus::registerOn(QDBusConnection bus)
{
    if (!bus.isConnected())
        return tr("There is no session bus.");
    if (!bus.registerObject(QLatin1String(objectPath), this))
        return bus.lastError().message();
    if (!bus.registerService(QLatin1String(serviceName))) {
        bus.unregisterObject(QLatin1String(objectPath));
        const QDBusError error = bus.lastError();
        return error.isValid()
            ? error.message()
            : tr("Another program owns the name %1.").arg(QLatin1String(serviceName));
    }
    if (!bus.registerService(QLatin1String(shiftTapsName))) {
        qCWarning(lcDoubleShift, "Shift taps will not reach Vesko on the bus: %s",
            qUtf8Printable(bus.lastError().message()));
    }
    return std::nullopt;
}

void ApplicationBus::takeActivationToken(const QVariantMap &platformData)
{
    // GLib sends the same token under both names.
    QString token = platformData.value(QStringLiteral("activation-token")).toString();
    if (token.isEmpty())
        token = platformData.value(QStringLiteral("desktop-startup-id")).toString();
    keepActivationToken(token);
}

} // namespace Vesko

#include "ApplicationBus.moc"
