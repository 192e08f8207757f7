// SPDX-License-Identifier: GPL-3.0-or-later
//
// The search index on real SQLite databases: every path agrees with a plain
// scan, the rules of what reaches SQL, the synchronisation of changes, and
// the faults it must survive without ever failing a search.

#include "LibraryGenerator.h"
#include "StoreFixture.h"
#include "TestEnvironment.h"
#include "TestFiles.h"

#include "search/SearchIndex.h"

#include <QDir>
#include <QRandomGenerator>
#include <QSemaphore>

#include <sqlite3.h>
#include <sys/stat.h>

using namespace Vesko;
using namespace Vesko::Test;
using namespace Qt::StringLiterals;

namespace {

// What the database file holds, read through a connection of its own.
QStringList rows(const QString &path, const char *sql)
{
    QStringList out;
    sqlite3 *db = nullptr;
    if (sqlite3_open_v2(QFile::encodeName(path).constData(), &db, SQLITE_OPEN_READONLY, nullptr)
        != SQLITE_OK) {
        sqlite3_close(db);
        return {QStringLiteral("cannot open")};
    }
    sqlite3_stmt *statement = nullptr;
    if (sqlite3_prepare_v2(db, sql, -1, &statement, nullptr) == SQLITE_OK) {
        while (sqlite3_step(statement) == SQLITE_ROW)
            out.append(QString::fromUtf8(
                reinterpret_cast<const char *>(sqlite3_column_text(statement, 0))));
    }
    sqlite3_finalize(statement);
    sqlite3_close(db);
    return out;
}

QByteArray upperID(const QUuid &id)
{
    return id.toByteArray(QUuid::WithoutBraces).toUpper();
}

// Two projects; the first holds the notes given, the second one note "alpha elsewhere".
Library twoProjects(const QList<Note> &notes)
{
    Library library = makeDefaultLibrary();
    library.projects[0].sections[0].notes = notes;
    Project other;
    other.id = makeID();
    other.name = QStringLiteral("Other");
    NoteSection section = makeInboxSection();
    section.notes = {noteWith(QStringLiteral("alpha elsewhere"))};
    other.sections = {section};
    library.projects.append(other);
    return library;
}

// What a search must answer, written out plainly: every section whose
// title, and every note whose text or attachment name, lower-cased, holds the
// query.
class Reference
{
public:
    explicit Reference(const Project &project)
    {
        for (const NoteSection &section : project.sections) {
            m_entries.append({section.id, true, {section.title.toLower()}});
            for (const Note &note : section.notes) {
                QStringList fields {note.text.toLower()};
                for (const NoteAttachment &attachment : note.attachments)
                    fields.append(attachment.fileName.toLower());
                m_entries.append({note.id, false, fields});
            }
        }
    }

    SearchMatches matches(const QString &query) const
    {
        const QString q = SearchIndex::normalizedQuery(query);
        SearchMatches matches;
        if (q.isEmpty())
            return matches;
        for (const Entry &entry : m_entries) {
            for (const QString &field : entry.fields) {
                if (field.indexOf(q) >= 0) {
                    (entry.isSection ? matches.sectionIDs : matches.noteIDs).insert(entry.id);
                    break;
                }
            }
        }
        return matches;
    }

private:
    struct Entry
    {
        QUuid id;
        bool isSection;
        QStringList fields;
    };
    QList<Entry> m_entries;
};

// Texts that a byte-wise search could get wrong, put into some notes with
// attachments: case mappings that change length, halves of surrogate pairs,
// the separator of the index's rows, the wildcards of LIKE, combining marks.
void addAwkwardTexts(Project &project)
{
    // Attachments named by the start of the text unless named here.
    const QList<std::pair<QString, QStringList>> notes = {{u"İstanbul ΣΊΣΥΦΟΣ Straße"_s, {}},
        {u"half <hi> pair and <lo> other half <hi>"_s, {}},
        {u"emoji 🙂🙂 and <hi><lo> made of halves"_s, {}}, {u"done 100% of snake_case"_s, {}},
        {u"a\n<rs>\nb across"_s, {}}, {u"日本語のメモ 東京"_s, {}},
        {u"Quarterly report"_s, {u"Budget.xlsx"_s, u"chart.png"_s}},
        {u"Kaffee"_s, {u"Éclair.PNG"_s}}, {u"cafe\u0301 au lait"_s, {}}};
    for (qsizetype i = 0; i < notes.size(); ++i) {
        QString text = notes[i].first;
        text.replace(QStringLiteral("<hi>"), QChar(0xD83D));
        text.replace(QStringLiteral("<lo>"), QChar(0xDE42));
        text.replace(QStringLiteral("<rs>"), QChar(0x241E));
        NoteSection &section = project.sections[i % project.sections.size()];
        section.notes.insert(std::min<qsizetype>(1, section.notes.size()),
            noteWith(
                text, notes[i].second.isEmpty() ? QStringList {text.left(9)} : notes[i].second));
    }
    project.sections.last().title = u"Groceries"_s;
}

QString randomQuery(QRandomGenerator &random, const Project &project)
{
    // Mostly pieces of real text, of 1 to 8 characters, in any case; some noise.
    QStringList sources;
    for (const NoteSection &section : project.sections) {
        sources.append(section.title);
        for (const Note &note : section.notes.mid(0, 50)) {
            sources.append(note.text);
            for (const NoteAttachment &attachment : note.attachments)
                sources.append(attachment.fileName);
        }
    }
    const QString source = sources.at(random.bounded(int(sources.size())));
    if (source.isEmpty() || random.bounded(10) == 0)
        return QStringLiteral("zq%1").arg(random.bounded(100));
    const int length = 1 + random.bounded(8);
    const int start = random.bounded(int(std::max<qsizetype>(1, source.size() - length)));
    // Pieces may cut a surrogate pair in half, as pasted text can.
    QString query = source.mid(start, length);
    if (random.bounded(3) == 0)
        query = query.toUpper();
    if (random.bounded(5) == 0)
        query = u' ' + query + u'\t';
    return query;
}

} // namespace

class SearchIndexTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void everyPathAgreesWithAPlainScan_data();
    void everyPathAgreesWithAPlainScan();
    void searchesDoNotWaitForIndexing();
    void incrementalSynchronisationStaysExact();
    void blankQueriesNeverOpenTheDatabase();
    void deletedNotesGoneAfterTheFirstSyncOfALaunch();
    void databaseDeletedWhileRunning();
    void faultyCacheAtStart_data();
    void faultyCacheAtStart();
    void failedRebuildLeavesNothingTrusted();
    void databaseFilesArePrivate_data();
    void databaseFilesArePrivate();
    void queriesAreTrimmedOfEverySpace_data();
    void queriesAreTrimmedOfEverySpace();

private:
    QString m_path;
};

void SearchIndexTest::init()
{
    static int counter = 0;
    m_path = Test::IsolatedEnvironment::current().cacheHome()
        + QStringLiteral("/case-%1/Vesko/SearchIndex-v1.sqlite").arg(++counter);
}

void SearchIndexTest::everyPathAgreesWithAPlainScan_data()
{
    QTest::addColumn<SearchIndex::Plan>("plan");
    QTest::newRow("chosen per query") << SearchIndex::Plan::Chosen;
    QTest::newRow("index whenever it can") << SearchIndex::Plan::Index;
    QTest::newRow("scan only") << SearchIndex::Plan::Scan;
}

void SearchIndexTest::everyPathAgreesWithAPlainScan()
{
    QFETCH(SearchIndex::Plan, plan);
    SearchIndex index(m_path);
    index.setPlan(plan);
    Library library = Test::generateLibrary(6000, 17);
    addAwkwardTexts(library.projects[0]);
    // Queries the awkward texts invite, and whether SQL serves them once the
    // index is current: never with LIKE's wildcards or fewer than three
    // characters as a person counts them, and never across two fields.
    const QList<std::pair<QString, bool>> chosen = {{u"100%"_s, false}, {u"1%0"_s, false},
        {u"snake_case"_s, false}, {u"snake_cas_"_s, false}, {u"_c"_s, false}, {u"FF"_s, false},
        {u"éc"_s, false}, {u"e\u0301 "_s, false}, {u"quarterly"_s, true}, {u"BUDGET.XLS"_s, true},
        {u"chart"_s, true}, {u"report\n\u241E\nbudget"_s, true}, {u"xlsx\n\u241E\nchart"_s, true},
        {u"lait"_s, true}, {u"ocer"_s, true}};
    QRandomGenerator random(99);
    // The first searches come while the tables are being filled, the next
    // once they are current, the last for an older library than theirs.
    for (int round = 0; round < 3; ++round) {
        const quint64 revision = round == 1 ? 2 : 1;
        if (round == 1)
            index.synchronizeAndWait(library, revision);
        if (round == 2)
            library.projects[0].sections[0].notes.append(noteWith(u"Quarterly, newly typed"_s));
        const Project &project = library.projects[0];
        const Reference reference(project);
        for (const auto &[query, viaSql] : chosen) {
            const QByteArray where = u"round %1, query “%2”"_s.arg(round).arg(query).toUtf8();
            const int before = index.sqlQueryCount();
            QVERIFY2(
                index.searchAndWait(query, project, library, revision) == reference.matches(query),
                where);
            if (plan == SearchIndex::Plan::Scan
                || (plan == SearchIndex::Plan::Index && round > 0)) {
                QVERIFY2(index.sqlQueryCount() - before
                        == (plan == SearchIndex::Plan::Index && round == 1 && viaSql ? 1 : 0),
                    where);
            }
        }
        for (int i = 0; i < 1000; ++i) {
            const QString query = randomQuery(random, project);
            QVERIFY2(
                index.searchAndWait(query, project, library, revision) == reference.matches(query),
                qPrintable(u"round %1, query “%2”"_s.arg(round).arg(query)));
        }
    }
    // A project this small is always read whole when the choice is free.
    QCOMPARE(index.sqlQueryCount() > 0, plan == SearchIndex::Plan::Index);
}

void SearchIndexTest::searchesDoNotWaitForIndexing()
{
    SearchIndex index(m_path);
    const Note note = noteWith(QStringLiteral("answered at once"));
    const Library library = twoProjects({note});
    // The index's thread stays busy, as with the first indexing of a large
    // library, until the search has answered or given up.
    QSemaphore busy;
    index.runOnIndexThread([&busy] { busy.acquire(); });
    index.synchronize(library, 1);
    std::optional<SearchMatches> answer;
    QObject context;
    index.search(QStringLiteral("AT ONCE"), library.projects[0], library, 1, {}, &context,
        [&](const SearchMatches &matches) { answer = matches; });
    const bool answered = QTest::qWaitFor([&] { return answer.has_value(); }, 10000);
    busy.release();
    QVERIFY(answered);
    QCOMPARE(answer->noteIDs, QSet<QUuid> {note.id});
    QCOMPARE(index.indexedRevision(), 1u);
}

void SearchIndexTest::incrementalSynchronisationStaysExact()
{
    SearchIndex index(m_path);
    Library library = Test::generateLibrary(1500, 23);
    QRandomGenerator random(5);
    for (quint64 revision = 1; revision <= 30; ++revision) {
        // Edit, move, add and delete a few notes of the first project.
        Project &project = library.projects[0];
        for (int change = 0; change < 5; ++change) {
            NoteSection &section = project.sections[random.bounded(int(project.sections.size()))];
            if (section.notes.isEmpty())
                continue;
            const qsizetype at = random.bounded(int(section.notes.size()));
            switch (random.bounded(5)) {
            case 0:
                section.notes[at].text = QStringLiteral("Edited ZEBRA %1").arg(revision);
                break;
            case 1:
                project.sections.last().notes.append(section.notes.takeAt(at));
                break;
            case 2:
                section.notes.removeAt(at);
                break;
            case 3:
                section.notes[at].attachments.clear();
                break;
            default:
                section.title = QStringLiteral("Renamed zebra %1").arg(revision);
            }
        }
        index.synchronizeAndWait(library, revision);
        // The rows and the copy in memory must both follow every change.
        index.setPlan(revision % 2 ? SearchIndex::Plan::Index : SearchIndex::Plan::Scan);
        for (const QString &query :
            {QStringLiteral("zebra"), QStringLiteral("ed z"), QStringLiteral("the"),
                QStringLiteral("ze"), randomQuery(random, project), randomQuery(random, project)}) {
            QVERIFY2(index.searchAndWait(query, project, library, revision)
                    == Reference(project).matches(query),
                qPrintable(QStringLiteral("revision %1, query “%2”").arg(revision).arg(query)));
        }
        // One row per note, in its section: an edit, a move or a deletion
        // leaves nothing behind.
        QStringList noteRows;
        for (const Project &each : std::as_const(library.projects))
            for (const NoteSection &section : each.sections)
                for (const Note &note : section.notes)
                    noteRows.append(
                        QString::fromLatin1(upperID(note.id) + ' ' + upperID(section.id)));
        QStringList indexed = rows(m_path, "SELECT note_id || ' ' || section_id FROM note_search;");
        noteRows.sort();
        indexed.sort();
        QCOMPARE(indexed, noteRows);
    }
}

void SearchIndexTest::blankQueriesNeverOpenTheDatabase()
{
    SearchIndex index(m_path);
    const Library library = twoProjects({noteWith(QStringLiteral("alpha"))});
    QCOMPARE(index.searchAndWait(QStringLiteral(" \t "), library.projects[0], library, 1),
        SearchMatches());
    QVERIFY(!index.isDatabaseOpen());
    QVERIFY(!QFileInfo::exists(m_path));
    // A newline alone is not blank.
    const Library withNewline = twoProjects({noteWith(QStringLiteral("one\ntwo"))});
    QCOMPARE(index.searchAndWait(QStringLiteral("\n"), withNewline.projects[0], withNewline, 2)
                 .noteIDs.size(),
        1);
}

void SearchIndexTest::deletedNotesGoneAfterTheFirstSyncOfALaunch()
{
    const Note gone = noteWith(QStringLiteral("deleted between launches"));
    const Note kept = noteWith(QStringLiteral("still here"));
    {
        SearchIndex first(m_path);
        first.synchronizeAndWait(twoProjects({gone, kept}), 40);
    }
    QCOMPARE(rows(m_path, "SELECT count(*) FROM note_search;"), QStringList {QStringLiteral("3")});
    SearchIndex second(m_path);
    second.synchronizeAndWait(twoProjects({kept}), 1); // a new launch starts counting again
    QCOMPARE(rows(m_path, "SELECT count(*) FROM note_search;"), QStringList {QStringLiteral("2")});
    QVERIFY(rows(m_path, "SELECT note_id FROM note_search;")
                .contains(QString::fromLatin1(upperID(kept.id))));
}

void SearchIndexTest::databaseDeletedWhileRunning()
{
    SearchIndex index(m_path);
    Library library = twoProjects({noteWith(QStringLiteral("first note"))});
    index.synchronizeAndWait(library, 1);
    QVERIFY(QFile::remove(m_path));

    library.projects[0].sections[0].notes.append(noteWith(QStringLiteral("second note")));
    QTest::ignoreMessage(QtCriticalMsg,
        QRegularExpression(QStringLiteral("^Search index synchronization failed: ")));
    index.synchronizeAndWait(library, 2);
    QVERIFY(QFileInfo::exists(m_path));
    QCOMPARE(index.indexedRevision(), 2u);
    QCOMPARE(rows(m_path, "SELECT count(*) FROM note_search;"), QStringList {QStringLiteral("3")});
    QCOMPARE(
        index.searchAndWait(QStringLiteral("note"), library.projects[0], library, 2).noteIDs.size(),
        2);
}

void SearchIndexTest::faultyCacheAtStart_data()
{
    QTest::addColumn<bool>("folderTaken");
    QTest::newRow("a file where the folder belongs: scanning") << true;
    QTest::newRow("a corrupt database: made anew") << false;
}

void SearchIndexTest::faultyCacheAtStart()
{
    QFETCH(bool, folderTaken);
    writeFile(folderTaken ? QFileInfo(m_path).absolutePath() : m_path, QByteArray(8192, 'x'));
    SearchIndex index(m_path);
    const Note note = noteWith(QStringLiteral("survives a faulty cache"));
    const Library library = twoProjects({note});
    QTest::ignoreMessage(QtCriticalMsg,
        QRegularExpression(QStringLiteral("^Search index synchronization failed: ")));
    if (folderTaken) {
        QTest::ignoreMessage(
            QtCriticalMsg, QRegularExpression(QStringLiteral("^Search index rebuild failed: ")));
    }
    QCOMPARE(index.searchAndWait(QStringLiteral("faulty"), library.projects[0], library, 1).noteIDs,
        QSet<QUuid> {note.id});
    QCOMPARE(index.indexedRevision(), folderTaken ? std::nullopt : std::optional<quint64>(1));
    if (!folderTaken)
        QCOMPARE(rows(m_path, "SELECT count(*) FROM note_search;"), QStringList {u"2"_s});
}

void SearchIndexTest::failedRebuildLeavesNothingTrusted()
{
    SearchIndex index(m_path);
    index.setPlan(SearchIndex::Plan::Index);
    const Note first = noteWith(QStringLiteral("first note kept"));
    const Note second = noteWith(QStringLiteral("second note kept"));
    Library library = twoProjects({first, second});
    index.synchronizeAndWait(library, 1);
    // The cache folder goes and a file takes its place: the synchronisation
    // fails, and so does the rebuild.
    const QString folder = QFileInfo(m_path).absolutePath();
    QVERIFY(QDir(folder).removeRecursively());
    writeFile(folder, {});
    const Note third = noteWith(QStringLiteral("third note kept"));
    library.projects[0].sections[0].notes.append(third);
    QTest::ignoreMessage(QtCriticalMsg,
        QRegularExpression(QStringLiteral("^Search index synchronization failed: ")));
    QTest::ignoreMessage(
        QtCriticalMsg, QRegularExpression(QStringLiteral("^Search index rebuild failed: ")));
    index.synchronizeAndWait(library, 2);
    // Once the folder can be made again, the new file is filled whole: the
    // notes indexed before the failure are found through it too.
    QVERIFY(QFile::remove(folder));
    index.synchronizeAndWait(library, 3);
    QCOMPARE(index.indexedRevision(), 3u);
    QCOMPARE(rows(m_path, "SELECT count(*) FROM note_search;"), QStringList {QStringLiteral("4")});
    const int before = index.sqlQueryCount();
    QCOMPARE(
        index.searchAndWait(QStringLiteral("note kept"), library.projects[0], library, 3).noteIDs,
        (QSet<QUuid> {first.id, second.id, third.id}));
    QCOMPARE(index.sqlQueryCount(), before + 1);
}

void SearchIndexTest::databaseFilesArePrivate_data()
{
    QTest::addColumn<bool>("leftByAnEarlierRun");
    QTest::newRow("new file") << false;
    QTest::newRow("readable file of an earlier run") << true;
}

void SearchIndexTest::databaseFilesArePrivate()
{
    QFETCH(bool, leftByAnEarlierRun);
    const mode_t previous = ::umask(022);
    if (leftByAnEarlierRun) {
        SearchIndex earlier(m_path);
        earlier.synchronizeAndWait(twoProjects({noteWith(QStringLiteral("old words"))}), 1);
        for (const char *suffix : {"", "-wal", "-shm"})
            ::chmod(QFile::encodeName(m_path + QLatin1StringView(suffix)).constData(), 0644);
    }
    SearchIndex index(m_path);
    index.synchronizeAndWait(twoProjects({noteWith(QStringLiteral("private words"))}), 1);
    ::umask(previous);

    for (const char *suffix : {"", "-wal", "-shm"}) {
        const QString path = m_path + QLatin1StringView(suffix);
        QVERIFY2(QFileInfo::exists(path), qPrintable(path));
        QCOMPARE(fileMode(path), 0600u);
    }
}

void SearchIndexTest::queriesAreTrimmedOfEverySpace_data()
{
    QTest::addColumn<QString>("query");
    QTest::addColumn<QString>("expected");
    // Tab and the space separators of Unicode (category Zs) go; line breaks stay.
    QTest::newRow("space and tab") << QStringLiteral(" \tMilk\t ") << QStringLiteral("milk");
    QTest::newRow("no-break spaces")
        << QStringLiteral("\u00A0\u202Fmilk\u00A0") << QStringLiteral("milk");
    QTest::newRow("typographic spaces")
        << QStringLiteral("\u1680\u2000\u2003\u2006milk\u2009\u200A\u205F")
        << QStringLiteral("milk");
    QTest::newRow("ideographic space")
        << QStringLiteral("\u3000milk\u3000") << QStringLiteral("milk");
    QTest::newRow("inner spaces stay")
        << QStringLiteral("\u3000oat\u00A0milk ") << QStringLiteral("oat\u00A0milk");
    QTest::newRow("only spaces") << QStringLiteral("\u2003\t\u00A0") << QString();
    QTest::newRow("line feed stays") << QStringLiteral(" \nmilk") << QStringLiteral("\nmilk");
    QTest::newRow("carriage return stays") << QStringLiteral("milk\r") << QStringLiteral("milk\r");
    QTest::newRow("line separator stays")
        << QStringLiteral("\u2028milk") << QStringLiteral("\u2028milk");
    QTest::newRow("zero width space is no space")
        << QStringLiteral("\u200Bmilk") << QStringLiteral("\u200Bmilk");
}

void SearchIndexTest::queriesAreTrimmedOfEverySpace()
{
    QFETCH(QString, query);
    QFETCH(QString, expected);
    QCOMPARE(SearchIndex::normalizedQuery(query), expected);
}

VESKO_TEST_MAIN(SearchIndexTest)
#include "tst_searchindex.moc"
