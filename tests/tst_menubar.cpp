// SPDX-License-Identifier: GPL-3.0-or-later
//
// The tray's menu on a real Store: its entries in their order for libraries
// of one and two projects, six of seven open notes, titles of 44 and 45
// characters, what each entry does, the tool tip's count, and the same menu
// inside the panel's "More options". A menu is written as its entries joined
// by "|": "-" for a rule, "~" after a disabled entry, ">" after a submenu,
// "*" after a checked one.

#include "MenuText.h"
#include "StoreFixture.h"
#include "WidgetTestMain.h"

#include "panel/window/PanelCommands.h"
#include "panel/window/PanelMenus.h"
#include "panel/window/PanelState.h"
#include "shell/MenuBarDashboard.h"
#include "shell/MenuBarMenu.h"

#include <QActionGroup>
#include <QClipboard>
#include <QMenu>

using namespace Vesko;
using Test::idFor;
using Test::menuEntry;
using Test::submenu;

namespace {

QString describeMenu(const QMenu &menu)
{
    return Test::describeMenu(menu, true);
}

//! The words a menu draws for \a action: "&&" is a plain "&", a single "&"
//! only marks the next letter as the access key, and what follows a tab
//! stands apart in the key column.
QString drawnText(const QAction *action)
{
    const QString text = action->text().section(u'\t', 0, 0);
    QString drawn;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text.at(i) == u'&' && i + 1 < text.size())
            ++i;
        drawn += text.at(i);
    }
    return drawn;
}

} // namespace

class MenuBarTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void entries_data();
    void entries();
    void noteTitles_data();
    void noteTitles();
    void usersWordsShowAsTyped_data();
    void usersWordsShowAsTyped();
    void noteEntriesAct();
    void sectionAndProjectChoices();
    void toolTipCountsOpenNotes_data();
    void toolTipCountsOpenNotes();
    void moreOptionsOffersTheSameMenu();

private:
    void rebuild(QMenu &menu);

    std::unique_ptr<Test::StoreFixture> m_fixture;
    std::unique_ptr<PanelState> m_state;
    QStringList m_calls;
    bool m_panelShown = false;
};

void MenuBarTest::init()
{
    m_fixture = std::make_unique<Test::StoreFixture>();
    m_state = std::make_unique<PanelState>();
    m_calls.clear();
    m_panelShown = false;
    PanelCommands::shared().setHooks({});
}

void MenuBarTest::cleanup()
{
    PanelCommands::shared().setHooks({});
    m_state.reset();
    m_fixture.reset();
}

void MenuBarTest::rebuild(QMenu &menu)
{
    MenuBarCommands commands;
    commands.isPanelShown = [this] { return m_panelShown; };
    commands.hidePanel = [this] { m_calls.append(QStringLiteral("hide")); };
    commands.showPanel = [this](bool focusComposer) {
        m_calls.append(
            focusComposer ? QStringLiteral("show with composer") : QStringLiteral("show"));
    };
    commands.captureSelection = [this] { m_calls.append(QStringLiteral("capture")); };
    commands.openSettings = [this] { m_calls.append(QStringLiteral("settings")); };
    commands.quit = [this] { m_calls.append(QStringLiteral("quit")); };
    rebuildMenuBarMenu(menu, m_fixture->store(), *m_state, commands);
}

void MenuBarTest::entries_data()
{
    QTest::addColumn<QStringList>("projects");
    QTest::addColumn<bool>("panelShown");
    QTest::addColumn<QString>("menu");
    QTest::addColumn<QString>("sections");

    const QString head = QStringLiteral("Show Vesko|Capture Selection|Add a Note|-|");
    const QString tail = QStringLiteral("|-|Settings|Quit Vesko");
    QTest::newRow("one project: no Project submenu")
        << QStringList {QStringLiteral("Inbox:a,B|*Work:c")} << false
        << head + "a|c|Copy All as List|-|Section: Work>" + tail << "Inbox|Work*|-|Switch Section…";
    QTest::newRow("two projects: a Project submenu")
        << QStringList {QStringLiteral("*Inbox:a"), QStringLiteral("Inbox:b")} << false
        << head + "a|Copy All as List|-|Section: Inbox>|Project>" + tail
        << "Inbox*|-|Switch Section…";
    QTest::newRow("seven open notes show the first six")
        << QStringList {QStringLiteral("*Inbox:a,b,c,d,e,f,g")} << false
        << head + "a|b|c|d|e|f|Copy All as List|-|Section: Inbox>" + tail
        << "Inbox*|-|Switch Section…";
    // Every section in order, from the first, not from the active one; done
    // notes are left out and collapsed sections count as any other.
    QTest::newRow("open notes of every section in order")
        << QStringList {QStringLiteral("+Later:A,b|*Work:c,D,e|Ideas!:F")} << false
        << head + "b|c|e|Copy All as List|-|Section: Work>" + tail
        << "Later|Work*|Ideas|-|Switch Section…";
    QTest::newRow("no open notes")
        << QStringList {QStringLiteral("*Inbox:A,B")} << false
        << head + "No notes in P~|-|Section: Inbox>" + tail << "Inbox*|-|Switch Section…";
    QTest::newRow("a project without sections")
        << QStringList {QString()} << false << head + "No notes in P~|-|Section: Inbox>" + tail
        << "-|Switch Section…";
    QTest::newRow("the panel on screen")
        << QStringList {QStringLiteral("*Inbox:a")} << true
        << "Hide Vesko|Capture Selection|Add a Note|-|a|Copy All as List|-|Section: Inbox>" + tail
        << "Inbox*|-|Switch Section…";
}

void MenuBarTest::entries()
{
    QFETCH(QStringList, projects);
    QFETCH(bool, panelShown);
    QFETCH(QString, menu);
    QFETCH(QString, sections);

    m_fixture->make(projects);
    m_panelShown = panelShown;
    QMenu filled;
    rebuild(filled);
    QCOMPARE(describeMenu(filled), menu);
    const QList<QAction *> actions = filled.actions();
    const auto sectionEntry = std::find_if(actions.begin(), actions.end(),
        [](QAction *action) { return action->text().startsWith(QStringLiteral("Section: ")); });
    QVERIFY(sectionEntry != actions.end() && (*sectionEntry)->menu());
    QCOMPARE(describeMenu(*(*sectionEntry)->menu()), sections);
    QCOMPARE(menuEntry(filled, QStringLiteral("Settings"))
                 ->shortcut()
                 .toString(QKeySequence::NativeText),
        QStringLiteral("Ctrl+,"));
    QCOMPARE(menuEntry(filled, QStringLiteral("Quit Vesko"))
                 ->shortcut()
                 .toString(QKeySequence::NativeText),
        QStringLiteral("Ctrl+Q"));
}

void MenuBarTest::noteTitles_data()
{
    // clang-format off
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("title");

    const QString a44 = QString(44, u'a');
    QTest::newRow("44 characters appear whole") << a44 << a44;
    QTest::newRow("45 characters appear as 44 and the ellipsis") << a44 + u'b' << a44 + u'…';
    QTest::newRow("Markdown removed, line feeds as spaces")
        << "**Buy** milk\n[list](https://example.org)" << "Buy milk list";
    // clang-format on
}

void MenuBarTest::noteTitles()
{
    QFETCH(QString, text);
    QFETCH(QString, title);

    Store &store = m_fixture->make({QStringLiteral("*Inbox:a,b")});
    store.updateNote(idFor(QStringLiteral("a")), text);
    QMenu filled;
    rebuild(filled);
    QCOMPARE(filled.actions().at(4)->text(), title);
    QCOMPARE(filled.actions().at(5)->text(), QStringLiteral("b"));
}

void MenuBarTest::usersWordsShowAsTyped_data()
{
    // clang-format off
    QTest::addColumn<QString>("words");
    QTest::addColumn<QString>("shown");

    QTest::newRow("an ampersand between words") << "Tom & Jerry" << "Tom & Jerry";
    QTest::newRow("an ampersand before a letter") << "R&D budget" << "R&D budget";
    QTest::newRow("two ampersands") << "a && b" << "a && b";
    QTest::newRow("a tab") << "name\tvalue" << "name value";
    // clang-format on
}

void MenuBarTest::usersWordsShowAsTyped()
{
    QFETCH(QString, words);
    QFETCH(QString, shown);

    // The same words as a note, a section title and the names of two projects.
    Store &store = m_fixture->make({QStringLiteral("*Inbox:a"), QStringLiteral("Inbox:B")});
    store.updateNote(idFor(QStringLiteral("a")), words);
    store.renameSection(store.activeSection().id, words);
    store.renameProject(store.activeProject().id, words);
    QMenu filled;
    rebuild(filled);
    QCOMPARE(drawnText(filled.actions().at(4)), shown);
    QAction *sections = filled.actions().at(7);
    QCOMPARE(drawnText(sections), QStringLiteral("Section: ") + shown);
    QCOMPARE(drawnText(sections->menu()->actions().at(0)), shown);
    QMenu *projects = filled.actions().at(8)->menu();
    QVERIFY(projects);
    QCOMPARE(drawnText(projects->actions().at(0)), shown);

    // A project without open notes is named as typed, too.
    store.setDone({idFor(QStringLiteral("a"))}, true);
    rebuild(filled);
    QCOMPARE(drawnText(filled.actions().at(4)), QStringLiteral("No notes in ") + shown);

    // The panel's own menu lists the sections and projects as typed.
    QMenu overflow;
    fillOverflowMenu(overflow, store, *m_state, m_fixture->preferences());
    const QList<QAction *> actions = overflow.actions();
    QCOMPARE(std::count_if(actions.begin(), actions.end(),
                 [&shown](const QAction *action) { return drawnText(action) == shown; }),
        2);
}

void MenuBarTest::noteEntriesAct()
{
    Store &store = m_fixture->make({QStringLiteral("Inbox:a,B|*Work:c"), QStringLiteral("Inbox:x")});
    store.updateNote(idFor(QStringLiteral("c")), QStringLiteral("two\nlines"));
    m_fixture->preferences().setListStyle(ListStyle::Numbered);
    QMenu filled;
    for (int opening = 0; opening < 3; ++opening)
        rebuild(filled);
    // The submenus and groups of earlier openings are gone.
    QCOMPARE(filled.findChildren<QMenu *>().size(), 2);
    QCOMPARE(filled.findChildren<QActionGroup *>().size(), 2);

    // What the panel shows, done notes included: "b" is visible while completed notes show.
    menuEntry(filled, QStringLiteral("Copy All as List"))->trigger();
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("1. a\n2. b\n3. two\n   lines"));

    // Choosing a note ticks it off; the next opening lists the notes still open.
    menuEntry(filled, QStringLiteral("a"))->trigger();
    QVERIFY(store.note(idFor(QStringLiteral("a")))->isDone);
    QVERIFY(!store.note(idFor(QStringLiteral("c")))->isDone);
    store.addNote(QStringLiteral("new"));
    rebuild(filled);
    QVERIFY(describeMenu(filled).contains(QStringLiteral("|-|two lines|new|Copy All as List|")));
}

void MenuBarTest::sectionAndProjectChoices()
{
    Store &store = m_fixture->make(
        {QStringLiteral("Inbox:a|*Work:b"), QStringLiteral("*Home:c"), QStringLiteral("Trip:D")});
    QMenu filled;
    rebuild(filled);

    QMenu *sections = submenu(filled, QStringLiteral("Section: Work"));
    QVERIFY(sections);
    menuEntry(*sections, QStringLiteral("Inbox"))->trigger();
    QCOMPARE(store.activeSection().title, QStringLiteral("Inbox"));
    menuEntry(*sections, QStringLiteral("Switch Section…"))->trigger();
    QCOMPARE(m_state->frontLayer(), PanelLayer::SectionSwitcher);
    m_state->setShowing(PanelLayer::SectionSwitcher, false);

    QMenu *projects = submenu(filled, QStringLiteral("Project"));
    QVERIFY(projects);
    QCOMPARE(describeMenu(*projects), QStringLiteral("P*|Q|R|-|Switch Project…"));
    menuEntry(*projects, QStringLiteral("R"))->trigger();
    QCOMPARE(store.activeProject().name, QStringLiteral("R"));
    menuEntry(*projects, QStringLiteral("Switch Project…"))->trigger();
    QCOMPARE(m_state->frontLayer(), PanelLayer::ProjectSwitcher);
    // Each choice brought the panel forward first, without the composer.
    QCOMPARE(m_calls, QStringList(4, QStringLiteral("show")));

    rebuild(filled);
    QVERIFY(
        describeMenu(filled).contains(QStringLiteral("No notes in R~|-|Section: Trip>|Project>")));
}

void MenuBarTest::toolTipCountsOpenNotes_data()
{
    // clang-format off
    QTest::addColumn<QString>("project");
    QTest::addColumn<QString>("failure");
    QTest::addColumn<QString>("toolTip");

    QTest::newRow("none") << "*Inbox:A" << "" << "Vesko: no open notes in P";
    QTest::newRow("one") << "Inbox:A,b" << "" << "Vesko: 1 open note in P";
    QTest::newRow("seven, over sections") << "Inbox:a,b,C|*Later:d,e,f,g,h" << ""
                                          << "Vesko: 7 open notes in P";
    QTest::newRow("a failed save") << "Inbox:a" << "No space left on device"
                                   << "Vesko: 1 open note in P\nNot saved: No space left on device";
    // clang-format on
}

void MenuBarTest::toolTipCountsOpenNotes()
{
    QFETCH(QString, project);
    QFETCH(QString, failure);
    QFETCH(QString, toolTip);

    Store &store = m_fixture->make({project});
    QCOMPARE(menuBarToolTip(store.activeProject().name, openNoteCount(store), failure), toolTip);
    QCOMPARE(menuBarDashboard(store).openNoteCount, openNoteCount(store));
}

void MenuBarTest::moreOptionsOffersTheSameMenu()
{
    Store &store = m_fixture->make({QStringLiteral("*Inbox:a,b")});
    PanelCommands::Hooks hooks;
    hooks.fillDashboard = [this](QMenu &menu) { rebuild(menu); };
    PanelCommands::shared().setHooks(hooks);

    QMenu overflow;
    fillOverflowMenu(overflow, store, *m_state, m_fixture->preferences());
    QMenu *dashboard = submenu(overflow, QStringLiteral("Dashboard"));
    QVERIFY(dashboard);
    // Between the copy and export entries and the window's.
    const QString described = describeMenu(overflow);
    QVERIFY(described.contains(
        QStringLiteral("|Show Notes File in Files|Dashboard>|-|Reset Window Position|")));
    QMenu reference;
    rebuild(reference);
    QCOMPARE(describeMenu(*dashboard), describeMenu(reference));

    // It is built again when it opens.
    store.setDone({idFor(QStringLiteral("a"))}, true);
    Q_EMIT dashboard->aboutToShow();
    QVERIFY(describeMenu(*dashboard).contains(QStringLiteral("|-|b|Copy All as List|")));
    menuEntry(*dashboard, QStringLiteral("b"))->trigger();
    QVERIFY(store.note(idFor(QStringLiteral("b")))->isDone);
}

VESKO_WIDGET_TEST_MAIN(MenuBarTest)
#include "tst_menubar.moc"
