// SPDX-License-Identifier: GPL-3.0-or-later
//
// Capture from the outside, on a real X server with a window manager: text
// selected in an xterm becomes a note labelled with the xterm and its title
// after two Shift taps or the capture hot key; a window that answers Ctrl+C
// slowly is read through the clipboard, which is put back afterwards, and a
// second gesture during that capture adds nothing; the capture hot key held
// down through the keyboard's repeats captures once, into a window that
// only answers a clean copy; held on after Vesko has stopped waiting for it,
// it gets no copy mixed with the held keys, and its next press captures;
// with nothing selected there is a toast and no note.

#include "TestEnvironment.h"

#include "ProgramSession.h"

#include <QProcess>

using namespace Vesko;
using Test::xdotool;

namespace {

QString xclip(const QStringList &arguments, const QByteArray &input = {})
{
    QProcess process;
    process.start(QStringLiteral("xclip"), arguments);
    if (!input.isNull()) {
        process.write(input);
        process.closeWriteChannel();
    }
    // xclip -i stays in the background to serve the selection; its parent returns.
    process.waitForFinished(Test::patience);
    return QString::fromUtf8(process.readAllStandardOutput());
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

    //! An xterm titled \a title showing \a line; returns its window id.
    QString startXterm(const QString &title, const QString &line)
    {
        start(QStringLiteral("xterm"),
            {QStringLiteral("-T"), title, QStringLiteral("-geometry"), QStringLiteral("80x8+20+20"),
                QStringLiteral("-e"), QStringLiteral("sh"), QStringLiteral("-c"),
                QStringLiteral("printf '%s\\n' '%1'; sleep 600").arg(line)});
        QString window;
        (void)QTest::qWaitFor(
            [&] {
                window = Test::visibleWindow(QLatin1Char('^') + title + QLatin1Char('$'));
                return !window.isEmpty();
            },
            10000);
        return window;
    }

    QList<Note> notes() const { return Test::allNotes(Test::readLibraryFile(libraryPath())); }
};

//! Activates \a window and selects its first line with a triple click.
void selectFirstLine(const QString &window)
{
    xdotool({QStringLiteral("windowactivate"), QStringLiteral("--sync"), window});
    xdotool({QStringLiteral("mousemove"), QStringLiteral("--window"), window, QStringLiteral("30"),
        QStringLiteral("6"), QStringLiteral("click"), QStringLiteral("--repeat"),
        QStringLiteral("3"), QStringLiteral("--delay"), QStringLiteral("80"), QStringLiteral("1")});
}

void tapShiftTwice()
{
    xdotool({QStringLiteral("key"), QStringLiteral("Shift_L"), QStringLiteral("Shift_L")});
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
    void slowCopyThroughTheClipboard();
    void hotKeyHeldDown();
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
    QTest::newRow("double Shift") << "shift";
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
    selectFirstLine(xterm);
    QTRY_COMPARE_WITH_TIMEOUT(
        xclip({QStringLiteral("-o"), QStringLiteral("-selection"), QStringLiteral("primary")})
            .trimmed(),
        line, Test::patience);

    if (trigger == u"shift")
        tapShiftTwice();
    else
        xdotool({QStringLiteral("key"), trigger});
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

void CaptureX11Test::slowCopyThroughTheClipboard()
{
    CaptureSession session;
    QVERIFY(session.startVesko());
    xclip({QStringLiteral("-i"), QStringLiteral("-selection"), QStringLiteral("clipboard")},
        QByteArray("the user's clipboard"));
    const QString text = QStringLiteral("text from the copy target");
    session.start(QStringLiteral(COPY_TARGET_PATH), {text, QStringLiteral("300")});
    QString window;
    QTRY_VERIFY_WITH_TIMEOUT(
        !(window = Test::visibleWindow(QStringLiteral("^Copy Target$"))).isEmpty(), Test::patience);
    xdotool({QStringLiteral("windowactivate"), QStringLiteral("--sync"), window});

    tapShiftTwice();
    QTest::qWait(100);
    tapShiftTwice(); // during the capture: dropped
    QTRY_COMPARE_WITH_TIMEOUT(session.notes().size(), 1, Test::patience);
    QTest::qWait(1500);
    QCOMPARE(session.notes().size(), 1);
    QCOMPARE(session.notes().first().text, text);
    QCOMPARE(session.notes().first().source->windowTitle, QStringLiteral("Copy Target"));
    // The clipboard is the user's again.
    QCOMPARE(
        xclip({QStringLiteral("-o"), QStringLiteral("-selection"), QStringLiteral("clipboard")}),
        QStringLiteral("the user's clipboard"));
}

void CaptureX11Test::hotKeyHeldDown()
{
    CaptureSession session;
    QVERIFY(session.startVesko());
    xclip({QStringLiteral("-i"), QStringLiteral("-selection"), QStringLiteral("clipboard")},
        QByteArray("the user's clipboard"));
    const QString text = QStringLiteral("held words");
    session.start(QStringLiteral(COPY_TARGET_PATH), {text, QStringLiteral("0")});
    QString window;
    QTRY_VERIFY_WITH_TIMEOUT(
        !(window = Test::visibleWindow(QStringLiteral("^Copy Target$"))).isEmpty(), Test::patience);
    xdotool({QStringLiteral("windowactivate"), QStringLiteral("--sync"), window});

    // Held longer than the keyboard's repeat delay, and longer than Vesko
    // waits for held keys before it lets the modifiers go.
    xdotool({QStringLiteral("keydown"), QStringLiteral("super+alt+c"), QStringLiteral("sleep"),
        QStringLiteral("1"), QStringLiteral("keyup"), QStringLiteral("super+alt+c")});
    QTRY_COMPARE_WITH_TIMEOUT(session.notes().size(), 1, Test::patience);
    QTest::qWait(1500);
    QCOMPARE(session.notes().size(), 1);
    QCOMPARE(session.notes().first().text, text);
    QCOMPARE(
        xclip({QStringLiteral("-o"), QStringLiteral("-selection"), QStringLiteral("clipboard")}),
        QStringLiteral("the user's clipboard"));
}

void CaptureX11Test::hotKeyHeldPastTheWait()
{
    CaptureSession session;
    QVERIFY(session.startVesko());
    xclip({QStringLiteral("-i"), QStringLiteral("-selection"), QStringLiteral("clipboard")},
        QByteArray("the user's clipboard"));
    const QString text = QStringLiteral("words after the wait");
    QProcess *target = session.start(QStringLiteral(COPY_TARGET_PATH), {text, QStringLiteral("0")});
    QString window;
    QTRY_VERIFY_WITH_TIMEOUT(
        !(window = Test::visibleWindow(QStringLiteral("^Copy Target$"))).isEmpty(), Test::patience);
    xdotool({QStringLiteral("windowactivate"), QStringLiteral("--sync"), window});

    // Held on until the capture has given up with its toast.
    xdotool({QStringLiteral("keydown"), QStringLiteral("super+alt+c")});
    QTRY_VERIFY_WITH_TIMEOUT(toastShown(), Test::patience);
    xdotool({QStringLiteral("keyup"), QStringLiteral("super+alt+c")});
    QCOMPARE(session.notes().size(), 0);
    // The window got no key at all: no copy mixed with Super and Alt.
    QCOMPARE(QString::fromUtf8(target->readAllStandardOutput()), QString());
    QCOMPARE(
        xclip({QStringLiteral("-o"), QStringLiteral("-selection"), QStringLiteral("clipboard")}),
        QStringLiteral("the user's clipboard"));

    // The next press is heard, and captures.
    xdotool({QStringLiteral("key"), QStringLiteral("super+alt+c")});
    QTRY_COMPARE_WITH_TIMEOUT(session.notes().size(), 1, Test::patience);
    QCOMPARE(session.notes().first().text, text);
}

void CaptureX11Test::nothingSelected()
{
    CaptureSession session;
    QVERIFY(session.startVesko());
    const QString xterm
        = session.startXterm(QStringLiteral("idle"), QStringLiteral("nothing here"));
    QVERIFY(!xterm.isEmpty());
    // PRIMARY belongs to another program: not the terminal's selection.
    xclip({QStringLiteral("-i"), QStringLiteral("-selection"), QStringLiteral("primary")},
        QByteArray("someone else's"));
    xdotool({QStringLiteral("windowactivate"), QStringLiteral("--sync"), xterm});
    tapShiftTwice();
    QTRY_VERIFY_WITH_TIMEOUT(toastShown(), Test::patience);
    QTest::qWait(800);
    QCOMPARE(session.notes().size(), 0);
}

VESKO_TEST_MAIN(CaptureX11Test)
#include "tst_capturex11.moc"
