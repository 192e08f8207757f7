// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/portal/PortalGlobalShortcuts.h"

#include "platform/ActivationToken.h"
#include "platform/Logging.h"
#include "platform/portal/ShortcutTrigger.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QRandomGenerator>

#include <algorithm>

namespace {

// One element of BindShortcuts' a(sa{sv}).
struct PortalShortcut
{
    QString id;
    QVariantMap properties;
};

QDBusArgument &operator<<(QDBusArgument &argument, const PortalShortcut &shortcut)
{
    argument.beginStructure();
    argument << shortcut.id << shortcut.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, PortalShortcut &shortcut)
{
    argument.beginStructure();
    argument >> shortcut.id >> shortcut.properties;
    argument.endStructure();
    return argument;
}

} // namespace

Q_DECLARE_METATYPE(PortalShortcut)

namespace Vesko {

namespace {

const QString portalService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString shortcutsInterface = QStringLiteral("org.freedesktop.portal.GlobalShortcuts");
const QString requestInterface = QStringLiteral("org.freedesktop.portal.Request");
const QString sessionInterface = QStringLiteral("org.freedesktop.portal.Session");
const QString registryInterface = QStringLiteral("org.freedesktop.host.portal.Registry");
constexpr int probeTimeoutMilliseconds = 10000;

QDBusMessage portalCall(const QString &interface, const QString &method)
{
    return QDBusMessage::createMethodCall(portalService, portalPath, interface, method);
}

QString objectPathText(const QVariant &value)
{
    if (value.canConvert<QDBusObjectPath>() && value.userType() == qMetaTypeId<QDBusObjectPath>())
        return value.value<QDBusObjectPath>().path();
    return value.toString();
}

QList<PortalShortcut> shortcutList(const QVariant &value)
{
    QList<PortalShortcut> shortcuts;
    if (value.userType() == qMetaTypeId<QDBusArgument>())
        value.value<QDBusArgument>() >> shortcuts;
    else if (value.canConvert<QList<PortalShortcut>>())
        shortcuts = value.value<QList<PortalShortcut>>();
    return shortcuts;
}

} // namespace

PortalGlobalShortcuts::PortalGlobalShortcuts(
    QDBusConnection bus, const QString &applicationID, QObject *parent)
    : QObject(parent)
    , m_bus(std::move(bus))
    , m_applicationID(applicationID)
{
    qDBusRegisterMetaType<PortalShortcut>();
    qDBusRegisterMetaType<QList<PortalShortcut>>();
    m_requestTimer.setSingleShot(true);
    connect(&m_requestTimer, &QTimer::timeout, this, &PortalGlobalShortcuts::requestTimedOut);
    connect(this, &PortalGlobalShortcuts::stateChanged, this, [this] {
        if (m_changeHandler)
            m_changeHandler();
    });
    connect(this, &PortalGlobalShortcuts::triggersChanged, this, [this] {
        if (m_changeHandler)
            m_changeHandler();
    });
}

PortalGlobalShortcuts::~PortalGlobalShortcuts()
{
    closeSession();
}

void PortalGlobalShortcuts::setShortcutNames(std::function<Shortcut(int)> names)
{
    m_names = std::move(names);
}

void PortalGlobalShortcuts::setTimeouts(int sessionMilliseconds, int bindMilliseconds)
{
    m_sessionTimeout = sessionMilliseconds;
    m_bindTimeout = bindMilliseconds;
}

void PortalGlobalShortcuts::setChangeHandler(std::function<void()> handler)
{
    m_changeHandler = std::move(handler);
}

void PortalGlobalShortcuts::start()
{
    if (m_started)
        return;
    m_started = true;
    if (!m_bus.isConnected()) {
        qCInfo(lcCapture, "No session bus: global shortcuts are not available");
        setState(State::Absent);
        return;
    }
    for (const char *signal : {"Activated", "Deactivated", "ShortcutsChanged"}) {
        const QByteArray slot = QByteArray("1handle") + signal + "(QDBusMessage)";
        m_bus.connect(QString(), portalPath, shortcutsInterface, QString::fromLatin1(signal), this,
            slot.constData());
    }
    // Where the desktop has a registry of host applications, the application
    // id goes first, before any other call to the portal. Elsewhere the call
    // fails, and the portal finds the id by itself.
    QDBusMessage registration = portalCall(registryInterface, QStringLiteral("Register"));
    registration << m_applicationID << QVariantMap();
    auto *watcher = new QDBusPendingCallWatcher(
        m_bus.asyncCall(registration, probeTimeoutMilliseconds), this);
    connect(
        watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher *call) {
            call->deleteLater();
            if (call->isError())
                qCDebug(lcCapture, "No host portal registry: %s",
                    qUtf8Printable(call->error().message()));
            probe();
        });
}

void PortalGlobalShortcuts::probe()
{
    QDBusMessage get = QDBusMessage::createMethodCall(portalService, portalPath,
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    get << shortcutsInterface << QStringLiteral("version");
    auto *watcher
        = new QDBusPendingCallWatcher(m_bus.asyncCall(get, probeTimeoutMilliseconds), this);
    connect(
        watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher *call) {
            call->deleteLater();
            const QDBusPendingReply<QDBusVariant> reply = *call;
            if (reply.isError() || reply.value().variant().toUInt() < 1) {
                qCInfo(lcCapture, "The desktop offers no global shortcuts portal%s%s",
                    reply.isError() ? ": " : "",
                    reply.isError() ? qUtf8Printable(reply.error().message()) : "");
                setState(State::Absent);
                return;
            }
            qCInfo(
                lcCapture, "Global shortcuts portal, version %u", reply.value().variant().toUInt());
            setState(State::Connecting);
            bindIfReady();
        });
}

bool PortalGlobalShortcuts::isAvailable() const
{
    return m_state != State::Absent;
}

void PortalGlobalShortcuts::installHandler(std::function<void(int)> handler)
{
    m_handler = std::move(handler);
}

void PortalGlobalShortcuts::removeHandler()
{
    m_handler = nullptr;
    closeSession();
}

int PortalGlobalShortcuts::registerKey(int id, quint16 keyCode, quint64 modifiers)
{
    m_wanted.insert(id, keyCode == 0 ? QString() : xdgShortcutTrigger(keyCode, modifiers));
    scheduleBind();
    return 0;
}

void PortalGlobalShortcuts::unregisterKey(int id)
{
    // A bound shortcut cannot be taken back from the session; its
    // activations are ignored from now on.
    m_wanted.remove(id);
    m_held.remove(id);
}

void PortalGlobalShortcuts::scheduleBind()
{
    if (m_bindScheduled)
        return;
    m_bindScheduled = true;
    QTimer::singleShot(0, this, [this] {
        m_bindScheduled = false;
        bindIfReady();
    });
}

void PortalGlobalShortcuts::bindIfReady()
{
    if (m_state == State::Probing || m_state == State::Absent || m_wanted.isEmpty())
        return;
    if (m_step != Step::None) {
        // A request under way is waited for; one the portal never answered
        // is dropped with its session, and the binding starts afresh.
        if (m_state != State::NoAnswer)
            return;
        closeSession();
        m_step = Step::None;
    }
    if (!m_session.isEmpty() && !m_bound.isEmpty()) {
        bool covered = true;
        for (auto it = m_wanted.cbegin(); it != m_wanted.cend(); ++it)
            covered = covered && m_bound.value(it.key()) == it.value();
        if (covered)
            return;
        // A session binds once: other shortcuts need a new session.
        closeSession();
    }
    setState(State::Connecting);
    if (m_session.isEmpty())
        createSession();
    else
        bind();
}

QString PortalGlobalShortcuts::newToken()
{
    return QStringLiteral("vesko%1_%2")
        .arg(++m_tokens)
        .arg(QRandomGenerator::global()->bounded(1 << 30));
}

QString PortalGlobalShortcuts::senderPathElement() const
{
    QString sender = m_bus.baseService();
    if (sender.startsWith(u':'))
        sender.remove(0, 1);
    return sender.replace(u'.', u'_');
}

void PortalGlobalShortcuts::createSession()
{
    const QString sessionToken = newToken();
    m_session
        = portalPath + QStringLiteral("/session/") + senderPathElement() + u'/' + sessionToken;
    m_bus.connect(QString(), m_session, sessionInterface, QStringLiteral("Closed"), this,
        SLOT(handleSessionClosed(QDBusMessage)));
    callWithRequest(Step::CreateSession, QStringLiteral("CreateSession"), {},
        {{QStringLiteral("session_handle_token"), sessionToken}}, m_sessionTimeout);
}

void PortalGlobalShortcuts::bind()
{
    QList<PortalShortcut> shortcuts;
    for (auto it = m_wanted.cbegin(); it != m_wanted.cend(); ++it) {
        const Shortcut name
            = m_names ? m_names(it.key()) : Shortcut {QString::number(it.key()), {}};
        QVariantMap properties {{QStringLiteral("description"), name.description}};
        if (!it.value().isEmpty())
            properties.insert(QStringLiteral("preferred_trigger"), it.value());
        shortcuts.append({name.id, properties});
    }
    m_bound = m_wanted;
    callWithRequest(Step::Bind, QStringLiteral("BindShortcuts"),
        {QVariant::fromValue(QDBusObjectPath(m_session)), QVariant::fromValue(shortcuts),
            QString()},
        {}, m_bindTimeout);
}

void PortalGlobalShortcuts::callWithRequest(Step step, const QString &method,
    QList<QVariant> arguments, QVariantMap options, int timeoutMilliseconds)
{
    const QString token = newToken();
    if (!m_requestPath.isEmpty())
        m_bus.disconnect(QString(), m_requestPath, requestInterface, QStringLiteral("Response"),
            this, SLOT(handleResponse(QDBusMessage)));
    m_requestPath = portalPath + QStringLiteral("/request/") + senderPathElement() + u'/' + token;
    // Listening before the call: the answer may come before the call returns.
    m_bus.connect(QString(), m_requestPath, requestInterface, QStringLiteral("Response"), this,
        SLOT(handleResponse(QDBusMessage)));
    m_step = step;
    options.insert(QStringLiteral("handle_token"), token);
    QDBusMessage call = portalCall(shortcutsInterface, method);
    arguments.append(options);
    call.setArguments(arguments);
    m_requestTimer.start(timeoutMilliseconds);
    auto *watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call, timeoutMilliseconds), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
        [this, step, method, requestPath = m_requestPath](QDBusPendingCallWatcher *pending) {
            pending->deleteLater();
            // The failure of a request that another has replaced is no news.
            if (!pending->isError() || m_step != step || m_requestPath != requestPath)
                return;
            qCWarning(lcCapture, "The global shortcuts portal refused %s: %s",
                qUtf8Printable(method), qUtf8Printable(pending->error().message()));
            m_requestTimer.stop();
            m_step = Step::None;
            if (step == Step::CreateSession)
                m_session.clear();
            setState(State::Refused);
        });
}

void PortalGlobalShortcuts::requestTimedOut()
{
    if (m_step == Step::None)
        return;
    qCWarning(lcCapture, "The global shortcuts portal did not answer %s",
        m_step == Step::CreateSession ? "CreateSession" : "BindShortcuts");
    // A late answer is still taken, as long as no other request replaced it.
    setState(State::NoAnswer);
}

void PortalGlobalShortcuts::handleResponse(const QDBusMessage &message)
{
    if (message.path() != m_requestPath || message.arguments().size() < 2)
        return;
    const Step step = m_step;
    m_step = Step::None;
    m_requestTimer.stop();
    const uint response = message.arguments().at(0).toUInt();
    const QVariantMap results = qdbus_cast<QVariantMap>(message.arguments().at(1));
    if (response != 0) {
        qCWarning(lcCapture, "The desktop refused the global shortcuts (%s, response %u)",
            step == Step::CreateSession ? "session" : "binding", response);
        if (step == Step::CreateSession)
            m_session.clear();
        setState(State::Refused);
        return;
    }
    if (step == Step::CreateSession) {
        const QString session = objectPathText(results.value(QStringLiteral("session_handle")));
        if (!session.isEmpty() && session != m_session) {
            m_bus.disconnect(QString(), m_session, sessionInterface, QStringLiteral("Closed"), this,
                SLOT(handleSessionClosed(QDBusMessage)));
            m_session = session;
            m_bus.connect(QString(), m_session, sessionInterface, QStringLiteral("Closed"), this,
                SLOT(handleSessionClosed(QDBusMessage)));
        }
        bind();
        return;
    }
    readTriggers(results.value(QStringLiteral("shortcuts")));
    qCInfo(lcCapture, "The desktop bound %lld global shortcuts", qlonglong(m_triggers.size()));
    setState(State::Bound);
    // Shortcuts wanted while this binding was on its way.
    scheduleBind();
}

std::optional<int> PortalGlobalShortcuts::identityOf(const QString &shortcutID) const
{
    for (auto it = m_bound.cbegin(); it != m_bound.cend(); ++it) {
        const Shortcut name
            = m_names ? m_names(it.key()) : Shortcut {QString::number(it.key()), {}};
        if (name.id == shortcutID)
            return it.key();
    }
    return std::nullopt;
}

void PortalGlobalShortcuts::readTriggers(const QVariant &shortcuts)
{
    QHash<int, QString> triggers = m_triggers;
    for (const PortalShortcut &shortcut : shortcutList(shortcuts)) {
        if (const std::optional<int> id = identityOf(shortcut.id))
            triggers.insert(
                *id, shortcut.properties.value(QStringLiteral("trigger_description")).toString());
    }
    if (triggers == m_triggers)
        return;
    m_triggers = triggers;
    Q_EMIT triggersChanged();
}

void PortalGlobalShortcuts::handleActivated(const QDBusMessage &message)
{
    const QList<QVariant> arguments = message.arguments();
    if (arguments.size() < 2 || objectPathText(arguments.at(0)) != m_session || m_session.isEmpty())
        return;
    const std::optional<int> id = identityOf(arguments.at(1).toString());
    if (!id || !m_wanted.contains(*id))
        return;
    // A key held down reports one press; a press whose release never came
    // is over once its hold lapsed.
    const auto held = m_held.find(*id);
    const bool repeated = held != m_held.end() && !held->hasExpired();
    m_held.insert(*id, QDeadlineTimer(heldLimitMilliseconds));
    if (repeated)
        return;
    // The desktop may let the press's window take the focus (GNOME and KDE
    // give the panel none without it).
    if (arguments.size() >= 4) {
        keepActivationToken(qdbus_cast<QVariantMap>(arguments.at(3))
                                .value(QStringLiteral("activation_token"))
                                .toString());
    }
    if (m_handler)
        m_handler(*id);
}

void PortalGlobalShortcuts::handleDeactivated(const QDBusMessage &message)
{
    const QList<QVariant> arguments = message.arguments();
    if (arguments.size() < 2 || objectPathText(arguments.at(0)) != m_session || m_session.isEmpty())
        return;
    const std::optional<int> id = identityOf(arguments.at(1).toString());
    if (!id || !m_held.remove(*id))
        return;
    if (!areKeysHeld())
        Q_EMIT keysReleased();
}

bool PortalGlobalShortcuts::areKeysHeld() const
{
    return std::any_of(m_held.cbegin(), m_held.cend(),
        [](const QDeadlineTimer &until) { return !until.hasExpired(); });
}

void PortalGlobalShortcuts::handleShortcutsChanged(const QDBusMessage &message)
{
    const QList<QVariant> arguments = message.arguments();
    if (arguments.size() < 2 || objectPathText(arguments.at(0)) != m_session || m_session.isEmpty())
        return;
    readTriggers(arguments.at(1));
}

void PortalGlobalShortcuts::handleSessionClosed(const QDBusMessage &message)
{
    if (message.path() != m_session)
        return;
    qCWarning(lcCapture, "The desktop closed the global shortcuts session");
    m_bus.disconnect(QString(), m_session, sessionInterface, QStringLiteral("Closed"), this,
        SLOT(handleSessionClosed(QDBusMessage)));
    m_session.clear();
    m_bound.clear();
    const bool wereHeld = areKeysHeld();
    m_held.clear();
    m_step = Step::None;
    m_requestTimer.stop();
    setState(State::Closed);
    // No Deactivated comes from a closed session.
    if (wereHeld)
        Q_EMIT keysReleased();
}

void PortalGlobalShortcuts::closeSession()
{
    if (m_session.isEmpty())
        return;
    m_bus.disconnect(QString(), m_session, sessionInterface, QStringLiteral("Closed"), this,
        SLOT(handleSessionClosed(QDBusMessage)));
    if (m_bus.isConnected()) {
        m_bus.asyncCall(QDBusMessage::createMethodCall(
            portalService, m_session, sessionInterface, QStringLiteral("Close")));
    }
    m_session.clear();
    m_bound.clear();
    m_held.clear();
    m_step = Step::None;
    m_requestTimer.stop();
}

void PortalGlobalShortcuts::setState(State state)
{
    if (state == m_state)
        return;
    m_state = state;
    Q_EMIT stateChanged();
}

} // namespace Vesko
