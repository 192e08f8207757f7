// SPDX-License-Identifier: GPL-3.0-or-later
//
// Capture on Wayland from the outside, in a private headless sway
// (tests/sway-session.sh): a foot window's primary selection becomes a note
// labelled "Foot — TITLE", whether the capture comes from the command line,
// a sway key binding or two Shift taps the compositor reports; a window
// without a primary selection is read through a synthetic copy and the
// clipboard is put back; a selection owner that never sends, or never stops
// sending, ends in "Nothing Selected" and Vesko captures again afterwards.
// Beside them, without a compositor, the pipe read those rest on.

#include "TestEnvironment.h"

#include "ProgramSession.h"
#include "platform/wayland/WaylandPipeReader.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include <fcntl.h>
#include <unistd.h>

using namespace Vesko;

namespace {

//! Runs a Wayland client of the session to its end and returns its output.
QString client(const QString &program, const QStringList &arguments, const QByteArray &input = {})
{
    QProcess process;
    process.start(program, arguments);
    if (!input.isNull()) {
        process.write(input);
        process.closeWriteChannel();
    }
    // wl-copy serves the selection from a child of its own; the parent returns.
    if (!process.waitForFinished(10000))
        process.kill();
    return QString::fromUtf8(process.readAllStandardOutput());
}

QString swaymsg(const QStringList &arguments)
{
    return client(QStringLiteral("swaymsg"), arguments);
}

//! The windows of the sway tree: their name and app_id, and which has the focus.
struct Window
{
    QString name;
    QString appID;
    bool focused = false;
};

void collect(const QJsonObject &node, QList<Window> &windows)
{
    if (node.value(QStringLiteral("type")).toString() != u"workspace"
        && node.contains(QStringLiteral("app_id"))) {
        windows.append({node.value(QStringLiteral("name")).toString(),
            node.value(QStringLiteral("app_id")).toString(),
            node.value(QStringLiteral("focused")).toBool()});
    }
    for (const char *children : {"nodes", "floating_nodes"}) {
        for (const QJsonValue child : node.value(QLatin1String(children)).toArray())
            collect(child.toObject(), windows);
    }
}

QList<Window> windows()
{
    QList<Window> found;
    collect(QJsonDocument::fromJson(swaymsg({QStringLiteral("-t"), QStringLiteral("get_tree")}).toUtf8())
                .object(),
        found);
    return found;
}

bool focusedWindowIs(const QString &name)
{
    for (const Window &window : windows()) {
        if (window.focused)
            return window.name == name;
    }
    return false;
}

class WaylandCapture : public Test::ProgramSession
{
public:
    WaylandCapture()
    {
        setEnvironmentVariable(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("wayland"));
    }

    //! Vesko with the panel kept hidden on capture, the front window staying in front.
    QProcess *startVesko()
    {
        QDir().mkpath(QFileInfo(configPath()).path());
        QFile config(configPath());
        if (config.open(QIODevice::WriteOnly)) // the widest double-Shift interval
            config.write("[General]\nshowPanelOnCapture=false\ndoubleShiftInterval=1\n");
        config.close();
        // Its log is read: a toast is a popup, out of the compositor's tree.
        QProcess *vesko = start(QStringLiteral(VESKO_PATH), {}, QProcess::SeparateChannels);
        if (!QTest::qWaitFor([] { return focusedWindowIs(QStringLiteral("Vesko")); }, 20000))
            return nullptr;
        return vesko;
    }

    //! A foot window titled \a title, in front.
    bool startFoot(const QString &title)
    {
        start(QStringLiteral("foot"),
            {QStringLiteral("--title"), title, QStringLiteral("sh"), QStringLiteral("-c"),
                QStringLiteral("echo ready; sleep 600")});
        return QTest::qWaitFor([&] { return focusedWindowIs(title); }, 15000);
    }

    //! The `vesko` command line with this session's folders, as a sway binding runs it.
    QString veskoCommand(const QString &command) const
    {
        QStringList words {QStringLiteral("exec env")};
        for (const char *name : {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME",
                 "XDG_STATE_HOME", "XDG_RUNTIME_DIR", "QT_QPA_PLATFORM"}) {
            words.append(QStringLiteral("%1=%2").arg(
                QLatin1String(name), sessionEnvironment().value(QLatin1String(name))));
        }
        words << QStringLiteral(VESKO_PATH) << command;
        return words.join(u' ');
    }

    Outcome vesko(const QStringList &arguments) const
    {
        return run(QStringLiteral(VESKO_PATH), arguments, {}, 30000);
    }

    QList<Note> notes() const { return Test::allNotes(Test::readLibraryFile(libraryPath())); }
};

} // namespace

class CaptureWaylandTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pipeRead_data();
    void pipeRead();
    void captureFromFoot_data();
    void captureFromFoot();
    void copyFallback();
    void misbehavingOwner_data();
    void misbehavingOwner();

private:
    //! Skips the test where there is no compositor, with the reason.
    bool needsSway();
};

bool CaptureWaylandTest::needsSway()
{
    const QString reason = qEnvironmentVariable("VESKO_SWAY_UNAVAILABLE");
    if (!reason.isEmpty()) {
        QTest::qSkip(qPrintable(reason), __FILE__, __LINE__);
        return false;
    }
    if (qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") || qEnvironmentVariableIsEmpty("SWAYSOCK")) {
        QTest::qSkip("Needs a sway session: run through tests/sway-session.sh", __FILE__, __LINE__);
        return false;
    }
    return true;
}

void CaptureWaylandTest::pipeRead_data()
{
    QTest::addColumn<QByteArray>("written");
    QTest::addColumn<bool>("closed");
    QTest::addColumn<std::optional<QByteArray>>("expected");
    const QByteArray text("words from another client");
    QTest::newRow("sent whole") << text << true << std::optional<QByteArray>(text);
    QTest::newRow("nothing sent, closed") << QByteArray() << true << std::optional<QByteArray>(QByteArray());
    QTest::newRow("never ends") << text << false << std::optional<QByteArray>();
    // The cap of these reads is 4096 bytes.
    QTest::newRow("over the cap") << QByteArray(4097, 'x') << true << std::optional<QByteArray>();
    QTest::newRow("at the cap") << QByteArray(4096, 'x') << true
                                << std::optional<QByteArray>(QByteArray(4096, 'x'));
}

void CaptureWaylandTest::pipeRead()
{
    QFETCH(QByteArray, written);
    QFETCH(bool, closed);
    QFETCH(std::optional<QByteArray>, expected);
    int fds[2];
    QVERIFY(::pipe2(fds, O_CLOEXEC) == 0);
    QVERIFY(::write(fds[1], written.constData(), size_t(written.size())) == written.size());
    if (closed)
        ::close(fds[1]);
    bool answered = false;
    std::optional<QByteArray> answer;
    WaylandPipeReader::read(fds[0], 4096, 300, [&](std::optional<QByteArray> bytes) {
        QVERIFY(!answered);
        answered = true;
        answer = std::move(bytes);
    });
    QVERIFY(!answered); // never at once: the reader waits on the event loop
    QTRY_VERIFY_WITH_TIMEOUT(answered, 10000);
    QCOMPARE(answer, expected);
    if (!closed)
        ::close(fds[1]);
}

void CaptureWaylandTest::captureFromFoot_data()
{
    QTest::addColumn<QString>("trigger");
    QTest::newRow("command line") << "command";
    QTest::newRow("sway key binding") << "binding";
    QTest::newRow("two Shift taps through sway") << "shift";
}

void CaptureWaylandTest::captureFromFoot()
{
    if (!needsSway())
        return;
    QFETCH(QString, trigger);
    WaylandCapture session;
    QVERIFY(session.startVesko());
    QVERIFY(session.startFoot(QStringLiteral("build log")));
    const QString text = QStringLiteral("words selected in the terminal");
    client(QStringLiteral("wl-copy"), {QStringLiteral("--primary")}, text.toUtf8());

    if (trigger == u"command") {
        QCOMPARE(session.vesko({QStringLiteral("capture")}).exitCode, 0);
    } else if (trigger == u"binding") {
        swaymsg({QStringLiteral("bindsym --no-warn Mod4+Mod1+c ")
            + session.veskoCommand(QStringLiteral("capture"))});
        client(QStringLiteral("wtype"),
            {QStringLiteral("-M"), QStringLiteral("logo"), QStringLiteral("-M"), QStringLiteral("alt"),
                QStringLiteral("-k"), QStringLiteral("c"), QStringLiteral("-m"), QStringLiteral("alt"),
                QStringLiteral("-m"), QStringLiteral("logo")});
    } else {
        swaymsg({QStringLiteral("bindsym --no-warn --release Shift_L ")
            + session.veskoCommand(QStringLiteral("shift"))});
        client(QStringLiteral("wtype"),
            {QStringLiteral("-k"), QStringLiteral("Shift_L"), QStringLiteral("-s"),
                QStringLiteral("150"), QStringLiteral("-k"), QStringLiteral("Shift_L")});
    }
    QTRY_COMPARE_WITH_TIMEOUT(session.notes().size(), 1, 15000);
    const Library library = Test::readLibraryFile(session.libraryPath());
    const Note note = Test::allNotes(library).first();
    QCOMPARE(note.text, text);
    QVERIFY(note.source);
    QCOMPARE(note.source->appName, QStringLiteral("Foot"));
    QCOMPARE(note.source->windowTitle, QStringLiteral("build log"));
    QCOMPARE(note.source->bundleIdentifier, QStringLiteral("foot"));
    bool found = false;
    for (const NoteSection &section : library.projects.first().sections)
        found = found || (section.title == QStringLiteral("Foot — build log") && section.notes.size() == 1);
    QVERIFY(found);
}

void CaptureWaylandTest::copyFallback()
{
    if (!needsSway())
        return;
    WaylandCapture session;
    QVERIFY(session.startVesko());
    client(QStringLiteral("wl-copy"), {}, QByteArray("the user's clipboard"));
    client(QStringLiteral("wl-copy"), {QStringLiteral("--primary"), QStringLiteral("--clear")});
    const QString text = QStringLiteral("text from the copy target");
    QProcess *target = session.start(QStringLiteral(COPY_TARGET_PATH), {text, QStringLiteral("100")});
    QTRY_VERIFY_WITH_TIMEOUT(focusedWindowIs(QStringLiteral("Copy Target")), 15000);

    QCOMPARE(session.vesko({QStringLiteral("capture")}).exitCode, 0);
    QTRY_COMPARE_WITH_TIMEOUT(session.notes().size(), 1, 15000);
    QCOMPARE(session.notes().first().text, text);
    QCOMPARE(session.notes().first().source->windowTitle, QStringLiteral("Copy Target"));
    // The window got exactly the copy keys, and the clipboard is the user's again.
    QVERIFY(QString::fromUtf8(target->readAllStandardOutput()).startsWith(u"key Ctrl+Ins\n"));
    QTRY_COMPARE_WITH_TIMEOUT(client(QStringLiteral("wl-paste"), {QStringLiteral("--no-newline")}),
        QStringLiteral("the user's clipboard"), 10000);
}

void CaptureWaylandTest::misbehavingOwner_data()
{
    QTest::addColumn<QString>("mode");
    QTest::newRow("never sends") << "silent";
    QTest::newRow("sends without end") << "flood";
}

void CaptureWaylandTest::misbehavingOwner()
{
    if (!needsSway())
        return;
    QFETCH(QString, mode);
    WaylandCapture session;
    QProcess *vesko = session.startVesko();
    QVERIFY(vesko);
    QVERIFY(session.startFoot(QStringLiteral("idle")));
    QProcess *owner = session.start(QStringLiteral(STUCK_SELECTION_PATH), {mode});
    QByteArray said;
    QTRY_VERIFY_WITH_TIMEOUT((said += owner->readAllStandardOutput()).contains("owned"), 10000);

    QCOMPARE(session.vesko({QStringLiteral("capture")}).exitCode, 0);
    QByteArray log;
    QTRY_VERIFY_WITH_TIMEOUT(
        (log += vesko->readAllStandardError()).contains("Nothing selected"), 15000);
    QCOMPARE(session.notes().size(), 0);

    // Vesko answers, and the next capture takes the next selection.
    const QString text = QStringLiteral("the next selection");
    client(QStringLiteral("wl-copy"), {QStringLiteral("--primary")}, text.toUtf8());
    QCOMPARE(session.vesko({QStringLiteral("capture")}).exitCode, 0);
    QTRY_COMPARE_WITH_TIMEOUT(session.notes().size(), 1, 15000);
    QCOMPARE(session.notes().first().text, text);
}

VESKO_TEST_MAIN(CaptureWaylandTest)
#include "tst_capturewayland.moc"
