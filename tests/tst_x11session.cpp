// SPDX-License-Identifier: GPL-3.0-or-later
//
// The X11 session on a real X server (tests/x-session.sh) against other
// programs: the primary selection of a process, answered on the event loop and
// only by the answer asked for; the synthetic copy in every layout, never an
// interrupt in a terminal, and never mixed with keys the user holds.

#include "ProgramSession.h"
#include "TestEnvironment.h"

#include "platform/KeyMonitor.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11HotKeys.h"
#include "platform/x11/X11Session.h"

#include <QFile>
#include <QProcess>
#include <QScopeGuard>
#include <QTemporaryFile>
#include <QTimer>

#include <xcb/xcb.h>

#include <cstdlib>

using namespace Vesko;
using Test::xdotool;

namespace {

//! Starts a helper and waits for its first line ("owned").
bool startOwner(QProcess &process, const QString &program, const QStringList &arguments)
{
    process.start(program, arguments);
    return process.waitForStarted()
        && QTest::qWaitFor([&process] { return process.canReadLine(); }, 10000)
        && process.readLine().trimmed() == "owned";
}

void stop(QProcess &process)
{
    process.kill();
    process.waitForFinished();
}

//! What the session reads from the primary selection for \a processID,
//! waited for on the event loop; \a atOnce tells whether the read returned
//! with its answer.
std::optional<QString> readPrimary(X11Session &session, qint64 processID, bool *atOnce = nullptr)
{
    bool answered = false;
    std::optional<QString> text;
    session.readPrimarySelection(processID, [&](std::optional<QString> t) {
        text = std::move(t);
        answered = true;
    });
    if (atOnce)
        *atOnce = answered;
    if (!QTest::qWaitFor([&answered] { return answered; }, 10000))
        return QStringLiteral("(no answer at all)");
    return text;
}

//! The X key codes down now.
QList<int> keysDown()
{
    X11Connection x;
    xcb_query_keymap_reply_t *keymap
        = xcb_query_keymap_reply(x.get(), xcb_query_keymap(x.get()), nullptr);
    QList<int> down;
    for (int code = 8; keymap && code < 256; ++code) {
        if ((keymap->keys[code / 8] >> (code % 8)) & 1)
            down.append(code);
    }
    std::free(keymap);
    return down;
}

//! The copy target of the helper, in front, and the key combinations it got.
class CopyTarget
{
public:
    explicit CopyTarget(const QString &text)
    {
        m_process = m_programs.start(QStringLiteral(COPY_TARGET_PATH), {text, QStringLiteral("0")});
        m_window = Test::activateWindow(QStringLiteral("Copy Target"));
    }

    bool isShown() const { return !m_window.isEmpty(); }

    //! Every combination the window got, up to a marker key typed now (F5):
    //! the server delivers in order.
    QStringList keysReceived()
    {
        xdotool({QStringLiteral("key"), QStringLiteral("F5")});
        QStringList keys;
        const bool marked = QTest::qWaitFor(
            [&] {
                while (m_process->canReadLine()) {
                    const QString line = QString::fromUtf8(m_process->readLine()).trimmed();
                    if (line.startsWith(u"key "))
                        keys.append(line.mid(4));
                }
                return !keys.isEmpty() && keys.last().endsWith(u"F5");
            },
            10000);
        if (!marked)
            return {QStringLiteral("(no marker)")};
        keys.removeLast();
        return keys;
    }

private:
    Test::ProgramSession m_programs;
    QProcess *m_process = nullptr;
    QString m_window;
};

//! Asks \a session for attempt 1 of the copy and waits for its answer:
//! "sent" or "not sent".
QString sendCopy(X11Session &session)
{
    std::optional<bool> sent;
    session.sendCopy(1, [&sent](bool s) { sent = s; });
    if (!QTest::qWaitFor([&sent] { return sent.has_value(); }, 10000))
        return QStringLiteral("(no answer)");
    return *sent ? QStringLiteral("sent") : QStringLiteral("not sent");
}

} // namespace

class X11SessionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void onlyTheAnswerAskedFor_data();
    void onlyTheAnswerAskedFor();
    void largePrimaryPiecewise();
    void copyNeverInterruptsATerminalProgram();
    void heldKeysAreAwaited_data();
    void heldKeysAreAwaited();
    void cleanup();
};

void X11SessionTest::initTestCase()
{
    if (qEnvironmentVariableIsEmpty("DISPLAY"))
        QSKIP("Needs an X server: run through tests/x-session.sh");
}

void X11SessionTest::onlyTheAnswerAskedFor_data()
{
    // The owner answers UTF8_STRING and STRING after these delays (ms); -1
    // never answers, "refuses" does not offer the target, "refuse@N" refuses
    // after N ms stamped CurrentTime; a list gives one delay per request.
    // Each answer is awaited a quarter of a second. "read" lists what each of
    // the reads, one after the other, gives; "other" reads for another
    // process than the owner.
    QTest::addColumn<QString>("utf8");
    QTest::addColumn<QString>("latin1");
    QTest::addColumn<QString>("read");
    // clang-format off
    QTest::newRow("UTF-8 at once") << "0" << "0" << "utf8 other";
    QTest::newRow("UTF-8 too late, Latin-1 later still") << "300" << "200" << "latin1";
    QTest::newRow("UTF-8 too late, Latin-1 at once") << "300" << "0" << "latin1";
    QTest::newRow("UTF-8 refused") << "refuses" << "0" << "latin1";
    QTest::newRow("neither in time") << "-1" << "400" << "none";
    // The first read's UTF-8 request gives up; its refusal comes while the
    // second read's UTF-8 request waits for its own answer.
    QTest::newRow("late refusal of an abandoned request")
        << "refuse@300,100" << "0" << "latin1 utf8";
    // clang-format on
}

void X11SessionTest::onlyTheAnswerAskedFor()
{
    QFETCH(QString, utf8);
    QFETCH(QString, latin1);
    QFETCH(QString, read);
    const QString utf8Text = QStringLiteral("d\u00E9j\u00E0 vu, UTF-8");
    const QString latin1Text = QStringLiteral("na\u00EFve, Latin-1");
    QStringList arguments {QStringLiteral("PRIMARY")};
    if (utf8 != u"refuses")
        arguments << QStringLiteral("UTF8_STRING") << utf8 << utf8Text;
    arguments << QStringLiteral("STRING") << latin1 << latin1Text;
    QProcess owner;
    QVERIFY(startOwner(owner, QStringLiteral(SELECTION_OWNER_PATH), arguments));
    X11Session session;
    for (const QString &expected : read.split(u' ')) {
        // Another program's selection is not the front application's.
        const bool other = expected == u"other";
        bool atOnce = false;
        const std::optional<QString> text = readPrimary(
            session, other ? QCoreApplication::applicationPid() : owner.processId(), &atOnce);
        QVERIFY2(other || !atOnce, "the read returned with its answer");
        if (expected == u"none" || other)
            QCOMPARE(text, std::nullopt);
        else
            QCOMPARE(text, expected == u"utf8" ? utf8Text : latin1Text);
    }
    stop(owner);
}

void X11SessionTest::largePrimaryPiecewise()
{
    // Three mebibytes: more than one property holds, so xclip sends it in pieces.
    QByteArray text;
    for (int line = 0; text.size() < 3 * 1024 * 1024; ++line)
        text += "line " + QByteArray::number(line) + " of a long selection, \xC3\xA9t\xC3\xA9\n";
    QTemporaryFile file;
    QVERIFY(file.open());
    file.write(text);
    file.close();
    QProcess xclip;
    xclip.start(QStringLiteral("xclip"),
        {QStringLiteral("-quiet"), QStringLiteral("-selection"), QStringLiteral("primary"),
            file.fileName()});
    QVERIFY(xclip.waitForStarted());
    X11Connection x;
    QTRY_VERIFY_WITH_TIMEOUT(
        [&] {
            xcb_get_selection_owner_reply_t *owner = xcb_get_selection_owner_reply(
                x.get(), xcb_get_selection_owner(x.get(), XCB_ATOM_PRIMARY), nullptr);
            const xcb_window_t window = owner ? owner->owner : 0;
            std::free(owner);
            return window != 0 && x.processOf(window) == xclip.processId();
        }(),
        Test::patience);
    X11Session session;
    const std::optional<QString> read = readPrimary(session, xclip.processId());
    QVERIFY(read);
    QCOMPARE(read->size(), QString::fromUtf8(text).size());
    QVERIFY(*read == QString::fromUtf8(text));
    stop(xclip);
}

void X11SessionTest::copyNeverInterruptsATerminalProgram()
{
    // A program running in a terminal (as in the terminal panel of an
    // editor) that notes each interrupt and each line it reads.
    Test::ProgramSession programs;
    const QString log = programs.rootFolder() + QStringLiteral("/program.log");
    programs.start(QStringLiteral("xterm"),
        {QStringLiteral("-T"), QStringLiteral("running program"), QStringLiteral("-e"),
            QStringLiteral("bash"), QStringLiteral("-c"),
            QStringLiteral("trap 'echo interrupted >> %1' INT; echo ready >> %1; "
                           "while :; do read -r line && echo \"read $line\" >> %1; done")
                .arg(log)});
    auto logText = [&log] {
        QFile file(log);
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    };
    QTRY_VERIFY_WITH_TIMEOUT(logText().contains(u"ready"), Test::patience);
    QVERIFY(!Test::activateWindow(QStringLiteral("running program")).isEmpty());

    X11Session session;
    QCOMPARE(sendCopy(session), QStringLiteral("sent"));
    // A line typed after the copy: once it is read, the copy's keys were too.
    xdotool({QStringLiteral("type"), QStringLiteral("after\n")});
    QTRY_VERIFY_WITH_TIMEOUT(logText().contains(u"after"), Test::patience);
    QVERIFY2(!logText().contains(u"interrupted"), qPrintable(logText()));
}

void X11SessionTest::heldKeysAreAwaited_data()
{
    // The xdotool names of the keys the user holds (through XTEST, as
    // automation does), their X key codes, whether they are the capture hot
    // key that Vesko has grabbed, and when they are let go after the copy
    // was asked for: in ms, or -1 for only once the copy has answered. The
    // copy is Ctrl+Insert, which no terminal takes for an interrupt, in any
    // keyboard layout (setxkbmap's -layout).
    QTest::addColumn<QString>("layout");
    QTest::addColumn<QString>("held");
    QTest::addColumn<QList<int>>("codes");
    QTest::addColumn<bool>("grabbed");
    QTest::addColumn<int>("releaseAfter");
    // clang-format off
    QTest::newRow("nothing") << "us" << "" << QList<int> {} << false << 0;
    // No key of the first layout makes a Latin "c".
    QTest::newRow("nothing, Russian first") << "ru,us" << "" << QList<int> {} << false << 0;
    QTest::newRow("Super and Alt, let go")
        << "us" << "super+alt" << QList<int> {64, 133} << false << 300;
    QTest::newRow("the capture hot key, let go")
        << "us" << "super+alt+c" << QList<int> {54, 64, 133} << true << 300;
    QTest::newRow("Super and Alt, held on")
        << "us" << "super+alt" << QList<int> {64, 133} << false << -1;
    QTest::newRow("the capture hot key, held on")
        << "us" << "super+alt+c" << QList<int> {54, 64, 133} << true << -1;
    // clang-format on
}

void X11SessionTest::heldKeysAreAwaited()
{
    QFETCH(QString, layout);
    QFETCH(QString, held);
    QFETCH(QList<int>, codes);
    QFETCH(bool, grabbed);
    QFETCH(int, releaseAfter);
    const auto usAfterwards = qScopeGuard([] { Test::setxkbmap({QStringLiteral("us")}); });
    // The layout changes under a running session, which follows it.
    X11Session session;
    QVERIFY(Test::setxkbmap({QStringLiteral("-layout"), layout}));
    const QString text = QStringLiteral("words of the copy target");
    CopyTarget target(text);
    QVERIFY(target.isShown());
    Test::xclip(QStringLiteral("-i -selection clipboard"), "before the copy");
    X11HotKeys hotKeys;
    int reports = 0;
    if (grabbed) {
        // Super+Alt+C: C is key code 54; Super is the Control flag, Alt the Option flag.
        hotKeys.installHandler([&reports](int) { ++reports; });
        QCOMPARE(hotKeys.registerKey(2, 54, ModifierFlag::Control | ModifierFlag::Option), 0);
    }
    if (!held.isEmpty())
        xdotool({QStringLiteral("keydown"), held});
    QCOMPARE(keysDown(), codes);
    if (grabbed)
        QTRY_COMPARE_WITH_TIMEOUT(reports, 1, Test::patience); // the grab is active now

    if (releaseAfter >= 0 && !held.isEmpty()) {
        QTimer::singleShot(releaseAfter, [held] { xdotool({QStringLiteral("keyup"), held}); });
    }
    const bool letGo = releaseAfter >= 0;
    QCOMPARE(sendCopy(session), letGo ? QStringLiteral("sent") : QStringLiteral("not sent"));
    if (!letGo) {
        // Nothing of the user's was let go or taken from them.
        QCOMPARE(keysDown(), codes);
        if (!held.isEmpty())
            xdotool({QStringLiteral("keyup"), held});
    }
    QCOMPARE(keysDown(), QList<int> {});
    // The window saw the copy alone, or nothing at all.
    QCOMPARE(
        target.keysReceived(), letGo ? QStringList {QStringLiteral("Ctrl+Ins")} : QStringList {});
    if (letGo)
        QTRY_COMPARE_WITH_TIMEOUT(
            Test::xclip(QStringLiteral("-o -selection clipboard")), text, Test::patience);
    else
        QCOMPARE(Test::xclip(QStringLiteral("-o -selection clipboard")),
            QStringLiteral("before the copy"));
    if (grabbed) {
        // The hot key hears its next press.
        xdotool({QStringLiteral("key"), QStringLiteral("super+alt+c")});
        QTRY_COMPARE_WITH_TIMEOUT(reports, 2, Test::patience);
    }
}

void X11SessionTest::cleanup()
{
    // A failed row leaves no key down for the next one.
    if (!keysDown().isEmpty())
        xdotool({QStringLiteral("keyup"), QStringLiteral("super"), QStringLiteral("alt"),
            QStringLiteral("shift"), QStringLiteral("c")});
}

VESKO_TEST_MAIN(X11SessionTest)
#include "tst_x11session.moc"
