// SPDX-License-Identifier: GPL-3.0-or-later
//
// The hot keys through the real xdg-desktop-portal on a private session bus,
// with a backend of the test's own (helpers/portal_backend) playing the
// desktop: binding, presses and releases, refusals, an ended session, silence.

#include "TestEnvironment.h"

#include "capture/HotKeyCenter.h"
#include "platform/KeyMonitor.h"
#include "platform/portal/PortalGlobalShortcuts.h"
#include "platform/portal/ShortcutTrigger.h"
#include "shell/CaptureStatus.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QProcess>
#include <QSignalSpy>

using namespace Vesko;

namespace {

const QString backendService = QStringLiteral("com.vesko.TestPortal");

//! Orders the backend; the call returns once it has acted.
void order(const QString &member, const QList<QVariant> &arguments = {})
{
    QDBusMessage call = QDBusMessage::createMethodCall(backendService,
        QStringLiteral("/org/freedesktop/portal/desktop"),
        QStringLiteral("com.vesko.TestPortal.Control"), member);
    call.setArguments(arguments);
    const QDBusMessage reply = QDBusConnection::sessionBus().call(call);
    QVERIFY2(reply.type() == QDBusMessage::ReplyMessage, qPrintable(reply.errorMessage()));
}

bool owned(const QString &name)
{
    return QDBusConnection::sessionBus().interface()->isServiceRegistered(name);
}

} // namespace

class PortalShortcutsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void session_data();
    void session();
    void keysOfTheDefaultLayout_data();
    void keysOfTheDefaultLayout();

private:
    QProcess m_backend;
    QProcess m_portal;
};

void PortalShortcutsTest::initTestCase()
{
    // The keys are named as on the default US layout, whatever the machine's.
    for (const char *name :
        {"XKB_DEFAULT_RULES", "XKB_DEFAULT_MODEL", "XKB_DEFAULT_LAYOUT", "XKB_DEFAULT_VARIANT"})
        qunsetenv(name);
    QVERIFY2(QDBusConnection::sessionBus().isConnected(), "needs a private session bus");
    QVERIFY2(!owned(QStringLiteral("org.freedesktop.portal.Desktop")),
        "a portal runs on this bus already");
    m_backend.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_backend.start(QStringLiteral(PORTAL_BACKEND_PATH), {});
    QVERIFY(m_backend.waitForStarted());
    QTRY_VERIFY_WITH_TIMEOUT(owned(backendService), 20000);

    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_DESKTOP_PORTAL_DIR"),
        QStringLiteral(VESKO_TESTS_SOURCE_DIR "/data/portals"));
    environment.insert(QStringLiteral("XDG_CURRENT_DESKTOP"), QStringLiteral("vesko-test"));
    m_portal.setProcessEnvironment(environment);
    m_portal.setProcessChannelMode(QProcess::ForwardedChannels);
    m_portal.start(QStringLiteral(XDG_DESKTOP_PORTAL_PATH), {});
    QVERIFY(m_portal.waitForStarted());
    QTRY_VERIFY_WITH_TIMEOUT(owned(QStringLiteral("org.freedesktop.portal.Desktop")), 20000);
}

void PortalShortcutsTest::cleanupTestCase()
{
    for (QProcess *process : {&m_portal, &m_backend}) {
        process->terminate();
        if (!process->waitForFinished(5000))
            process->kill();
    }
}

void PortalShortcutsTest::session_data()
{
    QTest::addColumn<uint>("sessionResponse");
    QTest::addColumn<uint>("bindResponse");
    QTest::addColumn<bool>("desktopCloses");
    QTest::addColumn<int>("state");
    QTest::addColumn<QString>("message");
    using State = PortalGlobalShortcuts::State;
    QTest::newRow("bound") << 0u << 0u << false << int(State::Bound) << QString();
    const QString refused = QStringLiteral("The desktop refused Vesko's shortcuts. Bind the "
                                           "commands below in its keyboard settings instead.");
    QTest::newRow("session refused") << 2u << 0u << false << int(State::Refused) << refused;
    QTest::newRow("binding cancelled by the user")
        << 0u << 1u << false << int(State::Refused) << refused;
    QTest::newRow("binding never answered, then bound again")
        << 0u << 99u << false << int(State::NoAnswer)
        << "The desktop did not answer when Vesko asked for its shortcuts. Bind the commands "
           "below in its keyboard settings instead.";
    QTest::newRow("session closed by the desktop")
        << 0u << 0u << true << int(State::Closed)
        << "The desktop ended Vesko's shortcuts. Start Vesko again to bind them, or bind the "
           "commands below in its keyboard settings.";
}

void PortalShortcutsTest::session()
{
    QFETCH(uint, sessionResponse);
    QFETCH(uint, bindResponse);
    QFETCH(bool, desktopCloses);
    QFETCH(int, state);
    QFETCH(QString, message);
    order(QStringLiteral("SetResponse"), {QStringLiteral("session"), sessionResponse});
    order(QStringLiteral("SetResponse"), {QStringLiteral("bind"), bindResponse});

    // A connection of its own per row, as a new launch of Vesko has.
    const QString name = QStringLiteral("vesko-%1").arg(QTest::currentDataTag());
    QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, name);
    {
        PortalGlobalShortcuts portal(bus, QStringLiteral("com.vesko.Vesko"));
        portal.setTimeouts(2000, 2000);
        portal.setShortcutNames([](int id) {
            const HotKeyAction action = *hotKeyActionFromID(id);
            return PortalGlobalShortcuts::Shortcut {rawValue(action), title(action)};
        });
        HotKeyCenter hotKeys(portal);
        QList<HotKeyAction> pressed;
        QString tokenAtPress; // the panel asks for the focus with it
        hotKeys.setHandler([&pressed, &tokenAtPress](HotKeyAction action) {
            pressed.append(action);
            tokenAtPress = qEnvironmentVariable("XDG_ACTIVATION_TOKEN");
        });
        hotKeys.installEventHandler();
        portal.start();
        hotKeys.registerAll();
        QVERIFY(hotKeys.desktopOwnsCombinations());

        using State = PortalGlobalShortcuts::State;
        QTRY_VERIFY_WITH_TIMEOUT(portal.state() == State::Bound || portal.state() == State::Refused
                || portal.state() == State::NoAnswer,
            20000);
        if (state == int(State::NoAnswer)) {
            QCOMPARE(portalShortcutsMessage(portal.state()), message);
            // The desktop answers again: the next binding replaces the
            // request it dropped.
            order(QStringLiteral("SetResponse"), {QStringLiteral("bind"), 0u});
            hotKeys.registerAll();
            QTRY_COMPARE_WITH_TIMEOUT(int(portal.state()), int(State::Bound), 20000);
            QCOMPARE(hotKeys.desktopTrigger(HotKeyAction::QuickAdd),
                QStringLiteral("Desktop LOGO+ALT+n"));
            state = int(State::Bound);
            message.clear();
        }
        if (state == int(State::Bound) || desktopCloses) {
            // The defaults, offered in the trigger form, come back as the desktop words them.
            const std::pair<HotKeyAction, const char *> triggers[] = {
                {HotKeyAction::TogglePanel, "Desktop LOGO+ALT+space"},
                {HotKeyAction::CaptureSelection, "Desktop LOGO+ALT+c"},
                {HotKeyAction::QuickAdd, "Desktop LOGO+ALT+n"},
                {HotKeyAction::CopySelectionAsList, "Desktop LOGO+ALT+l"},
            };
            for (const auto &[action, trigger] : triggers)
                QCOMPARE(hotKeys.desktopTrigger(action), QString::fromLatin1(trigger));

            // One press per activation, however long the keys stay down,
            // with the desktop's activation token; their release is told.
            qunsetenv("XDG_ACTIVATION_TOKEN");
            QSignalSpy released(&portal, &PortalGlobalShortcuts::keysReleased);
            order(QStringLiteral("Activate"),
                {QStringLiteral("captureSelection"), QStringLiteral("token-of-the-press")});
            order(QStringLiteral("Activate"), {QStringLiteral("captureSelection")});
            QTRY_VERIFY_WITH_TIMEOUT(portal.areKeysHeld(), 10000);
            order(QStringLiteral("Deactivate"), {QStringLiteral("captureSelection")});
            QTRY_COMPARE_WITH_TIMEOUT(released.count(), 1, 10000);
            QCOMPARE(pressed, QList<HotKeyAction> {HotKeyAction::CaptureSelection});
            QCOMPARE(tokenAtPress, QStringLiteral("token-of-the-press"));

            // The user gives a shortcut other keys in the desktop's settings.
            QSignalSpy changed(&hotKeys, &HotKeyCenter::registrationsChanged);
            order(QStringLiteral("ChangeTrigger"),
                {QStringLiteral("quickAdd"), QStringLiteral("Ctrl+Alt+Q")});
            QTRY_COMPARE_WITH_TIMEOUT(hotKeys.desktopTrigger(HotKeyAction::QuickAdd),
                QStringLiteral("Ctrl+Alt+Q"), 10000);
            QVERIFY(changed.count() >= 1);

            // A release the desktop never tells holds the keys only for a
            // while: the next press of the shortcut counts again.
            order(QStringLiteral("Activate"), {QStringLiteral("quickAdd")});
            QTRY_COMPARE_WITH_TIMEOUT(pressed.count(HotKeyAction::QuickAdd), 1, 10000);
            QVERIFY(portal.areKeysHeld());
            QTRY_VERIFY_WITH_TIMEOUT(!portal.areKeysHeld(), 10000);
            order(QStringLiteral("Activate"), {QStringLiteral("quickAdd")});
            QTRY_COMPARE_WITH_TIMEOUT(pressed.count(HotKeyAction::QuickAdd), 2, 10000);
        }
        if (desktopCloses) {
            // Keys down as the session ends are up for whoever waits on them.
            QSignalSpy released(&portal, &PortalGlobalShortcuts::keysReleased);
            order(QStringLiteral("Activate"), {QStringLiteral("copySelectionAsList")});
            QTRY_VERIFY_WITH_TIMEOUT(portal.areKeysHeld(), 10000);
            order(QStringLiteral("CloseSessions"));
            QTRY_COMPARE_WITH_TIMEOUT(int(portal.state()), int(State::Closed), 10000);
            QCOMPARE(released.count(), 1);
            // A press after the end reaches no action.
            order(QStringLiteral("Activate"), {QStringLiteral("togglePanel")});
        }
        QCOMPARE(int(portal.state()), state);
        QCOMPARE(portalShortcutsMessage(portal.state()), message);
        QVERIFY(!pressed.contains(HotKeyAction::TogglePanel));
    }
    QDBusConnection::disconnectFromBus(name);
}

void PortalShortcutsTest::keysOfTheDefaultLayout_data()
{
    QTest::addColumn<quint16>("keyCode");
    QTest::addColumn<quint64>("modifiers");
    QTest::addColumn<QString>("trigger");
    QTest::addColumn<QString>("sway");
    QTest::addColumn<QString>("text"); // empty: no text of its own
    using namespace ModifierFlag;
    QTest::newRow("letter") << quint16(38) << (Command | Shift) << "CTRL+SHIFT+a"
                            << "Ctrl+Shift+a"
                            << "a";
    QTest::newRow("punctuation") << quint16(20) << quint64(Option) << "ALT+minus"
                                 << "Mod1+minus"
                                 << "-";
    QTest::newRow("function key") << quint16(71) << (Control | Command) << "LOGO+CTRL+F5"
                                  << "Mod4+Ctrl+F5" << QString();
    QTest::newRow("return") << quint16(36) << quint64(Control) << "LOGO+Return"
                            << "Mod4+Return" << QString();
    QTest::newRow("no such key") << quint16(1) << quint64(Control) << QString() << QString()
                                 << QString();
}

void PortalShortcutsTest::keysOfTheDefaultLayout()
{
    QFETCH(quint16, keyCode);
    QFETCH(quint64, modifiers);
    QFETCH(QString, trigger);
    QFETCH(QString, sway);
    QFETCH(QString, text);
    QCOMPARE(xdgShortcutTrigger(keyCode, modifiers), trigger);
    QCOMPARE(swayKeyCombo(keyCode, modifiers), sway);
    QCOMPARE(DefaultKeyLayout().keyText(keyCode).value_or(QString()), text);
}

VESKO_TEST_MAIN(PortalShortcutsTest)
#include "tst_portalshortcuts.moc"
