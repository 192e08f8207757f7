// SPDX-License-Identifier: GPL-3.0-or-later
//
// Global hot keys on a real X server (tests/x-session.sh) pressed with xdotool:
// one report per press, whatever the lock keys, and combinations another
// program or action holds (and none grabbed on a Wayland session).

#include "ProgramSession.h"
#include "TestEnvironment.h"

#include "capture/HotKeyCenter.h"
#include "platform/KeyMonitor.h"
#include "platform/SettingsFile.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11HotKeys.h"

#include <QProcess>

#include <cstdlib>

using namespace Vesko;
using Test::xdotool;

namespace {

// X key codes and the X mask of Super+Alt (Mod4 | Mod1).
constexpr int spaceKey = 65;
constexpr int superAltMask = 64 | 8;

//! Another program holding a key: the key_grabber helper.
class KeyGrabber
{
public:
    //! "grabbed", or "taken" when someone holds the key already.
    QString grab(int keyCode, int mask)
    {
        m_process.start(
            QStringLiteral(KEY_GRABBER_PATH), {QString::number(keyCode), QString::number(mask)});
        if (!m_process.waitForStarted()
            || !QTest::qWaitFor([this] { return m_process.canReadLine(); }, 10000))
            return {};
        return QString::fromUtf8(m_process.readLine()).trimmed();
    }
    void release()
    {
        m_process.closeWriteChannel();
        m_process.waitForFinished(5000);
    }
    ~KeyGrabber()
    {
        if (m_process.state() != QProcess::NotRunning) {
            m_process.kill();
            m_process.waitForFinished();
        }
    }

private:
    QProcess m_process;
};

//! The hot-key center over the X server, recording what it reports.
struct HotKeys
{
    HotKeys()
        : center(registrar)
    {
        center.setHandler([this](HotKeyAction action) { pressed.append(action); });
        center.installEventHandler();
        center.registerAll();
    }
    ~HotKeys() { center.unregisterAll(); }

    //! Every report of the keys sent so far: Super+Alt+L (copy as list) goes
    //! last as a marker, and the server delivers in order.
    QList<HotKeyAction> reports()
    {
        xdotool({QStringLiteral("key"), QStringLiteral("super+alt+l")});
        if (!QTest::qWaitFor(
                [this] {
                    return !pressed.isEmpty()
                        && pressed.last() == HotKeyAction::CopySelectionAsList;
                },
                10000))
            return {HotKeyAction::CopySelectionAsList}; // cannot match a list without a marker
        QList<HotKeyAction> sent = std::exchange(pressed, {});
        sent.removeLast();
        return sent;
    }

    X11HotKeys registrar;
    HotKeyCenter center;
    QList<HotKeyAction> pressed;
};

} // namespace

class X11HotKeysTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void onePressOneReport_data();
    void onePressOneReport();
    void releaseThatWentElsewhere();
    void takenCombinations();
};

void X11HotKeysTest::initTestCase()
{
    if (qEnvironmentVariableIsEmpty("DISPLAY"))
        QSKIP("Needs an X server: run through tests/x-session.sh");
}

void X11HotKeysTest::init()
{
    openSettingsFile()->clear();
}

void X11HotKeysTest::onePressOneReport_data()
{
    QTest::addColumn<QStringList>("keys");
    QTest::addColumn<int>("toggles");
    QTest::newRow("a tap") << QStringList {"key", "super+alt+space"} << 1;
    QTest::newRow("held through the keyboard's repeats")
        << QStringList {"keydown", "super+alt+space", "sleep", "1.2", "keyup", "super+alt+space"}
        << 1;
    QTest::newRow("held, then tapped") << QStringList {"keydown", "super+alt+space", "sleep", "0.9",
        "keyup", "super+alt+space", "sleep", "0.1", "key", "super+alt+space"}
                                       << 2;
    QTest::newRow("Super+Alt held, Space tapped twice") << QStringList {"keydown", "super+alt",
        "key", "space", "sleep", "0.1", "key", "space", "keyup", "super+alt"}
                                                        << 2;
    // Each lock key toggles its lock: on for the press, off again after.
    QTest::newRow("Caps Lock on") << QStringList {"key", "Caps_Lock", "super+alt+space",
        "Caps_Lock"} << 1;
    QTest::newRow("Num Lock on") << QStringList {"key", "Num_Lock", "super+alt+space", "Num_Lock"}
                                 << 1;
    QTest::newRow("both locks on")
        << QStringList {"key", "Caps_Lock", "Num_Lock", "super+alt+space", "Caps_Lock", "Num_Lock"}
        << 1;
}

void X11HotKeysTest::onePressOneReport()
{
    QFETCH(QStringList, keys);
    QFETCH(int, toggles);
    HotKeys hotKeys;
    QVERIFY(hotKeys.center.isRegistered(HotKeyAction::TogglePanel));
    xdotool(keys);
    QCOMPARE(hotKeys.reports(), QList<HotKeyAction>(toggles, HotKeyAction::TogglePanel));
}

void X11HotKeysTest::releaseThatWentElsewhere()
{
    HotKeys hotKeys;
    xdotool({QStringLiteral("keydown"), QStringLiteral("super+alt+c")});
    QTRY_COMPARE_WITH_TIMEOUT(
        hotKeys.pressed, QList<HotKeyAction> {HotKeyAction::CaptureSelection}, Test::patience);
    // The grab that the press activated ends while the key is still down, so
    // the key's release goes to the focused window instead.
    xcb_connection_t *c = hotKeys.registrar.connection()->get();
    xcb_ungrab_keyboard(c, XCB_CURRENT_TIME);
    std::free(xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr));
    xdotool({QStringLiteral("keyup"), QStringLiteral("super+alt+c")});
    // The next press is a press, not a repeat of the first.
    xdotool({QStringLiteral("key"), QStringLiteral("super+alt+c")});
    QCOMPARE(hotKeys.reports(),
        (QList<HotKeyAction> {HotKeyAction::CaptureSelection, HotKeyAction::CaptureSelection}));
}

void X11HotKeysTest::takenCombinations()
{
    // On a Wayland session nothing is grabbed: the key is free for another program.
    qputenv("WAYLAND_DISPLAY", "wayland-0");
    X11HotKeys onWayland;
    HotKeyCenter centerOnWayland(onWayland);
    centerOnWayland.registerAll();
    qunsetenv("WAYLAND_DISPLAY");
    QVERIFY(!onWayland.isAvailable());
    for (HotKeyAction action : allHotKeyActions) {
        QVERIFY(!centerOnWayland.isRegistered(action));
        QVERIFY(!centerOnWayland.isRefused(action));
    }
    KeyGrabber other;
    QCOMPARE(other.grab(spaceKey, superAltMask), QStringLiteral("grabbed"));
    // An edited settings file: "Add a Note" on Super+Alt+C, the capture's combination.
    openSettingsFile()->setValue(HotKeyCenter::settingsKey(HotKeyAction::QuickAdd),
        KeyCombo::defaultFor(HotKeyAction::CaptureSelection).toJson());
    HotKeys hotKeys;
    QVERIFY(hotKeys.center.isRefused(HotKeyAction::TogglePanel));
    QVERIFY(hotKeys.center.isRegistered(HotKeyAction::CaptureSelection));
    QVERIFY(hotKeys.center.isRefused(HotKeyAction::QuickAdd));
    xdotool(
        {QStringLiteral("key"), QStringLiteral("super+alt+space"), QStringLiteral("super+alt+c")});
    QCOMPARE(hotKeys.reports(), QList<HotKeyAction> {HotKeyAction::CaptureSelection});

    // Once the other program lets go, setting the combination again takes it.
    other.release();
    hotKeys.center.setCombo(
        KeyCombo::defaultFor(HotKeyAction::TogglePanel), HotKeyAction::TogglePanel);
    QVERIFY(hotKeys.center.isRegistered(HotKeyAction::TogglePanel));
    QVERIFY(!hotKeys.center.isRefused(HotKeyAction::TogglePanel));
    // Letting the refused action go leaves the capture's grab where it was.
    hotKeys.center.clearCombo(HotKeyAction::QuickAdd);
    xdotool(
        {QStringLiteral("key"), QStringLiteral("super+alt+space"), QStringLiteral("super+alt+c")});
    QCOMPARE(hotKeys.reports(),
        (QList<HotKeyAction> {HotKeyAction::TogglePanel, HotKeyAction::CaptureSelection}));

    // And "Add a Note" takes a free combination.
    hotKeys.center.setCombo(
        {57, ModifierFlag::Control | ModifierFlag::Option}, HotKeyAction::QuickAdd);
    QVERIFY(hotKeys.center.isRegistered(HotKeyAction::QuickAdd));
    xdotool({QStringLiteral("key"), QStringLiteral("super+alt+n"), QStringLiteral("super+alt+c")});
    QCOMPARE(hotKeys.reports(),
        (QList<HotKeyAction> {HotKeyAction::QuickAdd, HotKeyAction::CaptureSelection}));
}

VESKO_TEST_MAIN(X11HotKeysTest)
#include "tst_x11hotkeys.moc"
