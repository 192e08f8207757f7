// SPDX-License-Identifier: GPL-3.0-or-later
//
// The section and project switchers: what a query lists and selects, the
// create row, wrapping arrows, Return, F2 rename and Escape on real views
// over a real Store; and the shortcut sheet's groups and hot-key rows.

#include "StoreFixture.h"
#include "WidgetTestMain.h"

#include "panel/layers/ProjectSwitcherView.h"
#include "panel/layers/SectionSwitcherView.h"
#include "panel/layers/ShortcutSheetView.h"
#include "panel/layers/SwitcherList.h"
#include "panel/window/PanelRootView.h"
#include "shell/Toast.h"

#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

using namespace Vesko;
using Test::idFor;

namespace {

QList<SwitcherItem> items(const QStringList &titles)
{
    QList<SwitcherItem> list;
    for (const QString &title : titles)
        list.append({idFor(title), title});
    return list;
}

//! The rows of \a list as titles, "+" for the create row, "*" before the selected one.
QString describe(const SwitcherList &list)
{
    QStringList rows;
    for (int i = 0; i < list.count(); ++i) {
        const SwitcherSelection row = *list.rowAt(i);
        QString text = row.isCreate ? QStringLiteral("+") : QString();
        for (const SwitcherItem &item : list.items()) {
            if (!row.isCreate && item.id == row.id)
                text = item.title;
        }
        rows.append(list.selectedIndex() == i ? u'*' + text : text);
    }
    return rows.join(u' ');
}

} // namespace

class SwitchersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void filtering_data();
    void filtering();
    void queryKeepsAListedSelection();

    void sectionSwitcherByKeys_data();
    void sectionSwitcherByKeys();
    void titlesLineUp_data();
    void titlesLineUp();
    void renameInsideTheSwitcher();
    void projectSwitcher();
    void ctrlKFromTheComposerOpensIt();

    void sheetGroups();

private:
    PanelRootView &showRoot(const QStringList &projects);
    template<typename View> View *openedLayer();

    std::unique_ptr<Test::StoreFixture> m_fixture;
    std::unique_ptr<PanelState> m_state;
    std::unique_ptr<PanelRootView> m_root;
};

void SwitchersTest::init()
{
    m_fixture = std::make_unique<Test::StoreFixture>();
    m_state = std::make_unique<PanelState>();
}

void SwitchersTest::cleanup()
{
    m_root.reset();
    m_state.reset();
    m_fixture.reset();
}

PanelRootView &SwitchersTest::showRoot(const QStringList &projects)
{
    Store &store = m_fixture->make(projects);
    m_root = std::make_unique<PanelRootView>(store, *m_state, m_fixture->preferences());
    m_root->resize(340, 560);
    m_root->show();
    QApplication::setActiveWindow(m_root.get());
    return *m_root;
}

template<typename View> View *SwitchersTest::openedLayer()
{
    auto *view = qobject_cast<View *>(m_root->layerView());
    if (!view)
        return nullptr;
    // The filter field takes the keyboard a moment after the switcher appeared.
    if (!QTest::qWaitFor([view] { return view->filterField()->hasFocus(); }))
        return nullptr;
    return view;
}

void SwitchersTest::filtering_data()
{
    // clang-format off
    QTest::addColumn<QStringList>("titles");
    QTest::addColumn<QString>("query");
    QTest::addColumn<int>("delta"); // arrow presses from the first row, where the selection starts
    QTest::addColumn<QString>("rows");

    const QStringList three = {"Inbox", "Work", "Links"};
    QTest::newRow("empty query lists all") << QStringList {"Inbox", "Work"} << "" << 0 << "*Inbox Work";
    QTest::newRow("equal title, any case: no create row")
        << QStringList {"Inbox", "Work"} << "inbox" << 0 << "*Inbox";
    QTest::newRow("blanks around do not count") << QStringList {"Inbox", "Work"} << "  inb  " << 0
                                                << "*Inbox +";
    QTest::newRow("two matches in order, create third") << three << "in" << 0 << "*Inbox Links +";
    QTest::newRow("no match: create alone") << QStringList {"Inbox"} << "zz" << 0 << "*+";
    QTest::newRow("no ranking by prefix") << QStringList {"Pin", "In"} << "in" << 0 << "*Pin In";
    QTest::newRow("blanks only is an empty query") << QStringList {"Inbox"} << "   " << 0 << "*Inbox";
    QTest::newRow("up from the first goes to the create row") << three << "in" << -1
                                                              << "Inbox Links *+";
    QTest::newRow("down") << three << "in" << 1 << "Inbox *Links +";
    QTest::newRow("up without create goes to the last section") << three << "" << -1
                                                                << "Inbox Work *Links";
    // clang-format on
}

void SwitchersTest::filtering()
{
    QFETCH(QStringList, titles);
    QFETCH(QString, query);
    QFETCH(int, delta);
    QFETCH(QString, rows);
    SwitcherList list(items(titles), true);
    list.setQuery(query);
    if (delta)
        list.move(delta);
    QCOMPARE(describe(list), rows);
}

void SwitchersTest::queryKeepsAListedSelection()
{
    SwitcherList list(items({"Inbox", "Work", "Links"}), true);
    list.selectInitial(idFor("Links"));
    QCOMPARE(describe(list), QStringLiteral("Inbox Work *Links"));
    list.setQuery("n");
    QCOMPARE(describe(list), QStringLiteral("Inbox *Links +"));
    list.setQuery("wo");
    QCOMPARE(describe(list), QStringLiteral("*Work +"));
    // The create row stays selected while it is offered.
    list.move(1);
    list.setQuery("wor");
    QCOMPARE(describe(list), QStringLiteral("Work *+"));
    // With no rows at all, moving selects nothing, and a commit would create.
    SwitcherList empty({}, true);
    empty.selectInitial(std::nullopt);
    QCOMPARE(empty.count(), 0);
    empty.move(1);
    QVERIFY(!empty.selection());
    QVERIFY(empty.commitTarget() && empty.commitTarget()->isCreate);
}

void SwitchersTest::sectionSwitcherByKeys_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QList<int>>("keys");
    QTest::addColumn<QString>("active"); // the active section afterwards
    QTest::addColumn<QStringList>("sections");
    QTest::addColumn<bool>("open");

    const QStringList sections = {"Inbox", "Work", "Links"};
    QTest::newRow("Return on the active section")
        << "" << QList<int> {Qt::Key_Return} << "Work" << sections << false;
    QTest::newRow("Down, Return") << "" << QList<int> {Qt::Key_Down, Qt::Key_Return} << "Links"
                                  << sections << false;
    QTest::newRow("Down wraps to the first")
        << "" << QList<int> {Qt::Key_Down, Qt::Key_Down, Qt::Key_Return} << "Inbox" << sections
        << false;
    QTest::newRow("Tab moves like Down")
        << "" << QList<int> {Qt::Key_Tab, Qt::Key_Return} << "Links" << sections << false;
    QTest::newRow("filter, then Return")
        << "lin" << QList<int> {Qt::Key_Return} << "Links" << sections << false;
    QTest::newRow("create by Return") << " Ideas " << QList<int> {Qt::Key_Return} << "Ideas"
                                      << QStringList {"Inbox", "Work", "Links", "Ideas"} << false;
    QTest::newRow("Up to the create row") << "in" << QList<int> {Qt::Key_Up, Qt::Key_Return} << "in"
                                          << QStringList {"Inbox", "Work", "Links", "in"} << false;
    QTest::newRow("Escape closes, nothing changes")
        << "lin" << QList<int> {Qt::Key_Escape} << "Work" << sections << false;
    QTest::newRow("F2 on the create row does nothing")
        << "zz" << QList<int> {Qt::Key_F2} << "Work" << sections << true;
}

void SwitchersTest::sectionSwitcherByKeys()
{
    QFETCH(QString, typed);
    QFETCH(QList<int>, keys);
    QFETCH(QString, active);
    QFETCH(QStringList, sections);
    QFETCH(bool, open);

    showRoot({"Inbox:a|*Work:b|Links:c"});
    Store &store = m_fixture->store();
    m_state->setShowing(PanelLayer::SectionSwitcher, true);
    auto *view = openedLayer<SectionSwitcherView>();
    QVERIFY(view);
    QTest::keyClicks(view->filterField(), typed);
    for (int key : keys)
        QTest::keyClick(view->filterField(), Qt::Key(key));

    QCOMPARE(store.activeSection().title, active);
    QStringList titles;
    for (const NoteSection &section : store.activeProject().sections)
        titles.append(section.title);
    QCOMPARE(titles, sections);
    QCOMPARE(m_state->isShowing(PanelLayer::SectionSwitcher), open);
    if (!open && active != "Work")
        QCOMPARE(ToastPresenter::shared().currentMessage(), "Using " + active);
}

//! The left edge of the grey ink (text, not the accent's marks) in \a row of \a image, or
//! -1. The list has no background of its own: ink is what is nearly opaque.
static int textLeft(const QImage &image, const QRect &row)
{
    for (int x = row.left(); x <= row.right(); ++x) {
        for (int y = row.top(); y <= row.bottom(); ++y) {
            const QColor pixel = image.pixelColor(x, y);
            const int spread = std::max({pixel.red(), pixel.green(), pixel.blue()})
                - std::min({pixel.red(), pixel.green(), pixel.blue()});
            if (pixel.alpha() > 160 && spread < 24)
                return x;
        }
    }
    return -1;
}

void SwitchersTest::titlesLineUp_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<int>("moves"); // Down presses: the selection on another row or the same

    QTest::newRow("the active row selected") << "" << 0;
    QTest::newRow("another row selected") << "" << 1;
    QTest::newRow("filtered") << "o" << 1;
}

void SwitchersTest::titlesLineUp()
{
    QFETCH(QString, typed);
    QFETCH(int, moves);
    showRoot({"Inbox:a|*Work:b|Links:c|Notes:d"});
    m_state->setShowing(PanelLayer::SectionSwitcher, true);
    auto *view = openedLayer<SectionSwitcherView>();
    QVERIFY(view);
    QTest::keyClicks(view->filterField(), typed);
    for (int i = 0; i < moves; ++i)
        QTest::keyClick(view->filterField(), Qt::Key_Down);
    QListWidget *list = view->listView();
    QVERIFY(list->count() >= 3);
    QVERIFY(view->rowTexts().contains(QStringLiteral("Work")));
    const QImage image = list->viewport()->grab().toImage();
    QList<int> lefts;
    // The rows of sections; the create row leads with its symbol.
    for (int i = 0; i < list->count(); ++i) {
        if (list->item(i)->text().startsWith(QStringLiteral("Create")))
            continue;
        const QRect row = list->visualItemRect(list->item(i));
        const qreal scale = image.devicePixelRatio();
        lefts.append(textLeft(image,
            QRect(row.topLeft() * scale, row.size() * scale)));
    }
    // Every title starts where the others do, the active one's too.
    QVERIFY2(lefts.first() > 0, qPrintable(QString::number(lefts.first())));
    for (int left : std::as_const(lefts))
        QVERIFY2(std::abs(left - lefts.first()) <= 1,
            qPrintable(QStringLiteral("%1 against %2").arg(left).arg(lefts.first())));
}

void SwitchersTest::renameInsideTheSwitcher()
{
    showRoot({"Inbox:a|*Work:b"});
    Store &store = m_fixture->store();
    m_state->setShowing(PanelLayer::SectionSwitcher, true);
    auto *view = openedLayer<SectionSwitcherView>();
    QVERIFY(view);
    // Escape in the rename form cancels the rename, not the switcher.
    QTest::keyClick(view->filterField(), Qt::Key_F2);
    QTRY_VERIFY_WITH_TIMEOUT(view->renameField()->hasFocus(), Test::patience);
    QTest::keyClick(view->renameField(), Qt::Key_Escape);
    QVERIFY(!view->renamingSectionID());
    QVERIFY(m_state->isShowing(PanelLayer::SectionSwitcher));

    QTest::keyClick(view->filterField(), Qt::Key_F2);
    QCOMPARE(view->renamingSectionID().value_or(QUuid()), store.activeSection().id);
    QTRY_VERIFY_WITH_TIMEOUT(view->renameField()->hasFocus(), Test::patience);
    QCOMPARE(view->renameField()->text(), QStringLiteral("Work"));

    view->renameField()->setText(" \t ");
    QVERIFY(!view->renameButton()->isEnabled());
    view->renameField()->setText("  Jobs ");
    QVERIFY(view->renameButton()->isEnabled());
    QTest::keyClick(view->renameField(), Qt::Key_Return);

    QCOMPARE(store.activeSection().title, QStringLiteral("Jobs"));
    QCOMPARE(ToastPresenter::shared().currentMessage(), QStringLiteral("Renamed"));
    QVERIFY(!view->renamingSectionID());
    QVERIFY(m_state->isShowing(PanelLayer::SectionSwitcher));
    QCOMPARE(view->rowTexts(), (QStringList {"Inbox", "Jobs"}));
    QVERIFY(view->filterField()->hasFocus());
    QTest::keyClick(view->filterField(), Qt::Key_Escape);
    QVERIFY(!m_state->isShowing(PanelLayer::SectionSwitcher));
    // An empty title is refused, so a create row without a query leaves the switcher open.
    QVERIFY(!store.createOrUseSection(QString()));
}

void SwitchersTest::projectSwitcher()
{
    showRoot({"*Inbox:a", "Home:b", "Garden:c"});
    Store &store = m_fixture->store();
    m_state->setShowing(PanelLayer::ProjectSwitcher, true);
    auto *view = openedLayer<ProjectSwitcherView>();
    QVERIFY(view);
    QCOMPARE(view->filterField()->placeholderText(), QStringLiteral("Switch project"));
    QTest::keyClicks(view->filterField(), "zz");
    QCOMPARE(view->rowTexts(), QStringList());
    QTest::keyClick(view->filterField(), Qt::Key_Return);
    QVERIFY(m_state->isShowing(PanelLayer::ProjectSwitcher));
    QCOMPARE(store.library().projects.size(), qsizetype(3));

    view->filterField()->clear();
    QTest::keyClick(view->filterField(), Qt::Key_F2); // no rename here
    QTest::keyClick(view->filterField(), Qt::Key_Up); // wraps to the last project
    QTest::keyClick(view->filterField(), Qt::Key_Return);
    QCOMPARE(store.activeProject().id, store.library().projects.at(2).id);
    QVERIFY(!m_state->isShowing(PanelLayer::ProjectSwitcher));
}

void SwitchersTest::ctrlKFromTheComposerOpensIt()
{
    showRoot({"Inbox:a|*Work:b"});
    m_root->setFocusTarget(PanelFocusTarget::Composer);
    QTest::keyClicks(QApplication::focusWidget(), "draft");
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_K, Qt::ControlModifier);
    auto *view = openedLayer<SectionSwitcherView>();
    QVERIFY(view);
    QCOMPARE(view->rowTexts(), (QStringList {"Inbox", "Work"}));
    // A click on a row chooses it.
    QListWidget *list = view->listView();
    QTest::mouseClick(
        list->viewport(), Qt::LeftButton, {}, list->visualItemRect(list->item(0)).center());
    QCOMPARE(m_fixture->store().activeSection().title, QStringLiteral("Inbox"));
    QVERIFY(!m_state->isShowing(PanelLayer::SectionSwitcher));
}

void SwitchersTest::sheetGroups()
{
    showRoot({"*Inbox:a"});
    m_state->setShowing(PanelLayer::Shortcuts, true);
    auto *sheet = qobject_cast<ShortcutSheetView *>(m_root->layerView());
    QVERIFY(sheet);
    QCOMPARE(ShortcutSheetView::windowShortcuts().size(), qsizetype(42));
    QCOMPARE(ShortcutSheetView::composingShortcuts().size(), qsizetype(3));

    const QStringList rows = sheet->rowTexts();
    QCOMPARE(rows.size(), qsizetype(42 + 3 + 4));
    QCOMPARE(rows.first(), QStringLiteral("New Note\tCtrl+N"));
    QCOMPARE(rows.at(10), QStringLiteral("Jump to Section 1\tCtrl+1"));
    QCOMPARE(rows.at(18), QStringLiteral("Jump to Section 9\tCtrl+9"));
    QCOMPARE(rows.at(41), QStringLiteral("Close\tEsc"));
    QCOMPARE(rows.at(42), QStringLiteral("Add Note\tReturn"));
    QCOMPARE(rows.at(44), QStringLiteral("Create or Use Section\t# Name"));
    // Without hot keys in this session, every system-wide row shows a dash.
    QCOMPARE(rows.mid(45),
        (QStringList {"Show or Hide Vesko\t—", "Capture Selection\t—", "Add a Note\t—",
            "Copy Notes as List\t—"}));

    // A click on the dim closes the sheet.
    QTest::mouseClick(sheet, Qt::LeftButton, {}, QPoint(3, 3));
    QVERIFY(!m_state->isShowing(PanelLayer::Shortcuts));
}

VESKO_WIDGET_TEST_MAIN(SwitchersTest)
#include "tst_switchers.moc"
