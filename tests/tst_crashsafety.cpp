// SPDX-License-Identifier: GPL-3.0-or-later
//
// A process that saves in a loop is killed with SIGKILL at random moments. The
// file it leaves must always decode to a whole state, never go backwards, and
// the next start must not trip over anything the killed write left behind.

#include "LibraryGenerator.h"
#include "TestEnvironment.h"

#include "library/LibraryCoding.h"
#include "library/LibraryFile.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QProcess>
#include <QRandomGenerator>

#include <csignal>

using namespace Vesko;

namespace {

// The same states as the save loop writes.
Library savedState(int number)
{
    Library library = Test::generateLibrary(200 + number % 7 * 50, quint32(number));
    library.projects[0].name = QStringLiteral("state %1").arg(number);
    return library;
}

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

} // namespace

class CrashSafetyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void killedSavesLeaveAWholeFile();
};

void CrashSafetyTest::killedSavesLeaveAWholeFile()
{
    const QString folder
        = Test::IsolatedEnvironment::current().root() + QStringLiteral("/kill/Vesko");
    const QString path = folder + QStringLiteral("/Library.json");
    QRandomGenerator random(20261122);

    constexpr int kills = 60;
    int lastState = -1;
    int killsDuringWrite = 0;
    for (int round = 0; round < kills; ++round) {
        QProcess saver;
        saver.start(QStringLiteral(SAVE_LOOP_PATH), {path, QString::number(lastState + 1)});
        QVERIFY(saver.waitForStarted());
        // Each round lets at least one save finish, however slow the machine,
        // then kills at a random moment of the saves that follow.
        QVERIFY(waitForLine(saver, "saved "));
        QThread::usleep(random.bounded(40000));
        ::kill(pid_t(saver.processId()), SIGKILL);
        QVERIFY(saver.waitForFinished(Test::patience));
        QCOMPARE(saver.exitStatus(), QProcess::CrashExit);

        const QStringList leftovers = QDir(folder).entryList(
            {QStringLiteral(".Library.json.*")}, QDir::Files | QDir::Hidden);
        killsDuringWrite += leftovers.isEmpty() ? 0 : 1;
        if (!QFileInfo::exists(path))
            continue; // killed before the first write finished

        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QString error;
        const std::optional<Library> library = decodeLibrary(file.readAll(), &error);
        QVERIFY2(library, qPrintable(QStringLiteral("round %1: %2").arg(round).arg(error)));
        const int state = stateNumber(*library);
        QVERIFY2(state >= lastState,
            qPrintable(QStringLiteral("went back from %1 to %2").arg(lastState).arg(state)));
        QVERIFY(*library == savedState(state));
        lastState = state;

        // A start after the crash reads the file and clears what the write left.
        const Library loaded = [&] {
            if (!leftovers.isEmpty())
                QTest::ignoreMessage(
                    QtInfoMsg, QRegularExpression(QStringLiteral("^Removed the unfinished write")));
            return loadLibrary(path);
        }();
        QCOMPARE(stateNumber(loaded), state);
        QVERIFY(QDir(folder)
                    .entryList({QStringLiteral(".Library.json.*")}, QDir::Files | QDir::Hidden)
                    .isEmpty());
        QVERIFY(QDir(folder).entryList({QStringLiteral("Library-unreadable-*")}).isEmpty());

        // Every backup that exists is whole too.
        const QDir backups(backupsFolder(path));
        for (const QString &name :
            backups.entryList({QStringLiteral("Library-*.json")}, QDir::Files)) {
            QFile backup(backups.filePath(name));
            QVERIFY(backup.open(QIODevice::ReadOnly));
            QVERIFY2(decodeLibrary(backup.readAll()), qPrintable(name));
        }
    }
    qInfo("%d kills, %d of them during a write, last state %d", kills, killsDuringWrite, lastState);
    QVERIFY(lastState >= kills - 1);
}

VESKO_TEST_MAIN(CrashSafetyTest)
#include "tst_crashsafety.moc"
