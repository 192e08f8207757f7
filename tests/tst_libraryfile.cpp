// SPDX-License-Identifier: GPL-3.0-or-later
//
// The library on disk, on real files: loading, setting aside, backups, the
// atomic write and its failures, permissions, the writer thread and the
// file-level steps of a move.

#include "LibraryGenerator.h"
#include "OtherUser.h"
#include "TestEnvironment.h"
#include "TestFiles.h"

#include "library/LibraryCoding.h"
#include "library/LibraryFile.h"
#include "library/LibraryWriter.h"
#include "platform/SettingsFile.h"

#include <QDir>
#include <QSettings>
#include <QSignalSpy>

using namespace Vesko;
using namespace Vesko::Test;

namespace {

QStringList entries(const QString &folder)
{
    return QDir(folder).entryList(
        QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
}

Library libraryNamed(const QString &name)
{
    Library library = Test::generateLibrary(20, qHash(name));
    library.projects[0].name = name;
    return library;
}

} // namespace

class LibraryFileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void missingFileGivesNewLibraryAndWritesNothing();
    void libraryPathPreference_data();
    void libraryPathPreference();
    void unreadableFileIsSetAside();
    void setAsideNeverOverwrites();
    void interruptedWritesAreCleanedAtLoad();
    void byteOrderMarkIsReadAndNotWrittenBack();

    void sevenSavesKeepFiveBackups();
    void keptBackupsOutlastTheRotation();
    void unreadableLibraryNoteBelongsToItsFile_data();
    void unreadableLibraryNoteBelongsToItsFile();
    void failedWritesBackUpEachStateOnce();
    void filesAndBackupsArePrivate_data();
    void filesAndBackupsArePrivate();
    void writeIntoReadOnlyFolderFails();
    void writeThroughSymbolicLinkKeepsTheLink();

    void writerKeepsOrder();
    void writerReportsFailure();

    void mergeAttachmentFolder();
    void cancelledMergeTakesBackWhatItMade_data();
    void cancelledMergeTakesBackWhatItMade();
    void removeMovedLibrary();

private:
    QString m_folder;
    QString m_path;
};

void LibraryFileTest::init()
{
    static int counter = 0;
    m_folder = Test::IsolatedEnvironment::current().root()
        + QStringLiteral("/case-%1/Vesko").arg(++counter);
    m_path = m_folder + QStringLiteral("/Library.json");
    openSettingsFile()->clear();
}

void LibraryFileTest::missingFileGivesNewLibraryAndWritesNothing()
{
    const Library library = loadLibrary(m_path);
    QCOMPARE(library.projects.size(), 1);
    QCOMPARE(library.projects[0].sections[0].title, QStringLiteral("Inbox"));
    QVERIFY(!QFileInfo::exists(m_folder));
    // The first write creates the folder, and backs up nothing; the second does.
    QCOMPARE(writeLibrary(library, m_path), std::nullopt);
    QCOMPARE(encodeLibrary(loadLibrary(m_path)), encodeLibrary(library));
    QVERIFY(!QFileInfo::exists(backupsFolder(m_path)));
    QCOMPARE(writeLibrary(libraryNamed(QStringLiteral("2")), m_path), std::nullopt);
    QCOMPARE(entries(backupsFolder(m_path)).size(), 1);
}

void LibraryFileTest::libraryPathPreference_data()
{
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<bool>("usesDefault");
    QTest::newRow("absent") << QVariant() << true;
    QTest::newRow("empty") << QVariant(QString()) << true;
    QTest::newRow("set") << QVariant(QStringLiteral("/somewhere/Mine.json")) << false;
}

void LibraryFileTest::libraryPathPreference()
{
    QFETCH(QVariant, stored);
    QFETCH(bool, usesDefault);
    const std::unique_ptr<QSettings> file = openSettingsFile();
    QSettings &settings = *file;
    if (stored.isValid())
        settings.setValue(QStringLiteral("libraryPath"), stored);
    settings.sync();

    QCOMPARE(defaultLibraryURL(),
        Test::IsolatedEnvironment::current().dataHome() + QStringLiteral("/Vesko/Library.json"));
    QCOMPARE(libraryURL(), usesDefault ? defaultLibraryURL() : stored.toString());
}

// What makes a file unreadable is tst_librarycoding's; here what is done with it.
void LibraryFileTest::unreadableFileIsSetAside()
{
    const QByteArray content = R"({"version": 3, "projects": [{"id": "6F9619FF-8B86-D011-B42D)";
    writeFile(m_path, content);

    QTest::ignoreMessage(QtCriticalMsg,
        QRegularExpression(QStringLiteral("^Could not read library at .*Library\\.json: .+")));
    const Library library = loadLibrary(m_path);
    QCOMPARE(library.projects.size(), 1);
    QCOMPARE(noteCount(library), 0);

    QVERIFY(!QFileInfo::exists(m_path));
    // Beside it only the note that tells the next start of it.
    QStringList names = entries(m_folder);
    QVERIFY(names.removeOne(QStringLiteral(".Library.json.unreadable")));
    QCOMPARE(names.size(), 1);
    QVERIFY2(QRegularExpression(
                 QStringLiteral(
                     "^Library-unreadable-\\d{4}-\\d\\d-\\d\\dT\\d\\d-\\d\\d-\\d\\dZ\\.json$"))
                 .match(names.first())
                 .hasMatch(),
        qPrintable(names.first()));
    QCOMPARE(readFile(m_folder + u'/' + names.first()), content);
    // The next start finds no file and does not read the one set aside.
    QCOMPARE(loadLibrary(m_path).projects.size(), 1);
    QCOMPARE(entries(m_folder).size(), 2);
}

void LibraryFileTest::setAsideNeverOverwrites()
{
    // Both names that a set-aside within the next second could want are taken.
    const QDateTime now = currentDate();
    for (const QDateTime &moment : {now, now.addSecs(1)}) {
        writeFile(
            m_folder + QStringLiteral("/Library-unreadable-%1.json").arg(fileNameStamp(moment)),
            "earlier");
    }
    writeFile(m_path, "not json");
    std::optional<UnreadableLibrary> unreadable;
    QTest::ignoreMessage(
        QtCriticalMsg, QRegularExpression(QStringLiteral("^Could not read library")));
    QTest::ignoreMessage(QtInfoMsg,
        QRegularExpression(QStringLiteral("^Could not set the unreadable library aside")));
    loadLibrary(m_path, &unreadable);
    // Still in its place, and told so.
    QCOMPARE(readFile(m_path), QByteArray("not json"));
    QVERIFY(unreadable && !unreadable->isSetAside);
    QCOMPARE(unreadable->path, m_path);
    for (const QDateTime &moment : {now, now.addSecs(1)}) {
        QCOMPARE(readFile(m_folder
                     + QStringLiteral("/Library-unreadable-%1.json").arg(fileNameStamp(moment))),
            QByteArray("earlier"));
    }
    // The next save backs it up and replaces it.
    QCOMPARE(writeLibrary(libraryNamed(QStringLiteral("new")), m_path), std::nullopt);
    const QStringList backups = entries(backupsFolder(m_path));
    QCOMPARE(backups.size(), 1);
    QCOMPARE(readFile(backupsFolder(m_path) + u'/' + backups.first()), QByteArray("not json"));
}

void LibraryFileTest::interruptedWritesAreCleanedAtLoad()
{
    const Library library = libraryNamed(QStringLiteral("kept"));
    QCOMPARE(writeLibrary(library, m_path), std::nullopt);
    const QString stale
        = m_folder + QStringLiteral("/.Library.json.0F8FAD5B-D9CB-469F-A165-70867728950E");
    const QString unrelated = m_folder + QStringLiteral("/.Library.json.notes");
    writeFile(stale, "{\"half");
    writeFile(unrelated, "keep me");

    QTest::ignoreMessage(
        QtInfoMsg, QRegularExpression(QStringLiteral("^Removed the unfinished write")));
    QCOMPARE(loadLibrary(m_path), library);
    QVERIFY(!QFileInfo::exists(stale));
    QVERIFY(QFileInfo::exists(unrelated));
}

void LibraryFileTest::byteOrderMarkIsReadAndNotWrittenBack()
{
    // Editors on other systems put one before the document in a synced folder.
    const Library library = libraryNamed(QStringLiteral("marked"));
    const QByteArray document = encodeLibrary(library);
    writeFile(m_path, QByteArray("\xEF\xBB\xBF") + document);

    QCOMPARE(loadLibrary(m_path), library);
    QCOMPARE(entries(m_folder), QStringList {QStringLiteral("Library.json")});

    QCOMPARE(writeLibrary(library, m_path), std::nullopt);
    QCOMPARE(readFile(m_path), document);
}

void LibraryFileTest::sevenSavesKeepFiveBackups()
{
    QList<QByteArray> states;
    for (int i = 1; i <= 7; ++i) {
        const Library library = libraryNamed(QStringLiteral("state %1").arg(i));
        states.append(encodeLibrary(library));
        QCOMPARE(writeLibrary(library, m_path), std::nullopt);
        // Distinct dates for each state, as saves at least a second apart would have.
        setModified(m_path, 1700000000 + i * 10);
    }

    QCOMPARE(readFile(m_path), states.last());
    const QString folder = backupsFolder(m_path);
    const QStringList names = entries(folder);
    QCOMPARE(names.size(), 5);

    QList<QByteArray> kept;
    for (const QString &name : names) {
        QVERIFY2(QRegularExpression(QStringLiteral("^Library-.+Z-[0-9A-F]{6}\\.json$"))
                     .match(name)
                     .hasMatch(),
            qPrintable(name));
        kept.append(readFile(folder + u'/' + name));
        // Each backup keeps the date of the save that produced its content.
        const int state = int(states.indexOf(kept.last()));
        QVERIFY(state >= 1 && state <= 5);
        QCOMPARE(QFileInfo(folder + u'/' + name).lastModified().toSecsSinceEpoch(),
            1700000000 + (state + 1) * 10);
    }
    // The states that the last five saves replaced: 2 to 6.
    for (int i = 1; i <= 5; ++i)
        QVERIFY2(kept.contains(states.at(i)), qPrintable(QString::number(i + 1)));
}

// Every entry of the backups folder, a foreign one too, takes part in the
// rotation by its date; the backups the caller keeps stay, and push none of
// the others out, until they are let go.
void LibraryFileTest::keptBackupsOutlastTheRotation()
{
    const QString folder = backupsFolder(m_path);
    QStringList kept;
    for (int i = 1; i <= 3; ++i) {
        kept.append(folder + QStringLiteral("/kept-%1.json").arg(i));
        writeFile(kept.last(), "kept");
        setModified(kept.last(), 1600000000 + i);
    }
    writeFile(folder + QStringLiteral("/old notes.txt"), "foreign, old");
    setModified(folder + QStringLiteral("/old notes.txt"), 1000);
    writeFile(folder + QStringLiteral("/.hidden-new"), "foreign, new");
    setModified(folder + QStringLiteral("/.hidden-new"), 4000000000);
    for (int i = 1; i <= 9; ++i)
        QCOMPARE(writeLibrary(libraryNamed(QStringLiteral("state %1").arg(i)), m_path, kept),
            std::nullopt);
    const QStringList names = entries(folder);
    QCOMPARE(names.size(), 3 + 5);
    for (const QString &path : kept)
        QVERIFY2(names.contains(QFileInfo(path).fileName()), qPrintable(path));
    QVERIFY(names.contains(QStringLiteral(".hidden-new"))); // newest by date
    QVERIFY(!names.contains(QStringLiteral("old notes.txt"))); // oldest, rotated out
    // Let go, they rotate like any other entry.
    QCOMPARE(writeLibrary(libraryNamed(QStringLiteral("free")), m_path), std::nullopt);
    QCOMPARE(entries(folder).size(), 5);
    for (const QString &path : kept)
        QVERIFY2(!QFileInfo::exists(path), qPrintable(path));
}

void LibraryFileTest::unreadableLibraryNoteBelongsToItsFile_data()
{
    // What changes before the next start, the library file that start reads
    // (relative to the case's folder), and the backups it is told of.
    QTest::addColumn<QString>("meanwhile");
    QTest::addColumn<QString>("nextLibrary");
    QTest::addColumn<QStringList>("told");
    const QStringList both {QStringLiteral("b1.json"), QStringLiteral("b2.json")};
    QTest::newRow("the same file") << QString() << QStringLiteral("Vesko/Library.json") << both;
    QTest::newRow("another file in the folder")
        << QString() << QStringLiteral("Vesko/Other.json") << QStringList();
    QTest::newRow("another folder")
        << QString() << QStringLiteral("Elsewhere/Library.json") << QStringList();
    QTest::newRow("the folder moved as a whole")
        << QStringLiteral("move folder") << QStringLiteral("Moved/Library.json") << both;
    QTest::newRow("nothing left of it")
        << QStringLiteral("delete all") << QStringLiteral("Vesko/Library.json") << QStringList();
    QTest::newRow("a damaged note")
        << QStringLiteral("damage note") << QStringLiteral("Vesko/Library.json") << QStringList();
}

void LibraryFileTest::unreadableLibraryNoteBelongsToItsFile()
{
    QFETCH(QString, meanwhile);
    QFETCH(QString, nextLibrary);
    QFETCH(QStringList, told);
    for (int i = 1; i <= 2; ++i) {
        const QString backup = backupsFolder(m_path) + QStringLiteral("/b%1.json").arg(i);
        writeFile(backup, encodeLibrary(libraryNamed(QStringLiteral("backup %1").arg(i))));
        setModified(backup, 1700000000 - i);
    }
    writeFile(m_path, "not json");
    QTest::ignoreMessage(
        QtCriticalMsg, QRegularExpression(QStringLiteral("^Could not read library")));
    std::optional<UnreadableLibrary> first;
    loadLibrary(m_path, &first);
    QVERIFY(first && first->isSetAside);

    const QString root = QFileInfo(m_folder).absolutePath();
    if (meanwhile == QLatin1String("move folder")) {
        QVERIFY(QDir().rename(m_folder, root + QStringLiteral("/Moved")));
    } else if (meanwhile == QLatin1String("delete all")) {
        for (const QString &path : std::as_const(first->backups))
            QVERIFY(QFile::remove(path));
        QVERIFY(QFile::remove(first->path));
    } else if (meanwhile == QLatin1String("damage note")) {
        writeFile(unreadableLibraryNoteFile(m_path), "{\"setAs");
        QTest::ignoreMessage(
            QtWarningMsg, QRegularExpression(QStringLiteral("^Could not read .*unreadable")));
    }
    // Saves of the new library came in between.
    const QString next = root + u'/' + nextLibrary;
    QCOMPARE(writeLibrary(libraryNamed(QStringLiteral("new")), next), std::nullopt);

    std::optional<UnreadableLibrary> second;
    loadLibrary(next, &second);
    QCOMPARE(second.has_value(), !told.isEmpty());
    if (!second)
        return;
    QStringList names;
    for (const QString &path : std::as_const(second->backups)) {
        QCOMPARE(QFileInfo(path).absolutePath(), backupsFolder(next));
        names.append(QFileInfo(path).fileName());
    }
    QCOMPARE(names, told);
    QCOMPARE(
        second->path, QFileInfo(next).absoluteDir().filePath(QFileInfo(first->path).fileName()));
    QCOMPARE(second->reason, first->reason);
}

void LibraryFileTest::failedWritesBackUpEachStateOnce()
{
    // A name the file system takes, but not with the temporary file's
    // prefix and suffix added: every write fails after its backup.
    const QString path = m_folder + u'/' + QString(220, u'n') + QStringLiteral(".json");
    QList<QByteArray> states;
    for (int i = 0; i < 4; ++i) {
        // Changed from outside before every other try.
        if (i % 2 == 0) {
            states.append(encodeLibrary(libraryNamed(QStringLiteral("state %1").arg(i))));
            writeFile(path, states.last());
            setModified(path, 1700000000 + i * 10);
        }
        const std::optional<QString> failure
            = writeLibrary(libraryNamed(QStringLiteral("new")), path);
        QVERIFY(failure);
        QVERIFY2(failure->contains(QStringLiteral("File name too long")), qPrintable(*failure));
        QCOMPARE(readFile(path), states.last());
    }
    const QString folder = backupsFolder(path);
    QList<QByteArray> kept;
    for (const QString &name : entries(folder))
        kept.append(readFile(folder + u'/' + name));
    QCOMPARE(kept.size(), states.size());
    for (const QByteArray &state : std::as_const(states))
        QCOMPARE(kept.count(state), 1);
}

void LibraryFileTest::filesAndBackupsArePrivate_data()
{
    QTest::addColumn<unsigned>("sourceMode");
    QTest::newRow("readable by all") << 0644u;
    QTest::newRow("writable by all") << 0666u;
    QTest::newRow("read-only") << 0400u;
}

void LibraryFileTest::filesAndBackupsArePrivate()
{
    QFETCH(unsigned, sourceMode);
    // Whatever the umask, and however the user set the file's mode.
    const mode_t previous = ::umask(0);
    QCOMPARE(writeLibrary(libraryNamed(QStringLiteral("before")), m_path), std::nullopt);
    const QByteArray before = readFile(m_path);
    // The user opened the file up or locked it; a backup is private all the same.
    QVERIFY(::chmod(QFile::encodeName(m_path).constData(), sourceMode) == 0);
    setModified(m_path, 1650000000);
    struct stat source;
    QCOMPARE(::stat(QFile::encodeName(m_path).constData(), &source), 0);

    QCOMPARE(writeLibrary(libraryNamed(QStringLiteral("after")), m_path), std::nullopt);
    ::umask(previous);
    QCOMPARE(fileMode(m_folder), 0700u);
    QCOMPARE(fileMode(m_path), 0600u);
    const QString folder = backupsFolder(m_path);
    QCOMPARE(fileMode(folder), 0700u);
    const QStringList names = entries(folder);
    QCOMPARE(names.size(), 1);
    const QString backup = folder + u'/' + names.first();
    struct stat copy;
    QCOMPARE(::stat(QFile::encodeName(backup).constData(), &copy), 0);
    QCOMPARE(copy.st_mode & 07777, 0600u);
    QVERIFY(copy.st_ino != source.st_ino); // a file of its own, not a second name
    QCOMPARE(copy.st_nlink, nlink_t(1));
    QCOMPARE(copy.st_mtim.tv_sec, source.st_mtim.tv_sec);
    QCOMPARE(copy.st_mtim.tv_nsec, source.st_mtim.tv_nsec);
    QCOMPARE(readFile(backup), before);
}

void LibraryFileTest::writeIntoReadOnlyFolderFails()
{
    QCOMPARE(writeLibrary(libraryNamed(QStringLiteral("old")), m_path), std::nullopt);
    QCOMPARE(writeLibrary(libraryNamed(QStringLiteral("older")), m_path), std::nullopt);
    const QByteArray before = readFile(m_path);
    const QStringList backupsBefore = entries(backupsFolder(m_path));
    const QStringList filesBefore = entries(m_folder);
    // The other user may reach the folder, not write into it.
    const auto reachable = QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner
        | QFileDevice::ReadOther | QFileDevice::ExeOther;
    for (QString parent = QFileInfo(m_folder).absolutePath();
         parent.startsWith(QDir::tempPath() + u'/'); parent = QFileInfo(parent).absolutePath()) {
        QFile::setPermissions(parent, reachable);
    }
    QVERIFY(QFile::setPermissions(m_folder,
        QFileDevice::ReadOwner | QFileDevice::ExeOwner | QFileDevice::ReadOther
            | QFileDevice::ExeOther));
    std::optional<QString> error;
    {
        FileAccessAsNobody nobody;
        error = writeLibrary(libraryNamed(QStringLiteral("new")), m_path);
    }
    QFile::setPermissions(
        m_folder, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);

    QVERIFY(error);
    QVERIFY2(error->contains(m_folder) && error->contains(QStringLiteral("ermission")),
        qPrintable(*error));
    QCOMPARE(readFile(m_path), before);
    QCOMPARE(entries(backupsFolder(m_path)), backupsBefore);
    QCOMPARE(entries(m_folder), filesBefore);
}

void LibraryFileTest::writeThroughSymbolicLinkKeepsTheLink()
{
    const QString realFolder = m_folder + QStringLiteral("-synced");
    QDir().mkpath(realFolder);
    QDir().mkpath(m_folder);
    const QString real = realFolder + QStringLiteral("/Library.json");
    QCOMPARE(writeLibrary(libraryNamed(QStringLiteral("1")), real), std::nullopt);
    QVERIFY(QFile::link(real, m_path));

    const Library library = libraryNamed(QStringLiteral("2"));
    QCOMPARE(writeLibrary(library, m_path), std::nullopt);
    QVERIFY(QFileInfo(m_path).isSymLink());
    QCOMPARE(loadLibrary(real), library);
}

// Writes run, and complete on the main thread, in the order given; a write
// now runs after those queued before it, whose completions follow.
void LibraryFileTest::writerKeepsOrder()
{
    LibraryWriter writer;
    QObject context;
    QList<int> completed;
    // Large first writes keep the writer busy until the write now comes.
    const Library big = Test::generateLibrary(20000);
    for (int i = 0; i < 20; ++i) {
        writer.write(i < 3 ? big : libraryNamed(QString::number(i)), m_path, &context,
            [&completed, i](std::optional<QString> failure) {
                QVERIFY(!failure);
                QVERIFY(QThread::currentThread() == QCoreApplication::instance()->thread());
                completed.append(i);
            });
    }
    const Library last = libraryNamed(QStringLiteral("last"));
    QCOMPARE(writer.writeNow(last, m_path), std::nullopt);
    QCOMPARE(loadLibrary(m_path), last);
    QList<QByteArray> backups;
    for (const QString &name : entries(backupsFolder(m_path)))
        backups.append(readFile(backupsFolder(m_path) + u'/' + name));
    QVERIFY(backups.contains(encodeLibrary(libraryNamed(QStringLiteral("19")))));
    QTRY_COMPARE_WITH_TIMEOUT(completed.size(), 20, Test::patience);
    for (int i = 0; i < 20; ++i)
        QCOMPARE(completed.at(i), i);
    QCOMPARE(loadLibrary(m_path), last);
}

void LibraryFileTest::writerReportsFailure()
{
    // A folder that cannot exist: its parent is a file.
    writeFile(m_folder, "a file where the folder should be");
    LibraryWriter writer;
    QObject context;
    std::optional<std::optional<QString>> result;
    writer.write(libraryNamed(QStringLiteral("x")), m_path, &context,
        [&result](std::optional<QString> failure) { result = failure; });
    QTRY_VERIFY_WITH_TIMEOUT(result.has_value(), Test::patience);
    QVERIFY(result->has_value());
    QVERIFY2((*result)->contains(QStringLiteral("not a folder")), qPrintable(**result));
    // A completion whose context is gone is dropped.
    bool called = false;
    {
        QObject shortLived;
        writer.write(libraryNamed(QStringLiteral("y")), m_path, &shortLived,
            [&called](auto) { called = true; });
    }
    QVERIFY(writer.writeNow(libraryNamed(QStringLiteral("z")), m_path).has_value());
    QCoreApplication::processEvents();
    QVERIFY(!called);
}

void LibraryFileTest::mergeAttachmentFolder()
{
    const QString from = m_folder + QStringLiteral("/Attachments");
    const QString to = m_folder + QStringLiteral("-new/Attachments");
    writeFile(from + QStringLiteral("/A/image.png"), "image");
    writeFile(from + QStringLiteral("/B/deep/report.pdf"), "report");
    writeFile(from + QStringLiteral("/same.txt"), "from source");
    writeFile(to + QStringLiteral("/same.txt"), "already there");
    setModified(from + QStringLiteral("/A/image.png"), 1600000000);

    QCOMPARE(Vesko::mergeAttachmentFolder(from, to), std::nullopt);
    QCOMPARE(readFile(to + QStringLiteral("/A/image.png")), QByteArray("image"));
    QCOMPARE(readFile(to + QStringLiteral("/B/deep/report.pdf")), QByteArray("report"));
    QCOMPARE(readFile(to + QStringLiteral("/same.txt")), QByteArray("already there"));
    QCOMPARE(QFileInfo(to + QStringLiteral("/A/image.png")).lastModified().toSecsSinceEpoch(),
        1600000000);
    QCOMPARE(readFile(from + QStringLiteral("/same.txt")), QByteArray("from source"));

    // Onto itself, or from a folder that is not there: nothing to do.
    writeFile(from + QStringLiteral("/a.txt"), "a");
    const QStringList before = entries(from);
    QCOMPARE(
        Vesko::mergeAttachmentFolder(from, m_folder + QStringLiteral("/../Vesko/Attachments/")),
        std::nullopt);
    QCOMPARE(entries(from), before);
    const QString target = m_folder + QStringLiteral("-other/Attachments");
    QCOMPARE(
        Vesko::mergeAttachmentFolder(m_folder + QStringLiteral("/Missing"), target), std::nullopt);
    QVERIFY(!QFileInfo::exists(target));
    // A failure is reported: the target's parent is a file.
    writeFile(m_folder + QStringLiteral("-blocked"), "file");
    QVERIFY(Vesko::mergeAttachmentFolder(from, m_folder + QStringLiteral("-blocked/Attachments")));
}

void LibraryFileTest::cancelledMergeTakesBackWhatItMade_data()
{
    QTest::addColumn<bool>("targetExists");
    QTest::addColumn<int>("piecesBeforeCancel");
    QTest::newRow("new target, before the first file") << false << 0;
    QTest::newRow("new target, after some files") << false << 3;
    QTest::newRow("target with files of its own, after some files") << true << 3;
}

void LibraryFileTest::cancelledMergeTakesBackWhatItMade()
{
    QFETCH(bool, targetExists);
    QFETCH(int, piecesBeforeCancel);
    const QString from = m_folder + QStringLiteral("/Attachments");
    const QString to = m_folder + QStringLiteral("-new/Library/Attachments");
    for (const char *name : {"A/a.txt", "B/deep/b.txt", "C/c.txt", "D/d.txt", "e.txt"})
        writeFile(from + u'/' + QLatin1String(name), name);
    QStringList before;
    if (targetExists) {
        writeFile(to + QStringLiteral("/A/mine.txt"), "mine");
        writeFile(to + QStringLiteral("/e.txt"), "mine too");
        before = {QStringLiteral("A"), QStringLiteral("e.txt")};
    }

    int pieces = 0;
    const std::optional<QString> failure
        = Vesko::mergeAttachmentFolder(from, to, [&pieces, piecesBeforeCancel](qint64 bytes) {
              if (bytes > 0)
                  ++pieces;
              return pieces < piecesBeforeCancel;
          });
    QVERIFY(failure);
    QVERIFY2(failure->contains(QStringLiteral("cancelled")), qPrintable(*failure));
    // The target is as the copy found it.
    if (!targetExists) {
        QVERIFY(!QFileInfo::exists(m_folder + QStringLiteral("-new/Library")));
    } else {
        QCOMPARE(entries(to), before);
        QCOMPARE(entries(to + QStringLiteral("/A")), QStringList {QStringLiteral("mine.txt")});
        QCOMPARE(readFile(to + QStringLiteral("/e.txt")), QByteArray("mine too"));
    }
    QCOMPARE(readFile(from + QStringLiteral("/B/deep/b.txt")), QByteArray("B/deep/b.txt"));
}

void LibraryFileTest::removeMovedLibrary()
{
    // A move names a folder or the file itself.
    QDir().mkpath(m_folder);
    QCOMPARE(libraryMoveTarget(m_folder), m_path);
    QCOMPARE(libraryMoveTarget(m_folder + QStringLiteral("/Mine.json")),
        m_folder + QStringLiteral("/Mine.json"));
    const QString oldPath = m_path;
    const QString newPath = m_folder + QStringLiteral("-moved/Library.json");
    QCOMPARE(writeLibrary(libraryNamed(QStringLiteral("1")), oldPath), std::nullopt);
    QCOMPARE(writeLibrary(libraryNamed(QStringLiteral("2")), oldPath), std::nullopt);
    writeFile(attachmentsFolder(oldPath) + QStringLiteral("/x/a.txt"), "a");
    // Moving onto itself removes nothing.
    Vesko::removeMovedLibrary(oldPath, m_folder + QStringLiteral("/./Library.json"));
    QVERIFY(QFileInfo::exists(oldPath));
    QVERIFY(QFileInfo::exists(attachmentsFolder(oldPath)));

    Vesko::removeMovedLibrary(oldPath, newPath);
    QVERIFY(!QFileInfo::exists(oldPath));
    QVERIFY(!QFileInfo::exists(attachmentsFolder(oldPath)));
    QCOMPARE(entries(backupsFolder(oldPath)).size(), 1); // old backups stay
    // Another file name in the same folder keeps the shared attachment folder.
    const QString sibling = m_folder + QStringLiteral("/Other.json");
    QCOMPARE(writeLibrary(libraryNamed(QStringLiteral("3")), sibling), std::nullopt);
    writeFile(attachmentsFolder(sibling) + QStringLiteral("/b.txt"), "b");
    Vesko::removeMovedLibrary(sibling, m_folder + QStringLiteral("/Library.json"));
    QVERIFY(!QFileInfo::exists(sibling));
    QVERIFY(QFileInfo::exists(attachmentsFolder(sibling) + QStringLiteral("/b.txt")));
}

VESKO_TEST_MAIN(LibraryFileTest)
#include "tst_libraryfile.moc"
