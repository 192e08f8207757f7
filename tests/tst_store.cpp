// SPDX-License-Identifier: GPL-3.0-or-later
//
// The Store's road of a change on real files and real timers: the debounced
// save, flushing, undo and redo with their limits, observation, the repair at
// construction and the move of the library.

#include "LibraryGenerator.h"
#include "SmallFileSystem.h"
#include "StoreFixture.h"
#include "TestEnvironment.h"
#include "TestFiles.h"

#include "attachments/AttachmentStore.h"
#include "library/LibraryCoding.h"
#include "library/LibraryFile.h"
#include "library/LibraryWriter.h"
#include "platform/FileSystem.h"
#include "shell/Preferences.h"
#include "store/Store.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <QThread>

#include <sys/stat.h>

using namespace Vesko;
using namespace Vesko::Test;

namespace {

QStringList backups()
{
    return QDir(backupsFolder(libraryURL())).entryList(QDir::Files | QDir::Hidden);
}

std::optional<Library> fileLibrary()
{
    QFile file(libraryURL());
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return decodeLibrary(file.readAll());
}

// A change the way every operation makes one: record, change, commit.
void renameFirstNote(Store &store, const QString &text)
{
    store.recordUndo();
    Library library = store.library();
    library.projects[0].sections[0].notes[0].text = text;
    store.setLibrary(library);
    store.commit();
}

// Moves the library and returns the move's failure text once it has ended.
std::optional<QString> moveAndWait(Store &store, const QString &destination)
{
    QSignalSpy finished(&store, &Store::libraryMoveFinished);
    store.moveLibrary(destination);
    if (!finished.wait(30000))
        return QStringLiteral("The move did not end.");
    const QString failure = finished.first().first().toString();
    return failure.isEmpty() ? std::nullopt : std::optional<QString>(failure);
}

Library libraryWithNotes(int count)
{
    Library library = makeDefaultLibrary();
    for (int i = 0; i < count; ++i) {
        Note note;
        note.id = makeID();
        note.text = QStringLiteral("note %1").arg(i);
        note.createdAt = note.updatedAt = currentDate();
        library.projects[0].sections[0].notes.append(note);
    }
    return library;
}

const QByteArray damagedLibrary = "{\"version\": 3, \"projects\": [tru";

//! Backups of libraries whose first note reads \a texts, newest first, or
//! unreadable ones for "damaged"; then the library file damaged. Gives the
//! backups' paths.
QStringList damageWithBackups(const QStringList &texts)
{
    QStringList paths;
    for (qsizetype i = 0; i < texts.size(); ++i) {
        paths.append(
            backupsFolder(libraryURL()) + QStringLiteral("/%1-%2.json").arg(i).arg(texts[i]));
        Library library = libraryWithNotes(2);
        library.projects[0].sections[0].notes[0].text = texts[i];
        writeFile(paths[i],
            texts[i] == QLatin1String("damaged") ? damagedLibrary.left(18)
                                                 : encodeLibrary(library));
        setModified(paths[i], 1700000000 - i * 60);
    }
    writeFile(libraryURL(), damagedLibrary);
    return paths;
}

} // namespace

class StoreTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void burstOfChangesSavesOnceAfterTheLast();
    void flushSaveWritesOnceAndCancelsThePendingSave();
    void failedSaveIsShownAndRetried_data();
    void failedSaveIsShownAndRetried();

    void undoLimitFollowsTheNoteCount_data();
    void undoLimitFollowsTheNoteCount();

    void equalAssignmentsStaySilent();
    void fallbacksOfAnEmptyLibrary();
    void lookupsSpanAllProjects();
    void restoreLatestBackup_data();
    void restoreLatestBackup();
    void unreadableLibraryOutlastsARestart_data();
    void unreadableLibraryOutlastsARestart();
    void moveLibrary();
    void moveThroughALinkToTheSameFolderKeepsEverything();
    void moveIntoTheAttachmentsFolderIsRefused_data();
    void moveIntoTheAttachmentsFolderIsRefused();
    void moveCopiesLinksAsLinks();
    void moveWaitsForQueuedSaves();
    void moveCutShortLeavesTheTargetAsItWas_data();
    void moveCutShortLeavesTheTargetAsItWas();
    void savesGoWhereThePreferencesSay();

private:
    std::unique_ptr<Preferences> m_preferences;
    std::unique_ptr<LibraryWriter> m_writer;
    std::unique_ptr<AttachmentStore> m_attachments = std::make_unique<AttachmentStore>();
    std::unique_ptr<SearchIndex> m_searchIndex = std::make_unique<SearchIndex>();
};

void StoreTest::init()
{
    Preferences::openSettings()->clear();
    QDir(Test::IsolatedEnvironment::current().dataHome()).removeRecursively();
    m_preferences = std::make_unique<Preferences>();
    m_writer = std::make_unique<LibraryWriter>();
}

void StoreTest::cleanup()
{
    m_writer.reset(); // waits for its writes
    m_preferences.reset();
}

void StoreTest::burstOfChangesSavesOnceAfterTheLast()
{
    QVERIFY(!writeLibrary(libraryWithNotes(3), libraryURL()));
    Store store(loadLibrary(), {*m_preferences, *m_writer, *m_attachments, *m_searchIndex});
    QCOMPARE(backups().size(), 0);
    // Changes about 60 ms apart: each one postpones the save. A machine that
    // stalls for longer than the save delay between two of them may let a
    // save through, as it should; only the short gaps must be bridged.
    QElapsedTimer clock;
    clock.start();
    qint64 lastChange = 0;
    int longGaps = 0;
    for (int i = 0; i < 10; ++i) {
        if (i > 0 && clock.elapsed() - lastChange >= Store::saveDelayMilliseconds)
            ++longGaps;
        renameFirstNote(store, QStringLiteral("edit %1").arg(i));
        lastChange = clock.elapsed();
        QTest::qWait(60);
    }
    QVERIFY(store.hasPendingSave() || longGaps > 0);
    QVERIFY(backups().size() <= longGaps); // nothing written across a short gap

    QTRY_VERIFY_WITH_TIMEOUT(backups().size() > 0, Test::patience);
    QVERIFY(clock.elapsed() - lastChange >= Store::saveDelayMilliseconds);
    QTRY_COMPARE_WITH_TIMEOUT(fileLibrary()->projects[0].sections[0].notes[0].text,
        QStringLiteral("edit 9"), Test::patience);
    QTest::qWait(500);
    QVERIFY(backups().size() <= longGaps + 1); // one write for the whole burst
}

void StoreTest::flushSaveWritesOnceAndCancelsThePendingSave()
{
    {
        Store store(loadLibrary(), {*m_preferences, *m_writer, *m_attachments, *m_searchIndex});
        store.flushSave(); // a quit without changes writes all the same; no file before: no backup
    }
    QVERIFY(fileLibrary());
    QCOMPARE(backups().size(), 0);

    Store store(loadLibrary(), {*m_preferences, *m_writer, *m_attachments, *m_searchIndex});
    store.addNote(QStringLiteral("flushed"));
    QVERIFY(store.hasPendingSave());
    store.flushSave();
    QVERIFY(!store.hasPendingSave());
    QCOMPARE(noteTexts(*fileLibrary()), QStringList {QStringLiteral("flushed")});
    QTest::qWait(600);
    QCOMPARE(backups().size(), 1);
}

void StoreTest::failedSaveIsShownAndRetried_data()
{
    QTest::addColumn<bool>("readOnly");
    QTest::newRow("full disk") << false;
    QTest::newRow("read-only disk") << true;
}

void StoreTest::failedSaveIsShownAndRetried()
{
    QFETCH(bool, readOnly);
    static int counter = 0;
    Test::SmallFileSystem disk(
        Test::IsolatedEnvironment::current().root() + QStringLiteral("/disk-%1").arg(++counter),
        320);
    if (!disk.isMounted())
        QSKIP(qPrintable(QStringLiteral("Cannot mount a tmpfs: ") + disk.failure()));
    const QString path = disk.folder() + QStringLiteral("/Library.json");
    m_preferences->setLibraryPath(path);
    Store store(libraryWithNotes(1), {*m_preferences, *m_writer, *m_attachments, *m_searchIndex});
    store.flushSave();
    QSignalSpy failureChanged(&store, &Store::saveFailureChanged);

    QVERIFY(readOnly ? disk.setReadOnly(true) : disk.fill());
    const QString reason = readOnly ? QStringLiteral("Read-only file system")
                                    : QStringLiteral("No space left on device");
    QTest::ignoreMessage(QtCriticalMsg, QRegularExpression(QStringLiteral("^Save failed: ")));
    renameFirstNote(store, QStringLiteral("saved once the disk takes it"));
    QTRY_VERIFY_WITH_TIMEOUT(!store.saveFailure().isEmpty(), Test::patience);
    QVERIFY2(store.saveFailure().contains(reason), qPrintable(store.saveFailure()));
    QCOMPARE(failureChanged.size(), 1);
    // The disk takes writes again: the change reaches the file by itself.
    QVERIFY(readOnly ? disk.setReadOnly(false) : (disk.release(), true));
    QTRY_COMPARE_WITH_TIMEOUT(loadLibrary(path).projects[0].sections[0].notes[0].text,
        QStringLiteral("saved once the disk takes it"), Test::patience);
    QTRY_COMPARE_WITH_TIMEOUT(store.saveFailure(), QString(), Test::patience);
    QCOMPARE(failureChanged.size(), 2);
}

void StoreTest::undoLimitFollowsTheNoteCount_data()
{
    QTest::addColumn<int>("notes");
    QTest::addColumn<int>("steps");
    QTest::newRow("8333 notes") << 8333 << 60;
    QTest::newRow("8334 notes") << 8334 << 59;
    QTest::newRow("50000 notes") << 50000 << 10;
    QTest::newRow("100001 notes") << 100001 << 5;
}

void StoreTest::undoLimitFollowsTheNoteCount()
{
    QFETCH(int, notes);
    QFETCH(int, steps);
    // Sixty steps taken while the library was small...
    Store store(libraryWithNotes(1), {*m_preferences, *m_writer, *m_attachments, *m_searchIndex});
    for (int i = 0; i < 60; ++i)
        renameFirstNote(store, QString::number(i));
    QCOMPARE(store.undoStepCount(), 60);
    // ...are trimmed only at the next recorded change after it grew.
    store.setLibrary(libraryWithNotes(notes));
    QCOMPARE(store.undoStepCount(), 60);
    renameFirstNote(store, QStringLiteral("grown"));
    QCOMPARE(store.undoStepCount(), steps);
}

void StoreTest::equalAssignmentsStaySilent()
{
    Store store(libraryWithNotes(2), {*m_preferences, *m_writer, *m_attachments, *m_searchIndex});
    QSignalSpy library(&store, &Store::libraryChanged);
    QSignalSpy selection(&store, &Store::selectionChanged);
    QSignalSpy anchor(&store, &Store::selectionAnchorChanged);
    QSignalSpy editing(&store, &Store::editingNoteIDChanged);
    QSignalSpy rows(&store, &Store::rowsChanged);

    store.setLibrary(Library(store.library())); // equal, and sharing
    Library equal = store.library();
    equal.projects[0].name = QStringLiteral("x");
    equal.projects[0].name = store.library().projects[0].name; // equal, detached
    store.setLibrary(equal);
    // Undo and redo without steps change nothing either.
    const quint64 revision = store.libraryRevision();
    store.undo();
    store.redo();
    QCOMPARE(store.libraryRevision(), revision);
    QCOMPARE(library.size(), 0);
    QCOMPARE(rows.size(), 0);
    QVERIFY(!store.hasPendingSave());

    const QUuid id = store.library().projects[0].sections[0].notes[0].id;
    store.setSelection({id}, id);
    store.setSelection({id}, id);
    QCOMPARE(selection.size(), 1);
    QCOMPARE(anchor.size(), 1);
    store.setEditingNoteID(id);
    store.setEditingNoteID(id);
    QCOMPARE(editing.size(), 1);
    // Rows signal at every rebuild, even an equal one.
    store.rebuildRows();
    store.rebuildRows();
    QCOMPARE(rows.size(), 2);
}

void StoreTest::fallbacksOfAnEmptyLibrary()
{
    Library library = libraryWithNotes(1);
    library.projects[0].activeSectionID = makeID(); // stale
    library.projects[0].sections.prepend(makeInboxSection());
    library.projects[0].sections[0].title = QStringLiteral("First");
    Store store(libraryWithNotes(0), {*m_preferences, *m_writer, *m_attachments, *m_searchIndex});
    store.setLibrary(library);
    QCOMPARE(store.activeSection().title, QStringLiteral("First"));

    library.projects[0].sections.clear();
    store.setLibrary(library);
    QCOMPARE(store.activeSection().title, QStringLiteral("Inbox"));
    QVERIFY(store.section(store.activeSection().id) == std::nullopt); // unsaved

    library.projects.clear();
    store.setLibrary(library);
    QCOMPARE(store.activeProject().name, QStringLiteral("Notes"));
    QVERIFY(store.activeProject().sections.isEmpty());
    QCOMPARE(store.library().projects.size(), 0);
}

void StoreTest::lookupsSpanAllProjects()
{
    const Library library = Test::generateLibrary(300, 5);
    Store store(library, {*m_preferences, *m_writer, *m_attachments, *m_searchIndex});
    const Project &last = store.library().projects.last();
    const NoteSection *section = nullptr;
    for (const NoteSection &candidate : last.sections) {
        if (!candidate.notes.isEmpty())
            section = &candidate;
    }
    QVERIFY(section);
    const Note &note = section->notes.last();
    QCOMPARE(store.note(note.id)->text, note.text);
    QCOMPARE(*store.addressOfNote(note.id), (NoteAddress {last.id, section->id, note.id}));
    QCOMPARE(store.section(section->id)->title, section->title);
    QVERIFY(!store.note(makeID()));
    QVERIFY(!store.section(note.id));
}

void StoreTest::restoreLatestBackup_data()
{
    // The backups, newest first: the first note's text of a library that
    // reads, or "damaged"; and the text restored, or nothing.
    QTest::addColumn<QStringList>("backups");
    QTest::addColumn<QString>("restored");
    QTest::newRow("the newest reads") << QStringList {QStringLiteral("latest"),
        QStringLiteral("older")} << QStringLiteral("latest");
    QTest::newRow("the newest is damaged") << QStringList {QStringLiteral("damaged"),
        QStringLiteral("older")} << QStringLiteral("older");
    QTest::newRow("none reads") << QStringList {QStringLiteral("damaged"),
        QStringLiteral("damaged")}
                                << QString();
    QTest::newRow("no backups") << QStringList() << QString();
}

void StoreTest::restoreLatestBackup()
{
    QFETCH(QStringList, backups);
    QFETCH(QString, restored);
    damageWithBackups(backups);
    QTest::ignoreMessage(
        QtCriticalMsg, QRegularExpression(QStringLiteral("^Could not read library")));
    std::optional<UnreadableLibrary> unreadable;
    Library loaded = loadLibrary(libraryURL(), &unreadable);
    QVERIFY(unreadable);
    Store store(std::move(loaded), {*m_preferences, *m_writer, *m_attachments, *m_searchIndex});
    store.setUnreadableLibrary(unreadable);
    // Notes typed into the new library, each saved: more saves than backups are kept.
    for (int i = 0; i < 2 * libraryBackupCount; ++i) {
        store.addNote(QStringLiteral("typed %1").arg(i));
        store.flushSave();
    }
    const Library typed = store.library();

    QSignalSpy changed(&store, &Store::unreadableLibraryChanged);
    if (restored.isEmpty() && !backups.isEmpty())
        QTest::ignoreMessage(
            QtCriticalMsg, QRegularExpression(QStringLiteral("^No backup could be read")));
    store.restoreLatestBackup();
    QTRY_VERIFY_WITH_TIMEOUT(!store.isRestoringBackup(), Test::patience);
    QVERIFY(!changed.isEmpty());

    if (restored.isEmpty()) {
        // Nothing changes, and the news stays with the reason.
        QCOMPARE(store.library(), typed);
        QVERIFY(store.unreadableLibrary());
        QVERIFY(!store.restoreFailure().isEmpty());
    } else {
        QCOMPARE(noteTexts(store.library()).first(), restored);
        QVERIFY(!store.unreadableLibrary());
        // Saved like any change, and undone like one.
        store.flushSave();
        QCOMPARE(noteTexts(*fileLibrary()).first(), restored);
        store.undo();
        QCOMPARE(store.library(), typed);
        // The saves that follow keep the backups of the earlier states all the same.
        for (int i = 0; i < 2 * libraryBackupCount; ++i) {
            store.addNote(QStringLiteral("typed after the restore %1").arg(i));
            store.flushSave();
        }
        for (const QString &backup : std::as_const(unreadable->backups))
            QVERIFY2(QFileInfo::exists(backup), qPrintable(backup));
    }
    // The file set aside is never touched.
    QCOMPARE(readFile(unreadable->path), damagedLibrary);
}

void StoreTest::unreadableLibraryOutlastsARestart_data()
{
    // What happens before the program starts again, whether the news is told
    // again then, and which of the backups from before the damage outlast
    // the saves of that next run.
    QTest::addColumn<QString>("meanwhile");
    QTest::addColumn<bool>("toldAgain");
    QTest::addColumn<QStringList>("kept");
    const QStringList both {QStringLiteral("newest"), QStringLiteral("older")};
    QTest::newRow("quit without acting") << QStringLiteral("nothing") << true << both;
    QTest::newRow("dismissed") << QStringLiteral("dismiss") << false << QStringList();
    QTest::newRow("restored") << QStringLiteral("restore") << false << QStringList();
    QTest::newRow("a backup deleted by hand")
        << QStringLiteral("delete newest") << true << QStringList {QStringLiteral("older")};
    QTest::newRow("unreadable again") << QStringLiteral("damage") << true << both;
}

void StoreTest::unreadableLibraryOutlastsARestart()
{
    QFETCH(QString, meanwhile);
    QFETCH(bool, toldAgain);
    QFETCH(QStringList, kept);
    const QString path = libraryURL();
    const QStringList texts {QStringLiteral("newest"), QStringLiteral("older")};
    const QStringList backups = damageWithBackups(texts);
    // A start the program's way: the load, then the Store told what it found.
    const auto start = [this, &path] {
        std::optional<UnreadableLibrary> unreadable;
        Library loaded = loadLibrary(path, &unreadable);
        auto store = std::make_unique<Store>(std::move(loaded),
            Store::Services {*m_preferences, *m_writer, *m_attachments, *m_searchIndex});
        store->setUnreadableLibrary(unreadable);
        return store;
    };
    QTest::ignoreMessage(
        QtCriticalMsg, QRegularExpression(QStringLiteral("^Could not read library")));
    std::unique_ptr<Store> store = start();
    QVERIFY(store->unreadableLibrary());
    const QString firstSetAside = store->unreadableLibrary()->path;
    store->addNote(QStringLiteral("typed"));
    store->flushSave();

    if (meanwhile == QLatin1String("dismiss")) {
        store->dismissUnreadableLibrary();
    } else if (meanwhile == QLatin1String("restore")) {
        store->restoreLatestBackup();
        QTRY_VERIFY_WITH_TIMEOUT(!store->unreadableLibrary(), Test::patience);
        QCOMPARE(noteTexts(store->library()).first(), texts.first());
        store->flushSave();
    }
    // The program ends; its writer finishes what it was given.
    store.reset();
    m_writer = std::make_unique<LibraryWriter>();

    if (meanwhile == QLatin1String("delete newest")) {
        QVERIFY(QFile::remove(backups.first()));
    } else if (meanwhile == QLatin1String("damage")) {
        // A second set-aside file wants a name of its own, a second later.
        QTRY_VERIFY_WITH_TIMEOUT(QFileInfo(firstSetAside).fileName()
                != QStringLiteral("Library-unreadable-%1.json").arg(fileNameStamp(currentDate())),
            Test::patience);
        writeFile(path, damagedLibrary);
        QTest::ignoreMessage(
            QtCriticalMsg, QRegularExpression(QStringLiteral("^Could not read library")));
    }

    store = start();
    QCOMPARE(store->unreadableLibrary().has_value(), toldAgain);
    if (toldAgain) {
        // The line names the file set aside last, which stays untouched.
        const QString setAside = store->unreadableLibrary()->path;
        QCOMPARE(setAside != firstSetAside, meanwhile == QLatin1String("damage"));
        QCOMPARE(readFile(setAside), damagedLibrary);
        QVERIFY(store->unreadableLibrary()->isSetAside);
    }
    for (int i = 0; i < libraryBackupCount + 2; ++i) {
        store->addNote(QStringLiteral("typed after the start %1").arg(i));
        store->flushSave();
    }
    for (qsizetype i = 0; i < texts.size(); ++i)
        QCOMPARE(QFileInfo::exists(backups[i]), kept.contains(texts[i]));
    if (toldAgain) {
        store->restoreLatestBackup();
        QTRY_VERIFY_WITH_TIMEOUT(!store->unreadableLibrary(), Test::patience);
        QCOMPARE(noteTexts(store->library()).first(), kept.first());
    }
    // Once acted on, the next start tells nothing.
    store.reset();
    m_writer = std::make_unique<LibraryWriter>();
    store = start();
    QVERIFY(!store->unreadableLibrary());
}

void StoreTest::moveLibrary()
{
    const QString oldPath = libraryURL();
    QVERIFY(!writeLibrary(libraryWithNotes(1), oldPath));
    writeFile(attachmentsFolder(oldPath) + QStringLiteral("/A/image.png"), "png");

    Store store(loadLibrary(), {*m_preferences, *m_writer, *m_attachments, *m_searchIndex});
    renameFirstNote(store, QStringLiteral("moved"));
    const QUuid id = store.library().projects[0].sections[0].notes[0].id;
    store.setSelection({id}, id);
    const quint64 revision = store.libraryRevision();

    const QString folder = Test::IsolatedEnvironment::current().root() + QStringLiteral("/Synced");
    QDir().mkpath(folder);
    QCOMPARE(moveAndWait(store, folder), std::nullopt);
    m_attachments->waitForIdle(); // the old files go in the background

    const QString newPath = folder + QStringLiteral("/Library.json");
    QCOMPARE(libraryURL(), newPath);
    QCOMPARE(m_preferences->libraryPath(), newPath);
    QCOMPARE(fileLibrary()->projects[0].sections[0].notes[0].text, QStringLiteral("moved"));
    QVERIFY(QFileInfo::exists(folder + QStringLiteral("/Attachments/A/image.png")));
    QVERIFY(!QFileInfo::exists(attachmentsFolder(oldPath)));
    QVERIFY(store.selection().isEmpty());
    QCOMPARE(store.libraryRevision(), revision + 1);
    QVERIFY(store.canUndo()); // the stacks stay
    // The save that was pending still goes to the old place.
    QTRY_VERIFY_WITH_TIMEOUT(QFileInfo::exists(oldPath), Test::patience);
    // A move into a folder where the file cannot go fails and changes nothing.
    const QString blocked
        = Test::IsolatedEnvironment::current().root() + QStringLiteral("/blocked");
    writeFile(blocked, {});
    QVERIFY(moveAndWait(store, blocked + QStringLiteral("/Library.json")).has_value());
    QCOMPARE(libraryURL(), newPath);
}

void StoreTest::moveThroughALinkToTheSameFolderKeepsEverything()
{
    const QString current = libraryURL();
    QVERIFY(!writeLibrary(libraryWithNotes(2), current));
    const QString attachment = attachmentsFolder(current) + QStringLiteral("/A/image.png");
    writeFile(attachment, "png");
    const QString link = Test::IsolatedEnvironment::current().root() + QStringLiteral("/Same");
    QVERIFY(QFile::link(QFileInfo(current).absolutePath(), link));

    Store store(loadLibrary(), {*m_preferences, *m_writer, *m_attachments, *m_searchIndex});
    const Library before = store.library();
    QCOMPARE(moveAndWait(store, link), std::nullopt);
    m_attachments->waitForIdle();

    QCOMPARE(loadLibrary(current), before);
    QCOMPARE(store.library(), before);
    QCOMPARE(readFile(attachment), QByteArray("png"));
    QCOMPARE(fileTree(attachmentsFolder(current)),
        (QStringList {QStringLiteral("A"), QStringLiteral("A/image.png")}));
}

void StoreTest::moveIntoTheAttachmentsFolderIsRefused_data()
{
    QTest::addColumn<QString>("destination");
    QTest::newRow("the folder itself") << QStringLiteral("Attachments");
    QTest::newRow("a folder in it") << QStringLiteral("Attachments/A");
    QTest::newRow("a file name in it") << QStringLiteral("Attachments/A/Notes.json");
    QTest::newRow("through a link") << QStringLiteral("LinkToA");
}

void StoreTest::moveIntoTheAttachmentsFolderIsRefused()
{
    QFETCH(QString, destination);
    const QString current = libraryURL();
    const QString folder = QFileInfo(current).absolutePath();
    QVERIFY(!writeLibrary(libraryWithNotes(1), current));
    writeFile(attachmentsFolder(current) + QStringLiteral("/A/image.png"), "png");
    QVERIFY(QFile::link(
        attachmentsFolder(current) + QStringLiteral("/A"), folder + QStringLiteral("/LinkToA")));
    const QStringList attachmentsBefore = fileTree(attachmentsFolder(current));
    const QByteArray fileBefore = readFile(current);

    Store store(loadLibrary(), {*m_preferences, *m_writer, *m_attachments, *m_searchIndex});
    const std::optional<QString> failure = moveAndWait(store, folder + u'/' + destination);
    m_attachments->waitForIdle();
    QVERIFY(failure);
    QVERIFY2(failure->contains(QStringLiteral("Attachments")), qPrintable(*failure));
    QCOMPARE(fileTree(attachmentsFolder(current)), attachmentsBefore);
    QCOMPARE(readFile(current), fileBefore);
    QCOMPARE(libraryURL(), current);
}

void StoreTest::moveCopiesLinksAsLinks()
{
    const QString root = Test::IsolatedEnvironment::current().root();
    const QString current = libraryURL();
    const QString attachments = attachmentsFolder(current);
    QVERIFY(!writeLibrary(libraryWithNotes(1), current));
    // A file of a few mebibytes with a date of its own, a link to a file
    // outside and a link to a folder outside.
    QByteArray large(3 * 1024 * 1024 + 17, Qt::Uninitialized);
    for (qsizetype i = 0; i < large.size(); ++i)
        large[i] = char((i * 7919) >> 3);
    writeFile(attachments + QStringLiteral("/A/large.bin"), large);
    QFile dated(attachments + QStringLiteral("/A/large.bin"));
    QVERIFY(dated.open(QIODevice::ReadWrite));
    QVERIFY(dated.setFileTime(
        QDateTime::fromSecsSinceEpoch(1600000000, Qt::UTC), QFileDevice::FileModificationTime));
    dated.close();
    writeFile(root + QStringLiteral("/outside/secret.txt"), "not an attachment");
    QDir().mkpath(attachments + QStringLiteral("/L"));
    QVERIFY(QFile::link(root + QStringLiteral("/outside/secret.txt"),
        attachments + QStringLiteral("/L/secret.txt")));
    QVERIFY(QFile::link(root + QStringLiteral("/outside"), attachments + QStringLiteral("/D")));
    // A named pipe, which a copy would wait on for ever, is no attachment.
    QVERIFY(::mkfifo(QFile::encodeName(attachments + QStringLiteral("/A/pipe")).constData(), 0600)
        == 0);

    Store store(loadLibrary(), {*m_preferences, *m_writer, *m_attachments, *m_searchIndex});
    const QString target = root + QStringLiteral("/Moved");
    QDir().mkpath(target);
    QSignalSpy progress(&store, &Store::libraryMoveProgress);
    QSignalSpy finished(&store, &Store::libraryMoveFinished);
    store.moveLibrary(target);
    QVERIFY(store.isMovingLibrary());
    // One move at a time: a second one is turned down at once.
    store.moveLibrary(root + QStringLiteral("/Elsewhere"));
    QVERIFY(finished.wait(30000));
    QVERIFY(finished.first().first().toString().contains(QStringLiteral("already")));
    QTRY_COMPARE_WITH_TIMEOUT(finished.size(), 2, Test::patience);
    QCOMPARE(finished.last().first().toString(), QString());
    QVERIFY(!store.isMovingLibrary());
    m_attachments->waitForIdle();
    // Progress counts the bytes of files, not what links point to.
    QVERIFY(!progress.isEmpty());
    QCOMPARE(progress.last(), (QList<QVariant> {large.size(), large.size()}));

    const QString moved = target + QStringLiteral("/Attachments");
    QCOMPARE(readFile(moved + QStringLiteral("/A/large.bin")), large);
    QCOMPARE(QFileInfo(moved + QStringLiteral("/A/large.bin")).lastModified().toSecsSinceEpoch(),
        1600000000);
    const QList<std::pair<QString, QString>> links
        = {{QStringLiteral("L/secret.txt"), root + QStringLiteral("/outside/secret.txt")},
            {QStringLiteral("D"), root + QStringLiteral("/outside")}};
    for (const auto &[name, pointsTo] : links) {
        const QFileInfo link(moved + u'/' + name);
        QVERIFY2(link.isSymLink(), qPrintable(name));
        QCOMPARE(link.symLinkTarget(), pointsTo);
    }
    QVERIFY(!FileSystem::exists(moved + QStringLiteral("/A/pipe")));
    QCOMPARE(
        readFile(root + QStringLiteral("/outside/secret.txt")), QByteArray("not an attachment"));
    QVERIFY(!QFileInfo::exists(attachments));
}

void StoreTest::moveWaitsForQueuedSaves()
{
    const QString current = libraryURL();
    QVERIFY(!writeLibrary(libraryWithNotes(1), current));
    Store store(loadLibrary(), {*m_preferences, *m_writer, *m_attachments, *m_searchIndex});
    // An older and larger state is still on its way to the file, as a save
    // queued just before the move would be. It lands whole, and before the
    // move's own write.
    bool olderLanded = false;
    std::optional<QString> olderFailure;
    m_writer->write(
        Test::generateLibrary(20000, 3), current, this, [&](std::optional<QString> failure) {
            olderLanded = true;
            olderFailure = failure;
        });
    QCOMPARE(moveAndWait(store, QFileInfo(current).absolutePath()), std::nullopt);
    QTRY_VERIFY_WITH_TIMEOUT(olderLanded, Test::patience);
    QCOMPARE(olderFailure, std::nullopt);

    QCOMPARE(noteCount(store.library()), 1);
    QCOMPARE(fileLibrary(), std::optional<Library>(store.library()));
}

void StoreTest::moveCutShortLeavesTheTargetAsItWas_data()
{
    QTest::addColumn<bool>("copyUnderWay");
    QTest::addColumn<bool>("byQuit");
    QTest::newRow("quit before the copy begins") << false << true;
    QTest::newRow("quit while the copy runs") << true << true;
    QTest::newRow("Cancel Move while the copy runs") << true << false;
}

void StoreTest::moveCutShortLeavesTheTargetAsItWas()
{
    QFETCH(bool, copyUnderWay);
    QFETCH(bool, byQuit);
    const QString current = libraryURL();
    QVERIFY(!writeLibrary(libraryWithNotes(1), current));
    // Large attachments, so that the copy is far from done at the quit.
    const QString attachments = attachmentsFolder(current);
    const QByteArray content(4 * 1024 * 1024, 'v');
    constexpr int fileCount = 64;
    for (int i = 0; i < fileCount; ++i)
        writeFile(
            attachments + QStringLiteral("/F%1/file.bin").arg(i, 2, 10, QChar(u'0')), content);
    const QStringList attachmentTree = fileTree(attachments);

    AttachmentStore copies;
    Store store(loadLibrary(), {*m_preferences, *m_writer, copies, *m_searchIndex});
    renameFirstNote(store, QStringLiteral("changed before the quit"));
    const QString target = Test::IsolatedEnvironment::current().root()
        + QStringLiteral("/Cut short %1").arg(QLatin1String(QTest::currentDataTag()));
    QDir().mkpath(target);
    store.moveLibrary(target);
    if (copyUnderWay) {
        // The first file has arrived: the copy is under way.
        const QString first = target + QStringLiteral("/Attachments/F01");
        QDeadlineTimer deadline(30000);
        while (!QFileInfo::exists(first) && !deadline.hasExpired())
            QThread::usleep(200);
        QVERIFY(QFileInfo::exists(first));
    }

    if (byQuit) {
        store.finishForQuit();
    } else {
        QSignalSpy finished(&store, &Store::libraryMoveFinished);
        store.cancelLibraryMove();
        QVERIFY(finished.wait(30000));
        QCOMPARE(finished.first().first().toString(), QStringLiteral("The move was cancelled."));
        QVERIFY(!store.isMovingLibrary());
        store.flushSave();
    }
    // The library is written where it was, and stays there.
    QCOMPARE(libraryURL(), current);
    QCOMPARE(fileLibrary()->projects[0].sections[0].notes[0].text,
        QStringLiteral("changed before the quit"));
    // No part of the copy is left at the target; the attachments are whole where they were.
    QCOMPARE(fileTree(target), QStringList());
    QCOMPARE(fileTree(attachments), attachmentTree);
    QCOMPARE(readFile(attachments + QStringLiteral("/F63/file.bin")), content);
}

void StoreTest::savesGoWhereThePreferencesSay()
{
    const QString root = Test::IsolatedEnvironment::current().root();
    const QString chosen = root + QStringLiteral("/chosen/Library.json");
    m_preferences->setLibraryPath(chosen);
    // The settings file says otherwise behind the preferences' back, before
    // the Store starts and again while a save is pending.
    const QStringList others
        = {root + QStringLiteral("/behind/Library.json"), root + QStringLiteral("/elsewhere.json")};
    Preferences::openSettings()->setValue(QStringLiteral("libraryPath"), others[0]);
    Store store(libraryWithNotes(1), {*m_preferences, *m_writer, *m_attachments, *m_searchIndex});
    renameFirstNote(store, QStringLiteral("saved where chosen"));
    Preferences::openSettings()->setValue(QStringLiteral("libraryPath"), others[1]);
    QCOMPARE(libraryURL(), others[1]);
    QTRY_VERIFY_WITH_TIMEOUT(QFileInfo::exists(chosen), Test::patience);
    store.flushSave();
    QCOMPARE(loadLibrary(chosen).projects[0].sections[0].notes[0].text,
        QStringLiteral("saved where chosen"));
    QVERIFY(!QFileInfo::exists(others[0]) && !QFileInfo::exists(others[1]));
}

VESKO_TEST_MAIN(StoreTest)
#include "tst_store.moc"
