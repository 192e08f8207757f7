// SPDX-License-Identifier: GPL-3.0-or-later
//
// Note windows, the tray's menu and the keyboard of the running program, in
// a private X server with a window manager and an XEmbed tray (trayer). After
// a run driven by keys alone the library file holds what the keys made.

#include "TestEnvironment.h"

#include "ProgramSession.h"
#include "StoreFixture.h"

#include "library/LibraryCoding.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <csignal>

using namespace Vesko;

namespace {

using Test::xdotool;

// The panel's preset place on the 1280 × 800 screen of tests/x-session.sh,
// and a point on the first note row under the first section's header.
const QRect panelFrame(916, 120, 340, 560);
const QPoint firstRow(1086, 215);

struct Session : Test::ProgramSession
{
    //! Writes \a texts as the open notes of section "Inbox", in order.
    void writeLibrary(const QStringList &texts)
    {
        Library library;
        Project project = Test::describedProject(QStringLiteral("*Inbox:"));
        for (qsizetype i = 0; i < texts.size(); ++i) {
            Note note;
            note.id = Test::idFor(QString::number(i));
            note.text = texts.at(i);
            note.createdAt = note.updatedAt = QDateTime::fromSecsSinceEpoch(100, Qt::UTC);
            project.sections[0].notes.append(note);
        }
        library.projects.append(project);
        library.activeProjectID = project.id;
        QDir().mkpath(libraryFolder());
        QFile file(libraryPath());
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(encodeLibrary(library));
    }

    using ProgramSession::start;
    QProcess *start() { return ProgramSession::start(QStringLiteral(VESKO_PATH)); }

    QList<Note> notes() const { return Test::allNotes(Test::readLibraryFile(libraryPath())); }
};

QStringList visibleWindows(qint64 pid)
{
    const QString found = xdotool({QStringLiteral("search"), QStringLiteral("--onlyvisible"),
        QStringLiteral("--pid"), QString::number(pid)});
    return found.isEmpty() ? QStringList() : found.split(u'\n');
}

//! A visible window of \a pid that is not among \a known (a menu that opened).
QString newWindow(qint64 pid, const QStringList &known)
{
    for (const QString &window : visibleWindows(pid)) {
        if (!known.contains(window))
            return window;
    }
    return {};
}

QRect windowFrame(const QString &window)
{
    // "X=…\nY=…\nWIDTH=…\nHEIGHT=…" in the shell's form.
    QRect frame;
    const QString shell
        = xdotool({QStringLiteral("getwindowgeometry"), QStringLiteral("--shell"), window});
    for (const QString &line : shell.split(u'\n')) {
        const int value = line.section(u'=', 1).toInt();
        if (line.startsWith(QLatin1String("X=")))
            frame.moveLeft(value);
        else if (line.startsWith(QLatin1String("Y=")))
            frame.moveTop(value);
        else if (line.startsWith(QLatin1String("WIDTH=")))
            frame.setWidth(value);
        else if (line.startsWith(QLatin1String("HEIGHT=")))
            frame.setHeight(value);
    }
    return frame;
}

//! The visible window of \a pid whose frame passes \a accepts, or empty.
QString windowWhere(qint64 pid, const std::function<bool(const QRect &)> &accepts)
{
    for (const QString &window : visibleWindows(pid)) {
        if (accepts(windowFrame(window)))
            return window;
    }
    return {};
}

QString panelWindow(qint64 pid)
{
    return windowWhere(pid, [](const QRect &frame) { return frame == panelFrame; });
}

QString activeWindow()
{
    return xdotool({QStringLiteral("getactivewindow")});
}

//! Gives \a window the keyboard through the window manager; true once it has it.
bool activate(const QString &window)
{
    xdotool({QStringLiteral("windowactivate"), QStringLiteral("--sync"), window});
    return QTest::qWaitFor([&window] { return activeWindow() == window; }, Test::patience);
}

//! Presses \a key (an xdotool name) and waits for a window of \a pid to
//! appear that was not there before; returns it, or empty.
QString keyOpensWindow(qint64 pid, const QString &key)
{
    const QStringList before = visibleWindows(pid);
    xdotool({QStringLiteral("key"), key});
    QString opened;
    (void)QTest::qWaitFor([&] { return !(opened = newWindow(pid, before)).isEmpty(); }, 5000);
    return opened;
}

//! The windows named exactly \a title.
QStringList windowsNamed(const QString &title)
{
    const QString found = xdotool({QStringLiteral("search"), QStringLiteral("--onlyvisible"),
        QStringLiteral("--name"), u'^' + QRegularExpression::escape(title) + u'$'});
    return found.isEmpty() ? QStringList() : found.split(u'\n');
}

//! Presses \a names (xdotool keys) one after another and lets the panel answer.
void keys(const QStringList &names, int settleMilliseconds = 150)
{
    for (const QString &name : names) {
        xdotool({QStringLiteral("key"), name});
        QTest::qWait(40);
    }
    QTest::qWait(settleMilliseconds);
}

void type(const QString &text)
{
    xdotool({QStringLiteral("type"), QStringLiteral("--delay"), QStringLiteral("10"), text});
    QTest::qWait(100);
}

//! Opens the menu of \a pid at \a at with the right button and chooses its
//! entry \a downs presses down. A click that comes while the last menu still
//! holds the pointer is lost; the user would click again, and so does this.
void chooseFromMenu(qint64 pid, const QPoint &at, int downs)
{
    const QStringList before = visibleWindows(pid);
    QString menu;
    for (int attempt = 0; attempt < 3 && menu.isEmpty(); ++attempt) {
        xdotool({QStringLiteral("mousemove"), QString::number(at.x()), QString::number(at.y()),
            QStringLiteral("click"), QStringLiteral("3")});
        (void)QTest::qWaitFor([&] { return !(menu = newWindow(pid, before)).isEmpty(); }, 4000);
    }
    QVERIFY(!menu.isEmpty());
    keys(QStringList(downs, QStringLiteral("Down")) << QStringLiteral("Return"));
    QTRY_VERIFY_WITH_TIMEOUT(!visibleWindows(pid).contains(menu), Test::patience);
}

QByteArray grab(const QRect &area)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("grab.png"));
    QProcess::execute(QStringLiteral(SCREEN_GRAB_PATH),
        {path, QString::number(area.x()), QString::number(area.y()), QString::number(area.width()),
            QString::number(area.height())});
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class NoteWindowAppTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void noteWindowAndTrayMenu();
    void keysOnly();
    void menuKeysAndClosingKeys();
};

void NoteWindowAppTest::initTestCase()
{
    if (qEnvironmentVariableIsEmpty("DISPLAY"))
        QSKIP("Needs an X server: run through tests/x-session.sh");
}

//! A note window opened from a row's menu edits the note; the tray's menu
//! ticks a note off and hides and shows the panel.
void NoteWindowAppTest::noteWindowAndTrayMenu()
{
    Session session;
    // trayer takes the icons of the session's applications, as a panel's tray does.
    QProcess *tray = session.start(QStringLiteral("trayer"),
        {QStringLiteral("--edge"), QStringLiteral("top"), QStringLiteral("--align"),
            QStringLiteral("right"), QStringLiteral("--widthtype"), QStringLiteral("pixel"),
            QStringLiteral("--width"), QStringLiteral("100"), QStringLiteral("--heighttype"),
            QStringLiteral("pixel"), QStringLiteral("--height"), QStringLiteral("24")});
    QTRY_VERIFY_WITH_TIMEOUT(!xdotool({QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                                          QStringLiteral("--class"), QStringLiteral("trayer")})
                                  .isEmpty(),
        Test::patience);
    session.writeLibrary({QStringLiteral("Plan the **release** notes"), QStringLiteral("second")});
    QProcess *vesko = session.start();
    QTRY_VERIFY_WITH_TIMEOUT(!panelWindow(vesko->processId()).isEmpty(), Test::patience);
    QTRY_COMPARE_WITH_TIMEOUT(activeWindow(), panelWindow(vesko->processId()), Test::patience);

    // The row's menu: Copy, Copy as List, Mark as Done, Edit, Edit in New Window.
    chooseFromMenu(vesko->processId(), firstRow, 5);
    const QString title = QStringLiteral("Plan the release notes");
    QTRY_COMPARE_WITH_TIMEOUT(windowsNamed(title).size(), 1, Test::patience);
    const QString window = windowsNamed(title).first();
    QTRY_COMPARE_WITH_TIMEOUT(activeWindow(), window, Test::patience);
    QCOMPARE(windowFrame(window).size(), QSize(460, 380));
    const QByteArray panelBefore = grab(panelFrame);
    type(QStringLiteral(" for Friday"));
    // The panel's row shows the new words as they are typed.
    QTRY_VERIFY_WITH_TIMEOUT(grab(panelFrame) != panelBefore, Test::patience);
    // The file follows after the save delay.
    QTRY_COMPARE_WITH_TIMEOUT(session.notes().value(0).text,
        QStringLiteral("Plan the **release** notes for Friday"), Test::patience);
    QCOMPARE(session.notes().value(1).text, QStringLiteral("second"));

    auto isIcon = [](const QRect &frame) { return frame.width() <= 48 && frame.height() <= 48; };
    QTRY_VERIFY_WITH_TIMEOUT(!windowWhere(vesko->processId(), isIcon).isEmpty(), Test::patience);
    const QRect icon = windowFrame(windowWhere(vesko->processId(), isIcon));
    const auto chooseEntry
        = [&](int downs) { chooseFromMenu(vesko->processId(), icon.center(), downs); };
    // Hide or Show, Capture Selection, Add a Note, then the open notes: the
    // fourth entry is the first note, and choosing it ticks it off.
    chooseEntry(4);
    QTRY_VERIFY_WITH_TIMEOUT(session.notes().value(0).isDone, Test::patience);
    QCOMPARE(session.notes().value(1).isDone, false);
    // The first entry hides the panel it names, and then shows it again.
    chooseEntry(1);
    QTRY_VERIFY_WITH_TIMEOUT(panelWindow(vesko->processId()).isEmpty(), Test::patience);
    chooseEntry(1);
    QTRY_VERIFY_WITH_TIMEOUT(!panelWindow(vesko->processId()).isEmpty(), Test::patience);

    vesko->terminate();
    QVERIFY(vesko->waitForFinished(Test::patience));
    tray->terminate();
}

//! Notes added, walked, marked, undone, deleted and merged, sections made,
//! chosen and jumped to, all from the keyboard; Escape down to the hidden panel.
void NoteWindowAppTest::keysOnly()
{
    Session session;
    QProcess *vesko = session.start();
    QTRY_VERIFY_WITH_TIMEOUT(!panelWindow(vesko->processId()).isEmpty(), Test::patience);
    QTRY_COMPARE_WITH_TIMEOUT(activeWindow(), panelWindow(vesko->processId()), Test::patience);

    // Four notes from the composer, which has the keyboard at once.
    for (const char *text : {"alpha", "bravo", "charlie", "delta"}) {
        type(QString::fromLatin1(text));
        keys({"Return"});
    }
    // Escape in the empty composer hands the keyboard to the list.
    keys({"Escape"});
    // bravo: done, undone, done again.
    keys({"Home", "Down", "space", "ctrl+z", "ctrl+shift+z"});
    // charlie goes.
    keys({"Home", "Down", "Down", "ctrl+BackSpace"});
    // bravo and delta become one note.
    keys({"End", "shift+Up", "ctrl+shift+m"});

    // A new section, then back to the first with the switcher, then a jump.
    keys({"ctrl+shift+n"}, 400);
    type(QStringLiteral("Later"));
    keys({"Return"}, 300);
    keys({"ctrl+k"}, 400);
    type(QStringLiteral("inb"));
    keys({"Return"}, 300);
    keys({"ctrl+2"});

    // The sheet, and Escape down the ladder until the panel goes.
    keys({"ctrl+slash"}, 400);
    QVERIFY(!panelWindow(vesko->processId()).isEmpty());
    for (int i = 0; i < 4 && !panelWindow(vesko->processId()).isEmpty(); ++i)
        keys({"Escape"}, 400);
    QTRY_VERIFY_WITH_TIMEOUT(panelWindow(vesko->processId()).isEmpty(), Test::patience);
    QCOMPARE(vesko->state(), QProcess::Running);

    ::kill(pid_t(vesko->processId()), SIGTERM);
    QVERIFY(vesko->waitForFinished(Test::patience));
    QCOMPARE(vesko->exitCode(), 0);
    const Library library = Test::readLibraryFile(session.libraryPath());
    QCOMPARE(library.projects.size(), qsizetype(1));
    const Project &project = library.projects.first();
    QStringList titles;
    for (const NoteSection &section : project.sections)
        titles.append(section.title);
    QCOMPARE(titles, (QStringList {"Inbox", "Later"}));
    QCOMPARE(project.activeSectionID.value_or(QUuid()), project.sections.at(1).id);
    const NoteList &notes = project.sections.at(0).notes;
    QCOMPARE(notes.size(), qsizetype(2));
    QCOMPARE(notes.at(0).text, QStringLiteral("alpha"));
    QVERIFY(!notes.at(0).isDone);
    // The merged note keeps both texts, bravo's first.
    const QString merged = notes.at(1).text;
    QVERIFY2(merged.indexOf("bravo") >= 0 && merged.indexOf("delta") > merged.indexOf("bravo"),
        qPrintable(merged));
    QVERIFY(project.sections.at(1).notes.isEmpty());
}

//! One program driven by keys alone: the menu keys, the keys that close
//! windows, an edit in place saved when the panel comes back, and quitting.
void NoteWindowAppTest::menuKeysAndClosingKeys()
{
    Session session;
    session.writeLibrary({QStringLiteral("alpha"), QStringLiteral("bravo")});
    QProcess *vesko = session.start();
    QTRY_VERIFY_WITH_TIMEOUT(!panelWindow(vesko->processId()).isEmpty(), Test::patience);
    const QString panel = panelWindow(vesko->processId());
    QTRY_COMPARE_WITH_TIMEOUT(activeWindow(), panel, Test::patience);
    keys({"Escape"});

    // Copy, Copy as List, then "Mark as Done": the third entry of a row's menu.
    const struct
    {
        const char *key;
        int row;
    } presses[] = {{"Menu", 0}, {"shift+F10", 1}};
    for (const auto &press : presses) {
        keys(QStringList {QStringLiteral("Home")} + QStringList(press.row, QStringLiteral("Down")),
            350);
        const QString menu = keyOpensWindow(vesko->processId(), QString::fromLatin1(press.key));
        QVERIFY2(!menu.isEmpty(), press.key);
        keys({"Down", "Down", "Down", "Return"});
        QTRY_VERIFY_WITH_TIMEOUT(
            !visibleWindows(vesko->processId()).contains(menu), Test::patience);
        QTRY_VERIFY2_WITH_TIMEOUT(
            session.notes().value(press.row).isDone, press.key, Test::patience);
    }
    // In the composer, Shift+F10 opens the text's own menu, as the Menu key does.
    keys({"ctrl+n"}, 350);
    const QString textMenu = keyOpensWindow(vesko->processId(), QStringLiteral("shift+F10"));
    QVERIFY(!textMenu.isEmpty());
    keys({"Escape"});
    QTRY_VERIFY_WITH_TIMEOUT(
        !visibleWindows(vesko->processId()).contains(textMenu), Test::patience);
    // Escape in the empty composer hands the keyboard to the list.
    keys({"Escape", "Home"});

    // A note window closes with Ctrl+W, and with Escape; the panel stays.
    for (const char *close : {"ctrl+w", "Escape"}) {
        QVERIFY(activate(panel));
        keys({"ctrl+Return"});
        QTRY_COMPARE_WITH_TIMEOUT(windowsNamed(QStringLiteral("alpha")).size(), 1, Test::patience);
        const QString window = windowsNamed(QStringLiteral("alpha")).first();
        QTRY_COMPARE_WITH_TIMEOUT(activeWindow(), window, Test::patience);
        keys({QString::fromLatin1(close)});
        QTRY_VERIFY2_WITH_TIMEOUT(
            windowsNamed(QStringLiteral("alpha")).isEmpty(), close, Test::patience);
        QTest::qWait(300);
        QCOMPARE(panelWindow(vesko->processId()), panel);
    }

    // Settings: closed from its title bar (the window manager's close, as
    // Alt+F4 asks for it), it opens again; Escape and Ctrl+W close it too.
    const QString settingsTitle = QStringLiteral("Vesko Settings");
    for (const char *close : {"alt+F4", "Escape", "ctrl+w"}) {
        QVERIFY(activate(panel));
        keys({"ctrl+comma"});
        QTRY_VERIFY2_WITH_TIMEOUT(windowsNamed(settingsTitle).size() == 1, close, Test::patience);
        const QString settings = windowsNamed(settingsTitle).first();
        QTRY_COMPARE_WITH_TIMEOUT(activeWindow(), settings, Test::patience);
        keys({QString::fromLatin1(close)});
        QTRY_VERIFY2_WITH_TIMEOUT(windowsNamed(settingsTitle).isEmpty(), close, Test::patience);
    }

    // An edit in place left open while another window has the keyboard ends,
    // saved, when starting vesko again brings the panel forward.
    QVERIFY(activate(panel));
    keys({"Home", "Return"}, 450);
    type(QStringLiteral(" charlie"));
    QProcess *other = session.start(QStringLiteral(COPY_TARGET_PATH), {QStringLiteral("x")});
    QTRY_COMPARE_WITH_TIMEOUT(
        windowsNamed(QStringLiteral("Copy Target")).size(), 1, Test::patience);
    QVERIFY(activate(windowsNamed(QStringLiteral("Copy Target")).first()));
    QProcess *again = session.start();
    QVERIFY(again->waitForFinished(Test::patience));
    QTRY_COMPARE_WITH_TIMEOUT(activeWindow(), panel, Test::patience);
    QTRY_COMPARE_WITH_TIMEOUT(
        session.notes().value(0).text, QStringLiteral("alpha charlie"), Test::patience);
    other->terminate();

    // Ctrl+Q in the panel quits, as its menu entry says.
    keys({"ctrl+q"});
    QTRY_COMPARE_WITH_TIMEOUT(vesko->state(), QProcess::NotRunning, Test::patience);
    QCOMPARE(vesko->exitStatus(), QProcess::NormalExit);
    QCOMPARE(vesko->exitCode(), 0);
}

VESKO_TEST_MAIN(NoteWindowAppTest)
#include "tst_notewindowapp.moc"
