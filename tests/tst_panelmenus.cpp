// SPDX-License-Identifier: GPL-3.0-or-later
//
// The panel's menus and the tray's on a real Store: the entries of each menu
// in their order with their titles, enabled states and keys, and what
// choosing an entry does; for the tray's, libraries of one and two projects,
// six of seven open notes, the user's words as typed and the tool tip's
// count. A menu is written as MenuText.h describes.

#include "MenuText.h"
#include "PanelTestRig.h"
#include "WidgetTestMain.h"

#include "panel/window/PanelCommands.h"
#include "panel/window/PanelMenus.h"
#include "panel/window/PanelState.h"
#include "platform/Clipboard.h"
#include "shell/MenuBarDashboard.h"
#include "shell/MenuBarMenu.h"
#include "shell/Toast.h"

#include <QActionGroup>
#include <QClipboard>
#include <QDir>
#include <QFileDialog>
#include <QGuiApplication>
#include <QMenu>
#include <QMessageBox>
#include <QSignalSpy>

using namespace Vesko;
using Test::describeMenu;
using Test::idFor;
using Test::menuEntry;
using Test::noteIDs;
using Test::notesOfSection;
using Test::sectionTitles;
using Test::submenu;

namespace {

QSet<QUuid> idSet(const QString &letters)
{
    const QList<QUuid> ids = noteIDs(letters);
    return QSet<QUuid>(ids.begin(), ids.end());
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

class PanelMenusTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void noteMenuEntries_data();
    void noteMenuEntries();
    void markingFollowsTheToggleRule_data();
    void markingFollowsTheToggleRule();
    void noteMenuActs();
    void attachmentsSubmenu();
    void moveToMenu_data();
    void moveToMenu();
    void moveToNewSectionWaitsForThePrompt();
    void sectionMenuEntries_data();
    void sectionMenuEntries();
    void sectionMenuActs();
    void overflowMenuEntries();
    void overflowMenuActs();
    void exportSaysHowItWent_data();
    void exportSaysHowItWent();
    void menuTargetFollowsTheSelection_data();
    void menuTargetFollowsTheSelection();

    void trayMenuEntries_data();
    void trayMenuEntries();
    void usersWordsShowAsTyped_data();
    void usersWordsShowAsTyped();
    void trayNoteEntriesAct();
    void traySectionAndProjectChoices();
    void toolTipCountsOpenNotes_data();
    void toolTipCountsOpenNotes();

private:
    //! Fills \a menu as the tray does, its commands recorded in m_calls.
    void rebuild(QMenu &menu);

    std::unique_ptr<Test::StoreFixture> m_fixture;
    std::unique_ptr<PanelState> m_state;
    QStringList m_calls;
    bool m_panelShown = false;
};

void PanelMenusTest::init()
{
    m_fixture = std::make_unique<Test::StoreFixture>();
    m_state = std::make_unique<PanelState>();
    m_calls.clear();
    m_panelShown = false;
    PanelCommands::shared().setHooks({});
}

void PanelMenusTest::cleanup()
{
    PanelCommands::shared().setHooks({});
    m_state.reset();
    m_fixture.reset();
}

void PanelMenusTest::noteMenuEntries_data()
{
    // clang-format off
    QTest::addColumn<QString>("project");
    QTest::addColumn<QString>("texts"); // letter=text pairs separated by ";"
    QTest::addColumn<QString>("target");
    QTest::addColumn<QString>("expanded");
    QTest::addColumn<QString>("expected");

    // The entries after "Copy as List" and before the attachments' entries,
    // which are enabled for one note only.
    const auto menu = [](bool one, const char *middle) {
        return QStringLiteral("Copy|Copy as List|-|") + QString::fromUtf8(middle)
            + (one ? QStringLiteral("|-|Add Attachment…|Paste Image or File|Move to>|-|Delete")
                   : QStringLiteral("|-|Add Attachment…~|Paste Image or File~|Move to>|-|Delete"));
    };
    QTest::newRow("one short note") << "*Inbox:a,b" << "" << "a" << "" << menu(true,
        "Mark as Done|Expand~|-|Edit|Edit in New Window|Merge Notes~|Split into Notes~");
    QTest::newRow("three notes, one done") << "*Inbox:a,B,c" << "" << "a,B,c" << "" << menu(false,
        "Mark as Done|Expand~|-|Edit~|Edit in New Window~|Merge Notes|Split into Notes~");
    QTest::newRow("all done") << "*Inbox:A,B" << "" << "a,b" << "" << menu(false,
        "Mark as Not Done|Expand~|-|Edit~|Edit in New Window~|Merge Notes|Split into Notes~");
    QTest::newRow("three short lines are not long")
        << "*Inbox:a" << "a=one\ntwo\nthree" << "a" << "" << menu(true,
        "Mark as Done|Expand~|-|Edit|Edit in New Window|Merge Notes~|Split into Notes");
    QTest::newRow("four lines are long") << "*Inbox:a" << "a=1\n2\n3\n4" << "a" << "" << menu(true,
        "Mark as Done|Expand|-|Edit|Edit in New Window|Merge Notes~|Split into Notes");
    QTest::newRow("121 characters are long")
        << "*Inbox:a" << "a=" + QString(121, u'x') << "a" << "" << menu(true,
        "Mark as Done|Expand|-|Edit|Edit in New Window|Merge Notes~|Split into Notes~");
    QTest::newRow("120 accented characters are not long")
        << "*Inbox:a" << "a=" + QString(120, u'e') + QString(120, QChar(0x0301)) << "a" << ""
        << menu(true,
        "Mark as Done|Expand~|-|Edit|Edit in New Window|Merge Notes~|Split into Notes~");
    QTest::newRow("one long note among two")
        << "*Inbox:a,b" << "b=" + QString(130, u'y') << "a,b" << "" << menu(false,
        "Mark as Done|Expand|-|Edit~|Edit in New Window~|Merge Notes|Split into Notes~");
    QTest::newRow("one expanded note reads Collapse")
        << "*Inbox:a,b" << "" << "a,b" << "b" << menu(false,
        "Mark as Done|Collapse~|-|Edit~|Edit in New Window~|Merge Notes|Split into Notes~");
    QTest::newRow("a missing note counts for nothing")
        << "*Inbox:a" << "" << "a,zz" << "" << menu(true,
        "Mark as Done|Expand~|-|Edit|Edit in New Window|Merge Notes~|Split into Notes~");
    // clang-format on
}

void PanelMenusTest::noteMenuEntries()
{
    QFETCH(QString, project);
    QFETCH(QString, texts);
    QFETCH(QString, target);
    QFETCH(QString, expanded);
    QFETCH(QString, expected);

    Store &store = m_fixture->make({project});
    for (const QString &pair : texts.split(u';', Qt::SkipEmptyParts))
        store.updateNote(idFor(pair.section(u'=', 0, 0)), pair.section(u'=', 1));
    for (const QUuid &id : noteIDs(expanded))
        store.toggleExpanded(id);

    QMenu menu;
    fillNoteMenu(menu, store, *m_state, noteIDs(target));
    QCOMPARE(describeMenu(menu), expected);
}

void PanelMenusTest::markingFollowsTheToggleRule_data()
{
    // clang-format off
    QTest::addColumn<QString>("project");
    QTest::addColumn<QString>("target");
    QTest::addColumn<QString>("expected");

    QTest::newRow("mixed becomes done") << "*Inbox:a,B,c" << "a,b,c" << "A,B,C";
    QTest::newRow("mixed, the done one first") << "*Inbox:B,a" << "a,b" << "B,A";
    QTest::newRow("all done becomes open") << "*Inbox:A,B,c" << "a,b" << "a,b,c";
    QTest::newRow("a missing note counts as open") << "*Inbox:A" << "a,zz" << "A";
    // clang-format on
}

void PanelMenusTest::markingFollowsTheToggleRule()
{
    QFETCH(QString, project);
    QFETCH(QString, target);
    QFETCH(QString, expected);

    Store &store = m_fixture->make({project});
    QMenu menu;
    fillNoteMenu(menu, store, *m_state, noteIDs(target));
    QAction *mark = menu.actions().at(3);
    mark->trigger();
    QCOMPARE(notesOfSection(store, QStringLiteral("Inbox")).join(u','), expected);
}

void PanelMenusTest::noteMenuActs()
{
    Store &store = m_fixture->make({QStringLiteral("*Inbox:a,b,c")});
    QMenu keys;
    fillNoteMenu(keys, store, *m_state, noteIDs(QStringLiteral("a")));
    QCOMPARE(Test::menuKeys(keys),
        QStringLiteral("Copy=Ctrl+C|Copy as List=Ctrl+Shift+C|Mark as Done=Space|Edit=Return"
                       "|Edit in New Window=Ctrl+Return|Merge Notes=Ctrl+Shift+M"
                       "|Delete=Ctrl+Backspace"));
    auto choose = [&](const char *targets, const QString &title) {
        QMenu menu;
        fillNoteMenu(menu, store, *m_state, noteIDs(QString::fromLatin1(targets)));
        QAction *action = menuEntry(menu, title);
        QVERIFY2(action, qPrintable(title));
        action->trigger();
    };

    // In the panel's order, numbered from 1 (the style a new user has).
    choose("c,a", QStringLiteral("Copy as List"));
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("1. a\n2. c"));
    choose("c,a", QStringLiteral("Copy"));
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("a\n\nc"));

    // Each note swaps: the collapsed one opens, the open one closes.
    store.updateNote(idFor("a"), QString(200, u'x'));
    store.toggleExpanded(idFor("b"));
    choose("a,b", QStringLiteral("Collapse"));
    QCOMPARE(store.expandedNoteIDs(), QSet<QUuid> {idFor("a")});
    store.updateNote(idFor("a"), QStringLiteral("a"));

    // Edit selects the note, and the editor opens one turn of the event loop
    // later, once the menu is gone.
    store.setSelection({idFor("b")}, idFor("b"));
    choose("a", QStringLiteral("Edit"));
    QCOMPARE(store.selection(), QSet<QUuid> {idFor("a")});
    QCOMPARE(store.selectionAnchor(), idFor("a"));
    QCOMPARE(store.editingNoteID(), std::nullopt);
    QTRY_COMPARE_WITH_TIMEOUT(store.editingNoteID(), idFor("a"), Test::patience);
    store.setEditingNoteID(std::nullopt);

    choose("c,a", QStringLiteral("Merge Notes"));
    QCOMPARE(notesOfSection(store, QStringLiteral("Inbox")), (QStringList {"a\n\nc", "b"}));
    const qsizetype steps = store.undoStepCount();
    choose("b", QStringLiteral("Delete"));
    QCOMPARE(notesOfSection(store, QStringLiteral("Inbox")), QStringList {"a\n\nc"});
    QCOMPARE(store.undoStepCount(), steps + 1);
    store.undo();
    QCOMPARE(notesOfSection(store, QStringLiteral("Inbox")), (QStringList {"a\n\nc", "b"}));
}

void PanelMenusTest::attachmentsSubmenu()
{
    Store &store = m_fixture->make({QStringLiteral("*Inbox:a,b")});
    NoteAttachment picture;
    picture.id = idFor(QStringLiteral("picture"));
    picture.fileName = QStringLiteral("Pasted Image.png");
    picture.storedFileName
        = picture.id.toString(QUuid::WithoutBraces).toUpper() + QStringLiteral("/Pasted Image.png");
    picture.kind = NoteAttachment::Kind::Image;
    picture.createdAt = QDateTime::fromSecsSinceEpoch(100, Qt::UTC);
    store.addAttachments({picture}, idFor(QStringLiteral("a")));

    QMenu withFiles;
    fillNoteMenu(withFiles, store, *m_state, noteIDs(QStringLiteral("a")));
    QMenu *attachments = submenu(withFiles, QStringLiteral("Attachments"));
    QVERIFY(attachments);
    QCOMPARE(describeMenu(*attachments), QStringLiteral("Pasted Image.png>"));
    QMenu *file = submenu(*attachments, QStringLiteral("Pasted Image.png"));
    QCOMPARE(describeMenu(*file), QStringLiteral("Open|Show in Files|-|Remove"));
    menuEntry(*file, QStringLiteral("Remove"))->trigger();
    QVERIFY(store.note(idFor(QStringLiteral("a")))->attachments.isEmpty());

    // Without attachments, or on two notes, there is no such submenu.
    QMenu plain;
    fillNoteMenu(plain, store, *m_state, noteIDs(QStringLiteral("b")));
    QVERIFY(!submenu(plain, QStringLiteral("Attachments")));
}

void PanelMenusTest::moveToMenu_data()
{
    // clang-format off
    QTest::addColumn<QString>("target");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("choose");
    QTest::addColumn<QString>("after");

    QTest::newRow("one note: its own section is disabled") << "a"
        << "Inbox~|Work|-|New Section…|-|Project>" << "Work" << "Inbox:b|Work:c,a";
    QTest::newRow("two notes of one section: enabled, to its end") << "a,b"
        << "Inbox|Work|-|New Section…|-|Project>" << "Inbox" << "Inbox:a,b|Work:c";
    QTest::newRow("notes of two sections") << "a,c" << "Inbox|Work|-|New Section…|-|Project>"
                                           << "Inbox" << "Inbox:b,a,c|Work:";
    // clang-format on
}

void PanelMenusTest::moveToMenu()
{
    QFETCH(QString, target);
    QFETCH(QString, expected);
    QFETCH(QString, choose);
    QFETCH(QString, after);

    Store &store = m_fixture->make({QStringLiteral("*Inbox:a,b|Work:c"), QStringLiteral("Other:")});
    QMenu menu;
    fillNoteMenu(menu, store, *m_state, noteIDs(target));
    QMenu *moveTo = submenu(menu, QStringLiteral("Move to"));
    QVERIFY(moveTo);
    QCOMPARE(describeMenu(*moveTo), expected);
    // The library's projects, the active one disabled.
    QCOMPARE(describeMenu(*submenu(*moveTo, QStringLiteral("Project"))), QStringLiteral("P~|Q"));

    menuEntry(*moveTo, choose)->trigger();
    QStringList sections;
    for (const QString &title : sectionTitles(store))
        sections.append(title + u':' + notesOfSection(store, title).join(u','));
    QCOMPARE(sections.join(u'|'), after);
    QCOMPARE(store.selection(), idSet(target));
}

void PanelMenusTest::moveToNewSectionWaitsForThePrompt()
{
    Store &store = m_fixture->make({QStringLiteral("*Inbox:a,b|Work:c"), QStringLiteral("Other:")});
    QMenu menu;
    fillNoteMenu(menu, store, *m_state, noteIDs(QStringLiteral("a,c")));
    QMenu *moveTo = submenu(menu, QStringLiteral("Move to"));
    menuEntry(*moveTo, QStringLiteral("New Section…"))->trigger();
    QVERIFY(m_state->isShowing(PanelLayer::NewSection));
    QCOMPARE(m_state->pendingMoveIDs(), noteIDs(QStringLiteral("a,c")));
    // Nothing moves before the prompt commits.
    QCOMPARE(notesOfSection(store, QStringLiteral("Inbox")), (QStringList {"a", "b"}));

    // To another project: into its Inbox, and the selection goes.
    QMenu again;
    fillNoteMenu(again, store, *m_state, noteIDs(QStringLiteral("b")));
    menuEntry(*submenu(*submenu(again, QStringLiteral("Move to")), QStringLiteral("Project")),
        QStringLiteral("Q"))
        ->trigger();
    QCOMPARE(notesOfSection(store, QStringLiteral("Inbox")), QStringList {"a"});
    QCOMPARE(store.library().projects.at(1).sections.last().title, QStringLiteral("Inbox"));
    QCOMPARE(
        store.library().projects.at(1).sections.last().notes.first().text, QStringLiteral("b"));
    QVERIFY(store.selection().isEmpty());
}

void PanelMenusTest::sectionMenuEntries_data()
{
    // clang-format off
    QTest::addColumn<QString>("project");
    QTest::addColumn<QString>("section");
    QTest::addColumn<QString>("expected");

    // The entries, "~" or nothing after the ones that can be disabled.
    const auto menu = [](const char *use, const char *fold, const char *up, const char *down,
                          const char *del) {
        return QStringLiteral("Use as Active Section%1|-|Rename Section|%2 Section|Select All in "
                              "Section|Copy Section as List|-|Move Up%3|Move Down%4|Move to "
                              "Top%3|Move to Bottom%4|-|New Section…|Delete Section%5")
            .arg(QLatin1String(use), QLatin1String(fold), QLatin1String(up), QLatin1String(down),
                QLatin1String(del));
    };
    QTest::newRow("the active, first section") << "*Inbox:a|Work:b|Later:" << "Inbox"
        << menu("~", "Collapse", "~", "", "");
    QTest::newRow("a middle section") << "*Inbox:a|Work:b|Later:" << "Work"
        << menu("", "Collapse", "", "", "");
    QTest::newRow("the last, collapsed section") << "*Inbox:a|Work:b|Later+:" << "Later"
        << menu("", "Expand", "", "~", "");
    QTest::newRow("the only section") << "*Inbox:a" << "Inbox" << menu("~", "Collapse", "~", "~", "~");
    // clang-format on
}

void PanelMenusTest::sectionMenuEntries()
{
    QFETCH(QString, project);
    QFETCH(QString, section);
    QFETCH(QString, expected);

    Store &store = m_fixture->make({project});
    QMenu menu;
    fillSectionMenu(menu, store, *m_state, idFor(QStringLiteral("P/") + section));
    QCOMPARE(describeMenu(menu), expected);
}

void PanelMenusTest::sectionMenuActs()
{
    Store &store = m_fixture->make({QStringLiteral("*Inbox:a|Work:b,c|Later:")});
    const QUuid work = idFor(QStringLiteral("P/Work"));
    auto choose = [&](const QString &title) {
        QMenu menu;
        fillSectionMenu(menu, store, *m_state, work);
        QAction *action = menuEntry(menu, title);
        QVERIFY2(action, qPrintable(title));
        action->trigger();
    };

    choose(QStringLiteral("Move to Top"));
    QCOMPARE(sectionTitles(store), (QStringList {"Work", "Inbox", "Later"}));
    choose(QStringLiteral("Move to Bottom"));
    QCOMPARE(sectionTitles(store), (QStringList {"Inbox", "Later", "Work"}));
    choose(QStringLiteral("Move Up"));
    QCOMPARE(sectionTitles(store), (QStringList {"Inbox", "Work", "Later"}));

    choose(QStringLiteral("Collapse Section"));
    QVERIFY(store.section(work)->isCollapsed);
    QVERIFY(store.hasPendingSave());
    // A collapsed section's notes are not in the rows: nothing is copied.
    QGuiApplication::clipboard()->setText(QStringLiteral("kept"));
    choose(QStringLiteral("Copy Section as List"));
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("kept"));
    choose(QStringLiteral("Select All in Section"));
    QCOMPARE(store.selection(), idSet(QStringLiteral("b,c")));
    QCOMPARE(store.selectionAnchor(), idFor(QStringLiteral("b")));

    choose(QStringLiteral("Rename Section"));
    QCOMPARE(m_state->renamingSectionID(), work);
    choose(QStringLiteral("New Section…"));
    QVERIFY(m_state->isShowing(PanelLayer::NewSection));
    QVERIFY(m_state->pendingMoveIDs().isEmpty());

    choose(QStringLiteral("Use as Active Section"));
    QCOMPARE(store.activeSection().id, work);
    choose(QStringLiteral("Delete Section"));
    QCOMPARE(sectionTitles(store), (QStringList {"Inbox", "Later"}));
    QVERIFY(!store.note(idFor(QStringLiteral("b"))));
}

//! The overflow menu's entries and keys, its dashboard the tray's menu built
//! again as it opens; with two projects the active one can go.
void PanelMenusTest::overflowMenuEntries()
{
    Store &store = m_fixture->make({QStringLiteral("Inbox:a|*Work:b")});
    PanelCommands::Hooks hooks;
    hooks.fillDashboard = [this](QMenu &menu) { rebuild(menu); };
    PanelCommands::shared().setHooks(hooks);
    QMenu menu;
    fillOverflowMenu(menu, store, *m_state, m_fixture->preferences());
    // Checked: the active project and section, and the view toggles a new user has on.
    QCOMPARE(describeMenu(menu, true),
        QStringLiteral(
            "#Project|P*|New Project…|Rename Project…|Delete Project~"
            "|#Active Section|Inbox|Work*|Switch Section…"
            "|-|New Section…|Collapse All Sections|Expand All Sections"
            "|#View|Show Completed*|Completed at Bottom|Newest First"
            "|-|Copy All as List|Clear Completed|Export as Markdown…|Show Notes File in Files"
            "|Dashboard>|-|Reset Window Position|Reset Window Size|Keyboard Shortcuts…|Settings…"
            "|Quit Vesko"));
    QCOMPARE(Test::menuKeys(menu),
        QStringLiteral("New Project…=Ctrl+Alt+N|Switch Section…=Ctrl+K|New Section…=Ctrl+Shift+N"
                       "|Keyboard Shortcuts…=Ctrl+/|Settings…=Ctrl+,|Quit Vesko=Ctrl+Q"));
    QMenu *dashboard = submenu(menu, QStringLiteral("Dashboard"));
    QMenu reference;
    rebuild(reference);
    QCOMPARE(describeMenu(*dashboard, true), describeMenu(reference, true));
    store.setDone({idFor(QStringLiteral("a"))}, true);
    Q_EMIT dashboard->aboutToShow();
    QVERIFY(describeMenu(*dashboard, true).contains(QStringLiteral("|-|b|Copy All as List|")));
    menuEntry(*dashboard, QStringLiteral("b"))->trigger();
    QVERIFY(store.note(idFor(QStringLiteral("b")))->isDone);

    // With two projects, the active one can go.
    Store &two = m_fixture->make({QStringLiteral("*Inbox:a"), QStringLiteral("Inbox:b")});
    QMenu second;
    fillOverflowMenu(second, two, *m_state, m_fixture->preferences());
    QVERIFY(menuEntry(second, QStringLiteral("Delete Project"))->isEnabled());
    menuEntry(second, QStringLiteral("Delete Project"))->trigger();
    QCOMPARE(two.library().projects.size(), 1);
    QCOMPARE(two.activeProject().name, QStringLiteral("Q"));
}

void PanelMenusTest::overflowMenuActs()
{
    Store &store
        = m_fixture->make({QStringLiteral("Inbox:a,B|*Work:c"), QStringLiteral("*Inbox:d")});
    auto choose = [&](const QString &title) {
        QMenu menu;
        fillOverflowMenu(menu, store, *m_state, m_fixture->preferences());
        QAction *action = menuEntry(menu, title);
        QVERIFY2(action, qPrintable(title));
        action->trigger();
    };
    const std::array layers = {
        std::pair {QStringLiteral("New Project…"), PanelLayer::NewProject},
        std::pair {QStringLiteral("Rename Project…"), PanelLayer::RenameProject},
        std::pair {QStringLiteral("Switch Section…"), PanelLayer::SectionSwitcher},
        std::pair {QStringLiteral("New Section…"), PanelLayer::NewSection},
        std::pair {QStringLiteral("Keyboard Shortcuts…"), PanelLayer::Shortcuts},
    };
    for (const auto &[title, layer] : layers) {
        choose(title);
        QVERIFY2(m_state->isShowing(layer), qPrintable(title));
        m_state->setShowing(layer, false);
    }

    choose(QStringLiteral("Collapse All Sections"));
    QVERIFY(store.activeProject().sections.at(0).isCollapsed);
    QVERIFY(store.activeProject().sections.at(1).isCollapsed);
    QVERIFY(store.visibleNotes().isEmpty());
    choose(QStringLiteral("Expand All Sections"));
    QCOMPARE(store.visibleNotes().size(), 3);
    choose(QStringLiteral("Copy All as List"));
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("1. a\n2. b\n3. c"));

    const bool showsCompleted = m_fixture->preferences().showCompleted();
    choose(QStringLiteral("Show Completed"));
    QCOMPARE(m_fixture->preferences().showCompleted(), !showsCompleted);
    QTRY_COMPARE_WITH_TIMEOUT(store.visibleNotes().size(), showsCompleted ? 2 : 3, Test::patience);
    choose(QStringLiteral("Show Completed"));

    choose(QStringLiteral("Inbox"));
    QCOMPARE(store.activeSection().title, QStringLiteral("Inbox"));
    choose(QStringLiteral("Clear Completed"));
    QVERIFY(!store.note(idFor(QStringLiteral("b"))));
    choose(QStringLiteral("Q"));
    QCOMPARE(store.activeProject().name, QStringLiteral("Q"));

    // The entries the program answers reach its hooks, the note menu's with their note.
    PanelCommands::Hooks hooks;
    const auto call
        = [this](const QString &what) { return [this, what] { m_calls.append(what); }; };
    const auto noteCall = [&](const QString &what) {
        return [&, what](const QUuid &id) { m_calls.append(what + store.note(id)->text); };
    };
    hooks.openNoteWindow = noteCall(QStringLiteral("window "));
    hooks.addAttachments = noteCall(QStringLiteral("add "));
    hooks.pasteAttachments = noteCall(QStringLiteral("paste "));
    hooks.resetPanelPosition = call(QStringLiteral("position"));
    hooks.resetPanelSize = call(QStringLiteral("size"));
    hooks.openSettings = call(QStringLiteral("settings"));
    hooks.quit = call(QStringLiteral("quit"));
    PanelCommands::shared().setHooks(hooks);
    QMenu note;
    fillNoteMenu(note, store, *m_state, noteIDs(QStringLiteral("d")));
    for (const QString &title : {QStringLiteral("Edit in New Window"),
             QStringLiteral("Add Attachment…"), QStringLiteral("Paste Image or File")})
        menuEntry(note, title)->trigger();
    for (const QString &title :
        {QStringLiteral("Reset Window Position"), QStringLiteral("Reset Window Size"),
            QStringLiteral("Settings…"), QStringLiteral("Quit Vesko")})
        choose(title);
    QCOMPARE(m_calls,
        (QStringList {"window d", "add d", "paste d", "position", "size", "settings", "quit"}));
}

void PanelMenusTest::exportSaysHowItWent_data()
{
    QTest::addColumn<bool>("writable");
    QTest::newRow("written") << true;
    // A file stands where the folder should be.
    QTest::newRow("the folder cannot be made") << false;
}

void PanelMenusTest::exportSaysHowItWent()
{
    QFETCH(bool, writable);
    Store &store = m_fixture->make({QStringLiteral("*Inbox:a,B")});
    ToastPresenter::shared().present(QStringLiteral("Before"), QStringLiteral("checkmark"));
    QWidget owner;
    QMenu overflow(&owner);
    fillOverflowMenu(overflow, store, *m_state, m_fixture->preferences());
    menuEntry(overflow, QStringLiteral("Export as Markdown…"))->trigger();

    // The save dialog is open without blocking, with the name to suggest.
    auto *dialog = qobject_cast<QFileDialog *>(PanelCommands::shared().exportDialog());
    QVERIFY(dialog);
    QVERIFY(dialog->isVisible());
    QCOMPARE(dialog->acceptMode(), QFileDialog::AcceptSave);
    QCOMPARE(dialog->selectedFiles().value(0).section(u'/', -1), QStringLiteral("Vesko Notes.md"));

    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("notes/Vesko Notes.md"));
    if (writable)
        QVERIFY(QDir().mkpath(folder.filePath(QStringLiteral("notes"))));
    else
        QVERIFY(QFile(folder.filePath(QStringLiteral("notes"))).open(QIODevice::WriteOnly));
    QSignalSpy finished(&PanelCommands::shared(), &PanelCommands::exportFinished);
    dialog->selectFile(path);
    static_cast<QDialog *>(dialog)->accept();
    QTRY_COMPARE_WITH_TIMEOUT(finished.size(), 1, Test::patience);
    QCOMPARE(finished.first().at(1).toString().isEmpty(), writable);
    QTRY_VERIFY_WITH_TIMEOUT(!PanelCommands::shared().exportDialog(), Test::patience);
    if (!writable) {
        // An alert says why; no toast claims success.
        QTRY_VERIFY_WITH_TIMEOUT(owner.findChild<QMessageBox *>(), Test::patience);
        QCOMPARE(ToastPresenter::shared().currentMessage(), QStringLiteral("Before"));
        QVERIFY(!QFile::exists(path));
        return;
    }
    QFile written(path);
    QVERIFY(written.open(QIODevice::ReadOnly));
    // The document of the library, as written by hand for this one.
    QCOMPARE(QString::fromUtf8(written.readAll()),
        QStringLiteral("# P\n\n## Inbox\n\n- [ ] a\n- [x] b\n"));
    QCOMPARE(ToastPresenter::shared().currentMessage(), QStringLiteral("Exported"));
}

void PanelMenusTest::menuTargetFollowsTheSelection_data()
{
    // clang-format off
    QTest::addColumn<QString>("selection");
    QTest::addColumn<QString>("row");
    QTest::addColumn<QString>("expected");

    QTest::newRow("outside the selection") << "a,b" << "c" << "c";
    QTest::newRow("the only selected note") << "b" << "b" << "b";
    QTest::newRow("one of several, in row order") << "c,a" << "c" << "a,c";
    QTest::newRow("nothing selected") << "" << "a" << "a";
    // clang-format on
}

void PanelMenusTest::menuTargetFollowsTheSelection()
{
    QFETCH(QString, selection);
    QFETCH(QString, row);
    QFETCH(QString, expected);

    Store &store = m_fixture->make({QStringLiteral("*Inbox:a,b|Work:c")});
    store.setSelection(idSet(selection), std::nullopt);
    QCOMPARE(noteMenuTarget(store, idFor(row)), noteIDs(expected));
}

void PanelMenusTest::rebuild(QMenu &menu)
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

void PanelMenusTest::trayMenuEntries_data()
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

void PanelMenusTest::trayMenuEntries()
{
    QFETCH(QStringList, projects);
    QFETCH(bool, panelShown);
    QFETCH(QString, menu);
    QFETCH(QString, sections);

    m_fixture->make(projects);
    m_panelShown = panelShown;
    QMenu filled;
    rebuild(filled);
    QCOMPARE(describeMenu(filled, true), menu);
    const QList<QAction *> actions = filled.actions();
    const auto sectionEntry = std::find_if(actions.begin(), actions.end(),
        [](QAction *action) { return action->text().startsWith(QStringLiteral("Section: ")); });
    QVERIFY(sectionEntry != actions.end() && (*sectionEntry)->menu());
    QCOMPARE(describeMenu(*(*sectionEntry)->menu(), true), sections);
    QCOMPARE(Test::menuKeys(filled), QStringLiteral("Settings=Ctrl+,|Quit Vesko=Ctrl+Q"));
}

void PanelMenusTest::usersWordsShowAsTyped_data()
{
    // clang-format off
    QTest::addColumn<QString>("words");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<bool>("names"); // also as the names of the section and the projects

    QTest::newRow("an ampersand between words") << "Tom & Jerry" << "Tom & Jerry" << true;
    QTest::newRow("an ampersand before a letter") << "R&D budget" << "R&D budget" << true;
    QTest::newRow("two ampersands") << "a && b" << "a && b" << true;
    QTest::newRow("a tab") << "name\tvalue" << "name value" << true;
    // A note's entry is its title: cut after 44 characters, without Markdown, on one line.
    const QString a44 = QString(44, u'a');
    QTest::newRow("44 characters appear whole") << a44 << a44 << false;
    QTest::newRow("45 characters appear as 44 and the ellipsis") << a44 + u'b' << a44 + u'…' << false;
    QTest::newRow("Markdown removed, line feeds as spaces")
        << "**Buy** milk\n[list](https://example.org)" << "Buy milk list" << false;
    // clang-format on
}

void PanelMenusTest::usersWordsShowAsTyped()
{
    QFETCH(QString, words);
    QFETCH(QString, shown);
    QFETCH(bool, names);

    // The same words as a note, a section title and the names of two projects.
    Store &store = m_fixture->make({QStringLiteral("*Inbox:a"), QStringLiteral("Inbox:B")});
    store.updateNote(idFor(QStringLiteral("a")), words);
    QMenu filled;
    rebuild(filled);
    QCOMPARE(drawnText(filled.actions().at(4)), shown);
    if (!names)
        return;
    store.renameSection(store.activeSection().id, words);
    store.renameProject(store.activeProject().id, words);
    rebuild(filled);
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

void PanelMenusTest::trayNoteEntriesAct()
{
    Store &store
        = m_fixture->make({QStringLiteral("Inbox:a,B|*Work:c"), QStringLiteral("Inbox:x")});
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
    QVERIFY(
        describeMenu(filled, true).contains(QStringLiteral("|-|two lines|new|Copy All as List|")));
}

void PanelMenusTest::traySectionAndProjectChoices()
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
    QCOMPARE(describeMenu(*projects, true), QStringLiteral("P*|Q|R|-|Switch Project…"));
    menuEntry(*projects, QStringLiteral("R"))->trigger();
    QCOMPARE(store.activeProject().name, QStringLiteral("R"));
    menuEntry(*projects, QStringLiteral("Switch Project…"))->trigger();
    QCOMPARE(m_state->frontLayer(), PanelLayer::ProjectSwitcher);
    // Each choice brought the panel forward first, without the composer.
    QCOMPARE(m_calls, QStringList(4, QStringLiteral("show")));

    rebuild(filled);
    QVERIFY(describeMenu(filled, true)
                .contains(QStringLiteral("No notes in R~|-|Section: Trip>|Project>")));
}

void PanelMenusTest::toolTipCountsOpenNotes_data()
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

void PanelMenusTest::toolTipCountsOpenNotes()
{
    QFETCH(QString, project);
    QFETCH(QString, failure);
    QFETCH(QString, toolTip);

    Store &store = m_fixture->make({project});
    QCOMPARE(menuBarToolTip(store.activeProject().name, openNoteCount(store), failure), toolTip);
    QCOMPARE(menuBarDashboard(store).openNoteCount, openNoteCount(store));
}

VESKO_WIDGET_TEST_MAIN(PanelMenusTest)
#include "tst_panelmenus.moc"
