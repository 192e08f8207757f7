// SPDX-License-Identifier: GPL-3.0-or-later
//
// The Store's side of search with a real index and real timers: debouncing,
// clearing, the guards that drop stale answers, and searching under changes.

#include "StoreFixture.h"
#include "TestEnvironment.h"

#include <QSignalSpy>

using namespace Vesko;

namespace {

QStringList noteTexts(const Store &store)
{
    QStringList texts;
    for (const Note &note : store.visibleNotes())
        texts.append(note.text);
    return texts;
}

} // namespace

class SearchFlowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void clearingRestoresRowsAtOnce();
    void onlyTheFinalTextOfQuickTypingIsSearched();
    void sameQueryInOtherDressKeepsTheRows();
    void newQueryEmptiesRowsUntilItsAnswer();
    void changeUnderASearchReRunsIt();
    void blankSearchIsNoSearch();

private:
    //! A Store of the notes of \a texts in an active Inbox, and an empty section besides.
    Store *makeStore(const QString &texts)
    {
        return &m_fixture->make({QStringLiteral("*Inbox:") + texts + QStringLiteral("|Work")});
    }

    std::unique_ptr<Test::StoreFixture> m_fixture;
};

void SearchFlowTest::init()
{
    m_fixture = std::make_unique<Test::StoreFixture>();
}

void SearchFlowTest::cleanup()
{
    m_fixture.reset();
}

void SearchFlowTest::clearingRestoresRowsAtOnce()
{
    auto store = makeStore(QStringLiteral("alpha,beta"));
    const qsizetype allRows = store->rows().size();
    store->setSearchText(QStringLiteral("alpha"));
    QTRY_COMPARE_WITH_TIMEOUT(
        noteTexts(*store), QStringList {QStringLiteral("alpha")}, Test::patience);
    // A search in flight when the field is cleared has no effect.
    store->setSearchText(QStringLiteral("beta"));
    store->setSearchText(QString());
    QCOMPARE(store->rows().size(), allRows); // in the same turn
    QVERIFY(store->currentMatches().noteIDs.isEmpty());
    QTest::qWait(200);
    QCOMPARE(store->rows().size(), allRows);
}

void SearchFlowTest::onlyTheFinalTextOfQuickTypingIsSearched()
{
    auto store = makeStore(QStringLiteral("alphabet soup,alpine"));
    m_fixture->searchIndex().setPlan(SearchIndex::Plan::Index); // every search counted
    QVERIFY(m_fixture->searchIndex().indexedRevision()); // the first synchronisation is done
    const int before = m_fixture->searchIndex().sqlQueryCount();
    // Keystrokes in one turn of the event loop: quicker than the debounce on
    // any machine.
    for (const QString &text :
        {QStringLiteral("alp"), QStringLiteral("alph"), QStringLiteral("alpha")})
        store->setSearchText(text);
    QTRY_COMPARE_WITH_TIMEOUT(
        noteTexts(*store), QStringList {QStringLiteral("alphabet soup")}, Test::patience);
    QTest::qWait(150);
    QCOMPARE(m_fixture->searchIndex().sqlQueryCount(), before + 1); // one search
}

void SearchFlowTest::sameQueryInOtherDressKeepsTheRows()
{
    auto store = makeStore(QStringLiteral("alpha,beta"));
    store->setSearchText(QStringLiteral("alpha"));
    QTRY_COMPARE_WITH_TIMEOUT(
        noteTexts(*store), QStringList {QStringLiteral("alpha")}, Test::patience);

    QSignalSpy rows(store, &Store::rowsChanged);
    store->setSearchText(QStringLiteral("Alpha "));
    QCOMPARE(noteTexts(*store), QStringList {QStringLiteral("alpha")}); // not emptied
    QTRY_COMPARE_WITH_TIMEOUT(
        rows.size(), 1, Test::patience); // the re-run answer, the same matches
    QCOMPARE(noteTexts(*store), QStringList {QStringLiteral("alpha")});

    QSignalSpy text(store, &Store::searchTextChanged);
    store->setSearchText(QStringLiteral("Alpha "));
    QCOMPARE(text.size(), 0);
}

void SearchFlowTest::newQueryEmptiesRowsUntilItsAnswer()
{
    auto store = makeStore(QStringLiteral("alpha,beta"));
    store->setSearchText(QStringLiteral("alpha"));
    QTRY_COMPARE_WITH_TIMEOUT(
        noteTexts(*store), QStringList {QStringLiteral("alpha")}, Test::patience);
    store->setSearchText(QStringLiteral("beta"));
    QVERIFY(store->rows().isEmpty()); // never the rows of the older query
    QTRY_COMPARE_WITH_TIMEOUT(
        noteTexts(*store), QStringList {QStringLiteral("beta")}, Test::patience);
}

void SearchFlowTest::changeUnderASearchReRunsIt()
{
    auto store = makeStore(QStringLiteral("alpha one,beta"));
    store->setSearchText(QStringLiteral("alpha"));
    QTRY_COMPARE_WITH_TIMEOUT(
        noteTexts(*store), QStringList {QStringLiteral("alpha one")}, Test::patience);
    // An edit while a search is pending: the older answer is dropped, the re-run applied.
    store->setSearchText(QStringLiteral("alpha "));
    store->addNote(QStringLiteral("alpha two"));
    QCOMPARE(
        noteTexts(*store), QStringList {QStringLiteral("alpha one")}); // rows wait for the answer
    QTRY_COMPARE_WITH_TIMEOUT(noteTexts(*store),
        (QStringList {QStringLiteral("alpha one"), QStringLiteral("alpha two")}), Test::patience);
    QCOMPARE(store->appliedSearchQuery(), QStringLiteral("alpha"));
    // A capture with reveal clears the search.
    store->addNote(
        QStringLiteral("gamma"), std::nullopt, std::nullopt, false, std::nullopt, {}, true);
    QVERIFY(store->searchText().isEmpty());
    QCOMPARE(noteTexts(*store).size(), 4);
}

void SearchFlowTest::blankSearchIsNoSearch()
{
    auto store = makeStore(QStringLiteral("alpha,beta"));
    const qsizetype allRows = store->rows().size();
    store->setSearchText(QStringLiteral("  \t "));
    QVERIFY(!store->isSearching());
    QCOMPARE(store->rows().size(), allRows);
    QTest::qWait(120);
    QCOMPARE(store->rows().size(), allRows);
    // Spaces of other kinds are blanks too; a line feed is not.
    store->setSearchText(QStringLiteral("\u00A0\u3000\u2003"));
    QVERIFY(!store->isSearching());
    QCOMPARE(store->rows().size(), allRows);
    store->setSearchText(QStringLiteral("\u00A0\n"));
    QVERIFY(store->isSearching());
}

VESKO_TEST_MAIN(SearchFlowTest)
#include "tst_searchflow.moc"
