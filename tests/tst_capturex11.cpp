// SPDX-License-Identifier: GPL-3.0-or-later
//
// Capture from the outside on a real X server with a window manager: from an
// xterm by double Shift or the hot key, through a slow copy with the clipboard
// put back, with the hot key held down, and with nothing selected.

#include "TestEnvironment.h"

#include "ProgramSession.h"

#include <QProcess>

using namespace Vesko;
using Test::xdotool;

namespace {

using Test::words;

QString xclip(const QString &arguments, const QByteArray &input = {})
{
    QProcess process;
    process.start(QStringLiteral("xclip"), words(arguments));
    if (!input.isNull()) {
        process.write(input);
        process.closeWriteChannel();
    }
    // xclip -i stays in the background to serve the selection; its parent returns.
    process.waitForFinished(Test::patience);
    return QString::fromUtf8(process.readAllStandardOutput());
}

QString clipboard()
{
    return xclip(QStringLiteral("-o -selection clipboard"));
}

//! Waits for a visible window named exactly \a title and activates it; its id, or empty.
QString activate(const QString &title)
{
    QString window;
    if (QTest::qWaitFor(
            [&] { return !(window = Test::visibleWindow(u'^' + title + u'$')).isEmpty(); },
            Test::patience))
        xdotool(words(QStringLiteral("windowactivate --sync ") + window));
    return window;
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

    //! An xterm titled \a title showing \a line, in front; returns its window id.
    QString startXterm(const QString &title, const QString &line)
    {
        start(QStringLiteral("xterm"),
            words(QStringLiteral("-geometry 80x8+20+20 -T"))
                << title << words(QStringLiteral("-e sh -c"))
                << QStringLiteral("printf '%s\\n' '%1'; sleep 600").arg(line));
        return activate(title);
    }

    //! Vesko, the user's clipboard, and a copy target in front answering
    //! Ctrl+C with \a text after \a delay ms.
    QProcess *startCopyTarget(const QString &text, int delay)
    {
        if (!startVesko())
            return nullptr;
        xclip(QStringLiteral("-i -selection clipboard"), QByteArray("the user's clipboard"));
        QProcess *target = start(QStringLiteral(COPY_TARGET_PATH), {text, QString::number(delay)});
        return activate(QStringLiteral("Copy Target")).isEmpty() ? nullptr : target;
    }

    QList<Note> notes() const { return Test::allNotes(Test::readLibraryFile(libraryPath())); }
};

void tapShiftTwice()
{
    xdotool(words(QStringLiteral("key Shift_L Shift_L")));
}

bool toastShown()
{
    return !Test::visibleWindow(QStringLiteral("^Vesko Toast$")).isEmpty();
}

} // namespace

class CaptureX11Test : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void captureFromXterm_data();
    void captureFromXterm();
    void capturedOnce_data();
    void capturedOnce();
    void hotKeyHeldPastTheWait();
    void nothingSelected();
};

void CaptureX11Test::initTestCase()
{
    if (qEnvironmentVariableIsEmpty("DISPLAY"))
        QSKIP("Needs an X server: run through tests/x-session.sh");
}

void CaptureX11Test::captureFromXterm_data()
{
    QTest::addColumn<QString>("trigger");
    QTest::newRow("double Shift") << "Shift_L Shift_L";
    QTest::newRow("capture hot key") << "super+alt+c";
}

void CaptureX11Test::captureFromXterm()
{
    QFETCH(QString, trigger);
    CaptureSession session;
    QVERIFY(session.startVesko());
    const QString line = QStringLiteral("words selected in the terminal");
    const QString xterm = session.startXterm(QStringLiteral("build log"), line);
    QVERIFY(!xterm.isEmpty());
    // A triple click on the first line selects it.
    xdotool(words(
        QStringLiteral("mousemove --window %1 30 6 click --repeat 3 --delay 80 1").arg(xterm)));
    QTRY_COMPARE_WITH_TIMEOUT(
        xclip(QStringLiteral("-o -selection primary")).trimmed(), line, Test::patience);

    xdotool(words(QStringLiteral("key ") + trigger));
    QTRY_VERIFY_WITH_TIMEOUT(toastShown(), Test::patience);
    QTRY_COMPARE_WITH_TIMEOUT(session.notes().size(), 1, Test::patience);
    const Library library = Test::readLibraryFile(session.libraryPath());
    const Note note = Test::allNotes(library).first();
    QCOMPARE(note.text, line);
    QVERIFY(note.source);
    QCOMPARE(note.source->appName, QStringLiteral("XTerm"));
    QCOMPARE(note.source->windowTitle, QStringLiteral("build log"));
    QCOMPARE(note.source->bundleIdentifier, QStringLiteral("debian-xterm"));
    const QString expectedSection
        = sourceSectionTitle(QStringLiteral("XTerm"), QStringLiteral("build log"));
    bool found = false;
    for (const NoteSection &section : library.projects.first().sections) {
        if (section.title == expectedSection) {
            found = true;
            QCOMPARE(section.notes.size(), 1);
            QVERIFY(section.isAutomatic);
        }
    }
    QVERIFY2(found, qPrintable(expectedSection));
}

void CaptureX11Test::capturedOnce_data()
{
    // The copy target's delay in ms, and the user's keys (xdotool).
    QTest::addColumn<int>("delay");
    QTest::addColumn<QString>("keys");
    // The second double Shift comes during the capture: dropped.
    QTest::newRow("slow copy, a gesture during it")
        << 300 << "key Shift_L Shift_L sleep 0.1 key Shift_L Shift_L";
    // Held longer than the keyboard's repeat delay, and longer than Vesko
    // waits for held keys before it lets the modifiers go.
    QTest::newRow("hot key held down") << 0 << "keydown super+alt+c sleep 1 keyup super+alt+c";
}

void CaptureX11Test::capturedOnce()
{
    QFETCH(int, delay);
    QFETCH(QString, keys);
    CaptureSession session;
    const QString text = QStringLiteral("text from the copy target");
    QVERIFY(session.startCopyTarget(text, delay));
    xdotool(words(keys));
    QTRY_COMPARE_WITH_TIMEOUT(session.notes().size(), 1, Test::patience);
    QTest::qWait(1500);
    QCOMPARE(session.notes().size(), 1);
    QCOMPARE(session.notes().first().text, text);
    QCOMPARE(session.notes().first().source->windowTitle, QStringLiteral("Copy Target"));
    QCOMPARE(clipboard(), QStringLiteral("the user's clipboard"));
}

void CaptureX11Test::hotKeyHeldPastTheWait()
{
    CaptureSession session;
    const QString text = QStringLiteral("words after the wait");
    QProcess *target = session.startCopyTarget(text, 0);
    QVERIFY(target);
    // Held on until the capture has given up with its toast.
    xdotool(words(QStringLiteral("keydown super+alt+c")));
    QTRY_VERIFY_WITH_TIMEOUT(toastShown(), Test::patience);
    xdotool(words(QStringLiteral("keyup super+alt+c")));
    QCOMPARE(session.notes().size(), 0);
    // The window got no key at all: no copy mixed with Super and Alt.
    QCOMPARE(QString::fromUtf8(target->readAllStandardOutput()), QString());
    QCOMPARE(clipboard(), QStringLiteral("the user's clipboard"));

    // The next press is heard, and captures.
    xdotool(words(QStringLiteral("key super+alt+c")));
    QTRY_COMPARE_WITH_TIMEOUT(session.notes().size(), 1, Test::patience);
    QCOMPARE(session.notes().first().text, text);
}

void CaptureX11Test::nothingSelected()
{
    CaptureSession session;
    QVERIFY(session.startVesko());
    QVERIFY(!session.startXterm(QStringLiteral("idle"), QStringLiteral("nothing here")).isEmpty());
    // PRIMARY belongs to another program: not the terminal's selection.
    xclip(QStringLiteral("-i -selection primary"), QByteArray("someone else's"));
    tapShiftTwice();
    QTRY_VERIFY_WITH_TIMEOUT(toastShown(), Test::patience);
    QTest::qWait(800);
    QCOMPARE(session.notes().size(), 0);
}

VESKO_TEST_MAIN(CaptureX11Test)
#include "tst_capturex11.moc"
