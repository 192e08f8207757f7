// SPDX-License-Identifier: GPL-3.0-or-later
//
// The vesko program driven by the keyboard alone, from xdotool, in a private
// X server with a window manager: notes added in the composer, walked with
// the arrows, marked done, undone and redone, deleted and merged; a section
// made with Ctrl+Shift+N, chosen with Ctrl+K, jumped to with Ctrl+2; the
// shortcut sheet opened with Ctrl+/; Escape down to the hidden panel. After
// SIGTERM the library file holds what the keys made.

#include "TestEnvironment.h"

#include "ProgramSession.h"

#include <QProcess>
#include <QTest>

#include <csignal>

using namespace Vesko;
using Test::xdotool;

namespace {

QString visiblePanel()
{
    return Test::visibleWindow(QStringLiteral("^Vesko$"));
}

//! Presses \a keys (xdotool names) one after another and lets the panel answer.
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
    xdotool({QStringLiteral("type"), QStringLiteral("--delay"), QStringLiteral("5"), text});
    QTest::qWait(100);
}

} // namespace

class KeySessionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keysOnly();
};

void KeySessionTest::keysOnly()
{
    Test::ProgramSession session;
    QProcess *vesko = session.start(QStringLiteral(VESKO_PATH));
    QTRY_VERIFY_WITH_TIMEOUT(!visiblePanel().isEmpty(), Test::patience);
    const QString panel = visiblePanel();
    QTRY_COMPARE_WITH_TIMEOUT(xdotool({QStringLiteral("getactivewindow")}), panel, Test::patience);

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
    type("Later");
    keys({"Return"}, 300);
    keys({"ctrl+k"}, 400);
    type("inb");
    keys({"Return"}, 300);
    keys({"ctrl+2"});

    // The sheet, and Escape down the ladder until the panel goes.
    keys({"ctrl+slash"}, 400);
    QVERIFY(!visiblePanel().isEmpty());
    for (int i = 0; i < 4 && !visiblePanel().isEmpty(); ++i)
        keys({"Escape"}, 400);
    QTRY_VERIFY_WITH_TIMEOUT(visiblePanel().isEmpty(), Test::patience);
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

VESKO_TEST_MAIN(KeySessionTest)
#include "tst_keysession.moc"
