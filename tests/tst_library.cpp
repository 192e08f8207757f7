// SPDX-License-Identifier: GPL-3.0-or-later
//
// The library's value types: sharing, the fallbacks of the active
// project, the source section titles and the one title comparison.

#include "LibraryGenerator.h"
#include "TestEnvironment.h"

#include "library/Library.h"
#include "library/TitleComparison.h"

#include <QRandomGenerator>

using namespace Vesko;

class LibraryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void copyIsSharedUntilChanged();
    void noteListFollowsQList_data();
    void noteListFollowsQList();
    void activeProjectFallsBack_data();
    void activeProjectFallsBack();
    void defaultLibrary();
    void sourceSectionTitle_data();
    void sourceSectionTitle();
    void titlesEqual_data();
    void titlesEqual();
};

void LibraryTest::copyIsSharedUntilChanged()
{
    const Library original = Test::generateLibrary(2000);
    Library copy = original;
    QCOMPARE(copy.projects.constData(), original.projects.constData());
    // Change one note: only the path from the root to it is copied.
    copy.projects[0].sections[0].notes[0].text = QStringLiteral("changed");
    QVERIFY(copy != original);
    QVERIFY(original.projects[0].sections[0].notes[0].text != QStringLiteral("changed"));
    QVERIFY(copy.projects.constData() != original.projects.constData());
    QVERIFY(
        copy.projects[0].sections[1].notes.sharesAllChunks(original.projects[0].sections[1].notes));
    QCOMPARE(copy.projects[1].sections.constData(), original.projects[1].sections.constData());
    QCOMPARE(copy.projects[0].sections[0].notes[1].text.constData(),
        original.projects[0].sections[0].notes[1].text.constData());
}

void LibraryTest::noteListFollowsQList_data()
{
    QTest::addColumn<quint32>("seed");
    QTest::addColumn<int>("startSize");
    QTest::addColumn<int>("steps");
    QTest::newRow("empty") << 1u << 0 << 600;
    QTest::newRow("one chunk") << 2u << 700 << 400;
    QTest::newRow("several chunks") << 3u << 5000 << 300;
    QTest::newRow("several chunks, other seed") << 4u << 3100 << 300;
}

// Random sequences of every change a list of notes undergoes, each made to
// the list and to a QList<Note> alike: the same notes and answers after every
// step, a copy taken before the step as it was, equality true and false where
// it should be, and the chunks balanced.
void LibraryTest::noteListFollowsQList()
{
    QFETCH(quint32, seed);
    QFETCH(int, startSize);
    QFETCH(int, steps);
    QRandomGenerator random(seed);
    int made = 0;
    auto note = [&made] {
        Note n;
        n.id = QUuid(uint(made), 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);
        n.text = QStringLiteral("note %1").arg(made++);
        return n;
    };
    QList<Note> reference;
    for (int i = 0; i < startSize; ++i)
        reference.append(note());
    NoteList list(reference);

    auto index = [&](qsizetype bound) { return qsizetype(random.bounded(int(bound))); };
    const char *const names[] = {"append", "prepend", "append lists", "insert", "removeAt",
        "remove range", "takeAt", "move", "operator[]", "swapItemsAt", "removeIf", "mid", "erase",
        "iterator writes", "takeFirst", "takeLast"};
    const auto both = [&](auto change) {
        change(list);
        change(reference);
    };
    const auto same = [&](auto take) { return take(list) == take(reference); };
    for (int step = 0; step < steps; ++step) {
        const QList<Note> referenceBefore = reference;
        const NoteList before = list;
        const qsizetype n = reference.size();
        const int op = n == 0 ? random.bounded(3) : random.bounded(16);
        const QByteArray where = QStringLiteral("step %1, %2").arg(step).arg(names[op]).toUtf8();
        switch (op) {
        case 0:
            both([x = note()](auto &l) { l.append(x); });
            break;
        case 1:
            both([x = note()](auto &l) { l.prepend(x); });
            break;
        case 2: {
            // Append a run of notes, then a run of this list's own chunks.
            QList<Note> more;
            for (qsizetype i = index(2500); i >= 0; --i)
                more.append(note());
            both([&more, from = n / 3](auto &l) {
                const auto own = l.mid(from);
                l.append(std::remove_const_t<decltype(own)>(more));
                l.append(own);
            });
            break;
        }
        case 3:
            both([i = index(n + 1), x = note()](auto &l) { l.insert(i, x); });
            break;
        case 4:
            both([i = index(n)](auto &l) { l.removeAt(i); });
            break;
        case 5: {
            const qsizetype i = index(n);
            const qsizetype count = index(std::min<qsizetype>(n - i, 3000) + 1);
            both([i, count](auto &l) { l.remove(i, count); });
            break;
        }
        case 6:
            QVERIFY2(same([i = index(n)](auto &l) { return l.takeAt(i); }), where);
            break;
        case 7:
            both([from = index(n), to = index(n)](auto &l) { l.move(from, to); });
            break;
        case 8:
            both([i = index(n)](auto &l) { l[i].text += u'!'; });
            break;
        case 9:
            both([i = index(n), j = index(n)](auto &l) { l.swapItemsAt(i, j); });
            break;
        case 10: {
            const int modulo = 2 + random.bounded(40);
            const auto hit = [modulo](const Note &x) {
                return x.text.size() % modulo == 0 || x.text.endsWith(u'7');
            };
            QVERIFY2(same([&hit](auto &l) { return l.removeIf(hit); }), where);
            break;
        }
        case 11: {
            const qsizetype i = index(n);
            const qsizetype count = index(n - i + 1) - (random.bounded(4) == 0 ? 1 : 0);
            both([i, count](auto &l) { l = l.mid(i, count); });
            break;
        }
        case 12: {
            const qsizetype i = index(n);
            const qsizetype j = i + index(std::min<qsizetype>(n - i, 1500) + 1);
            both([i, j](auto &l) { l.erase(l.cbegin() + i, l.cbegin() + j); });
            break;
        }
        case 13:
            // Writes through iterators, every seventh note from a random start.
            both([from = index(n), n](auto &l) {
                for (qsizetype i = from; i < n; i += 7) {
                    const auto it = l.begin() + i;
                    it->isDone = !(*it).isDone;
                }
            });
            break;
        case 14:
            QVERIFY2(same([](auto &l) { return l.takeFirst(); }), where);
            break;
        default:
            QVERIFY2(same([](auto &l) { return l.takeLast(); }), where);
            break;
        }
        QVERIFY2(list.toList() == reference, where);
        QCOMPARE(list.size(), reference.size());
        QVERIFY2(
            std::equal(list.cbegin(), list.cend(), reference.cbegin(), reference.cend()), where);
        QVERIFY2(before.toList() == referenceBefore, where);
        QVERIFY2((list == before) == (reference == referenceBefore), where);
        QVERIFY2(list == NoteList(reference), where);
        for (qsizetype c = 0; c < list.chunkCount(); ++c) {
            QVERIFY2(
                !list.chunk(c).isEmpty() && list.chunk(c).size() <= 2 * NoteList::chunkSize, where);
            if (c > 0)
                QVERIFY2(
                    list.chunk(c - 1).size() + list.chunk(c).size() > NoteList::chunkSize, where);
        }
    }
}

void LibraryTest::activeProjectFallsBack_data()
{
    QTest::addColumn<int>("projectCount");
    QTest::addColumn<int>("activeIndex"); // -1 none set, -2 a stale id
    QTest::addColumn<int>("expected");
    QTest::newRow("names the second") << 3 << 1 << 1;
    QTest::newRow("names the first") << 3 << 0 << 0;
    QTest::newRow("absent") << 3 << -1 << 0;
    QTest::newRow("stale") << 3 << -2 << 0;
    QTest::newRow("no projects") << 0 << -1 << -1;
    QTest::newRow("no projects, stale id") << 0 << -2 << -1;
}

void LibraryTest::activeProjectFallsBack()
{
    QFETCH(int, projectCount);
    QFETCH(int, activeIndex);
    QFETCH(int, expected);
    Library library;
    for (int i = 0; i < projectCount; ++i)
        library.projects.append(Project {makeID(), QString::number(i), {}, currentDate(), {}});
    if (activeIndex >= 0)
        library.activeProjectID = library.projects.at(activeIndex).id;
    else if (activeIndex == -2)
        library.activeProjectID = makeID();

    QCOMPARE(activeProjectIndex(library), expected);
    const Project *project = activeProject(library);
    if (expected < 0)
        QVERIFY(!project);
    else
        QCOMPARE(project->id, library.projects.at(expected).id);
}

void LibraryTest::defaultLibrary()
{
    const QDateTime before = currentDate();
    const Library library = makeDefaultLibrary();
    QCOMPARE(library.version, 3);
    QCOMPARE(library.projects.size(), 1);
    const Project &project = library.projects.first();
    QCOMPARE(library.activeProjectID, project.id);
    QCOMPARE(project.name, QStringLiteral("Notes"));
    QCOMPARE(project.sections.size(), 1);
    const NoteSection &inbox = project.sections.first();
    QCOMPARE(project.activeSectionID, inbox.id);
    QCOMPARE(inbox.title, QStringLiteral("Inbox"));
    QVERIFY(inbox.notes.isEmpty());
    QVERIFY(!inbox.isCollapsed);
    QVERIFY(!inbox.isAutomatic);
    QVERIFY(inbox.createdAt >= before && inbox.createdAt <= currentDate());
    QVERIFY(inbox.id != project.id && !inbox.id.isNull());
    // Fresh identities every time.
    QVERIFY(makeDefaultLibrary().projects.first().id != project.id);
}

void LibraryTest::sourceSectionTitle_data()
{
    QTest::addColumn<QString>("app");
    QTest::addColumn<std::optional<QString>>("window");
    QTest::addColumn<QString>("expected");
    const auto none = std::optional<QString>();
    const auto w = [](const char *s) { return std::optional<QString>(QString::fromUtf8(s)); };
    QTest::newRow("window repeats app") << "Safari" << w("Safari") << "Safari";
    QTest::newRow("window repeats app in other case, trailing blank")
        << "Safari" << w("safari ") << "Safari";
    QTest::newRow("no window") << "Safari" << none << "Safari";
    QTest::newRow("empty window") << "Safari" << w("") << "Safari";
    QTest::newRow("window") << "Safari" << w("Docs") << "Safari \u2014 Docs";
    QTest::newRow("blank app") << "  " << w("Docs") << "Unknown \u2014 Docs";
    QTest::newRow("both empty") << "" << none << "Unknown";
    QTest::newRow("both blank") << " \n" << w("\t") << "Unknown";
    QTest::newRow("trimmed both") << "\n Firefox " << w("  Mail\n") << "Firefox \u2014 Mail";
    QTest::newRow("non-ASCII case") << "Éditeur" << w("ÉDITEUR") << "Éditeur";
    QTest::newRow("sharp s") << "Straße" << w("STRASSE") << "Straße";
}

void LibraryTest::sourceSectionTitle()
{
    QFETCH(QString, app);
    QFETCH(std::optional<QString>, window);
    QFETCH(QString, expected);
    QCOMPARE(Vesko::sourceSectionTitle(app, window), expected);
}

void LibraryTest::titlesEqual_data()
{
    // Two titles separated by "|", and whether they are the same title.
    QTest::addColumn<QString>("titles");
    QTest::addColumn<bool>("equal");
    QTest::newRow("same") << "Inbox|Inbox" << true;
    QTest::newRow("ascii case") << "inbox|INBOX" << true;
    QTest::newRow("different") << "Inbox|Outbox" << false;
    QTest::newRow("no trimming") << "Inbox|Inbox " << false;
    QTest::newRow("prefix") << "Inbox|Inbo" << false;
    QTest::newRow("empty") << "|" << true;
    QTest::newRow("cyrillic") << "Задачи|ЗАДАЧИ" << true;
    QTest::newRow("greek final sigma") << "ΣΊΣΥΦΟΣ|σίσυφος" << true;
    QTest::newRow("sharp s") << "Straße|STRASSE" << true;
    QTest::newRow("ligature") << "ﬁle|FILE" << true;
    QTest::newRow("accented") << "CAFÉ|café" << true;
    QTest::newRow("composed and decomposed") << "caf\u00e9|cafe\u0301" << true;
    QTest::newRow("accent matters") << "cafe|café" << false;
    QTest::newRow("cjk") << "日本語|日本語" << true;
    QTest::newRow("cjk differs") << "日本語|日本" << false;
}

void LibraryTest::titlesEqual()
{
    QFETCH(QString, titles);
    QFETCH(bool, equal);
    const QString a = titles.section(u'|', 0, 0);
    const QString b = titles.section(u'|', 1);
    QCOMPARE(Vesko::titlesEqual(a, b), equal);
    QCOMPARE(Vesko::titlesEqual(b, a), equal);
    QCOMPARE(titleFoldingKey(a) == titleFoldingKey(b), equal);
}

VESKO_TEST_MAIN(LibraryTest)
#include "tst_library.moc"
