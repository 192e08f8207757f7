// SPDX-License-Identifier: GPL-3.0-or-later
//
// The shortcut recorder in a real X session: keys typed by xdotool, grabs on
// the root window held by another client, and key names that follow the
// keyboard layout as it changes.

#include "WidgetTestMain.h"

#include "ProgramSession.h"
#include "capture/HotKeyCenter.h"
#include "platform/KeyMonitor.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11HotKeys.h"
#include "platform/x11/X11KeyLayout.h"
#include "shell/Preferences.h"
#include "shell/ShortcutRecorderView.h"

// The XKB header names a member "explicit", a C++ keyword.
#define explicit xkbExplicit
#include <xcb/xkb.h>
#undef explicit

#include <QApplication>
#include <QLabel>
#include <QProcess>
#include <QPushButton>
#include <QScopeGuard>

using namespace Vesko;
using namespace Vesko::ModifierFlag;

namespace {

// X key codes of the keys typed below, as the server's evdev keymap has them.
constexpr quint16 keyK = 45;
constexpr quint16 keyN = 57;
// X modifier masks.
constexpr uint16_t controlMask = 4;
constexpr uint16_t altMask = 8;

} // namespace

Q_DECLARE_METATYPE(std::optional<Vesko::KeyCombo>)
Q_DECLARE_METATYPE(Vesko::KeyCombo)

class ShortcutRecorderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void recordsRealKeys_data();
    void recordsRealKeys();
    void refusalNamesWhoHoldsTheKeys_data();
    void refusalNamesWhoHoldsTheKeys();
    void keyNamesFollowTheLayout_data();
    void keyNamesFollowTheLayout();
};

void ShortcutRecorderTest::initTestCase()
{
    if (QGuiApplication::platformName() != QLatin1String("xcb"))
        QSKIP("Needs an X server: run through tests/x-session.sh");
}

void ShortcutRecorderTest::recordsRealKeys_data()
{
    QTest::addColumn<HotKeyAction>("action");
    QTest::addColumn<QString>("keys");
    QTest::addColumn<std::optional<KeyCombo>>("combo");
    QTest::addColumn<QString>("buttonText");
    QTest::addColumn<QString>("warning");

    const KeyCombo quickAdd {keyN, Control | Option};
    const auto row = [&](const char *name, HotKeyAction action, const char *keys,
                         std::optional<KeyCombo> combo, const char *button, const char *warning) {
        QTest::newRow(name) << action << keys << combo << button << warning;
    };
    const HotKeyAction add = HotKeyAction::QuickAdd;
    row("shift+escape cancels", add, "shift+Escape", quickAdd, "Super+Alt+N", "");
    row("ctrl+backspace clears", add, "ctrl+BackSpace", std::nullopt, "None", "");
    row("delete clears", add, "Delete", std::nullopt, "None", "");
    row("no modifier", add, "k", quickAdd, "Super+Alt+N", "Add a modifier like Ctrl or Alt.");
    row("shift alone is a modifier", add, "shift+k", KeyCombo {keyK, Shift}, "Shift+K", "");
    row("held by another action", add, "super+alt+c", quickAdd, "Super+Alt+N",
        "Already used by “Capture Selection”.");
    row("its own combination", add, "super+alt+n", quickAdd, "Super+Alt+N", "");
    row("a new combination", HotKeyAction::CopySelectionAsList, "ctrl+shift+k",
        KeyCombo {keyK, Command | Shift}, "Ctrl+Shift+K", "");
}

void ShortcutRecorderTest::recordsRealKeys()
{
    QFETCH(HotKeyAction, action);
    QFETCH(QString, keys);
    QFETCH(std::optional<KeyCombo>, combo);
    QFETCH(QString, buttonText);
    QFETCH(QString, warning);

    Preferences::openSettings()->clear();
    X11KeyLayout layout;
    X11HotKeys registrar;
    HotKeyCenter hotKeys(registrar);

    ShortcutRecorderView recorder(action, hotKeys, &layout);
    recorder.resize(320, 120);
    recorder.show();
    QVERIFY(QTest::qWaitForWindowExposed(&recorder));

    // A real click starts the recording, real keys end it.
    QPushButton *button = recorder.findChild<QPushButton *>();
    const QPoint centre = button->mapToGlobal(button->rect().center());
    Test::xdotool({QStringLiteral("mousemove"), QString::number(centre.x()),
        QString::number(centre.y()), QStringLiteral("click"), QStringLiteral("1")});
    QTRY_VERIFY_WITH_TIMEOUT(recorder.isRecording(), Test::patience);
    QCOMPARE(button->text(), QStringLiteral("Press keys…"));
    // The keyboard is held while recording: the key goes nowhere else.
    QTRY_VERIFY_WITH_TIMEOUT(QWidget::keyboardGrabber() == button, Test::patience);
    Test::xdotool({QStringLiteral("key"), keys});

    QTRY_VERIFY_WITH_TIMEOUT(!recorder.isRecording(), Test::patience);
    QCOMPARE(hotKeys.combo(action), combo);
    QCOMPARE(button->text(), buttonText);
    QCOMPARE(recorder.warning(), warning);
    QCOMPARE(button->accessibleName(), title(action) + QStringLiteral(" shortcut"));
    // What is stored is read back the same by the next start.
    QCOMPARE(HotKeyCenter(registrar).combo(action), combo);
    // A combination recorded and free is grabbed at once.
    const bool recorded = combo && warning.isEmpty() && keys != u"shift+Escape";
    QCOMPARE(hotKeys.isRegistered(action), recorded);
    QCOMPARE(recorder.refusalText(), QString());
}

void ShortcutRecorderTest::refusalNamesWhoHoldsTheKeys_data()
{
    QTest::addColumn<KeyCombo>("combo");
    QTest::addColumn<bool>("foreignGrab");
    QTest::addColumn<QString>("refusal");
    // Super+Alt+Space, the panel's own key.
    QTest::newRow("another of Vesko's actions")
        << KeyCombo {65, Control | Option} << false << "Already used by “Show or Hide Vesko”.";
    QTest::newRow("another X client")
        << KeyCombo {keyK, Command | Option} << true << "Taken by another application";
}

void ShortcutRecorderTest::refusalNamesWhoHoldsTheKeys()
{
    QFETCH(KeyCombo, combo);
    QFETCH(bool, foreignGrab);
    QFETCH(QString, refusal);

    Preferences::openSettings()->clear();
    // Another X client holding the combination on the root window.
    QProcess grabber;
    if (foreignGrab) {
        grabber.start(QStringLiteral(KEY_GRABBER_PATH),
            {QString::number(keyK), QString::number(controlMask | altMask)});
        QVERIFY(QTest::qWaitFor([&] { return grabber.canReadLine(); }, 10000));
        QCOMPARE(grabber.readLine().trimmed(), QByteArray("grabbed"));
    }
    X11KeyLayout layout;
    X11HotKeys registrar;
    HotKeyCenter hotKeys(registrar);
    hotKeys.registerAll();
    QVERIFY(hotKeys.isRegistered(HotKeyAction::TogglePanel));
    ShortcutRecorderView recorder(HotKeyAction::QuickAdd, hotKeys, &layout);
    recorder.show();

    // Stored as the settings file might hold it, past the recorder's check.
    hotKeys.setCombo(combo, HotKeyAction::QuickAdd);
    QVERIFY(hotKeys.isRefused(HotKeyAction::QuickAdd));
    QCOMPARE(recorder.refusalText(), refusal);
    bool shown = false;
    for (QLabel *label : recorder.findChildren<QLabel *>())
        shown = shown || (label->text() == refusal && label->isVisibleTo(&recorder));
    QVERIFY(shown);

    // Once the holder lets go, the combination is grabbed and the line goes.
    if (foreignGrab) {
        grabber.kill();
        grabber.waitForFinished();
        // The other client's release reaches the server on its own
        // connection: ask until it has.
        QTRY_VERIFY_WITH_TIMEOUT(
            (hotKeys.registerAll(), hotKeys.isRegistered(HotKeyAction::QuickAdd)), Test::patience);
    } else {
        // The action that held it passes it on at once.
        hotKeys.clearCombo(HotKeyAction::TogglePanel);
        QVERIFY(hotKeys.isRegistered(HotKeyAction::QuickAdd));
    }
    QCOMPARE(recorder.refusalText(), QString());
}

void ShortcutRecorderTest::keyNamesFollowTheLayout_data()
{
    // The key code of a combination and its name on a US keyboard, then
    // setxkbmap's arguments, the layout locked after (its index in the list)
    // and the name the key shows then.
    QTest::addColumn<int>("keyCode");
    QTest::addColumn<QString>("usName");
    QTest::addColumn<QStringList>("layout");
    QTest::addColumn<int>("group");
    QTest::addColumn<QString>("name");
    QTest::newRow("German") << 29 << "Y" << QStringList {"de"} << 0 << "Z";
    // Es, the Cyrillic letter.
    QTest::newRow("Russian first")
        << 54 << "C" << QStringList {"-layout", "ru,us"} << 0 << "\u0421";
    QTest::newRow("Russian and US, US chosen")
        << 54 << "C" << QStringList {"-layout", "ru,us"} << 1 << "C";
    QTest::newRow("US and Russian, Russian chosen")
        << 54 << "C" << QStringList {"-layout", "us,ru"} << 1 << "\u0421";
}

void ShortcutRecorderTest::keyNamesFollowTheLayout()
{
    QFETCH(int, keyCode);
    QFETCH(QString, usName);
    QFETCH(QStringList, layout);
    QFETCH(int, group);
    QFETCH(QString, name);

    Preferences::openSettings()->clear();
    QVERIFY(Test::setxkbmap({QStringLiteral("us")}));
    const auto usAfterwards = qScopeGuard([] { Test::setxkbmap({QStringLiteral("us")}); });
    X11KeyLayout keyLayout;
    X11HotKeys registrar;
    HotKeyCenter hotKeys(registrar);
    hotKeys.setCombo({quint16(keyCode), Control | Option}, HotKeyAction::QuickAdd);
    ShortcutRecorderView recorder(HotKeyAction::QuickAdd, hotKeys, &keyLayout);
    recorder.show();
    // Shown and settled: no focus or hover event refreshes the view any more.
    QVERIFY(QTest::qWaitForWindowActive(&recorder));
    QPushButton *button = recorder.findChild<QPushButton *>();
    QCOMPARE(button->text(), QStringLiteral("Super+Alt+") + usName);

    // The layout changes under the open view.
    QVERIFY(Test::setxkbmap(layout));
    if (group != 0) {
        X11Connection x;
        xcb_connection_t *c = x.get();
        std::free(xcb_xkb_use_extension_reply(c, xcb_xkb_use_extension(c, 1, 0), nullptr));
        xcb_generic_error_t *error = xcb_request_check(c,
            xcb_xkb_latch_lock_state_checked(
                c, XCB_XKB_ID_USE_CORE_KBD, 0, 0, 1, xcb_xkb_group_t(group), 0, 0, 0));
        QVERIFY(!error);
    }
    QTRY_COMPARE_WITH_TIMEOUT(button->text(), QStringLiteral("Super+Alt+") + name, Test::patience);
}

VESKO_WIDGET_TEST_MAIN(ShortcutRecorderTest)

#include "tst_shortcutrecorder.moc"
