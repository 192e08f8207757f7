// SPDX-License-Identifier: GPL-3.0-or-later
//
// The library's value types: sharing, the fallbacks of the active
// project, the source section titles and the one title comparison.

#include "LibraryGenerator.h"
#include "TestEnvironment.h"

#include "library/Library.h"
#include "library/TitleComparison.h"

using namespace Vesko;

class LibraryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void copyIsSharedUntilChanged();
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
    QCOMPARE(copy.projects[0].sections[1].notes.constData(),
        original.projects[0].sections[1].notes.constData());
    QCOMPARE(copy.projects[1].sections.constData(), original.projects[1].sections.constData());
    QCOMPARE(copy.projects[0].sections[0].notes[1].text.constData(),
        original.projects[0].sections[0].notes[1].text.constData());
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
