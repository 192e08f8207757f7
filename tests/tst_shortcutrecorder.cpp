// SPDX-License-Identifier: GPL-3.0-or-later
//
// The shortcut recorder in a real X session, with real key events typed by
// xdotool and real grabs on the root window: Escape with Shift still
// cancels, Ctrl+Backspace and Delete clear, a key without a modifier and a
// combination another action holds are refused with their words, an
// action's own combination is no conflict, and a combination that another X
// client grabbed first is stored but shown as taken at once.

#include "TestEnvironment.h"

#include "ProgramSession.h"
#include "capture/HotKeyCenter.h"
#include "platform/KeyMonitor.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11HotKeys.h"
#include "platform/x11/X11Keyboard.h"
#include "shell/Preferences.h"
#include "shell/ShortcutRecorderView.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Vesko;
using namespace Vesko::ModifierFlag;

namespace {

// X key codes of the keys typed below, as the server's evdev keymap has them.
constexpr quint16 keyK = 45;
constexpr quint16 keyN = 57;
// X modifier masks.
constexpr uint16_t controlMask = 4;
constexpr uint16_t altMask = 8;

//! Another X client holding a key combination on the root window.
class ForeignGrab
{
public:
    ForeignGrab(quint16 keyCode, uint16_t mask)
        : m_keyCode(keyCode)
        , m_mask(mask)
    {
        xcb_void_cookie_t cookie = xcb_grab_key_checked(m_connection.get(), 1, m_connection.root(),
            mask, xcb_keycode_t(keyCode), XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
        xcb_generic_error_t *error = xcb_request_check(m_connection.get(), cookie);
        m_held = error == nullptr;
        std::free(error);
    }
    ~ForeignGrab()
    {
        xcb_ungrab_key(m_connection.get(), xcb_keycode_t(m_keyCode), m_connection.root(), m_mask);
        xcb_flush(m_connection.get());
    }
    bool isHeld() const { return m_held; }

private:
    X11Connection m_connection;
    quint16 m_keyCode;
    uint16_t m_mask;
    bool m_held = false;
};

} // namespace

Q_DECLARE_METATYPE(std::optional<Vesko::KeyCombo>)

class ShortcutRecorderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void recordsRealKeys_data();
    void recordsRealKeys();
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
    QTest::addColumn<bool>("takenElsewhere");

    const KeyCombo quickAdd {keyN, Control | Option};
    QTest::newRow("shift+escape cancels")
        << HotKeyAction::QuickAdd << "shift+Escape" << std::optional(quickAdd) << "Super+Alt+N"
        << "" << false;
    QTest::newRow("ctrl+backspace clears")
        << HotKeyAction::QuickAdd << "ctrl+BackSpace" << std::optional<KeyCombo>() << "None"
        << "" << false;
    QTest::newRow("delete clears")
        << HotKeyAction::QuickAdd << "Delete" << std::optional<KeyCombo>() << "None"
        << "" << false;
    QTest::newRow("no modifier") << HotKeyAction::QuickAdd << "k" << std::optional(quickAdd)
                                 << "Super+Alt+N"
                                 << "Add a modifier like Ctrl or Alt." << false;
    QTest::newRow("shift alone is a modifier")
        << HotKeyAction::QuickAdd << "shift+k" << std::optional(KeyCombo {keyK, Shift}) << "Shift+K"
        << "" << false;
    QTest::newRow("held by another action")
        << HotKeyAction::QuickAdd << "super+alt+c" << std::optional(quickAdd) << "Super+Alt+N"
        << "Already used by “Capture Selection”." << false;
    QTest::newRow("its own combination")
        << HotKeyAction::QuickAdd << "super+alt+n" << std::optional(quickAdd) << "Super+Alt+N"
        << "" << false;
    QTest::newRow("a new combination")
        << HotKeyAction::CopySelectionAsList << "ctrl+shift+k"
        << std::optional(KeyCombo {keyK, Command | Shift}) << "Ctrl+Shift+K"
        << "" << false;
    QTest::newRow("taken by another application")
        << HotKeyAction::TogglePanel << "ctrl+alt+k"
        << std::optional(KeyCombo {keyK, Command | Option}) << "Ctrl+Alt+K"
        << "" << true;
}

void ShortcutRecorderTest::recordsRealKeys()
{
    QFETCH(HotKeyAction, action);
    QFETCH(QString, keys);
    QFETCH(std::optional<KeyCombo>, combo);
    QFETCH(QString, buttonText);
    QFETCH(QString, warning);
    QFETCH(bool, takenElsewhere);

    Preferences::openSettings()->clear();
    std::unique_ptr<ForeignGrab> foreign;
    if (takenElsewhere) {
        foreign = std::make_unique<ForeignGrab>(keyK, controlMask | altMask);
        QVERIFY(foreign->isHeld());
    }
    X11Connection connection;
    X11Keyboard layout(connection.get());
    X11HotKeys registrar;
    HotKeyCenter hotKeys(registrar);

    QWidget window;
    window.setWindowTitle(QStringLiteral("Recorder test"));
    auto *layoutBox = new QVBoxLayout(&window);
    auto *recorder = new ShortcutRecorderView(action, hotKeys, &layout);
    layoutBox->addWidget(recorder);
    window.resize(320, 120);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));

    // A real click starts the recording, real keys end it.
    QPushButton *button = recorder->findChild<QPushButton *>();
    const QPoint centre = button->mapToGlobal(button->rect().center());
    Test::xdotool({QStringLiteral("mousemove"), QString::number(centre.x()),
        QString::number(centre.y()), QStringLiteral("click"), QStringLiteral("1")});
    QTRY_VERIFY(recorder->isRecording());
    QCOMPARE(button->text(), QStringLiteral("Press keys…"));
    // The keyboard is held while recording: the key goes nowhere else.
    QTRY_VERIFY(QWidget::keyboardGrabber() == button);
    Test::xdotool({QStringLiteral("key"), keys});

    QTRY_VERIFY(!recorder->isRecording());
    QCOMPARE(hotKeys.combo(action), combo);
    QCOMPARE(button->text(), buttonText);
    QCOMPARE(recorder->warning(), warning);
    QCOMPARE(button->accessibleName(), title(action) + QStringLiteral(" shortcut"));
    // What is stored is read back the same by the next start.
    QCOMPARE(HotKeyCenter(registrar).combo(action), combo);

    const QString taken = QStringLiteral("Taken by another application");
    QCOMPARE(hotKeys.isRefused(action), takenElsewhere);
    QCOMPARE(recorder->refusalText(), takenElsewhere ? taken : QString());
    bool shown = false;
    for (QLabel *label : recorder->findChildren<QLabel *>())
        shown = shown || (label->text() == taken && label->isVisibleTo(&window));
    QCOMPARE(shown, takenElsewhere);
    // A combination recorded and free is grabbed at once.
    const bool recorded = combo && warning.isEmpty() && keys != u"shift+Escape";
    QCOMPARE(hotKeys.isRegistered(action), recorded && !takenElsewhere);
}

int main(int argc, char *argv[])
{
    Vesko::Test::IsolatedEnvironment environment;
    QApplication app(argc, argv);
    ShortcutRecorderTest test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_shortcutrecorder.moc"
