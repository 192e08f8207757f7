// SPDX-License-Identifier: GPL-3.0-or-later
//
// Processes are killed with SIGKILL at random moments: one that saves in a
// loop, and one that moves the library. The saves must always leave a file
// that decodes to a whole state and never goes backwards; a move must leave
// the library either where it was or where it went, whole, and the next start
// must not trip over, or keep, anything the killed process left behind.

#include "LibraryGenerator.h"
#include "TestEnvironment.h"
#include "TestFiles.h"

#include "library/LibraryCoding.h"
#include "library/LibraryFile.h"
#include "library/LibraryWriter.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QProcess>
#include <QRandomGenerator>

#include <csignal>

using namespace Vesko;

namespace {

int stateNumber(const Library &library)
{
    const QString name = library.projects.value(0).name;
    return name.startsWith(QStringLiteral("state ")) ? name.mid(6).toInt() : -1;
}

// Waits, within a generous bound, for a line of the process's output that
// starts with prefix.
bool waitForLine(QProcess &process, const QByteArray &prefix)
{
    QDeadlineTimer deadline(60000);
    while (!deadline.hasExpired()) {
        while (process.canReadLine()) {
            if (process.readLine().startsWith(prefix))
                return true;
        }
        if (!process.waitForReadyRead(int(deadline.remainingTime())))
            return false;
    }
    return false;
}

// How many kills a trial makes: VESKO_KILL_TRIALS, else \a fallback.
int killCount(int fallback)
{
    bool ok = false;
    const int asked = qEnvironmentVariableIntValue("VESKO_KILL_TRIALS", &ok);
    return ok && asked > 0 ? asked : fallback;
}

// Every file below \a folder by its relative path, with its size.
QMap<QString, qint64> filesBelow(const QString &folder)
{
    QMap<QString, qint64> files;
    QDirIterator it(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        it.next();
        files.insert(QDir(folder).relativeFilePath(it.filePath()), it.fileInfo().size());
    }
    return files;
}

// A generated library without attachment records: the trials count their own.
Library libraryWithoutAttachments(qsizetype notes, quint32 seed)
{
    Library library = Test::generateLibrary(notes, seed);
    for (Project &project : library.projects) {
        for (NoteSection &section : project.sections) {
            for (Note &note : section.notes)
                note.attachments.clear();
        }
    }
    return library;
}

// Runs the helper to its end and returns what it printed.
QByteArray runTask(const QStringList &arguments)
{
    QProcess task;
    task.start(QStringLiteral(STORE_TASK_PATH), arguments);
    if (!task.waitForFinished(60000) || task.exitStatus() != QProcess::NormalExit
        || task.exitCode() != 0) {
        qWarning("%s ended with %d: %s", qPrintable(arguments.join(u' ')), task.exitCode(),
            task.readAllStandardError().constData());
        return {};
    }
    return task.readAllStandardOutput();
}

// Files of the given sizes by relative path, written below \a folder.
void writeFiles(const QString &folder, const QMap<QString, qint64> &files)
{
    for (auto it = files.cbegin(); it != files.cend(); ++it)
        Test::writeFile(folder + u'/' + it.key(), QByteArray(it.value(), 'v'));
}

// Starts the helper with \a arguments, then kills it at a moment drawn from
// [0, span) after it said it began its work. Returns false if it never did.
bool killDuringTask(
    const QStringList &arguments, quint64 spanMilliseconds, QRandomGenerator &random)
{
    QProcess task;
    task.start(QStringLiteral(STORE_TASK_PATH), arguments);
    if (!waitForLine(task, "working"))
        return false;
    QThread::usleep(random.bounded(spanMilliseconds * 1000));
    ::kill(pid_t(task.processId()), SIGKILL);
    return task.waitForFinished(10000);
}

// Runs the task once without a kill and returns how long its work took, at
// least a millisecond; 0 when it failed.
qint64 taskSpan(const QStringList &arguments)
{
    QProcess task;
    task.start(QStringLiteral(STORE_TASK_PATH), arguments);
    if (!waitForLine(task, "working"))
        return 0;
    QElapsedTimer clock;
    clock.start();
    if (!waitForLine(task, "done"))
        return 0;
    const qint64 span = std::max<qint64>(clock.elapsed() * 6 / 5, 1);
    return task.waitForFinished(60000) ? span : 0;
}

} // namespace

class CrashSafetyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void killedSavesLeaveAWholeFile();
    void killedMovesLeaveOneWholeLibrary();
    void killedImportsLeaveNoHalf();
};

void CrashSafetyTest::killedSavesLeaveAWholeFile()
{
    const QString folder
        = Test::IsolatedEnvironment::current().root() + QStringLiteral("/kill/Vesko");
    const QString path = folder + QStringLiteral("/Library.json");
    QRandomGenerator random(20261122);
    // What an unfinished write leaves: its temporary file.
    const auto leftovers = [&folder] {
        return QDir(folder).entryList(
            {QStringLiteral(".Library.json.*")}, QDir::Files | QDir::Hidden);
    };
    constexpr int kills = 60;
    int lastState = -1;
    int killsDuringWrite = 0;
    for (int round = 0; round < kills; ++round) {
        QProcess saver;
        saver.start(QStringLiteral(STORE_TASK_PATH),
            {QStringLiteral("save-loop"), path, QString::number(lastState + 1)});
        QVERIFY(saver.waitForStarted());
        // Each round lets at least one save finish, however slow the machine,
        // then kills at a random moment of the saves that follow.
        QVERIFY(waitForLine(saver, "saved "));
        QThread::usleep(random.bounded(40000));
        ::kill(pid_t(saver.processId()), SIGKILL);
        QVERIFY(saver.waitForFinished(Test::patience));
        QCOMPARE(saver.exitStatus(), QProcess::CrashExit);

        const bool killedDuringWrite = !leftovers().isEmpty();
        killsDuringWrite += killedDuringWrite ? 1 : 0;
        if (!QFileInfo::exists(path))
            continue; // killed before the first write finished

        QString error;
        const std::optional<Library> library = decodeLibrary(Test::readFile(path), &error);
        QVERIFY2(library, qPrintable(QStringLiteral("round %1: %2").arg(round).arg(error)));
        const int state = stateNumber(*library);
        QVERIFY2(state >= lastState,
            qPrintable(QStringLiteral("went back from %1 to %2").arg(lastState).arg(state)));
        QVERIFY(*library == Test::numberedLibrary(state));
        lastState = state;
        // A start after the crash reads the file and clears what the write left.
        if (killedDuringWrite)
            QTest::ignoreMessage(
                QtInfoMsg, QRegularExpression(QStringLiteral("^Removed the unfinished write")));
        QCOMPARE(stateNumber(loadLibrary(path)), state);
        QVERIFY(leftovers().isEmpty());
        QVERIFY(QDir(folder).entryList({QStringLiteral("Library-unreadable-*")}).isEmpty());
        // Every backup that exists is whole too.
        const QDir backups(backupsFolder(path));
        for (const QString &name :
            backups.entryList({QStringLiteral("Library-*.json")}, QDir::Files))
            QVERIFY2(decodeLibrary(Test::readFile(backups.filePath(name))), qPrintable(name));
    }
    qInfo("%d kills, %d of them during a write, last state %d", kills, killsDuringWrite, lastState);
    QVERIFY(lastState >= kills - 1);
}

void CrashSafetyTest::killedMovesLeaveOneWholeLibrary()
{
    const QString root = Test::IsolatedEnvironment::current().root() + QStringLiteral("/move");
    const QString from = root + QStringLiteral("/old/Library.json");
    const QString to = root + QStringLiteral("/new/Library.json");
    const Library library = libraryWithoutAttachments(300, 7);
    QMap<QString, qint64> attachments;
    for (int i = 0; i < 24; ++i)
        attachments.insert(QStringLiteral("%1/file %1.bin").arg(i), (i + 1) * 40000);

    auto prepare = [&] {
        QDir(root).removeRecursively();
        QFile::remove(libraryMoveJournalPath());
        QVERIFY(QDir().mkpath(root + QStringLiteral("/new")));
        QVERIFY(!LibraryWriter::shared().writeNow(library, from));
        writeFiles(attachmentsFolder(from), attachments);
        QVERIFY(runTask({QStringLiteral("use"), from}).isEmpty());
    };
    // Whichever place the next start uses holds the whole library and every
    // attachment, and nothing of the library is left at the other place.
    auto verifyOneWholeLibrary = [&](int round) -> bool {
        const QByteArray started = runTask({QStringLiteral("start")}).trimmed();
        const QString expected = QStringLiteral("library %2 %1 0").arg(noteCount(library));
        const bool moved = started == expected.arg(to).toUtf8();
        const bool stayed = started == expected.arg(from).toUtf8();
        const QString kept = moved ? to : from;
        const QString gone = moved ? from : to;
        const QString context
            = QStringLiteral("round %1: %2").arg(round).arg(QString::fromUtf8(started));
        [&] {
            QVERIFY2(moved || stayed, qPrintable(context));
            QVERIFY2(decodeLibrary(Test::readFile(kept)) == library, qPrintable(context));
            QCOMPARE(filesBelow(attachmentsFolder(kept)), attachments);
            QCOMPARE(filesBelow(QFileInfo(gone).path()), (QMap<QString, qint64>()));
            QVERIFY(!QFileInfo::exists(libraryMoveJournalPath()));
        }();
        return !QTest::currentTestFailed();
    };
    // One move without a kill tells how long a move takes on this machine;
    // the kills land at random moments within that span.
    prepare();
    const qint64 span = taskSpan({QStringLiteral("move"), to});
    QVERIFY(span > 0);
    QVERIFY(verifyOneWholeLibrary(-1));

    QRandomGenerator random(20261125);
    const int kills = killCount(50);
    int moved = 0;
    for (int round = 0; round < kills; ++round) {
        prepare();
        QVERIFY(killDuringTask({QStringLiteral("move"), to}, quint64(span), random));
        QVERIFY(verifyOneWholeLibrary(round));
        moved += QFileInfo::exists(to) ? 1 : 0;
    }
    qInfo("%d kills within moves of %lld ms: %d left the library moved, %d where it was", kills,
        qlonglong(span), moved, kills - moved);
}

void CrashSafetyTest::killedImportsLeaveNoHalf()
{
    const QString root = Test::IsolatedEnvironment::current().root() + QStringLiteral("/import");
    const QString path = root + QStringLiteral("/Library.json");
    const QString sources = root + QStringLiteral("/sources");
    const Library library = libraryWithoutAttachments(200, 11);
    QMap<QString, qint64> files;
    for (int i = 0; i < 6; ++i)
        files.insert(QStringLiteral("picture %1.png").arg(i), (i + 1) * 300000);
    QStringList arguments = {QStringLiteral("import")};
    for (const QString &name : files.keys())
        arguments.append(sources + u'/' + name);

    auto prepare = [&] {
        QDir(root).removeRecursively();
        QVERIFY(!LibraryWriter::shared().writeNow(library, path));
        writeFiles(sources, files);
        QVERIFY(runTask({QStringLiteral("use"), path}).isEmpty());
    };
    // After the next start, the first note has either none of the files or
    // all of them, whole, and the attachment folder holds exactly those.
    auto verifyAllOrNothing = [&](int round) -> bool {
        const QByteArray started = runTask({QStringLiteral("start")}).trimmed();
        const QString expected
            = QStringLiteral("library %1 %2 %3").arg(path).arg(noteCount(library));
        const bool imported = started == expected.arg(files.size()).toUtf8();
        const QString context
            = QStringLiteral("round %1: %2").arg(round).arg(QString::fromUtf8(started));
        [&] {
            QVERIFY2(imported || started == expected.arg(0).toUtf8(), qPrintable(context));
            const std::optional<Library> read = decodeLibrary(Test::readFile(path));
            QVERIFY(read);
            QMap<QString, qint64> stored;
            for (const NoteAttachment &attachment :
                read->projects.at(0).sections.at(0).notes.at(0).attachments)
                stored.insert(attachment.storedFileName, *attachment.byteCount);
            QCOMPARE(stored.size(), imported ? files.size() : 0);
            QCOMPARE(filesBelow(attachmentsFolder(path)), stored);
        }();
        return !QTest::currentTestFailed();
    };

    prepare();
    const qint64 span = taskSpan(arguments);
    QVERIFY(span > 0);
    QVERIFY(verifyAllOrNothing(-1));

    QRandomGenerator random(20261126);
    const int kills = killCount(50);
    int imported = 0;
    for (int round = 0; round < kills; ++round) {
        prepare();
        QVERIFY(killDuringTask(arguments, quint64(span), random));
        QVERIFY(verifyAllOrNothing(round));
        imported += QDir(attachmentsFolder(path)).isEmpty() ? 0 : 1;
    }
    qInfo("%d kills within imports of %lld ms: %d kept the files, %d none", kills, qlonglong(span),
        imported, kills - imported);
}

VESKO_TEST_MAIN(CrashSafetyTest)
#include "tst_crashsafety.moc"
