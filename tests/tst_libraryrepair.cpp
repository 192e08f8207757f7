// SPDX-License-Identifier: GPL-3.0-or-later
//
// The repair pass at load. A project is written as text: sections separated
// by "|", each "Title" with "!" after it for automatic, then ":" and its notes,
// a note being its text, or "text@App" / "text@App/Window" for a captured one.
// The active section is marked with "*" before its title.

#include "StoreFixture.h"
#include "TestEnvironment.h"
#include "TestFiles.h"

#include "library/LibraryCoding.h"
#include "library/LibraryFile.h"
#include "library/LibraryRepair.h"

#include <QDir>

using namespace Vesko;

namespace {

Project makeProject(const QString &description)
{
    Project project;
    project.id = makeID();
    project.name = QStringLiteral("P");
    for (const QString &part : description.split(u'|', Qt::SkipEmptyParts)) {
        NoteSection section;
        section.id = makeID();
        QString title = part.section(u':', 0, 0);
        if (title.startsWith(u'*')) {
            title.remove(0, 1);
            project.activeSectionID = section.id;
        }
        section.isAutomatic = title.endsWith(u'!');
        if (section.isAutomatic)
            title.chop(1);
        section.title = title;
        for (const QString &text : part.section(u':', 1).split(u',', Qt::SkipEmptyParts)) {
            Note note;
            note.id = makeID();
            note.text = text.section(u'@', 0, 0);
            if (text.contains(u'@')) {
                const QString source = text.section(u'@', 1);
                note.source = NoteSource {source.section(u'/', 0, 0), std::nullopt,
                    source.contains(u'/') ? std::optional(source.section(u'/', 1)) : std::nullopt};
            }
            section.notes.append(note);
        }
        project.sections.append(section);
    }
    return project;
}

QString describe(const Project &project)
{
    QStringList parts;
    for (const NoteSection &section : project.sections) {
        QStringList notes;
        for (const Note &note : section.notes) {
            QString text = note.text;
            if (note.source) {
                text += u'@' + note.source->appName;
                if (note.source->windowTitle)
                    text += u'/' + *note.source->windowTitle;
            }
            notes.append(text);
        }
        parts.append((project.activeSectionID == section.id ? QStringLiteral("*") : QString())
            + section.title + (section.isAutomatic ? QStringLiteral("!") : QString()) + u':'
            + notes.join(u','));
    }
    return parts.join(u'|');
}

} // namespace

class LibraryRepairTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void repair_data();
    void repair();
    void projectsAreNoRewrite();
    void handWrittenFilesAtStart_data();
    void handWrittenFilesAtStart();
};

void LibraryRepairTest::repair_data()
{
    QTest::addColumn<int>("version");
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");
    QTest::addColumn<bool>("changed");
    const auto row
        = [](const char *name, int version, const char *before, const char *after, bool changed) {
              QTest::newRow(name) << version << QString::fromUtf8(before)
                                  << QString::fromUtf8(after) << changed;
          };

    row("sound version 3", 3, "*Inbox:a|Work:b", "*Inbox:a|Work:b", false);
    row("version 2 is rewritten", 2, "*Inbox:a", "*Inbox:a", true);
    row("version 9 is stamped down", 9, "*Inbox:a", "*Inbox:a", true);
    row("no sections gets an active Inbox", 3, "", "*Inbox:", true);
    row("no active section picks Inbox in any case", 3, "Work:a|INBOX:b", "Work:a|*INBOX:b", true);
    row("no active section, no Inbox, picks the first", 3, "Work:a|Home:b", "*Work:a|Home:b", true);
    row("shadow section folds into Inbox", 3, "*Inbox:x|Safari!:a@Safari|safari:b,c",
        "*Inbox:x,b,c|Safari!:a@Safari", true);
    row("shadow section without Inbox makes one at the end", 3, "*Safari!:a@Safari|safari:b|Work:c",
        "*Safari!:a@Safari|Work:c|Inbox:b", true);
    row("empty shadow section just goes", 3, "*Safari!:a@Safari|SAFARI:", "*Safari!:a@Safari",
        true);
    row("shadow with a captured note stays", 3, "*Safari!:a@Safari|safari:b,c@Mail",
        "*Safari!:a@Safari|safari:b,c@Mail", false);
    row("shadow that was active loses it to Inbox", 3, "Inbox:|Safari!:a@Safari|*safari:b",
        "*Inbox:b|Safari!:a@Safari", true);
    row("legacy capture section becomes automatic", 2,
        "*Inbox:|Mail — Sent:a@Mail/Sent,b@Mail/sent",
        "*Inbox:|Mail — Sent!:a@Mail/Sent,b@Mail/sent", true);
    row("legacy Inbox never becomes automatic", 2, "*Inbox:a@Inbox", "*Inbox:a@Inbox", true);
    row("legacy mixed section stays ordinary", 2, "*Inbox:|Mail:a@Mail,typed",
        "*Inbox:|Mail:a@Mail,typed", true);
    row("version 3 section of captures stays ordinary", 3, "*Inbox:|Mail:a@Mail",
        "*Inbox:|Mail:a@Mail", false);
    row("duplicate automatic sections join under the first", 3,
        "*Inbox:|Mail!:a@Mail|x:|mail!:b@mail", "*Inbox:|Mail!:a@Mail,b@mail|x:", true);
    row("active duplicate hands over to the keeper", 3, "Inbox:|Mail!:a@Mail|*mail!:b@Mail",
        "Inbox:|*Mail!:a@Mail,b@Mail", true);
    row("legacy stray captures move, typed notes stay", 2,
        "*Inbox:|Mail!:a@Mail|Mail:b@Mail,typed@Notes",
        "*Inbox:|Mail!:a@Mail,b@Mail|Mail:typed@Notes", true);
    row("legacy section emptied of strays goes", 2, "Inbox:|Mail!:a@Mail|*MAIL:b@Mail,c@Mail",
        "Inbox:|*Mail!:a@Mail,b@Mail,c@Mail", true);
    row("phase 1 feeds phase 2 in legacy files", 2, "*Inbox:|Mail:a@Mail|Mail:b@Mail",
        "*Inbox:|Mail!:a@Mail,b@Mail", true);
}

void LibraryRepairTest::repair()
{
    QFETCH(int, version);
    QFETCH(QString, before);
    QFETCH(QString, after);
    QFETCH(bool, changed);
    Library library;
    library.version = version;
    library.projects = {makeProject(before)};
    library.activeProjectID = library.projects[0].id;
    // Notes move between sections, none is lost or made anew.
    const auto noteIDs = [&library] {
        QList<QUuid> ids;
        for (const NoteSection &section : library.projects[0].sections)
            for (const Note &note : section.notes)
                ids.append(note.id);
        std::sort(ids.begin(), ids.end());
        return ids;
    };
    const QList<QUuid> ids = noteIDs();
    QCOMPARE(repairLibrary(library), changed);
    QCOMPARE(library.version, 3);
    QCOMPARE(describe(library.projects[0]), after);
    QCOMPARE(noteIDs(), ids);
    // A repaired library needs no second repair.
    QCOMPARE(repairLibrary(library), false);
}

// A library without projects gets the default one and an absent active
// project is filled in, neither worth a rewrite; a stale one is left alone.
void LibraryRepairTest::projectsAreNoRewrite()
{
    Library library;
    QCOMPARE(repairLibrary(library), false);
    QCOMPARE(library.projects.size(), 1);
    QCOMPARE(library.projects[0].sections[0].title, QStringLiteral("Inbox"));
    QCOMPARE(library.activeProjectID, library.projects[0].id);

    library.projects = {makeProject(QStringLiteral("*Inbox:a"))};
    const QUuid stale = makeID();
    library.activeProjectID = stale;
    QCOMPARE(repairLibrary(library), false);
    QCOMPARE(library.activeProjectID, stale);
    library.activeProjectID.reset();
    QCOMPARE(repairLibrary(library), false);
    QCOMPARE(library.activeProjectID, library.projects[0].id);
}

void LibraryRepairTest::handWrittenFilesAtStart_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<bool>("rewritten");
    QTest::newRow("version 2, every phase")
        << "repair-version2.json"
        << "*Inbox:typed in the inbox,typed in a shadow"
           "|Mail — Sent!:first sent@Mail/Sent,second sent@Mail/Sent,third sent@Mail/sent"
           "|Firefox:typed about firefox|Firefox!:captured@Firefox,stray capture@Firefox"
        << true;
    QTest::newRow("sound version 3") << "library-full.json" << QString() << false;
}

void LibraryRepairTest::handWrittenFilesAtStart()
{
    QFETCH(QString, file);
    QFETCH(QString, expected);
    QFETCH(bool, rewritten);
    Test::StoreFixture fixture; // empties the settings and the data folder
    const QByteArray original = Test::readFile(QFINDTESTDATA(QStringLiteral("data/") + file));
    QVERIFY(!original.isEmpty());
    Test::writeFile(libraryURL(), original);
    Store &store = fixture.make(loadLibrary());
    if (!expected.isEmpty())
        QCOMPARE(describe(store.library().projects[0]), expected);

    const QByteArray bytes = Test::readFile(libraryURL());
    const QDir backups(backupsFolder(libraryURL()));
    if (rewritten) {
        QCOMPARE(decodeLibrary(bytes)->version, 3);
        // The old form is kept as the one backup.
        const QStringList names = backups.entryList(QDir::Files);
        QCOMPARE(names.size(), 1);
        QCOMPARE(Test::readFile(backups.filePath(names.first())), original);
    } else {
        QCOMPARE(bytes, original);
        QVERIFY(!backups.exists());
    }
}

VESKO_TEST_MAIN(LibraryRepairTest)
#include "tst_libraryrepair.moc"
