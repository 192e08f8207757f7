// SPDX-License-Identifier: GPL-3.0-or-later
//
// Capture from the outside on a real X server with a window manager: from an
// xterm by double Shift or the hot key, and with nothing selected; through a
// slow copy with the clipboard put back, and with the hot key held down.

#include "TestEnvironment.h"

#include "ProgramSession.h"

#include <QProcess>

using namespace Vesko;
using Test::activateWindow;
using Test::words;
using Test::xclip;
using Test::xdotool;

namespace {

QString clipboard()
{
    return xclip(QStringLiteral("-o -selection clipboard"));
}

class CaptureSession : public Test::ProgramSession
{
public:
    //! Vesko with the panel kept hidden on capture, so that the front window stays in front.
    QProcess *startVesko()
    {
        QDir().mkpath(QFileInfo(configPath()).path());
        QFile config(configPath());
        if (config.open(QIODevice::WriteOnly))
            config.write("[General]\nshowPanelOnCapture=false\n");
        config.close();
        QProcess *vesko = start(QStringLiteral(VESKO_PATH));
        if (!QTest::qWaitFor(
                [] { return !Test::visibleWindow(QStringLiteral("^Vesko$")).isEmpty(); }, 15000))
            return nullptr;
        return vesko;
    }

    //! Sends \a keys (xdotool) once the last toast has gone, and waits for a
    //! toast and for \a count notes in all; a second and a half later there are
    //! still no more.
    bool capture(const QString &keys, int count)
    {
        if (!QTest::qWaitFor([] { return !toastShown(); }, Test::patience))
            return false;
        xdotool(words(keys));
        return QTest::qWaitFor([] { return toastShown(); }, Test::patience)
            && QTest::qWaitFor([&] { return notes().size() == count; }, Test::patience)
            && !QTest::qWaitFor([&] { return notes().size() != count; }, 1500);
    }

    static bool toastShown()
    {
        return !Test::visibleWindow(QStringLiteral("^Vesko Toast$")).isEmpty();
    }
};

} // namespace

class CaptureX11Test : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void captureFromXterm();
    void captureThroughTheCopy();
};

void CaptureX11Test::initTestCase()
{
    if (qEnvironmentVariableIsEmpty("DISPLAY"))
        QSKIP("Needs an X server: run through tests/x-session.sh");
}

void CaptureX11Test::captureFromXterm()
{
    CaptureSession session;
    QVERIFY(session.startVesko());
    const QString line = QStringLiteral("words selected in the terminal");
    session.start(QStringLiteral("xterm"),
        words(QStringLiteral("-geometry 80x8+20+20 -T"))
            << QStringLiteral("build log") << words(QStringLiteral("-e sh -c"))
            << QStringLiteral("printf '%s\\n' '%1'; sleep 600").arg(line));
    const QString xterm = activateWindow(QStringLiteral("build log"));
    QVERIFY(!xterm.isEmpty());
    // A triple click on the first line selects it.
    xdotool(words(
        QStringLiteral("mousemove --window %1 30 6 click --repeat 3 --delay 80 1").arg(xterm)));
    QTRY_COMPARE_WITH_TIMEOUT(
        xclip(QStringLiteral("-o -selection primary")).trimmed(), line, Test::patience);

    int count = 0;
    for (const char *trigger : {"key Shift_L Shift_L", "key super+alt+c"}) {
        QVERIFY2(session.capture(QLatin1String(trigger), ++count), trigger);
        QCOMPARE(session.lastNote(), line + QStringLiteral(" | XTerm | build log | debian-xterm"));
    }
    // PRIMARY belongs to another program now: not the terminal's selection,
    // and a terminal gets no copy keys.
    xclip(QStringLiteral("-i -selection primary"), QByteArray("someone else's"));
    QVERIFY2(session.capture(QStringLiteral("key Shift_L Shift_L"), count), "nothing selected");
}

void CaptureX11Test::captureThroughTheCopy()
{
    CaptureSession session;
    QVERIFY(session.startVesko());
    xclip(QStringLiteral("-i -selection clipboard"), QByteArray("the user's clipboard"));
    // A window that answers Ctrl+C only after 300 ms.
    const QString text = QStringLiteral("text from the copy target");
    QProcess *target
        = session.start(QStringLiteral(COPY_TARGET_PATH), {text, QStringLiteral("300")});
    QVERIFY(!activateWindow(QStringLiteral("Copy Target")).isEmpty());
    // Its text and the window's title; the toolkit names the program.
    const auto captured = [&session] {
        const QStringList note = session.lastNote().split(QStringLiteral(" | "));
        return QStringList {note.value(0), note.value(2)};
    };
    const QStringList expected {text, QStringLiteral("Copy Target")};

    // A second double Shift during the slow copy is dropped.
    QVERIFY(
        session.capture(QStringLiteral("key Shift_L Shift_L sleep 0.1 key Shift_L Shift_L"), 1));
    QCOMPARE(captured(), expected);
    QCOMPARE(clipboard(), QStringLiteral("the user's clipboard"));
    // The hot key held longer than the keyboard's repeat delay, and longer
    // than Vesko waits for held keys before it lets the modifiers go.
    QVERIFY(session.capture(QStringLiteral("keydown super+alt+c sleep 1 keyup super+alt+c"), 2));
    QCOMPARE(captured(), expected);

    // Held on until the capture has given up with its toast: the window got
    // no key at all, no copy mixed with Super and Alt.
    target->readAllStandardOutput();
    QVERIFY(session.capture(QStringLiteral("keydown super+alt+c"), 2));
    xdotool(words(QStringLiteral("keyup super+alt+c")));
    QCOMPARE(QString::fromUtf8(target->readAllStandardOutput()), QString());
    QCOMPARE(clipboard(), QStringLiteral("the user's clipboard"));
    // The next press is heard, and captures.
    QVERIFY(session.capture(QStringLiteral("key super+alt+c"), 3));
    QCOMPARE(captured(), expected);
}

VESKO_TEST_MAIN(CaptureX11Test)
#include "tst_capturex11.moc"
