// SPDX-License-Identifier: GPL-3.0-or-later
//
// The program's commands as actions, in a window of their own as a note
// window has them: a focused text field keeps Copy, Select All and Undo;
// without one they act on the notes (all visible ones when nothing is
// selected); the section steps wrap; a jump past the last section does
// nothing, not even bring the panel forward; a key the window already uses
// stays with its own control; "Hide Vesko" is the panel's toggle; Ctrl+W and
// Escape close a window of the program rather than hide the panel; Shift+F10
// opens the focused control's menu.

#include "MenuText.h"
#include "StoreFixture.h"
#include "WidgetTestMain.h"

#include "panel/text/NativeInlineTextField.h"
#include "panel/window/PanelCommands.h"
#include "panel/window/PanelMenus.h"
#include "panel/window/PanelState.h"
#include "panel/window/Shortcut.h"
#include "shell/AppCommands.h"
#include "shell/KeyboardContextMenu.h"
#include "shell/WindowCloseKeys.h"

#include <QAction>
#include <QClipboard>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTextEdit>
#include <QTimer>
#include <QVBoxLayout>

using namespace Vesko;
using namespace Qt::StringLiterals;
using Test::idFor;

class AppCommandsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void copyAndUndoPreferTheTextField();
    void panelAndSectionCommands_data();
    void panelAndSectionCommands();
    void keysTheWindowUsesStayWithIt();
    void moreOptionsReachesEveryCommand();
    void closeKeysCloseTheWindow_data();
    void closeKeysCloseTheWindow();
    void shiftF10OpensTheFocusedControlsMenu_data();
    void shiftF10OpensTheFocusedControlsMenu();

private:
    std::unique_ptr<Test::StoreFixture> m_fixture;
    std::unique_ptr<PanelState> m_state;
    std::unique_ptr<AppCommands> m_commands;
    std::unique_ptr<QWidget> m_window;
    QTextEdit *m_editor = nullptr;
    int m_broughtForward = 0;
    int m_hides = 0;
    int m_toggles = 0;
};

void AppCommandsTest::init()
{
    m_fixture = std::make_unique<Test::StoreFixture>();
    m_fixture->make({"*Inbox:a,b|Work:c|Later:d"});
    m_state = std::make_unique<PanelState>();
    m_broughtForward = 0;
    m_hides = 0;
    m_toggles = 0;
    MenuBarCommands hooks;
    hooks.showPanel = [this](bool) { ++m_broughtForward; };
    hooks.isPanelShown = [] { return true; };
    hooks.hidePanel = [this] { ++m_hides; };
    hooks.togglePanel = [this] { ++m_toggles; };
    m_commands = std::make_unique<AppCommands>(m_fixture->store(), *m_state, hooks);
    m_window = std::make_unique<QWidget>();
    auto *layout = new QVBoxLayout(m_window.get());
    m_editor = new QTextEdit(m_window.get());
    layout->addWidget(m_editor);
    m_commands->attachTo(m_window.get());
    m_window->show();
    QApplication::setActiveWindow(m_window.get());
    QGuiApplication::clipboard()->clear();
}

void AppCommandsTest::cleanup()
{
    m_window.reset();
    m_commands.reset();
    m_state.reset();
    m_fixture.reset();
}

void AppCommandsTest::copyAndUndoPreferTheTextField()
{
    // Without a text field holding the keyboard, Copy takes every visible
    // note: those of all the project's sections.
    m_window->setFocus();
    m_editor->clearFocus();
    m_commands->action("Copy")->trigger();
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("a\n\nb\n\nc\n\nd"));
    // With a selection, the selection.
    m_fixture->store().setSelection({idFor("c")}, idFor("c"));
    m_commands->action("Copy")->trigger();
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("c"));

    m_editor->setPlainText("typed words");
    m_editor->setFocus();
    QTRY_VERIFY_WITH_TIMEOUT(m_editor->hasFocus(), Test::patience);
    m_editor->selectAll();
    QTest::keyClick(m_editor, Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("typed words"));
    QGuiApplication::clipboard()->clear();
    m_commands->action("Copy")->trigger();
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("typed words"));

    Store &store = m_fixture->store();
    store.deleteNotes({idFor("a")});
    QVERIFY(!store.note(idFor("a")));
    QTest::keyClicks(m_editor, "xy");
    QTest::keyClick(m_editor, Qt::Key_Z, Qt::ControlModifier);
    // The typing went back, the library's deletion did not.
    QVERIFY(!m_editor->toPlainText().contains("xy"));
    QVERIFY(!store.note(idFor("a")));
    m_editor->clearFocus();
    m_window->setFocus();
    m_commands->action("Undo")->trigger();
    QVERIFY(store.note(idFor("a")));
}

void AppCommandsTest::panelAndSectionCommands_data()
{
    QTest::addColumn<QString>("entry");
    QTest::addColumn<QString>("active");
    QTest::addColumn<int>("broughtForward");
    QTest::addColumn<int>("toggles");
    QTest::newRow("next") << "Next Section" << u"Work"_s << 1 << 0;
    QTest::newRow("previous wraps to the last") << "Previous Section" << u"Later"_s << 1 << 0;
    QTest::newRow("jump to 3") << "Jump to Section 3" << u"Later"_s << 1 << 0;
    QTest::newRow("jump past the last does nothing") << "Jump to Section 9" << u"Inbox"_s << 0 << 0;
    // The entry reads "Hide Vesko" while the panel is on screen; a panel
    // behind another window comes forward rather than going, so the entry
    // leaves that choice to the panel's toggle.
    QTest::newRow("hide is the panel's toggle") << "Hide Vesko" << u"Inbox"_s << 0 << 1;
}

void AppCommandsTest::panelAndSectionCommands()
{
    QFETCH(QString, entry);
    QFETCH(QString, active);
    QFETCH(int, broughtForward);
    QFETCH(int, toggles);
    for (QMenu *menu : m_commands->menus())
        Q_EMIT menu->aboutToShow();
    m_commands->action(entry)->trigger();
    QCOMPARE(m_fixture->store().activeSection().title, active);
    QCOMPARE(m_broughtForward, broughtForward);
    QCOMPARE(m_toggles, toggles);
    QCOMPARE(m_hides, 0);
}

void AppCommandsTest::keysTheWindowUsesStayWithIt()
{
    QWidget window;
    auto *button = new QPushButton("Copy this", &window);
    button->setShortcut(Shortcuts::keySequence(Shortcut::copyAsList));
    m_commands->attachTo(&window);
    QVERIFY(!window.actions().contains(m_commands->action("Copy as List")));
    QVERIFY(window.actions().contains(m_commands->action("Copy")));
}

void AppCommandsTest::moreOptionsReachesEveryCommand()
{
    PanelCommands::Hooks hooks;
    hooks.commandMenus = [this] { return m_commands->menus(); };
    PanelCommands::shared().setHooks(hooks);
    QMenu overflow;
    fillOverflowMenu(overflow, m_fixture->store(), *m_state, m_fixture->preferences());
    PanelCommands::shared().setHooks({});

    QMenu *all = Test::submenu(overflow, QStringLiteral("All Commands"));
    QVERIFY(all);
    QCOMPARE(Test::describeMenu(*all), QStringLiteral("Vesko>|File>|Edit>|Notes>|Sections>"));
    // Keys from the table of shortcuts; none for what this system does not offer.
    QCOMPARE(m_commands->action("Copy as List")->shortcut(), QKeySequence("Ctrl+Shift+C"));
    QCOMPARE(m_commands->action("Jump to Section 3")->shortcut(), QKeySequence("Ctrl+3"));
    QCOMPARE(m_commands->action("Delete")->shortcut(), QKeySequence("Ctrl+Backspace"));
    QVERIFY(!m_commands->action("Check for Updates…"));
    // A command without a key: with nothing selected it acts on every visible note.
    QMenu *notes = Test::submenu(*all, QStringLiteral("Notes"));
    QAction *markDone = notes ? Test::menuEntry(*notes, QStringLiteral("Mark as Done")) : nullptr;
    QVERIFY(markDone);
    markDone->trigger();
    Store &store = m_fixture->store();
    QVERIFY(store.note(idFor("a"))->isDone);
    QVERIFY(store.note(idFor("b"))->isDone);
}

namespace {

//! A control that uses Escape itself, as the shortcut recorder does.
class TakesEscape : public QWidget
{
public:
    using QWidget::QWidget;
    int escapes = 0;

protected:
    void keyPressEvent(QKeyEvent *event) override
    {
        if (event->key() == Qt::Key_Escape)
            ++escapes;
        else
            QWidget::keyPressEvent(event);
    }
};

//! Shows \a window holding one control of the kind named, with the keyboard
//! in it; returns the widget that has the keyboard.
QWidget *showWithFocusedControl(QWidget &window, const QString &kind)
{
    auto *layout = new QVBoxLayout(&window);
    QWidget *control = nullptr;
    if (kind == "text editor") {
        control = new QPlainTextEdit("words", &window);
    } else if (kind == "line edit") {
        control = new QLineEdit("words", &window);
    } else if (kind == "button") {
        control = new QPushButton("Copy", &window);
        control->setFocusPolicy(Qt::StrongFocus);
    } else if (kind == "panel text field") {
        auto *field = new NativeInlineTextField(&window);
        field->setText("words");
        layout->addWidget(field);
        control = field->editor();
    } else {
        control = new TakesEscape(&window);
        control->setFocusPolicy(Qt::StrongFocus);
    }
    if (control->parentWidget() == &window)
        layout->addWidget(control);
    window.show();
    QApplication::setActiveWindow(&window);
    control->setFocus();
    return control;
}

} // namespace

void AppCommandsTest::closeKeysCloseTheWindow_data()
{
    QTest::addColumn<QString>("focus");
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<bool>("closes");
    const int ctrl = int(Qt::ControlModifier);
    for (const char *focus : {"text editor", "line edit", "button"}) {
        QTest::addRow("%s, Ctrl+W", focus) << focus << int(Qt::Key_W) << ctrl << true;
        QTest::addRow("%s, Escape", focus) << focus << int(Qt::Key_Escape) << 0 << true;
    }
    QTest::newRow("control that takes Escape, Escape")
        << "takes escape" << int(Qt::Key_Escape) << 0 << false;
    QTest::newRow("control that takes Escape, Ctrl+W")
        << "takes escape" << int(Qt::Key_W) << ctrl << true;
    QTest::newRow("Shift+Escape") << "button" << int(Qt::Key_Escape) << int(Qt::ShiftModifier)
                                  << false;
}

void AppCommandsTest::closeKeysCloseTheWindow()
{
    QFETCH(QString, focus);
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(bool, closes);
    // A note window: its own close keys first, then the program's commands.
    QWidget window;
    new WindowCloseKeys(&window);
    m_commands->attachTo(&window);
    QWidget *control = showWithFocusedControl(window, focus);
    QTRY_VERIFY_WITH_TIMEOUT(control->hasFocus(), Test::patience);

    QTest::keyClick(control, Qt::Key(key), Qt::KeyboardModifiers::fromInt(modifiers));
    QCoreApplication::processEvents();
    QCOMPARE(window.isVisible(), !closes);
    // The panel is neither hidden nor toggled by a window's close keys.
    QCOMPARE(m_hides, 0);
    QCOMPARE(m_toggles, 0);
    if (auto *takes = dynamic_cast<TakesEscape *>(control))
        QCOMPARE(takes->escapes, key == Qt::Key_Escape ? 1 : 0);
}

void AppCommandsTest::shiftF10OpensTheFocusedControlsMenu_data()
{
    QTest::addColumn<QString>("focus");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<bool>("grabbed");
    QTest::addColumn<bool>("opens");
    const int shift = int(Qt::ShiftModifier);
    for (const char *focus : {"line edit", "text editor", "panel text field"}) {
        QTest::addRow("%s, Shift+F10", focus) << focus << shift << false << true;
        QTest::addRow("%s, F10", focus) << focus << 0 << false << false;
        QTest::addRow("%s, Ctrl+Shift+F10", focus)
            << focus << (shift | int(Qt::ControlModifier)) << false << false;
    }
    // A control recording a shortcut holds the keyboard: the key is its.
    QTest::newRow("keyboard grabbed") << "line edit" << shift << true << false;
}

void AppCommandsTest::shiftF10OpensTheFocusedControlsMenu()
{
    QFETCH(QString, focus);
    QFETCH(int, modifiers);
    QFETCH(bool, grabbed);
    QFETCH(bool, opens);
    KeyboardContextMenu contextKeys;
    qApp->installEventFilter(&contextKeys);
    QWidget window;
    QWidget *control = showWithFocusedControl(window, focus);
    QTRY_VERIFY_WITH_TIMEOUT(control->hasFocus(), Test::patience);
    if (grabbed)
        control->grabKeyboard();
    // Some menus run their own event loop: the one that opens is seen and closed from it.
    bool opened = false;
    QTimer watch;
    connect(&watch, &QTimer::timeout, this, [&opened] {
        if (QWidget *popup = QApplication::activePopupWidget()) {
            opened = opened || qobject_cast<QMenu *>(popup);
            popup->close();
        }
    });
    watch.start(20);
    QTest::keyClick(control, Qt::Key_F10, Qt::KeyboardModifiers::fromInt(modifiers));
    if (opens)
        QTRY_VERIFY_WITH_TIMEOUT(opened, Test::patience);
    else
        QTest::qWait(100);
    QCOMPARE(opened, opens);
    if (grabbed)
        control->releaseKeyboard();
}

VESKO_WIDGET_TEST_MAIN(AppCommandsTest)
#include "tst_appcommands.moc"
