// SPDX-License-Identifier: GPL-3.0-or-later
//
// The application in front as the accessibility bus tells it, against real GTK
// applications in a private X session and buses: the desktop entry and title,
// stopped applications, a bus out of reach or hung, and the reader's end.

#include "TestEnvironment.h"

#include "platform/SerialQueue.h"
#include "platform/atspi/AtspiFrontApplication.h"
#include "platform/atspi/ProcessLaunch.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QScopeGuard>
#include <QSemaphore>
#include <QTemporaryDir>

#include <atomic>
#include <csignal>
#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

using namespace Vesko;

namespace {

const QString frameHelper = QStringLiteral(VESKO_TESTS_SOURCE_DIR "/helpers/atspi_frame.py");

//! A GTK application whose one frame is in front once started.
class Frame
{
public:
    //! \a launchedBy is the GIO_LAUNCHED_DESKTOP_FILE_PID the program gets:
    //! "self" for its own process id, else as given (none when empty).
    Frame(const QString &program, const QString &title, const QString &desktopFile = {},
        const QString &launchedBy = {})
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        if (!desktopFile.isEmpty())
            environment.insert(QStringLiteral("GIO_LAUNCHED_DESKTOP_FILE"), desktopFile);
        if (!launchedBy.isEmpty() && launchedBy != QLatin1String("self"))
            environment.insert(QStringLiteral("GIO_LAUNCHED_DESKTOP_FILE_PID"), launchedBy);
        m_process.setProcessEnvironment(environment);
        // The shell's own id becomes the program's at exec.
        const QString self = launchedBy == QLatin1String("self")
            ? QStringLiteral("GIO_LAUNCHED_DESKTOP_FILE_PID=$$ ")
            : QString();
        m_process.start(QStringLiteral("/bin/sh"),
            {QStringLiteral("-c"),
                self + QStringLiteral("exec /usr/bin/python3 \"$0\" \"$1\" \"$2\""), frameHelper,
                program, title});
        m_active = m_process.waitForStarted()
            && QTest::qWaitFor([this] { return m_process.canReadLine(); }, Test::patience)
            && m_process.readLine().trimmed() == "active";
    }
    ~Frame()
    {
        m_process.kill();
        m_process.waitForFinished();
    }

    bool isActive() const { return m_active; }
    qint64 processID() const { return m_process.processId(); }
    void signal(int number) { ::kill(pid_t(processID()), number); }

private:
    QProcess m_process;
    bool m_active = false;
};

struct Answer
{
    bool answered = false;
    std::optional<FrontApplication> front;
};

//! The answer, waited for at most \a bound: well beyond the second a read
//! may take, far below the default D-Bus time-out of 25 s.
Answer ask(AtspiFrontApplication &accessibility, int bound = 10000,
    void (AtspiFrontApplication::*read)(AtspiFrontApplication::Done)
    = &AtspiFrontApplication::frontApplication)
{
    auto answer = std::make_shared<Answer>();
    (accessibility.*read)([answer](std::optional<FrontApplication> front) {
        answer->front = std::move(front);
        answer->answered = true;
    });
    (void)QTest::qWaitFor([answer] { return answer->answered; }, bound);
    return *answer;
}

void writeEntry(const QString &id, const QByteArray &keys)
{
    const QString folder
        = Test::IsolatedEnvironment::current().dataHome() + QStringLiteral("/applications");
    QDir().mkpath(folder);
    QFile file(folder + QLatin1Char('/') + id + QStringLiteral(".desktop"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("[Desktop Entry]\nType=Application\nExec=true\n" + keys);
}

} // namespace

class TestAtspiFront : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        writeEntry(QStringLiteral("vesko-test-notes"), "Name=Test Notes\n");
        writeEntry(
            QStringLiteral("vesko-test-classy"), "Name=Classy\nStartupWMClass=ClassyProgram\n");
        writeEntry(QStringLiteral("com.example.Launched"), "Name=Launched Editor\n");
        // Made after the entries: it reads them as it is made.
        m_accessibility = std::make_unique<AtspiFrontApplication>();
        QTRY_VERIFY_WITH_TIMEOUT(m_accessibility->isAvailable(), Test::patience);
    }

    void cleanupTestCase() { m_accessibility.reset(); }

    void names_data()
    {
        QTest::addColumn<QString>("program");
        QTest::addColumn<QString>("desktopFile");
        QTest::addColumn<QString>("launchedBy");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("identifier");

        const QString launched = Test::IsolatedEnvironment::current().dataHome()
            + QStringLiteral("/applications/com.example.Launched.desktop");
        QTest::newRow("entry of the program's name")
            << "vesko-test-notes" << QString() << QString() << "Test Notes"
            << "vesko-test-notes";
        QTest::newRow("entry of its window class")
            << "classyprogram" << QString() << QString() << "Classy"
            << "vesko-test-classy";
        QTest::newRow("entry its launcher named") << "some-binary" << launched << "self"
                                                  << "Launched Editor"
                                                  << "com.example.Launched";
        // A variable a parent passed down names the parent's entry, not this program's.
        QTest::newRow("entry the parent was launched from") << "orphan-program" << launched << "1"
                                                            << "orphan-program"
                                                            << "orphan-program";
    }

    void names()
    {
        QFETCH(QString, program);
        QFETCH(QString, desktopFile);
        QFETCH(QString, launchedBy);
        QFETCH(QString, name);
        QFETCH(QString, identifier);

        const QString title = QStringLiteral("Draft – plans — %1").arg(program);
        Frame frame(program, title, desktopFile, launchedBy);
        QVERIFY(frame.isActive());
        const Answer answer = ask(*m_accessibility);
        QVERIFY(answer.answered);
        QVERIFY(answer.front);
        QCOMPARE(answer.front->name, name);
        QCOMPARE(answer.front->identifier, identifier);
        QCOMPARE(answer.front->windowTitle, title);
        QCOMPARE(answer.front->processID, frame.processID());
        QVERIFY(!answer.front->isTerminal);
    }

    void stoppedApplications()
    {
        Frame behind(QStringLiteral("vesko-test-behind"), QStringLiteral("Behind"));
        QVERIFY(behind.isActive());
        Frame front(QStringLiteral("vesko-test-notes"), QStringLiteral("In Front"));
        QVERIFY(front.isActive());

        // One that does not answer is passed over, read after read.
        behind.signal(SIGSTOP);
        for (int read = 0; read < 2; ++read) {
            const Answer answer = ask(*m_accessibility);
            QVERIFY(answer.answered);
            QVERIFY(answer.front);
            QCOMPARE(answer.front->windowTitle, QStringLiteral("In Front"));
        }

        // The one in front stopped too: an answer all the same, then the
        // front again once it runs.
        front.signal(SIGSTOP);
        QVERIFY(ask(*m_accessibility).answered);
        front.signal(SIGCONT);
        const Answer answer = ask(*m_accessibility);
        QVERIFY(answer.front);
        QCOMPARE(answer.front->name, QStringLiteral("Test Notes"));
        behind.signal(SIGCONT);
    }

    void busFoundAfterAnEarlyFailure()
    {
        const QDBusMessage reply = QDBusConnection::sessionBus().call(
            QDBusMessage::createMethodCall(QStringLiteral("org.a11y.Bus"),
                QStringLiteral("/org/a11y/bus"), QStringLiteral("org.a11y.Bus"),
                QStringLiteral("GetAddress")));
        const QString address = reply.arguments().value(0).toString();
        QVERIFY(!address.isEmpty());
        Frame frame(QStringLiteral("vesko-test-notes"), QStringLiteral("Found Later"));
        QVERIFY(frame.isActive());
        const auto forCapture = &AtspiFrontApplication::frontApplicationOrUnknown;

        // Out of reach as Vesko starts: the capture goes on under "Unknown".
        qputenv("AT_SPI_BUS_ADDRESS", "unix:path=/nonexistent/vesko-test-bus");
        AtspiFrontApplication early;
        const Answer unknown = ask(early, 10000, forCapture);
        QVERIFY(unknown.answered && unknown.front);
        QCOMPARE(unknown.front->name, QString());
        QVERIFY(!early.isAvailable());

        // Up by the next capture, which finds it.
        qputenv("AT_SPI_BUS_ADDRESS", address.toUtf8());
        const Answer found = ask(early, 10000, forCapture);
        qunsetenv("AT_SPI_BUS_ADDRESS");
        QVERIFY(found.answered && found.front);
        QCOMPARE(found.front->windowTitle, QStringLiteral("Found Later"));
        QVERIFY(early.isAvailable());
    }

    // Last: a hung bus holds the process's D-Bus thread for libdbus's 25 s.
    void hungBusLeavesTheSourceUnknown()
    {
        // A bus that takes the connection and never says a word.
        QTemporaryDir folder;
        const QByteArray path = QFile::encodeName(folder.filePath(QStringLiteral("bus")));
        const int silent = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        QVERIFY(silent >= 0);
        const auto close = qScopeGuard([silent] { ::close(silent); });
        sockaddr_un address {};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, path.constData(), sizeof address.sun_path - 1);
        QVERIFY(::bind(silent, reinterpret_cast<sockaddr *>(&address), sizeof address) == 0);
        QVERIFY(::listen(silent, 4) == 0);
        qputenv("AT_SPI_BUS_ADDRESS", "unix:path=" + path);
        const auto unset = qScopeGuard([] { qunsetenv("AT_SPI_BUS_ADDRESS"); });
        AtspiFrontApplication hung;
        const Answer answer = ask(hung, 10000, &AtspiFrontApplication::frontApplicationOrUnknown);
        QVERIFY(answer.answered && answer.front);
        QCOMPARE(answer.front->name, QString());
        QVERIFY(!answer.front->windowTitle);
        // What is not known may be a terminal: no copy keys for it.
        QVERIFY(answer.front->isTerminal);
    }

    // The reader's thread is never waited for at the end: a job still
    // waiting on an application runs on after its queue is gone.
    void endWaitsForNoJob()
    {
        QSemaphore released;
        std::atomic_bool releasedInTime = false;
        std::atomic_bool ran = false;
        {
            SerialQueue queue(QStringLiteral("vesko-test-end"), QThread::InheritPriority,
                SerialQueue::End::Detached);
            queue.async([&] {
                releasedInTime = released.tryAcquire(1, 20000);
                ran = true;
            });
        }
        released.release();
        QTRY_VERIFY_WITH_TIMEOUT(ran, 30000);
        QVERIFY(releasedInTime);
    }

    void unitNames_data()
    {
        QTest::addColumn<QString>("unit");
        QTest::addColumn<QString>("id");

        QTest::newRow("scope of a launcher") << "app-gnome-org.gnome.Terminal-4242.scope"
                                             << "org.gnome.Terminal";
        QTest::newRow("scope without launcher") << "app-org.gnome.Terminal-4242.scope"
                                                << "org.gnome.Terminal";
        QTest::newRow("escaped dash") << "app-gnome-org.example.my\\x2deditor-17.scope"
                                      << "org.example.my-editor";
        QTest::newRow("service instance") << "app-gnome-org.gnome.Nautilus@a1b2.service"
                                          << "org.gnome.Nautilus";
        QTest::newRow("service") << "app-flatpak-org.gnome.TextEditor.service"
                                 << "org.gnome.TextEditor";
        QTest::newRow("session scope") << "session-2.scope" << QString();
        QTest::newRow("the apps slice") << "app.slice" << QString();
        QTest::newRow("a scope of no application") << "app-1234.scope" << QString();
    }

    void unitNames()
    {
        QFETCH(QString, unit);
        QFETCH(QString, id);
        QCOMPARE(applicationIDOfUnit(unit).value_or(QString()), id);
    }

private:
    std::unique_ptr<AtspiFrontApplication> m_accessibility;
};

VESKO_TEST_MAIN(TestAtspiFront)
#include "tst_atspifront.moc"
