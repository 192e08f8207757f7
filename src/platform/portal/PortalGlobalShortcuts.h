// SPDX-License-Identifier: GPL-3.0-or-later
//
// Global key combinations through the desktop's GlobalShortcuts portal
// (org.freedesktop.portal.GlobalShortcuts, version 1), spoken over D-Bus
// without ever waiting on the portal: the application id is registered with
// the host portal registry where the desktop has one, one session is made,
// the wanted shortcuts are bound in one call with their preferred triggers,
// and each Activated signal is a press, its activation token kept for the
// panel. The desktop owns the combinations:
// what it reports (BindShortcuts' results, ShortcutsChanged) is what the
// shortcut recorder shows. A refusal, a closed session or a portal that does
// not answer ends in a log line and a state the Capture tab words.

#pragma once

#include "platform/HotKeyRegistrar.h"
#include "platform/portal/PortalShortcutsState.h"

#include <QDBusConnection>
#include <QDeadlineTimer>
#include <QHash>
#include <QObject>
#include <QTimer>

#include <functional>

class QDBusMessage;

namespace Vesko {

class PortalGlobalShortcuts : public QObject, public HotKeyRegistrar
{
    Q_OBJECT

public:
    using State = PortalShortcutsState;

    //! How a shortcut is named to the desktop: its id and what it does.
    struct Shortcut
    {
        QString id;
        QString description;
    };

    //! How long the portal may take to make a session; binding may show the
    //! user a dialog and is given longer.
    static constexpr int sessionTimeoutMilliseconds = 15000;
    static constexpr int bindTimeoutMilliseconds = 120000;

    PortalGlobalShortcuts(
        QDBusConnection bus, const QString &applicationID, QObject *parent = nullptr);
    ~PortalGlobalShortcuts() override;

    //! Replaces the two bounds above.
    void setTimeouts(int sessionMilliseconds, int bindMilliseconds);

    //! Names each registered identity for the desktop.
    void setShortcutNames(std::function<Shortcut(int id)> names);
    //! Registers the application id where the desktop has a registry, then
    //! asks whether the portal offers global shortcuts. Returns at once.
    void start();

    State state() const { return m_state; }
    //! The combination the desktop reports for \a id, in its own words.
    QString trigger(int id) const { return m_triggers.value(id); }
    //! How long a shortcut's keys count as down after the desktop last said
    //! so: a Deactivated that never comes holds nothing for longer.
    static constexpr int heldLimitMilliseconds = 1000;

    //! A shortcut's keys went down, within the limit above, and have not come up yet.
    bool areKeysHeld() const;

    // HotKeyRegistrar. A registration is an offer: the desktop binds all of
    // them at once, on the next turn of the event loop, and decides.
    bool isAvailable() const override;
    void installHandler(std::function<void(int id)> handler) override;
    void removeHandler() override;
    int registerKey(int id, quint16 keyCode, quint64 modifiers) override;
    void unregisterKey(int id) override;
    bool desktopOwnsCombinations() const override { return true; }
    QString assignedTrigger(int id) const override { return trigger(id); }
    void setChangeHandler(std::function<void()> handler) override;

Q_SIGNALS:
    void stateChanged();
    void triggersChanged();
    //! Every shortcut's keys are up again.
    void keysReleased();

private Q_SLOTS:
    void handleResponse(const QDBusMessage &message);
    void handleActivated(const QDBusMessage &message);
    void handleDeactivated(const QDBusMessage &message);
    void handleShortcutsChanged(const QDBusMessage &message);
    void handleSessionClosed(const QDBusMessage &message);

private:
    enum class Step { None, CreateSession, Bind };

    void probe();
    void scheduleBind();
    void bindIfReady();
    void createSession();
    void bind();
    void closeSession();
    //! Calls \a method on the portal with a request handle: its Response
    //! comes to handleResponse, or the step times out.
    void callWithRequest(Step step, const QString &method, QList<QVariant> arguments,
        QVariantMap options, int timeoutMilliseconds);
    void requestTimedOut();
    void setState(State state);
    void readTriggers(const QVariant &shortcuts);
    QString newToken();
    QString senderPathElement() const;
    std::optional<int> identityOf(const QString &shortcutID) const;

    QDBusConnection m_bus;
    QString m_applicationID;
    State m_state = State::Probing;
    bool m_started = false;
    std::function<Shortcut(int)> m_names;
    std::function<void(int)> m_handler;
    std::function<void()> m_changeHandler;
    //! Wanted: identity to preferred trigger.
    QHash<int, QString> m_wanted;
    //! What the current session bound.
    QHash<int, QString> m_bound;
    QHash<int, QString> m_triggers;
    //! Each shortcut whose keys are down, until when they count as down.
    QHash<int, QDeadlineTimer> m_held;
    QString m_session;
    Step m_step = Step::None;
    QString m_requestPath;
    QTimer m_requestTimer;
    int m_sessionTimeout = sessionTimeoutMilliseconds;
    int m_bindTimeout = bindTimeoutMilliseconds;
    bool m_bindScheduled = false;
    int m_tokens = 0;
};

} // namespace Vesko
