// SPDX-License-Identifier: GPL-3.0-or-later
//
// The Store's side of search with a real index and real timers: debouncing,
// clearing, the guards that drop stale answers, and searching under changes.
// What a search shows once it has answered is the model test's.

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

    void rowsShowOnlyTheAnswerToTheLatestQuery();
    void otherBlanksAreNoSearch();

private:
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

void SearchFlowTest::rowsShowOnlyTheAnswerToTheLatestQuery()
{
    Store *store = &m_fixture->make({QStringLiteral("*Inbox:alpha one,beta|Work")});
    SearchIndex &index = m_fixture->searchIndex();
    index.setPlan(SearchIndex::Plan::Index); // every search counted
    QVERIFY(index.indexedRevision()); // the first synchronisation is done
    const int before = index.sqlQueryCount();
    // Keystrokes in one turn of the event loop, quicker than the debounce on
    // any machine: only the final text is searched.
    for (const QString &text :
        {QStringLiteral("alp"), QStringLiteral("alph"), QStringLiteral("alpha")})
        store->setSearchText(text);
    const QStringList alphaOne {QStringLiteral("alpha one")};
    QTRY_COMPARE_WITH_TIMEOUT(noteTexts(*store), alphaOne, Test::patience);
    QTest::qWait(150);
    QCOMPARE(index.sqlQueryCount(), before + 1);

    // The same query in other dress keeps the rows while it re-runs.
    QSignalSpy rows(store, &Store::rowsChanged);
    store->setSearchText(QStringLiteral("Alpha "));
    QCOMPARE(noteTexts(*store), alphaOne);
    QTRY_COMPARE_WITH_TIMEOUT(rows.size(), 1, Test::patience);
    QCOMPARE(noteTexts(*store), alphaOne);
    QSignalSpy text(store, &Store::searchTextChanged);
    store->setSearchText(QStringLiteral("Alpha "));
    QCOMPARE(text.size(), 0);

    // An edit while a search is pending: the older answer is dropped, the re-run applied.
    store->setSearchText(QStringLiteral("alpha "));
    store->addNote(QStringLiteral("alpha two"));
    QCOMPARE(noteTexts(*store), alphaOne);
    const QStringList alphas {QStringLiteral("alpha one"), QStringLiteral("alpha two")};
    QTRY_COMPARE_WITH_TIMEOUT(noteTexts(*store), alphas, Test::patience);
    QCOMPARE(store->appliedSearchQuery(), QStringLiteral("alpha"));

    // A new query shows nothing until its own answer, never the older query's rows.
    store->setSearchText(QStringLiteral("beta"));
    QVERIFY(store->rows().isEmpty());
    QTRY_COMPARE_WITH_TIMEOUT(
        noteTexts(*store), QStringList {QStringLiteral("beta")}, Test::patience);

    // Cleared with a search in flight: every row at once, and the answer has no effect.
    store->setSearchText(QStringLiteral("alpha"));
    store->setSearchText(QString());
    QCOMPARE(store->rows().size(), 5); // two headers, three notes
    QVERIFY(store->currentMatches().noteIDs.isEmpty());
    QTest::qWait(200);
    QCOMPARE(store->rows().size(), 5);
}

// Spaces and tabs at the ends are the model test's; spaces of other kinds are
// blanks too, a line feed is not.
void SearchFlowTest::otherBlanksAreNoSearch()
{
    Store &store = m_fixture->make({QStringLiteral("*Inbox:alpha,beta|Work")});
    store.setSearchText(QStringLiteral("\u00A0\u3000\u2003"));
    QVERIFY(!store.isSearching());
    QCOMPARE(store.rows().size(), 4);
    QTest::qWait(120);
    QCOMPARE(store.rows().size(), 4);
    store.setSearchText(QStringLiteral("\u00A0\n"));
    QVERIFY(store.isSearching());
}

VESKO_TEST_MAIN(SearchFlowTest)
#include "tst_searchflow.moc"
