// SPDX-License-Identifier: GPL-3.0-or-later
//
// The vesko command line against the real program on a private session bus
// (dbus-run-session) in a private X server: mistakes need no display and
// start nothing, a command with no Vesko running starts one and acts, on the
// bus or over the local socket without one; the desktop's actions through
// gdbus; two commands racing to start Vesko; notes from standard input.

#include "ProgramSession.h"
#include "StoreFixture.h"
#include "TestEnvironment.h"

#include "shell/SingleInstance.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QSemaphore>
#include <QTest>

using namespace Vesko;
using Test::ProgramSession;

namespace {

const QString busName = QStringLiteral("com.vesko.Vesko");

QString visiblePanel()
{
    return Test::visibleWindow(QStringLiteral("^Vesko$"));
}

bool busNameOwned()
{
    return QDBusConnection::sessionBus().interface()->isServiceRegistered(busName).value();
}

struct Session : ProgramSession
{
    Outcome vesko(const QStringList &arguments, const QByteArray &input = {}) const
    {
        return run(QStringLiteral(VESKO_PATH), arguments, input);
    }
    //! Calls \a method of \a object on the session bus with gdbus.
    Outcome call(const QString &service, const QString &object, const QString &method,
        const QStringList &arguments = {}) const
    {
        return run(QStringLiteral("gdbus"),
            QStringList {QStringLiteral("call"), QStringLiteral("--session"), QStringLiteral("-d"),
                service, QStringLiteral("-o"), object, QStringLiteral("-m"), method}
                + arguments);
    }
    Outcome gdbus(const QString &method, const QStringList &arguments) const
    {
        return call(busName, QStringLiteral("/com/vesko/Vesko"),
            QStringLiteral("org.freedesktop.Application.") + method, arguments);
    }
    //! A Shift tap as KWin sends it, by the name kwinrc's entry gives.
    Outcome kwinShiftTap() const
    {
        return call(QStringLiteral("com.vesko.Vesko.ShiftTaps"), QStringLiteral("/com/vesko/Vesko"),
            QStringLiteral("com.vesko.Vesko.Notes.ShiftTapped"));
    }
    Outcome action(const QString &name) const
    {
        return gdbus(
            QStringLiteral("ActivateAction"), {name, QStringLiteral("[]"), QStringLiteral("{}")});
    }
    //! Lets the bus start Vesko on demand with this session's folders, or
    //! makes it refuse to start it.
    bool allowActivation(bool allowed) const
    {
        QStringList pairs {QStringLiteral("'VESKO_TEST_ACTIVATION': '%1'")
                               .arg(allowed ? QStringLiteral(VESKO_PATH) : QString())};
        if (allowed) {
            const QProcessEnvironment environment = sessionEnvironment();
            for (const char *name : {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME",
                     "XDG_STATE_HOME", "XDG_RUNTIME_DIR", "QT_QPA_PLATFORM", "DISPLAY"}) {
                pairs.append(QStringLiteral("'%1': '%2'")
                                 .arg(QLatin1String(name), environment.value(QLatin1String(name))));
            }
        }
        return call(QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
                   QStringLiteral("org.freedesktop.DBus.UpdateActivationEnvironment"),
                   {u'{' + pairs.join(QStringLiteral(", ")) + u'}'})
                   .exitCode
            == 0;
    }
    ~Session() { allowActivation(false); }
    //! Whether a Vesko of this session's library runs: its lock is held.
    bool isRunning() const
    {
        SingleInstance instance(libraryPath());
        return instance.claim() == SingleInstance::Claim::HeldElsewhere;
    }
    //! Quits the session's Vesko and waits until it has ended.
    bool quit() const
    {
        const Outcome quit = vesko({QStringLiteral("quit")});
        return quit.exitCode == 0
            && QTest::qWaitFor([this] { return !isRunning(); }, Test::patience);
    }
};

// Whether the bus itself started the process that owns Vesko's name: it
// has the bus's activation environment, which no command passes on.
bool startedByTheBus()
{
    const uint pid = QDBusConnection::sessionBus().interface()->servicePid(busName).value();
    QFile environment(QStringLiteral("/proc/%1/environ").arg(pid));
    return pid != 0 && environment.open(QIODevice::ReadOnly)
        && environment.readAll().split('\0').contains("VESKO_TEST_ACTIVATION=" VESKO_PATH);
}

QString describe(const ProgramSession::Outcome &outcome)
{
    return QStringLiteral("exit %1, out “%2”, errors “%3”")
        .arg(outcome.finished ? QString::number(outcome.exitCode) : QStringLiteral("none (hung)"),
            QString::fromUtf8(outcome.output), QString::fromUtf8(outcome.errors));
}

QStringList jsonTexts(const QByteArray &output)
{
    QStringList texts;
    for (const QJsonValue &note : QJsonDocument::fromJson(output).array())
        texts.append(note.toObject().value(QStringLiteral("text")).toString());
    return texts;
}

QStringList libraryTexts(const QString &path)
{
    return Test::noteTexts(Test::readLibraryFile(path));
}

} // namespace

class CommandLineAppTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void refusedWithoutAnything_data();
    void refusedWithoutAnything();
    void stoppingWithNoneRunning();
    void commandStartsVeskoAndActs_data();
    void commandStartsVeskoAndActs();
    void silentOwnerOfTheName();
    void actionsFromTheDesktop();
    void racingCommandsMeetOneVesko();
};

void CommandLineAppTest::initTestCase()
{
    QVERIFY2(
        QDBusConnection::sessionBus().isConnected(), "run on a session bus (dbus-run-session)");
    QVERIFY(!busNameOwned());
}

void CommandLineAppTest::init()
{
    // A Vesko of the test before may still be giving up the name as it ends.
    QTRY_VERIFY_WITH_TIMEOUT(!busNameOwned(), Test::patience);
}

// The words themselves are tst_commandline's; here what reaches the terminal.
void CommandLineAppTest::refusedWithoutAnything_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("output"); // a pattern of standard output
    QTest::addColumn<QString>("errors"); // a pattern of standard error
    QTest::addColumn<QStringList>("environment"); // NAME=VALUE, the user's language
    QTest::newRow("version") << QStringList {"--version"} << QByteArray() << 0
                             << "^vesko \\d+\\.\\d+\\.\\d+\n$"
                             << "^$" << QStringList();
    QTest::newRow("blank standard input")
        << QStringList {"add", "-"} << QByteArray(" \n\t\n") << 1 << "^$"
        << "^vesko: The note is blank" << QStringList();
    QTest::newRow("standard input past the bound")
        << QStringList {"add", "-"} << QByteArray((1 << 20) + 1, 'x') << 1 << "^$"
        << "^vesko: Standard input holds more than 1048576 bytes" << QStringList();
    // In the user's language: the program's texts and Qt's own ("Aufruf",
    // "[Optionen]"), the first of LANGUAGE that Vesko speaks, none where
    // English comes first.
    QTest::newRow("help in German")
        << QStringList {"--help"} << QByteArray() << 0
        << "^Aufruf: vesko \\[Optionen\\] \\[Befehl\\]\n.*Befehle:\n"
           ".*  copy-list     die ausgewählten Notizen.*Zeigt diese Hilfe\\."
        << "^$" << QStringList {"LANG=de_AT.UTF-8"};
    QTest::newRow("mistake in French")
        << QStringList {"frobnicate"} << QByteArray() << 2 << "^$"
        << "^vesko: Commande inconnue «\u00a0frobnicate\u00a0»\\.\n«\u00a0vesko --help\u00a0» "
           "affiche"
        << QStringList {"LANG=de_DE.UTF-8", "LANGUAGE=ja:fr_CA:de"};
    QTest::newRow("unknown command, English first")
        << QStringList {"frobnicate"} << QByteArray() << 2 << "^$"
        << "^vesko: Unknown command \"frobnicate\".\n.*--help"
        << QStringList {"LANG=de_DE.UTF-8", "LANGUAGE=en_GB:de"};
}

void CommandLineAppTest::refusedWithoutAnything()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, input);
    QFETCH(int, exitCode);
    QFETCH(QString, output);
    QFETCH(QString, errors);
    QFETCH(QStringList, environment);
    Session session;
    for (const char *name : {"DISPLAY", "WAYLAND_DISPLAY", "DBUS_SESSION_BUS_ADDRESS"})
        session.unsetEnvironmentVariable(QString::fromLatin1(name));
    for (const QString &variable : std::as_const(environment))
        session.setEnvironmentVariable(variable.section(u'=', 0, 0), variable.section(u'=', 1));

    const ProgramSession::Outcome outcome = session.vesko(arguments, input);
    QVERIFY2(outcome.finished && outcome.exitCode == exitCode, qPrintable(describe(outcome)));
    const QRegularExpression::PatternOption dotAll = QRegularExpression::DotMatchesEverythingOption;
    QVERIFY2(QRegularExpression(output, dotAll).match(QString::fromUtf8(outcome.output)).hasMatch(),
        qPrintable(describe(outcome)));
    QVERIFY2(QRegularExpression(errors, dotAll).match(QString::fromUtf8(outcome.errors)).hasMatch(),
        qPrintable(describe(outcome)));
    // Nothing was started and nothing written.
    QVERIFY(!session.isRunning());
    QVERIFY(!QFile::exists(session.libraryPath()));
}

// Commands that end or hide Vesko start none when none runs, on the bus,
// which may start Vesko, or without one; nor does a Shift tap, which must
// not bring back a Vesko the user quit.
void CommandLineAppTest::stoppingWithNoneRunning()
{
    Session session;
    QVERIFY(session.allowActivation(true));
    // Nor does a start in the background whose lock cannot be made: a folder
    // is where the lock file belongs.
    const QString lockPath = SingleInstance(session.libraryPath()).lockPath();
    QVERIFY(!lockPath.isEmpty() && QDir().mkpath(lockPath));
    const ProgramSession::Outcome background = session.vesko({QStringLiteral("--background")});
    QVERIFY(QDir(lockPath).removeRecursively());
    QVERIFY2(background.finished && background.exitCode != 0, qPrintable(describe(background)));
    QVERIFY(!busNameOwned());
    // Nor does KWin's call for a Shift tap: nobody answers it.
    QVERIFY(session.kwinShiftTap().exitCode != 0);
    for (const char *command : {"quit", "hide", "shift", "shift-press", "no bus", "quit", "hide"}) {
        if (qstrcmp(command, "no bus") == 0) {
            session.unsetEnvironmentVariable(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"));
            continue;
        }
        const ProgramSession::Outcome outcome = session.vesko({QString::fromLatin1(command)});
        QVERIFY2(outcome.finished && outcome.exitCode == 0 && outcome.errors.isEmpty(),
            qPrintable(command + describe(outcome)));
        QVERIFY2(!session.isRunning() && !busNameOwned(), command);
        QVERIFY(!QFile::exists(session.libraryPath()));
    }
}

void CommandLineAppTest::commandStartsVeskoAndActs_data()
{
    QTest::addColumn<bool>("onBus");
    QTest::addColumn<bool>("activation"); // the bus may start Vesko
    QTest::newRow("started by the bus") << true << true;
    QTest::newRow("on the bus, started by the command") << true << false;
    QTest::newRow("over the local socket, without a bus") << false << false;
}

void CommandLineAppTest::commandStartsVeskoAndActs()
{
    QFETCH(bool, onBus);
    QFETCH(bool, activation);
    Session session;
    QVERIFY(session.allowActivation(activation));
    if (!onBus)
        session.unsetEnvironmentVariable(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"));
    QVERIFY(!session.isRunning());
    // No Vesko runs: the command starts one and the note is not dropped.
    ProgramSession::Outcome added = session.vesko({"add", "--section", "Errands", "buy", "milk"});
    QVERIFY2(added.exitCode == 0, qPrintable(describe(added)));
    QVERIFY2(QRegularExpression(QStringLiteral("^[0-9a-f-]{36}\n$"))
                 .match(QString::fromUtf8(added.output))
                 .hasMatch(),
        qPrintable(describe(added)));
    QVERIFY(session.isRunning());
    QCOMPARE(busNameOwned(), onBus);
    QCOMPARE(startedByTheBus(), activation);

    added = session.vesko({"add", "-"}, "line one\n\tline two\n");
    QVERIFY2(added.exitCode == 0, qPrintable(describe(added)));

    const ProgramSession::Outcome listed = session.vesko({"list", "--json"});
    QVERIFY2(listed.exitCode == 0, qPrintable(describe(listed)));
    QCOMPARE(jsonTexts(listed.output), QStringList({"line one\n\tline two", "buy milk"}));

    const ProgramSession::Outcome found = session.vesko({"search", "MILK"});
    QVERIFY2(found.exitCode == 0, qPrintable(describe(found)));
    QVERIFY2(QRegularExpression(QStringLiteral("^[0-9a-f-]{36}\tErrands\t\\[ \\]\tbuy milk\n$"))
                 .match(QString::fromUtf8(found.output))
                 .hasMatch(),
        qPrintable(describe(found)));
    const ProgramSession::Outcome lines = session.vesko({"list", "--section", "inbox"});
    QVERIFY2(lines.output.endsWith("\t[ ]\tline one\\n\\tline two\n"), qPrintable(describe(lines)));
    // A mistake is the running program's answer, and changes nothing.
    const ProgramSession::Outcome refused = session.vesko({"add", "--project", "Nowhere", "x"});
    QCOMPARE(refused.exitCode, 1);
    QVERIFY2(refused.errors.contains("Nowhere"), qPrintable(describe(refused)));
    // Started for a command, Vesko keeps its panel hidden.
    QVERIFY(visiblePanel().isEmpty());
    QVERIFY(session.quit());
    QCOMPARE(
        libraryTexts(session.libraryPath()), QStringList({"line one\n\tline two", "buy milk"}));
}

// Owns the program's object path in this test process and answers no call
// until it is let go.
class SilentInstance : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.vesko.Vesko.Notes")
public:
    void letGo() { m_answer.release(1000); }
public Q_SLOTS:
    QString Instance()
    {
        m_answer.acquire();
        return QStringLiteral("vesko-0000000000000000");
    }

private:
    QSemaphore m_answer;
};

void CommandLineAppTest::silentOwnerOfTheName()
{
    Session session;
    QVERIFY(session.allowActivation(true));
    SilentInstance silent;
    QDBusConnection bus = QDBusConnection::sessionBus();
    QVERIFY(bus.registerObject(
        QStringLiteral("/com/vesko/Vesko"), &silent, QDBusConnection::ExportAllSlots));
    QVERIFY(bus.registerService(busName));
    const auto release = qScopeGuard([&bus, &silent] {
        silent.letGo();
        bus.unregisterService(busName);
        bus.unregisterObject(QStringLiteral("/com/vesko/Vesko"));
    });
    // The library's lock is held, as by a Vesko that hangs: a started one
    // ends at once, and the command can only wait.
    SingleInstance lock(session.libraryPath());
    QCOMPARE(lock.claim(), SingleInstance::Claim::Acquired);
    // Within the start bound and the run's limit, with the truth about why.
    const ProgramSession::Outcome outcome
        = session.run(QStringLiteral(VESKO_PATH), {QStringLiteral("list")}, {}, 60000);
    silent.letGo();
    QVERIFY2(outcome.finished && outcome.exitCode == 1, qPrintable(describe(outcome)));
    QVERIFY2(outcome.errors.contains("runs but did not answer within 30 seconds"),
        qPrintable(describe(outcome)));
}

void CommandLineAppTest::actionsFromTheDesktop()
{
    Session session;
    // Each action as the desktop asks for it (ActivateAction on the bus), or
    // as `vesko ACTION` does.
    const auto act = [&session](const QString &action, bool commandLine) {
        return commandLine ? session.vesko({action}) : session.action(action);
    };
    QProcess *vesko = session.start(QStringLiteral(VESKO_PATH));
    QTRY_VERIFY_WITH_TIMEOUT(!visiblePanel().isEmpty() && busNameOwned(), Test::patience);
    QVERIFY(session.vesko({"add", "first"}).exitCode == 0);
    QVERIFY(session.vesko({"add", "second"}).exitCode == 0);

    const struct
    {
        const char *action;
        bool commandLine;
        bool visible;
    } steps[] = {{"hide", false, false}, {"toggle", true, true}, {"hide", true, false},
        {"toggle", false, true}, {"hide", false, false}, {"show", true, true},
        {"hide", true, false}, {"show", false, true}, {"hide", false, false},
        {"quick-add", true, true}, {"hide", true, false}, {"quick-add", false, true},
        {"hide", false, false}};
    int number = 0;
    for (const auto &step : steps) {
        const QByteArray label = QByteArray::number(++number) + ". " + step.action;
        const ProgramSession::Outcome outcome
            = act(QString::fromLatin1(step.action), step.commandLine);
        QVERIFY2(outcome.exitCode == 0,
            qPrintable(QStringLiteral("%1: %2").arg(step.action, describe(outcome))));
        QTRY_VERIFY2_WITH_TIMEOUT(
            visiblePanel().isEmpty() != step.visible, label.constData(), Test::patience);
        // A shown panel takes the keyboard.
        if (step.visible) {
            QTRY_COMPARE_WITH_TIMEOUT(
                Test::xdotool({QStringLiteral("getwindowfocus")}), visiblePanel(), Test::patience);
        }
    }
    // Activate, and a second launch, show the panel too.
    QVERIFY(session.gdbus(QStringLiteral("Activate"), {QStringLiteral("{}")}).exitCode == 0);
    QTRY_VERIFY_WITH_TIMEOUT(!visiblePanel().isEmpty(), Test::patience);
    QVERIFY(session.vesko({"hide"}).exitCode == 0);
    QTRY_VERIFY_WITH_TIMEOUT(visiblePanel().isEmpty(), Test::patience);
    const ProgramSession::Outcome second = session.vesko({});
    QVERIFY2(second.exitCode == 0, qPrintable(describe(second)));
    QTRY_VERIFY_WITH_TIMEOUT(!visiblePanel().isEmpty(), Test::patience);
    // Copy as a list: every visible note, as nothing is selected.
    QVERIFY(act(QStringLiteral("copy-list"), true).exitCode == 0);
    QTRY_VERIFY_WITH_TIMEOUT(
        QRegularExpression(QStringLiteral("first\n.*second"))
            .match(QString::fromUtf8(session
                                         .run(QStringLiteral("xclip"),
                                             {QStringLiteral("-o"), QStringLiteral("-selection"),
                                                 QStringLiteral("clipboard")})
                                         .output))
            .hasMatch(),
        Test::patience);
    // The running Vesko takes KWin's Shift taps.
    const ProgramSession::Outcome tap = session.kwinShiftTap();
    QVERIFY2(tap.exitCode == 0, qPrintable(describe(tap)));

    const ProgramSession::Outcome unknown = session.action(QStringLiteral("explode"));
    QVERIFY(unknown.exitCode != 0);
    QVERIFY2(unknown.errors.contains("Unknown action"), qPrintable(describe(unknown)));
    const ProgramSession::Outcome withParameter = session.gdbus(QStringLiteral("ActivateAction"),
        {QStringLiteral("toggle"), QStringLiteral("[<1>]"), QStringLiteral("{}")});
    QVERIFY(withParameter.exitCode != 0);

    QCOMPARE(act(QStringLiteral("quit"), false).exitCode, 0);
    QVERIFY(vesko->waitForFinished(Test::patience));
    QCOMPARE(vesko->exitCode(), 0);
    QCOMPARE(libraryTexts(session.libraryPath()), QStringList({"first", "second"}));
    QTRY_VERIFY_WITH_TIMEOUT(!busNameOwned(), Test::patience);
}

void CommandLineAppTest::racingCommandsMeetOneVesko()
{
    Session session;
    for (int round = 1; round <= 3; ++round) {
        QList<QProcess *> racers;
        for (int i = 0; i < 3; ++i) {
            racers.append(session.start(QStringLiteral(VESKO_PATH),
                {QStringLiteral("add"), QStringLiteral("note %1.%2").arg(round).arg(i)}));
        }
        for (QProcess *racer : std::as_const(racers)) {
            QVERIFY(racer->waitForFinished(90000));
            QCOMPARE(racer->exitCode(), 0);
        }
        const ProgramSession::Outcome listed = session.vesko({"list", "--json"});
        QStringList texts = jsonTexts(listed.output);
        texts.sort();
        QCOMPARE(texts.mid(texts.size() - 3),
            QStringList({QStringLiteral("note %1.0").arg(round),
                QStringLiteral("note %1.1").arg(round), QStringLiteral("note %1.2").arg(round)}));
        QVERIFY(session.quit());
        QTRY_VERIFY_WITH_TIMEOUT(!busNameOwned(), Test::patience);
    }
    QCOMPARE(libraryTexts(session.libraryPath()).size(), 9);

    // A racer's own start that comes up only after the others were served
    // and Vesko was quit: the command it was for has ended, nothing runs.
    // No process has the number pid_max (numbers stay below it), where the
    // number of one that has ended could be taken again meanwhile.
    QFile pidMax(QStringLiteral("/proc/sys/kernel/pid_max"));
    QVERIFY(pidMax.open(QIODevice::ReadOnly));
    const QString endedPid = QString::fromLatin1(pidMax.readAll().trimmed());
    session.setEnvironmentVariable(QStringLiteral("VESKO_STARTED_FOR"), endedPid);
    const ProgramSession::Outcome late = session.run(
        QStringLiteral(VESKO_PATH), {QStringLiteral("--background")}, {}, Test::patience);
    QVERIFY2(late.finished && late.exitCode == 0, qPrintable(describe(late)));
    QVERIFY(!busNameOwned());
}

QTEST_GUILESS_MAIN(CommandLineAppTest)

#include "tst_commandlineapp.moc"
