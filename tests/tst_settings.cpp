// SPDX-License-Identifier: GPL-3.0-or-later
//
// The Settings window of the running program, from the outside: in a private
// X session with a window manager, a tray (trayer), a session bus and AT-SPI;
// on Wayland, with the desktop's shortcuts portal (the tests' backend).

#include "TestEnvironment.h"

#include "AccessibleTree.h"
#include "ProgramSession.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QProcess>
#include <QScopeGuard>

using namespace Vesko;
using Test::AccessibleNode;
using Test::AccessibleTree;
using Test::xdotool;

namespace {

//! xdotool with its arguments written as one line.
QString xdo(const QString &line)
{
    return xdotool(Test::words(line));
}

QStringList windowsNamed(const QString &pattern)
{
    const QString found = xdotool({QStringLiteral("search"), QStringLiteral("--onlyvisible"),
        QStringLiteral("--name"), pattern});
    return found.isEmpty() ? QStringList() : found.split(u'\n');
}

//! The visible window of \a process named by \a pattern, or empty.
QString windowOf(const QProcess *process, const QString &pattern)
{
    for (const QString &window : windowsNamed(pattern)) {
        if (xdo(QStringLiteral("getwindowpid ") + window).toLongLong() == process->processId())
            return window;
    }
    return {};
}

QString windowState(const QString &window)
{
    QProcess xprop;
    xprop.start(
        QStringLiteral("xprop"), {QStringLiteral("-id"), window, QStringLiteral("_NET_WM_STATE")});
    xprop.waitForFinished(Test::patience);
    return QString::fromUtf8(xprop.readAllStandardOutput());
}

//! Vesko's icon in the tray: a small window of class "vesko" inside trayer.
QPoint trayIconCentre()
{
    const QString found = xdo(QStringLiteral("search --class ^vesko$"));
    for (const QString &window : found.split(u'\n', Qt::SkipEmptyParts)) {
        const QString shell = xdo(QStringLiteral("getwindowgeometry --shell ") + window);
        QHash<QString, int> geometry;
        for (const QString &line : shell.split(u'\n'))
            geometry.insert(line.section(u'=', 0, 0), line.section(u'=', 1).toInt());
        if (geometry.value(QStringLiteral("WIDTH")) <= 32
            && geometry.value(QStringLiteral("HEIGHT")) <= 32
            && geometry.value(QStringLiteral("WIDTH")) > 1)
            return QPoint(
                geometry.value(QStringLiteral("X")) + geometry.value(QStringLiteral("WIDTH")) / 2,
                geometry.value(QStringLiteral("Y")) + geometry.value(QStringLiteral("HEIGHT")) / 2);
    }
    return {};
}

} // namespace

class SettingsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void fromTheTray();
    void launchWithoutCaptureOpensTheCaptureTab();

private:
    void openFromTray();
    QString settingsWindow() const;

    QProcess m_tray;
    std::unique_ptr<Test::ProgramSession> m_session;
    QProcess *m_vesko = nullptr;
    QString m_panel;
};

void SettingsTest::initTestCase()
{
    if (qEnvironmentVariableIsEmpty("DISPLAY")
        || qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS"))
        QSKIP("Needs an X server and a session bus: run through dbus-run-session and "
              "tests/x-session.sh");
    m_tray.start(QStringLiteral("trayer"),
        Test::words(QStringLiteral(
            "--edge top --align right --widthtype request --height 24 --transparent false")));
    QVERIFY(m_tray.waitForStarted(Test::patience));
    QTRY_VERIFY_WITH_TIMEOUT(
        !xdo(QStringLiteral("search --class ^trayer$")).isEmpty(), Test::patience);
    // The accessibility bus runs before the program starts, so that the
    // program joins it as it would in a desktop session with a screen reader.
    QCOMPARE(QProcess::execute(QStringLiteral("dbus-send"),
                 Test::words(QStringLiteral("--session --print-reply --dest=org.a11y.Bus "
                                            "/org/a11y/bus org.a11y.Bus.GetAddress"))),
        0);

    m_session = std::make_unique<Test::ProgramSession>();
    m_session->setEnvironmentVariable(
        QStringLiteral("QT_LINUX_ACCESSIBILITY_ALWAYS_ON"), QStringLiteral("1"));
    m_vesko = m_session->start(QStringLiteral(VESKO_PATH));
    QTRY_VERIFY_WITH_TIMEOUT(!windowsNamed(QStringLiteral("^Vesko$")).isEmpty(), Test::patience);
    m_panel = windowsNamed(QStringLiteral("^Vesko$")).first();
    QTRY_VERIFY_WITH_TIMEOUT(!trayIconCentre().isNull(), Test::patience);
}

void SettingsTest::cleanupTestCase()
{
    if (m_vesko) {
        m_vesko->terminate();
        m_vesko->waitForFinished(10000);
    }
    m_session.reset();
    if (m_tray.state() != QProcess::NotRunning) {
        m_tray.terminate();
        m_tray.waitForFinished(5000);
    }
}

QString SettingsTest::settingsWindow() const
{
    const QStringList windows = windowsNamed(QStringLiteral("^Vesko Settings$"));
    return windows.size() == 1 ? windows.first() : QString();
}

void SettingsTest::openFromTray()
{
    const QPoint icon = trayIconCentre();
    QVERIFY(!icon.isNull());
    xdo(QStringLiteral("mousemove %1 %2 click 3").arg(icon.x()).arg(icon.y()));
    // The menu opens under the pointer: its last entries are "Settings" and "Quit Vesko".
    QTRY_VERIFY_WITH_TIMEOUT(
        !xdo(QStringLiteral("search --onlyvisible --class ^vesko$")).isEmpty(), Test::patience);
    QTest::qWait(300);
    xdo(QStringLiteral("key Up Up Return"));
}

//! One scenario over one running program: each step leaves the window as the next needs it.
void SettingsTest::fromTheTray()
{
    // The tray's "Settings" opens one window of this program, in front.
    QVERIFY(settingsWindow().isEmpty());
    openFromTray();
    QTRY_VERIFY_WITH_TIMEOUT(!settingsWindow().isEmpty(), Test::patience);
    const QString window = settingsWindow();
    QCOMPARE(windowOf(m_vesko, QStringLiteral("^Vesko Settings$")), window);
    QTRY_COMPARE_WITH_TIMEOUT(xdo(QStringLiteral("getactivewindow")), window, Test::patience);
    // With the panel in front, asking again brings the same window forward.
    xdo(QStringLiteral("windowactivate --sync ") + m_panel);
    QTRY_COMPARE_WITH_TIMEOUT(xdo(QStringLiteral("getactivewindow")), m_panel, Test::patience);
    openFromTray();
    QTRY_COMPARE_WITH_TIMEOUT(xdo(QStringLiteral("getactivewindow")), window, Test::patience);
    QCOMPARE(windowsNamed(QStringLiteral("^Vesko Settings$")), QStringList {window});

    // A screen reader finds every tab and control by its name.
    const QString pid = QString::number(m_vesko->processId());
    AccessibleTree tree;
    QTRY_VERIFY_WITH_TIMEOUT(
        !(tree = AccessibleTree::read(pid, QStringLiteral("Vesko Settings"))).isEmpty(),
        Test::patience);
    for (const char *entry : {"page tab|General", "page tab|Capture", "page tab|Storage",
             "page tab|About", "check box|Show on all workspaces", "check box|Always on top",
             "check box|Show in the system tray", "check box|Show in the taskbar",
             "check box|Open at login", "check box|Keep Markdown when copying",
             "push button|Reset Window Position", "push button|Reset Window Size",
             "check box|Capture with Shift pressed twice", "slider|Time between presses",
             "push button|Show or Hide Vesko shortcut", "push button|Capture Selection shortcut",
             "push button|Add a Note shortcut", "push button|Copy Notes as List shortcut",
             "check box|Bring the panel forward on capture", "push button|Show in Files",
             "push button|Move…", "push button|Export All as Markdown…",
             "push button|Copy This Project as List", "push button|Clear Completed in This Project",
             "label|Vesko", "label|Notes stay in a local file"}) {
        const QString role = QString::fromUtf8(entry).section(u'|', 0, 0);
        QVERIFY2(tree.any(role, QString::fromUtf8(entry).section(u'|', 1)), entry);
    }
    // On this desktop a picker is named by its label and reads its choice.
    for (const auto &[label, choice] : {std::pair {"Appearance", "System"},
             std::pair {"Window position", "Right"}, std::pair {"Copy as List uses", "1. 2. 3."}}) {
        const AccessibleNode *picker
            = tree.any(QStringLiteral("combo box"), QString::fromUtf8(choice));
        QVERIFY2(picker && picker->labelledBy.contains(QLatin1String(label)), label);
    }
    // The slider reads its value as the tab shows it.
    QCOMPARE(
        tree.any(QStringLiteral("slider"), QStringLiteral("Time between presses"))->description,
        QStringLiteral("400 ms"));

    // A toggle pressed there changes the panel at once (what it writes is tst_settingsviews').
    QVERIFY(!windowState(m_panel).contains(QStringLiteral("_NET_WM_STATE_ABOVE")));
    QVERIFY(AccessibleTree::act(pid, QStringLiteral("check box"), QStringLiteral("Always on top")));
    // The panel's window is made again with its new flags: look it up anew.
    QTRY_VERIFY_WITH_TIMEOUT(windowsNamed(QStringLiteral("^Vesko$")).size() == 1
            && windowState(windowsNamed(QStringLiteral("^Vesko$")).first())
                   .contains(QStringLiteral("_NET_WM_STATE_ABOVE")),
        Test::patience);
    // The tray icon goes with its toggle.
    const QString tray = QStringLiteral("Show in the system tray");
    QVERIFY(AccessibleTree::act(pid, QStringLiteral("check box"), tray));
    QTRY_VERIFY_WITH_TIMEOUT(trayIconCentre().isNull(), Test::patience);
    QVERIFY(AccessibleTree::act(pid, QStringLiteral("check box"), tray));
    QTRY_VERIFY_WITH_TIMEOUT(!trayIconCentre().isNull(), Test::patience);

    // Closing only hides it; it comes back, one window, where it stood.
    xdo(QStringLiteral("windowmove --sync %1 140 90").arg(window));
    const QString geometry = xdo(QStringLiteral("getwindowgeometry ") + window);
    xdo(QStringLiteral("windowactivate --sync ") + window);
    xdo(QStringLiteral("key alt+F4"));
    QTRY_VERIFY_WITH_TIMEOUT(settingsWindow().isEmpty(), Test::patience);
    QTest::qWait(200);
    QCOMPARE(m_vesko->state(), QProcess::Running);
    openFromTray();
    QTRY_VERIFY_WITH_TIMEOUT(!settingsWindow().isEmpty(), Test::patience);
    QCOMPARE(xdo(QStringLiteral("getwindowgeometry ") + settingsWindow()).section(u'\n', 1),
        geometry.section(u'\n', 1));
}

void SettingsTest::launchWithoutCaptureOpensTheCaptureTab()
{
    // The desktop's global-shortcuts portal, with the tests' own backend.
    QProcess backend;
    QProcess portal;
    const auto owned = [](const char *name) {
        return QDBusConnection::sessionBus().interface()->isServiceRegistered(
            QString::fromLatin1(name));
    };
    backend.start(QStringLiteral(PORTAL_BACKEND_PATH), {});
    QTRY_VERIFY_WITH_TIMEOUT(owned("com.vesko.TestPortal"), 20000);
    QProcessEnvironment portalEnvironment = QProcessEnvironment::systemEnvironment();
    portalEnvironment.insert(QStringLiteral("XDG_DESKTOP_PORTAL_DIR"),
        QStringLiteral(VESKO_TESTS_SOURCE_DIR "/data/portals"));
    portalEnvironment.insert(QStringLiteral("XDG_CURRENT_DESKTOP"), QStringLiteral("vesko-test"));
    portal.setProcessEnvironment(portalEnvironment);
    portal.start(QStringLiteral(XDG_DESKTOP_PORTAL_PATH), {});
    QTRY_VERIFY_WITH_TIMEOUT(owned("org.freedesktop.portal.Desktop"), 20000);
    const auto stop = qScopeGuard([&] {
        for (QProcess *process : {&portal, &backend}) {
            process->terminate();
            process->waitForFinished(5000);
        }
    });

    // Another user's session, on Wayland: capture cannot work there, and the
    // launch says why on the Capture tab; the shortcuts come from the portal.
    Test::ProgramSession wayland;
    wayland.setEnvironmentVariable(
        QStringLiteral("QT_LINUX_ACCESSIBILITY_ALWAYS_ON"), QStringLiteral("1"));
    wayland.setEnvironmentVariable(QStringLiteral("WAYLAND_DISPLAY"), QStringLiteral("wayland-0"));
    QProcess *vesko = wayland.start(QStringLiteral(VESKO_PATH));
    QTRY_VERIFY_WITH_TIMEOUT(
        !windowOf(vesko, QStringLiteral("^Vesko Settings$")).isEmpty(), Test::patience);
    AccessibleTree tree;
    const QString portalShortcuts = QStringLiteral(
        "Shortcuts: Your desktop keeps Vesko's shortcuts; you change them in its settings.");
    QTRY_VERIFY_WITH_TIMEOUT((tree = AccessibleTree::read(QString::number(vesko->processId()),
                                  QStringLiteral("Vesko Settings")))
                                 .any(QStringLiteral("label"), portalShortcuts),
        Test::patience);
    const auto showing = [&tree](const char *role, const QString &name) {
        const AccessibleNode *node = tree.any(QString::fromLatin1(role), name);
        return node && node->isShowing();
    };
    // The Capture page is the one on screen: its lines show, the General page's do not.
    QVERIFY(!showing("check box", QStringLiteral("Always on top")));
    QVERIFY(showing("label", QStringLiteral("Capture is not set up in this session")));
    // Qt runs here on the X server inside a Wayland session: XWayland.
    QVERIFY(showing("label",
        QStringLiteral("Vesko runs here as an X11 program (XWayland), which cannot read the text "
                       "selected in other applications.")));
    // This desktop has no keyboard-shortcut settings for the buttons to open.
    for (const char *button : {"Grant Access…", "Open System Settings…"})
        QVERIFY2(!showing("push button", QString::fromUtf8(button)), button);
    // The panel comes up as well. The desktop's "Add a Note" brings it
    // forward, then its "Show or Hide Vesko" sends it away.
    const auto panelShown
        = [vesko] { return !windowOf(vesko, QStringLiteral("^Vesko$")).isEmpty(); };
    const auto press = [](const QString &shortcut) {
        for (const char *signal : {"Activate", "Deactivate"}) {
            const QDBusMessage answer = QDBusConnection::sessionBus().call(
                QDBusMessage::createMethodCall(QStringLiteral("com.vesko.TestPortal"),
                    QStringLiteral("/org/freedesktop/portal/desktop"),
                    QStringLiteral("com.vesko.TestPortal.Control"), QString::fromLatin1(signal))
                << shortcut);
            QCOMPARE(answer.type(), QDBusMessage::ReplyMessage);
        }
    };
    QTRY_VERIFY_WITH_TIMEOUT(panelShown(), Test::patience);
    press(QStringLiteral("quickAdd"));
    QTRY_COMPARE_WITH_TIMEOUT(xdo(QStringLiteral("getactivewindow getwindowname")),
        QStringLiteral("Vesko"), Test::patience);
    press(QStringLiteral("togglePanel"));
    QTRY_VERIFY_WITH_TIMEOUT(!panelShown(), Test::patience);
    vesko->terminate();
    QVERIFY(vesko->waitForFinished(Test::patience));
}

VESKO_TEST_MAIN(SettingsTest)
#include "tst_settings.moc"
