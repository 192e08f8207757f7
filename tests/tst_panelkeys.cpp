// SPDX-License-Identifier: GPL-3.0-or-later
//
// The panel's keys on a real root view and Store: each key in each place the
// keyboard can be (list, composer, search, inline editor, a layer) and what
// it changed; the text field's filter, the Escape ladder, undo, and an edit
// in place saved when the panel comes forward or hides.

#include "MenuText.h"
#include "PanelTestRig.h"
#include "WidgetTestMain.h"

#include "panel/list/PanelListView.h"
#include "panel/text/ComposerView.h"
#include "panel/text/NativeInlineTextField.h"
#include "panel/text/SearchFieldView.h"
#include "panel/window/PanelCommands.h"
#include "panel/window/PanelController.h"
#include "panel/window/PanelKeyHandler.h"
#include "panel/window/PanelRootView.h"
#include "panel/window/PanelWindow.h"
#include "shell/Toast.h"

#include <QClipboard>
#include <QLineEdit>
#include <QMenu>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QTextEdit>

using namespace Vesko;
using Test::idFor;
using Test::namesOf;

namespace {

constexpr int ctrl = int(Qt::ControlModifier);
constexpr int shift = int(Qt::ShiftModifier);
constexpr int alt = int(Qt::AltModifier);

//! Everything a shortcut can change, as one text, to tell "nothing changed".
QString snapshot(const Store &store, const PanelState &state)
{
    QStringList parts;
    for (const NoteSection &section : store.activeProject().sections) {
        QStringList notes;
        for (const Note &note : section.notes)
            notes.append(note.isDone ? note.text.toUpper() : note.text);
        parts.append(section.title + (section.isCollapsed ? "+" : "") + ":" + notes.join(u','));
    }
    parts.append("active=" + store.activeSection().title);
    parts.append("selection=" + namesOf(store.selection().values()));
    parts.append("expanded=" + namesOf(store.expandedNoteIDs().values()));
    parts.append(
        "editing=" + (store.editingNoteID() ? namesOf({*store.editingNoteID()}) : QString()));
    parts.append("layer=" + QString::number(int(state.frontLayer())));
    parts.append("search=" + store.searchText());
    return parts.join(u' ');
}

} // namespace

class PanelKeysTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void keysInContext_data();
    void keysInContext();
    void textFilter_data();
    void textFilter();
    void searchThenEscapeLadder();
    void ignoredResults();
    void undoTypingFirstThenTheLibrary_data();
    void undoTypingFirstThenTheLibrary();
    void showingOrHidingThePanelSavesAnOpenEdit_data();
    void showingOrHidingThePanelSavesAnOpenEdit();
    void toggleRightAfterShowing_data();
    void toggleRightAfterShowing();

private:
    PanelRootView &showRoot(const QStringList &projects);
    //! Puts the keyboard in \a context; false when it could not.
    bool enter(const QString &context);
    void press(int key, int modifiers);

    std::unique_ptr<Test::StoreFixture> m_fixture;
    std::unique_ptr<PanelState> m_state;
    std::unique_ptr<PanelRootView> m_root;
};

void PanelKeysTest::init()
{
    m_fixture = std::make_unique<Test::StoreFixture>();
    m_state = std::make_unique<PanelState>();
    PanelCommands::shared().setHooks({});
    // Nothing from an earlier test is there to paste.
    QGuiApplication::clipboard()->clear();
}

void PanelKeysTest::cleanup()
{
    m_root.reset();
    m_state.reset();
    m_fixture.reset();
    PanelCommands::shared().setHooks({});
}

PanelRootView &PanelKeysTest::showRoot(const QStringList &projects)
{
    Store &store = m_fixture->make(projects);
    m_root = std::make_unique<PanelRootView>(store, *m_state, m_fixture->preferences());
    m_root->resize(340, 560);
    m_root->show();
    QApplication::setActiveWindow(m_root.get());
    return *m_root;
}

bool PanelKeysTest::enter(const QString &context)
{
    Store &store = m_fixture->store();
    if (context == "list") {
        m_root->setFocusTarget(PanelFocusTarget::List);
    } else if (context.startsWith("composer")) {
        m_root->setFocusTarget(PanelFocusTarget::Composer);
        if (context == "composer with text")
            QTest::keyClicks(QApplication::focusWidget(), "xy");
    } else if (context == "list, nothing selected") {
        m_root->setFocusTarget(PanelFocusTarget::List);
        store.setSelection({}, std::nullopt);
    } else if (context == "list, two selected") {
        m_root->setFocusTarget(PanelFocusTarget::List);
        store.setSelection({idFor("a"), idFor("c")}, idFor("c"));
    } else if (context == "list, blanks searched") {
        m_root->setFocusTarget(PanelFocusTarget::List);
        store.setSearchText("   ");
    } else if (context.endsWith("window inactive")) {
        // The panel keeps the keyboard while the application believes no
        // window is active, as after the input focus was moved behind the
        // window manager's back.
        m_root->setFocusTarget(
            context.startsWith("list") ? PanelFocusTarget::List : PanelFocusTarget::Composer);
        QCoreApplication::processEvents();
        QApplication::setActiveWindow(nullptr);
    } else if (context == "search") {
        m_root->setFocusTarget(PanelFocusTarget::Search);
    } else if (context == "inline editor") {
        m_root->setFocusTarget(PanelFocusTarget::List);
        store.setEditingNoteID(idFor("b"));
        if (!QTest::qWaitFor([] {
                const QWidget *focus = QApplication::focusWidget();
                return focus && (focus->inherits("QTextEdit") || focus->inherits("QLineEdit"));
            }))
            return false;
    } else if (context.startsWith("sheet")) {
        // The sheet opened from the list, the composer or the search field.
        m_root->setFocusTarget(context == "sheet over composer" ? PanelFocusTarget::Composer
                : context == "sheet over search"                ? PanelFocusTarget::Search
                                                                : PanelFocusTarget::List);
        m_state->setShowing(PanelLayer::Shortcuts, true);
    }
    QCoreApplication::processEvents();
    return m_root->focusWidget() != nullptr;
}

void PanelKeysTest::press(int key, int modifiers)
{
    // Where the window system delivers a press: the window's focus widget.
    QTest::keyClick(m_root->focusWidget(), Qt::Key(key), Qt::KeyboardModifiers::fromInt(modifiers));
}

void PanelKeysTest::keysInContext_data()
{
    QTest::addColumn<QString>("context");
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    // "unchanged", or what must hold afterwards: "layer N", "focus composer",
    // "focus search", "focus list", "selection x,y", "done x", "gone x",
    // "active Title", "order A,B,C", "collapsed Title", "expanded x", "editing x".
    QTest::addColumn<QString>("outcome");

    const QString layerSwitcher = "layer " + QString::number(int(PanelLayer::SectionSwitcher));
    const QString layerProjects = "layer " + QString::number(int(PanelLayer::ProjectSwitcher));
    const QString layerSheet = "layer " + QString::number(int(PanelLayer::Shortcuts));
    const QString layerNewSection = "layer " + QString::number(int(PanelLayer::NewSection));
    const QString layerNewProject = "layer " + QString::number(int(PanelLayer::NewProject));
    const QString noLayer = "layer " + QString::number(int(PanelLayer::None));

    // The list holds the keyboard; "b" is selected in "Inbox" of three sections.
    const QList<std::tuple<const char *, int, int, QString>> list = {
        {"Ctrl+K", Qt::Key_K, ctrl, layerSwitcher},
        {"Ctrl+Shift+K", Qt::Key_K, ctrl | shift, layerProjects},
        {"Ctrl+/", Qt::Key_Slash, ctrl, layerSheet},
        {"Ctrl+Shift+N", Qt::Key_N, ctrl | shift, layerNewSection},
        {"Ctrl+Alt+N", Qt::Key_N, ctrl | alt, layerNewProject},
        {"Ctrl+N", Qt::Key_N, ctrl, "focus composer"},
        {"Tab", Qt::Key_Tab, 0, "focus composer"},
        {"Ctrl+F", Qt::Key_F, ctrl, "focus search"},
        {"Down", Qt::Key_Down, 0, "selection c"},
        {"Up", Qt::Key_Up, 0, "selection a"},
        {"Shift+Down", Qt::Key_Down, shift, "selection b,c"},
        {"Shift+Up", Qt::Key_Up, shift, "selection a,b"},
        {"Ctrl+Up", Qt::Key_Up, ctrl, "selection a"},
        {"Ctrl+Down", Qt::Key_Down, ctrl, "selection e"},
        {"Home", Qt::Key_Home, 0, "selection a"},
        {"End", Qt::Key_End, 0, "selection e"},
        {"Ctrl+A", Qt::Key_A, ctrl, "selection a,b,c,d,e"},
        {"Space", Qt::Key_Space, 0, "done b"},
        {"Ctrl+Backspace", Qt::Key_Backspace, ctrl, "gone b"},
        {"Ctrl+E", Qt::Key_E, ctrl, "expanded b"},
        {"Return", Qt::Key_Return, 0, "editing b"},
        {"Ctrl+Shift+E", Qt::Key_E, ctrl | shift, "collapsed Inbox"},
        {"Alt+Down", Qt::Key_Down, alt, "order Work,Inbox,Later"},
        {"Alt+Up on the first section", Qt::Key_Up, alt, "order Inbox,Work,Later"},
        {"Ctrl+Alt+Down", Qt::Key_Down, ctrl | alt, "active Work"},
        {"Ctrl+Alt+Up wraps to the last", Qt::Key_Up, ctrl | alt, "active Later"},
        {"Ctrl+2", Qt::Key_2, ctrl, "active Work"},
        {"Ctrl+3", Qt::Key_3, ctrl, "active Later"},
        {"Ctrl+9 beyond three sections", Qt::Key_9, ctrl, "unchanged"},
        {"Escape drops the selection", Qt::Key_Escape, 0, "selection "},
        {"plain letter", Qt::Key_Q, 0, "unchanged"},
        {"Ctrl+Q", Qt::Key_Q, ctrl, "quit"},
        {"Menu", Qt::Key_Menu, 0, "menu Mark as Done: done b"},
        {"Shift+F10", Qt::Key_F10, shift, "menu Mark as Done: done b"},
        {"plain F10", Qt::Key_F10, 0, "unchanged"},
    };
    for (const auto &[name, key, modifiers, outcome] : list)
        QTest::addRow("list, %s", name) << "list" << key << modifiers << outcome;

    // A text field holds the keyboard: only Ctrl combinations that aren't
    // editing keys reach the panel.
    for (const char *context : {"composer", "composer with text", "search", "inline editor"}) {
        const QList<std::tuple<const char *, int, int, QString>> text = {
            {"Ctrl+K", Qt::Key_K, ctrl, layerSwitcher},
            {"Ctrl+/", Qt::Key_Slash, ctrl, layerSheet},
            {"Ctrl+Shift+N", Qt::Key_N, ctrl | shift, layerNewSection},
            {"Ctrl+2", Qt::Key_2, ctrl, "active Work"},
            {"Ctrl+Alt+Down", Qt::Key_Down, ctrl | alt, "active Work"},
            {"Ctrl+V", Qt::Key_V, ctrl, "unchanged"},
            {"Ctrl+Z", Qt::Key_Z, ctrl, "unchanged"},
            {"Ctrl+Shift+Z", Qt::Key_Z, ctrl | shift, "unchanged"},
            {"Ctrl+A", Qt::Key_A, ctrl, "unchanged"},
            {"Ctrl+C", Qt::Key_C, ctrl, "unchanged"},
            {"Ctrl+Up", Qt::Key_Up, ctrl, "unchanged"},
            {"Ctrl+Shift+Up", Qt::Key_Up, ctrl | shift, "unchanged"},
            {"Ctrl+Backspace", Qt::Key_Backspace, ctrl, "unchanged"},
            {"Down", Qt::Key_Down, 0, "unchanged"},
            {"Alt+Down", Qt::Key_Down, alt, "unchanged"},
        };
        for (const auto &[name, key, modifiers, outcome] : text)
            QTest::addRow("%s, %s", context, name) << context << key << modifiers << outcome;
    }
    for (const char *context : {"composer", "composer with text", "inline editor"})
        QTest::addRow("%s, Space", context) << context << int(Qt::Key_Space) << 0 << "unchanged";
    // Ctrl+Q quits from anywhere in the panel; the menu keys are the text
    // field's own there, and wait under a layer.
    for (const char *context : {"composer", "search", "inline editor", "sheet"}) {
        QTest::addRow("%s, Ctrl+Q", context) << context << int(Qt::Key_Q) << ctrl << "quit";
        QTest::addRow("%s, Shift+F10", context)
            << context << int(Qt::Key_F10) << shift << "unchanged";
    }
    // With no note selected the menu is the active section's; with two, it
    // acts on both.
    QTest::newRow("list, nothing selected, Menu") << "list, nothing selected" << int(Qt::Key_Menu)
                                                  << 0 << "menu Collapse Section: collapsed Inbox";
    QTest::newRow("list, nothing selected, Shift+F10")
        << "list, nothing selected" << int(Qt::Key_F10) << shift
        << "menu Collapse Section: collapsed Inbox";
    // Blanks are no search: Escape drops the selection and leaves them.
    QTest::newRow("list, blanks searched, Escape")
        << "list, blanks searched" << int(Qt::Key_Escape) << 0 << "selection ";
    QTest::newRow("list, two selected, Menu")
        << "list, two selected" << int(Qt::Key_Menu) << 0 << "menu Mark as Done: done a,c";
    for (const auto &[name, key, modifiers, outcome] : list) {
        if (QString(name).contains(u"Backspace") || QString(name).startsWith(u"Escape")
            || QString(name) == u"Ctrl+Down")
            QTest::addRow("list, window inactive, %s", name)
                << "list, window inactive" << key << modifiers << outcome;
    }
    QTest::newRow("composer, window inactive, Ctrl+Backspace")
        << "composer, window inactive" << int(Qt::Key_Backspace) << ctrl << "unchanged";
    QTest::newRow("search, Space types") << "search" << int(Qt::Key_Space) << 0 << "search  ";
    QTest::newRow("composer, Ctrl+F") << "composer" << int(Qt::Key_F) << ctrl << "focus search";
    QTest::newRow("search, Ctrl+N") << "search" << int(Qt::Key_N) << ctrl << "focus composer";
    // The search field's own Escape: an empty field hands the keyboard to
    // the list and the selection stays.
    QTest::newRow("search, Escape") << "search" << int(Qt::Key_Escape) << 0 << "focus list";
    // Return in the inline editor is the editor's: it ends the edit.
    QTest::newRow("inline editor, Return commits the edit")
        << "inline editor" << int(Qt::Key_Return) << 0 << "editing ";

    // A layer is up: Escape closes it first and keeps the selection.
    QTest::newRow("sheet, Escape") << "sheet" << int(Qt::Key_Escape) << 0 << noLayer;
    QTest::newRow("sheet, Escape keeps the selection")
        << "sheet" << int(Qt::Key_Escape) << 0 << "selection b";
    QTest::newRow("sheet over the composer, Escape")
        << "sheet over composer" << int(Qt::Key_Escape) << 0 << noLayer;
    QTest::newRow("sheet over the search field, Escape")
        << "sheet over search" << int(Qt::Key_Escape) << 0 << noLayer;
}

void PanelKeysTest::keysInContext()
{
    QFETCH(QString, context);
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(QString, outcome);

    // The list takes a jump request at once and empties the slot: record it
    // before the list hears of it.
    QList<QUuid> jumps;
    const QMetaObject::Connection recording
        = connect(m_state.get(), &PanelState::sectionJumpRequestChanged, this, [&] {
              if (const std::optional<QUuid> id = m_state->sectionJumpRequest())
                  jumps.append(*id);
          });
    const auto stopRecording = qScopeGuard([&] { disconnect(recording); });
    int quits = 0;
    PanelCommands::Hooks hooks;
    hooks.quit = [&quits] { ++quits; };
    PanelCommands::shared().setHooks(hooks);
    showRoot({"*Inbox:a,b,c|Work:d|Later:e", "Home:f"});
    Store &store = m_fixture->store();
    store.setSelection({idFor("b")}, idFor("b"));
    QVERIFY(enter(context));
    const QString before = snapshot(store, *m_state);
    const QString searchBefore = store.searchText();

    press(key, modifiers);
    QCoreApplication::processEvents();

    QString what = outcome.section(u' ', 0, 0);
    QString value = outcome.section(u' ', 1);
    if (what == "menu") {
        // A menu opened: its entry acts on what the outcome names.
        QTRY_VERIFY_WITH_TIMEOUT(
            qobject_cast<QMenu *>(QApplication::activePopupWidget()), Test::patience);
        auto *menu = static_cast<QMenu *>(QApplication::activePopupWidget());
        const QString entry = value.section(u':', 0, 0);
        QAction *chosen = Test::menuEntry(*menu, entry);
        QVERIFY2(chosen, qPrintable(entry));
        chosen->trigger();
        menu->close();
        QCoreApplication::processEvents();
        const QString effect = value.section(u':', 1).trimmed();
        what = effect.section(u' ', 0, 0);
        value = effect.section(u' ', 1);
    } else {
        QCOMPARE(QApplication::activePopupWidget(), nullptr);
    }
    QCOMPARE(quits, what == "quit" ? 1 : 0);
    if (what == "unchanged" || what == "quit") {
        QCOMPARE(snapshot(store, *m_state), before);
    } else if (what == "layer") {
        QCOMPARE(int(m_state->frontLayer()), value.toInt());
    } else if (what == "focus") {
        const PanelFocusTarget target = value == "composer" ? PanelFocusTarget::Composer
            : value == "search"                             ? PanelFocusTarget::Search
                                                            : PanelFocusTarget::List;
        QTRY_COMPARE_WITH_TIMEOUT(m_root->focusTarget(), target, Test::patience);
        QCOMPARE(namesOf(store.selection().values()), QStringLiteral("b"));
    } else if (what == "selection") {
        QCOMPARE(namesOf(store.selection().values()), value);
        QCOMPARE(store.searchText(), searchBefore);
    } else if (what == "done") {
        for (const char *name : {"a", "b", "c"})
            QCOMPARE(store.note(idFor(name))->isDone, value.split(u',').contains(name));
    } else if (what == "gone") {
        QVERIFY(!store.note(idFor(value)));
    } else if (what == "active") {
        QCOMPARE(store.activeSection().title, value);
        QCOMPARE(jumps, QList<QUuid> {store.activeSection().id});
    } else if (what == "order") {
        QStringList titles;
        for (const NoteSection &section : store.activeProject().sections)
            titles.append(section.title);
        QCOMPARE(titles.join(u','), value);
    } else if (what == "collapsed") {
        QVERIFY(store.activeSection().isCollapsed);
    } else if (what == "expanded") {
        QCOMPARE(namesOf(store.expandedNoteIDs().values()), value);
    } else if (what == "editing") {
        QCOMPARE(store.editingNoteID().value_or(QUuid()), value.isEmpty() ? QUuid() : idFor(value));
    } else if (what == "search") {
        QCOMPARE(store.searchText(), value);
        QCOMPARE(namesOf(store.selection().values()), QStringLiteral("b"));
    } else {
        QFAIL(qPrintable("unknown outcome " + outcome));
    }
}

void PanelKeysTest::textFilter_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<bool>("passes");

    QTest::newRow("Ctrl+K") << int(Qt::Key_K) << ctrl << true;
    QTest::newRow("plain K") << int(Qt::Key_K) << 0 << false;
    QTest::newRow("Return") << int(Qt::Key_Return) << 0 << false;
    QTest::newRow("Escape") << int(Qt::Key_Escape) << 0 << false;
    QTest::newRow("Alt+Up") << int(Qt::Key_Up) << alt << false;
    for (const auto &[name, key] : QList<std::pair<const char *, int>> {{"A", Qt::Key_A},
             {"C", Qt::Key_C}, {"V", Qt::Key_V}, {"X", Qt::Key_X}, {"Z", Qt::Key_Z}}) {
        QTest::addRow("Ctrl+%s", name) << key << ctrl << false;
        QTest::addRow("Ctrl+Shift+%s", name) << key << (ctrl | shift) << false;
        QTest::addRow("Ctrl+Alt+%s", name) << key << (ctrl | alt) << false;
    }
    QTest::newRow("Ctrl+Up") << int(Qt::Key_Up) << ctrl << false;
    QTest::newRow("Ctrl+Left") << int(Qt::Key_Left) << ctrl << false;
    QTest::newRow("Ctrl+Backspace") << int(Qt::Key_Backspace) << ctrl << false;
    QTest::newRow("Ctrl+Delete") << int(Qt::Key_Delete) << ctrl << false;
    QTest::newRow("Ctrl+Shift+Down") << int(Qt::Key_Down) << (ctrl | shift) << false;
    QTest::newRow("Ctrl+Shift+Right") << int(Qt::Key_Right) << (ctrl | shift) << false;
    QTest::newRow("Ctrl+Shift+Backspace passes")
        << int(Qt::Key_Backspace) << (ctrl | shift) << true;
    QTest::newRow("Ctrl+Alt+Up passes") << int(Qt::Key_Up) << (ctrl | alt) << true;
    QTest::newRow("Ctrl+Return passes") << int(Qt::Key_Return) << ctrl << true;
    QTest::newRow("Ctrl+2 on the keypad passes")
        << int(Qt::Key_2) << (ctrl | int(Qt::KeypadModifier)) << true;
    QTest::newRow("Ctrl+Up on the keypad stays")
        << int(Qt::Key_Up) << (ctrl | int(Qt::KeypadModifier)) << false;
}

void PanelKeysTest::textFilter()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(bool, passes);
    QCOMPARE(
        PanelKeyHandler::passesTextFilter(key, Qt::KeyboardModifiers::fromInt(modifiers)), passes);
}

//! With a search up: the copy keys without a selection copy what the search
//! shows; then Escape, step by step, down to hiding the panel.
void PanelKeysTest::searchThenEscapeLadder()
{
    showRoot({"*Inbox:a,b,c|Work:d"});
    Store &store = m_fixture->store();
    QSignalSpy hides(m_root.get(), &PanelRootView::hideRequested);
    store.setSearchText("c");
    QTRY_COMPARE_WITH_TIMEOUT(store.visibleNotes().size(), qsizetype(1), Test::patience);
    store.setSelection({}, std::nullopt);
    m_root->setFocusTarget(PanelFocusTarget::List);
    QGuiApplication::clipboard()->setText("before");
    press(Qt::Key_C, ctrl);
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("c"));
    QCOMPARE(ToastPresenter::shared().currentMessage(), QStringLiteral("Copied"));
    press(Qt::Key_C, ctrl | shift);
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("1. c"));
    QCOMPARE(ToastPresenter::shared().currentMessage(), QStringLiteral("Copied as List"));

    store.setSelection({idFor("c")}, idFor("c"));
    m_state->setShowing(PanelLayer::NewSection, true);
    m_state->setPendingMoveIDs({idFor("c")});
    m_root->setFocusTarget(PanelFocusTarget::List);
    QCoreApplication::processEvents();
    // The prompt's own Escape, then the ladder on the list.
    press(Qt::Key_Escape, 0);
    QCOMPARE(m_state->frontLayer(), PanelLayer::None);
    QVERIFY(m_state->pendingMoveIDs().isEmpty());
    m_root->setFocusTarget(PanelFocusTarget::List);

    press(Qt::Key_Escape, 0);
    QCOMPARE(store.searchText(), QString());
    QCOMPARE(namesOf(store.selection().values()), QStringLiteral("c"));
    QCOMPARE(hides.size(), qsizetype(0));

    press(Qt::Key_Escape, 0);
    QVERIFY(store.selection().isEmpty());
    QVERIFY(!store.selectionAnchor());
    QCOMPARE(hides.size(), qsizetype(0));

    press(Qt::Key_Escape, 0);
    QCOMPARE(hides.size(), qsizetype(1));
}

void PanelKeysTest::ignoredResults()
{
    showRoot({"*Inbox:a,b|Work:c|Later:d"});
    Store &store = m_fixture->store();
    PanelKeyHandler &keys = m_root->keyHandler();
    using Result = PanelKeyHandler::Result;

    // One project: the project switcher does not open, and the key goes on.
    QCOMPARE(keys.perform(Shortcut::switchProject), Result::Ignored);
    QCOMPARE(m_state->frontLayer(), PanelLayer::None);

    // Editing wants exactly one note.
    store.setSelection({idFor("a"), idFor("b")}, idFor("a"));
    QCOMPARE(keys.perform(Shortcut::editNote), Result::Ignored);
    QVERIFY(!store.editingNoteID());

    // Nothing selected: these have nothing to act on.
    store.setSelection({}, std::nullopt);
    for (Shortcut shortcut :
        {Shortcut::toggleDone, Shortcut::deleteNotes, Shortcut::openInNewWindow, Shortcut::editNote,
            Shortcut::commitNote, Shortcut::newLine, Shortcut::hashtagSection})
        QCOMPARE(keys.perform(shortcut), Result::Ignored);

    // These still count as handled where they change nothing.
    QCOMPARE(keys.perform(Shortcut::jumpToSection9), Result::Handled);
    QCOMPARE(keys.perform(Shortcut::toggleExpanded), Result::Handled);
    QCOMPARE(store.activeSection().title, QStringLiteral("Inbox"));
    QVERIFY(!m_state->sectionJumpRequest());
}

void PanelKeysTest::undoTypingFirstThenTheLibrary_data()
{
    QTest::addColumn<QString>("context"); // where "q" is typed, or the list with nothing typed
    QTest::newRow("list") << "list";
    QTest::newRow("composer") << "composer";
    QTest::newRow("search") << "search";
}

void PanelKeysTest::undoTypingFirstThenTheLibrary()
{
    QFETCH(QString, context);
    showRoot({"*Inbox:a,b"});
    Store &store = m_fixture->store();
    store.setSelection({idFor("a")}, idFor("a"));
    m_root->setFocusTarget(PanelFocusTarget::List);
    press(Qt::Key_Backspace, ctrl);
    QVERIFY(!store.note(idFor("a")));

    const bool typing = context != "list";
    if (typing) {
        m_root->setFocusTarget(
            context == "composer" ? PanelFocusTarget::Composer : PanelFocusTarget::Search);
        QCoreApplication::processEvents();
        QVERIFY(QApplication::focusWidget());
        QTest::keyClicks(QApplication::focusWidget(), "q");
        // The first Ctrl+Z takes back the typing and leaves the library alone.
        press(Qt::Key_Z, ctrl);
        QVERIFY(!store.note(idFor("a")));
    }
    // With nothing typed left to undo, Ctrl+Z undoes the deletion.
    press(Qt::Key_Z, ctrl);
    QVERIFY(store.note(idFor("a")));
    // Redo goes the same way: the typing comes back first, then the deletion.
    if (typing) {
        press(Qt::Key_Z, ctrl | shift);
        QVERIFY(store.note(idFor("a")));
    }
    press(Qt::Key_Z, ctrl | shift);
    QVERIFY(!store.note(idFor("a")));
}

void PanelKeysTest::toggleRightAfterShowing_data()
{
    QTest::addColumn<bool>("activate");
    QTest::addColumn<bool>("keysTakenAway"); // another window became active after the show
    QTest::addColumn<bool>("shownAfter");
    QTest::newRow("before the keyboard arrives") << true << false << false;
    QTest::newRow("after another window took the keyboard") << true << true << true;
    QTest::newRow("shown without the keyboard") << false << false << true;
}

void PanelKeysTest::toggleRightAfterShowing()
{
    QFETCH(bool, activate);
    QFETCH(bool, keysTakenAway);
    QFETCH(bool, shownAfter);
    Store &store = m_fixture->make({"*Inbox:a"});
    PanelController panel(store, *m_state, m_fixture->preferences());
    QWidget other;
    panel.show(activate, false);
    if (keysTakenAway) {
        QVERIFY(QTest::qWaitForWindowExposed(panel.panel()));
        QApplication::setActiveWindow(panel.panel());
        QTRY_VERIFY_WITH_TIMEOUT(panel.panel()->isActiveWindow(), Test::patience);
        other.show();
        QApplication::setActiveWindow(&other);
        QTRY_VERIFY_WITH_TIMEOUT(!panel.panel()->isActiveWindow(), Test::patience);
    }
    // No event is handled in between: the window manager has not answered.
    panel.toggle();
    QCOMPARE(panel.isPanelShown(), shownAfter);
}

void PanelKeysTest::showingOrHidingThePanelSavesAnOpenEdit_data()
{
    QTest::addColumn<QString>("bringing");
    for (const char *bringing : {"show", "toggle", "bring forward", "hide"})
        QTest::newRow(bringing) << bringing;
}

void PanelKeysTest::showingOrHidingThePanelSavesAnOpenEdit()
{
    QFETCH(QString, bringing);
    Store &store = m_fixture->make({"*Inbox:a,b"});
    PanelController panel(store, *m_state, m_fixture->preferences());
    panel.show(true, true);
    QVERIFY(QTest::qWaitForWindowExposed(panel.panel()));
    QApplication::setActiveWindow(panel.panel());
    auto *root = qobject_cast<PanelRootView *>(panel.panel()->content());
    QVERIFY(root);

    store.setEditingNoteID(idFor("b"));
    QTRY_VERIFY_WITH_TIMEOUT(qobject_cast<QTextEdit *>(QApplication::focusWidget())
            && QApplication::focusWidget() != root->composer()->field()->editor(),
        Test::patience);
    auto *field = static_cast<QTextEdit *>(QApplication::focusWidget());
    QTest::keyClicks(field, " more");

    // Another window takes the keyboard; the edit stays open behind it.
    QWidget other;
    other.show();
    QApplication::setActiveWindow(&other);
    QTRY_VERIFY_WITH_TIMEOUT(!field->hasFocus(), Test::patience);
    QCOMPARE(store.editingNoteID(), std::optional<QUuid>(idFor("b")));

    if (bringing == "show")
        panel.show(true, true);
    else if (bringing == "toggle")
        panel.toggle();
    else if (bringing == "hide")
        panel.hide();
    else
        panel.show(true, false);

    // The edit ended as leaving its field ends it: what was typed is kept.
    QTRY_VERIFY_WITH_TIMEOUT(!store.editingNoteID(), Test::patience);
    QCOMPARE(store.note(idFor("b"))->text, QStringLiteral("b more"));
    // Hiding afterwards loses nothing.
    panel.hide();
    QCOMPARE(store.note(idFor("b"))->text, QStringLiteral("b more"));
}

VESKO_WIDGET_TEST_MAIN(PanelKeysTest)
#include "tst_panelkeys.moc"
