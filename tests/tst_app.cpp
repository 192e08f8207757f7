// SPDX-License-Identifier: GPL-3.0-or-later
//
// The vesko program from the outside, in a private X server with a window
// manager: the panel comes up with the composer focused, a note typed with
// xdotool reaches the library file however the program is ended, a second
// launch brings the first one's panel forward, an unreadable library is
// set aside for an empty panel, and the note is written, or rescued, when the
// program's own X server goes away under it.

#include "TestEnvironment.h"
#include "TestFiles.h"

#include "ProgramSession.h"
#include "SmallFileSystem.h"
#include "StoreFixture.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>
#include <QThread>

#include <csignal>
#include <functional>

using namespace Vesko;

namespace {

using Test::xdotool;

//! The id of the visible panel window, or empty.
QString visiblePanel()
{
    return Test::visibleWindow(QStringLiteral("^Vesko$"));
}

struct Session : Test::ProgramSession
{
    QProcess *start() { return ProgramSession::start(QStringLiteral(VESKO_PATH)); }
};

//! Types \a text and Return into the focused window, by default the X server of the test.
void typeNote(
    const QString &text,
    const std::function<QString(const QStringList &)> &run
    = [](const QStringList &arguments) { return xdotool(arguments); })
{
    run({QStringLiteral("type"), QStringLiteral("--delay"), QStringLiteral("5"), text});
    run({QStringLiteral("key"), QStringLiteral("Return")});
}

//! The files a session's program rescued its library to.
QStringList rescueFiles(const Test::ProgramSession &session)
{
    const QDir folder(session.stateFolder() + QStringLiteral("/Vesko"));
    QStringList paths;
    for (const QString &name :
        folder.entryList({QStringLiteral("Library-unsaved-*.json")}, QDir::Files))
        paths.append(folder.filePath(name));
    return paths;
}

//! An X server of its own, without a window manager, that a test can end.
class PrivateXServer
{
public:
    PrivateXServer()
    {
        // The server picks a free display and writes its number to standard
        // output; it keeps its state when its last client goes.
        m_server.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_server.start(QStringLiteral("Xvfb"),
            {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-noreset"),
                QStringLiteral("-screen"), QStringLiteral("0"), QStringLiteral("1024x768x24"),
                QStringLiteral("-nolisten"), QStringLiteral("tcp")});
        QDeadlineTimer deadline(15000);
        while (!m_server.canReadLine() && m_server.state() != QProcess::NotRunning
            && !deadline.hasExpired())
            m_server.waitForReadyRead(100);
        const QByteArray number = m_server.readLine().trimmed();
        if (number.isEmpty())
            return;
        m_display = u':' + QString::fromLatin1(number);
        // Ready once a client is served.
        while (xdotool({QStringLiteral("getdisplaygeometry")}).isEmpty() && !deadline.hasExpired())
            QThread::msleep(100);
    }
    ~PrivateXServer() { end(); }

    //! ":N", or empty when the server did not start.
    QString display() const { return m_display; }
    //! Ends the server as a logout does, with SIGTERM: it goes at once and
    //! cleans up its display for the next one.
    void end()
    {
        if (m_server.state() == QProcess::NotRunning)
            return;
        m_server.terminate();
        if (!m_server.waitForFinished(5000)) {
            m_server.kill();
            m_server.waitForFinished(5000);
        }
    }
    //! Runs xdotool against this server.
    QString xdotool(const QStringList &arguments) const
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("DISPLAY"), m_display);
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral("xdotool"), arguments);
        process.waitForFinished(10000);
        return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
    }

private:
    QProcess m_server;
    QString m_display;
};

} // namespace

class AppTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void launchesRelaunchesAndEnds();
    void pairedLaunchesLeaveOneRunning();
    void failedSaveIsRescuedAtTheEnd();
    void noteSurvivesTheXServer_data();
    void noteSurvivesTheXServer();
};

void AppTest::initTestCase()
{
    if (qEnvironmentVariableIsEmpty("DISPLAY"))
        QSKIP("Needs an X server: run through tests/x-session.sh");
}

// Launches over an unreadable library and after a crash, a second launch
// while one runs, and ends by each signal the desktop sends.
void AppTest::launchesRelaunchesAndEnds()
{
    // An unreadable library is set aside, and the panel comes up empty.
    Session session;
    const QByteArray garbage = QByteArrayLiteral("{\"version\": 3, \"projects\": [tru");
    Test::writeFile(session.libraryPath(), garbage);
    QProcess *crashed = session.start();
    QTRY_VERIFY_WITH_TIMEOUT(!visiblePanel().isEmpty(), Test::patience);
    const QStringList setAside
        = QDir(session.libraryFolder()).entryList({QStringLiteral("Library-unreadable-*.json")});
    QCOMPARE(setAside.size(), 1);
    QCOMPARE(Test::readFile(session.libraryFolder() + u'/' + setAside.first()), garbage);
    // Killed outright, it leaves its socket behind; the next launch takes it over.
    crashed->kill();
    QVERIFY(crashed->waitForFinished(Test::patience));
    QTRY_VERIFY_WITH_TIMEOUT(visiblePanel().isEmpty(), Test::patience);
    QProcess *first = session.start();
    QTRY_VERIFY_WITH_TIMEOUT(!visiblePanel().isEmpty(), Test::patience);
    const QString panel = visiblePanel();
    QCOMPARE(xdotool({QStringLiteral("getwindowpid"), panel}).toLongLong(), first->processId());
    // Hidden by Escape: the first only moves the keyboard from the empty
    // composer to the list, the second hides the panel, which is not quitting.
    QTRY_COMPARE_WITH_TIMEOUT(xdotool({QStringLiteral("getactivewindow")}), panel, Test::patience);
    xdotool({QStringLiteral("key"), QStringLiteral("Escape")});
    QTest::qWait(300);
    QVERIFY(!visiblePanel().isEmpty());
    xdotool({QStringLiteral("key"), QStringLiteral("Escape")});
    QTRY_VERIFY_WITH_TIMEOUT(visiblePanel().isEmpty(), Test::patience);
    QTest::qWait(200);
    QCOMPARE(first->state(), QProcess::Running);
    // A second launch brings the first one's panel forward, composer focused.
    QProcess *second = session.start();
    QVERIFY(second->waitForFinished(Test::patience));
    QCOMPARE(second->exitCode(), 0);
    QTRY_COMPARE_WITH_TIMEOUT(visiblePanel(), panel, Test::patience);
    QTRY_COMPARE_WITH_TIMEOUT(xdotool({QStringLiteral("getactivewindow")}), panel, Test::patience);
    // Whatever signal ends it, the note typed just before reaches the library.
    QProcess *vesko = first;
    QStringList typed;
    for (const int signalNumber : {SIGTERM, SIGINT, SIGHUP}) {
        if (!vesko) {
            vesko = session.start();
            QTRY_VERIFY_WITH_TIMEOUT(!visiblePanel().isEmpty(), Test::patience);
            QTRY_COMPARE_WITH_TIMEOUT(
                xdotool({QStringLiteral("getactivewindow")}), visiblePanel(), Test::patience);
        }
        typed.append(QStringLiteral("Typed before signal %1").arg(signalNumber));
        typeNote(typed.last());
        typed.sort();
        // Well inside the save delay: only the way out writes the note.
        QTest::qWait(100);
        ::kill(pid_t(vesko->processId()), signalNumber);
        QVERIFY(vesko->waitForFinished(Test::patience));
        QCOMPARE(vesko->exitStatus(), QProcess::NormalExit);
        QCOMPARE(vesko->exitCode(), 0);
        const Library library = Test::readLibraryFile(session.libraryPath());
        QCOMPARE(library.projects.size(), 1);
        QStringList saved = Test::noteTexts(library);
        saved.sort();
        QCOMPARE(saved, typed);
        QTRY_VERIFY_WITH_TIMEOUT(visiblePanel().isEmpty(), Test::patience);
        vesko = nullptr;
    }
}

void AppTest::pairedLaunchesLeaveOneRunning()
{
    Session session;
    for (int round = 1; round <= 20; ++round) {
        QProcess *first = session.start();
        QProcess *second = session.start();
        // One of the two hands "reopen" to the other and ends.
        QTRY_VERIFY_WITH_TIMEOUT(
            first->state() == QProcess::NotRunning || second->state() == QProcess::NotRunning,
            Test::patience);
        QProcess *ended = first->state() == QProcess::NotRunning ? first : second;
        QProcess *running = ended == first ? second : first;
        QVERIFY2(ended->exitStatus() == QProcess::NormalExit && ended->exitCode() == 0,
            qPrintable(QStringLiteral("round %1").arg(round)));

        QTRY_VERIFY_WITH_TIMEOUT(!visiblePanel().isEmpty(), Test::patience);
        QCOMPARE(xdotool({QStringLiteral("getwindowpid"), visiblePanel()}).toLongLong(),
            running->processId());
        QCOMPARE(running->state(), QProcess::Running);
        running->terminate();
        QVERIFY(running->waitForFinished(Test::patience));
        QCOMPARE(running->exitCode(), 0);
        QTRY_VERIFY_WITH_TIMEOUT(visiblePanel().isEmpty(), Test::patience);
    }
}

void AppTest::failedSaveIsRescuedAtTheEnd()
{
    Session session;
    Test::SmallFileSystem disk(session.rootFolder() + QStringLiteral("/disk"), 320);
    if (!disk.isMounted())
        QSKIP(qPrintable(QStringLiteral("Cannot mount a tmpfs: ") + disk.failure()));
    const QString library = disk.folder() + QStringLiteral("/Library.json");
    {
        QSettings settings(session.configPath(), QSettings::IniFormat);
        settings.setValue(QStringLiteral("libraryPath"), library);
    }
    QProcess *vesko = session.start();
    QTRY_VERIFY_WITH_TIMEOUT(!visiblePanel().isEmpty(), Test::patience);
    QTRY_COMPARE_WITH_TIMEOUT(
        xdotool({QStringLiteral("getactivewindow")}), visiblePanel(), Test::patience);
    // The disk is full when two notes are added, each taking the selection
    // from the one before, and the program is ended: the last state goes to a
    // rescue file. (The retry once there is room is tst_store's and
    // tst_savestatus'.)
    QVERIFY(disk.fill());
    const QStringList texts
        = {QStringLiteral("Typed on a full disk"), QStringLiteral("Rescued at the end")};
    for (const QString &text : texts) {
        typeNote(text);
        QTest::qWait(1500); // the save fails meanwhile
    }
    ::kill(pid_t(vesko->processId()), SIGTERM);
    QVERIFY(vesko->waitForFinished(Test::patience));
    QCOMPARE(vesko->exitStatus(), QProcess::NormalExit);
    QCOMPARE(vesko->exitCode(), 0);
    QVERIFY(Test::noteTexts(Test::readLibraryFile(library)).isEmpty());
    const QStringList rescued = rescueFiles(session);
    QCOMPARE(rescued.size(), 1);
    const QString rescue = rescued.first();
    QVERIFY2(
        QRegularExpression(
            QStringLiteral("/Library-unsaved-\\d{4}-\\d\\d-\\d\\dT\\d\\d-\\d\\d-\\d\\dZ\\.json$"))
            .match(rescue)
            .hasMatch(),
        qPrintable(rescue));
    QCOMPARE(Test::noteTexts(Test::readLibraryFile(rescue)), texts);
    QCOMPARE(Test::fileMode(rescue), 0600u);
}

void AppTest::noteSurvivesTheXServer_data()
{
    QTest::addColumn<bool>("savesFail");
    QTest::newRow("written to the library") << false;
    QTest::newRow("rescued when the library cannot be written") << true;
}

void AppTest::noteSurvivesTheXServer()
{
    QFETCH(bool, savesFail);
    PrivateXServer server;
    QVERIFY2(!server.display().isEmpty(), "Xvfb did not start");
    Session session;
    session.setEnvironmentVariable(QStringLiteral("DISPLAY"), server.display());
    if (savesFail) {
        // A file where the library's folder belongs: every write of the library fails.
        QFile blocker(session.libraryFolder());
        QVERIFY(blocker.open(QIODevice::WriteOnly));
    }
    QProcess *vesko = session.start();
    auto panel = [&server] {
        return server
            .xdotool({QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                QStringLiteral("--name"), QStringLiteral("^Vesko$")})
            .section(u'\n', 0, 0);
    };
    // Looked for without turning this process's event loop, as on a loaded
    // machine where the panel is up before the test runs again.
    const QDeadlineTimer deadline(Test::patience);
    while (panel().isEmpty() && !deadline.hasExpired())
        QThread::msleep(50);
    QVERIFY2(vesko->state() == QProcess::Running,
        qPrintable(QStringLiteral("vesko ended with %1 on %2")
                       .arg(vesko->exitCode())
                       .arg(server.display())));
    QVERIFY2(!panel().isEmpty(), qPrintable(server.display()));
    QTRY_COMPARE_WITH_TIMEOUT(
        server.xdotool({QStringLiteral("getwindowfocus")}), panel(), Test::patience);

    const QString text = QStringLiteral("Typed just before the X server went away");
    typeNote(text, [&server](const QStringList &arguments) { return server.xdotool(arguments); });
    // Well inside the save delay: only the way out writes the note.
    QTest::qWait(100);
    server.end();
    QVERIFY(vesko->waitForFinished(Test::patience));
    // Ended by Qt's exit(), not by a crash on the way.
    QCOMPARE(vesko->exitStatus(), QProcess::NormalExit);

    if (!savesFail) {
        QCOMPARE(Test::noteTexts(Test::readLibraryFile(session.libraryPath())), QStringList {text});
        return;
    }
    const QStringList rescued = rescueFiles(session);
    QCOMPARE(rescued.size(), 1);
    QCOMPARE(Test::noteTexts(Test::readLibraryFile(rescued.first())), QStringList {text});
}

VESKO_TEST_MAIN(AppTest)
#include "tst_app.moc"
