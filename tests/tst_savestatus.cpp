// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the user sees while the library cannot be saved, with a save that
// really fails (the data folder's place is taken by a file): the line at the
// foot of the panel, the tray icon's tool tip and the question before quitting,
// from the tray and from the panel's own menu alike; and the line that tells
// of a library file that could not be read.

#include "MenuText.h"
#include "StoreFixture.h"
#include "TestEnvironment.h"
#include "WidgetTestMain.h"

#include "panel/window/PanelCommands.h"
#include "panel/window/PanelController.h"
#include "panel/window/PanelMenus.h"
#include "panel/window/PanelState.h"
#include "panel/window/SaveStatusView.h"
#include "panel/window/UnreadableLibraryView.h"
#include "shell/Preferences.h"
#include "shell/QuitGuard.h"
#include "shell/TrayIcon.h"
#include "store/Store.h"

#include <QApplication>
#include <QDir>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>

using namespace Vesko;

namespace {

QPushButton *buttonTitled(QMessageBox *box, const QString &title)
{
    for (QAbstractButton *button : box->buttons()) {
        if (button->text() == title)
            return qobject_cast<QPushButton *>(button);
    }
    return nullptr;
}

//! Chooses "Quit Vesko" in the panel's overflow menu, as the user does.
void quitFromThePanel(Store &store, Preferences &preferences)
{
    PanelState state;
    QMenu menu;
    fillOverflowMenu(menu, store, state, preferences);
    QAction *quit = Test::menuEntry(menu, QStringLiteral("Quit Vesko"));
    QVERIFY2(quit, "no Quit Vesko in the panel's menu");
    QCOMPARE(quit->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_Q));
    quit->trigger();
}

} // namespace

class SaveStatusTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void failedSaveIsShownAndAskedAboutAtQuit();
    void unreadableLibraryLine_data();
    void unreadableLibraryLine();

private:
    // Edits the note; the save follows 0.35 seconds later.
    void edit(const QString &text) { m_store->updateNote(m_noteID, text); }
    void blockSaves(bool blocked);

    std::unique_ptr<Test::StoreFixture> m_fixture;
    Store *m_store = nullptr;
    Preferences *m_preferences = nullptr;
    const QUuid m_noteID = Test::idFor(QStringLiteral("a"));
};

void SaveStatusTest::init()
{
    blockSaves(false);
    m_fixture = std::make_unique<Test::StoreFixture>();
    m_store = &m_fixture->make({QStringLiteral("*Inbox:a")});
    m_preferences = &m_fixture->preferences();
}

void SaveStatusTest::cleanup()
{
    m_fixture.reset();
    blockSaves(false);
}

void SaveStatusTest::blockSaves(bool blocked)
{
    const QString data = Test::IsolatedEnvironment::current().dataHome();
    const QString folder = data + QStringLiteral("/Vesko");
    QDir(folder).removeRecursively();
    QFile::remove(folder);
    if (blocked) {
        QDir().mkpath(data);
        QFile blocker(folder);
        QVERIFY(blocker.open(QIODevice::WriteOnly));
    }
}

void SaveStatusTest::failedSaveIsShownAndAskedAboutAtQuit()
{
    PanelState state;
    PanelController panel(*m_store, state, *m_preferences);
    TrayIcon tray(*m_store, panel, *m_preferences);
    SaveStatusView line(*m_store);
    line.resize(200, 20);
    QuitGuard guard(*m_store);
    guard.serve(PanelCommands::shared());
    QSignalSpy accepted(&guard, &QuitGuard::quitAccepted);
    QVERIFY(line.isHidden());
    // The tray says how many notes are open, and nothing about saving.
    QVERIFY2(!tray.toolTip().contains(u'\n'), qPrintable(tray.toolTip()));
    guard.requestQuit(); // all saved: no question
    QCOMPARE(accepted.size(), 1);
    QVERIFY(!guard.question());

    blockSaves(true);
    QTest::ignoreMessage(QtCriticalMsg, QRegularExpression(QStringLiteral("^Save failed: ")));
    edit(QStringLiteral("second"));
    QTRY_VERIFY_WITH_TIMEOUT(!line.isHidden(), Test::patience);
    QVERIFY2(line.statusText().startsWith(QStringLiteral("Not saved: “"))
            && line.statusText().endsWith(QStringLiteral("” exists and is not a folder.")),
        qPrintable(line.statusText()));
    QCOMPARE(m_store->note(m_noteID)->text, QStringLiteral("second")); // kept in memory
    // Its second line is the panel's.
    QCOMPARE(tray.toolTip().section(u'\n', 1), line.statusText());
    QCOMPARE(line.toolTip(), line.statusText());
    // Cut to the width in the middle, keeping what it is and why; the whole
    // text in the tool tip.
    QVERIFY(line.text().size() < line.statusText().size());
    QVERIFY(line.text().contains(QChar(0x2026)));
    QVERIFY2(line.text().startsWith(QStringLiteral("Not saved: "))
            && line.text().endsWith(QStringLiteral("folder.")),
        qPrintable(line.text()));

    for (const QString &answer : {QStringLiteral("Cancel"), QStringLiteral("Quit Anyway")}) {
        guard.requestQuit();
        QMessageBox *question = guard.question();
        QVERIFY(question);
        QTRY_VERIFY_WITH_TIMEOUT(question->isVisible(), Test::patience);
        QCOMPARE(question->text(), QStringLiteral("Your latest changes could not be saved."));
        QCOMPARE(question->buttons().size(), 2);
        QPushButton *button = buttonTitled(question, answer);
        QVERIFY2(button, qPrintable(answer));
        button->click();
        QTRY_VERIFY_WITH_TIMEOUT(!guard.question(), Test::patience);
    }
    QCOMPARE(accepted.size(), 2); // Cancel kept the program; Quit Anyway ended it

    // Asked from the panel's menu, the question stays until the disk takes
    // the retry: then it goes, and the quit that was asked for goes ahead.
    quitFromThePanel(*m_store, *m_preferences);
    QTRY_VERIFY_WITH_TIMEOUT(guard.question() && guard.question()->isVisible(), Test::patience);
    QCOMPARE(accepted.size(), 2);
    blockSaves(false);
    QTRY_VERIFY_WITH_TIMEOUT(m_store->saveFailure().isEmpty(), Test::patience);
    QTRY_VERIFY_WITH_TIMEOUT(!guard.question(), Test::patience);
    QCOMPARE(accepted.size(), 3);
    // Saved: the line goes, and the next quit asks nothing.
    QTRY_VERIFY_WITH_TIMEOUT(line.isHidden(), Test::patience);
    QCOMPARE(line.statusText(), QString());
    QVERIFY2(!tray.toolTip().contains(u'\n'), qPrintable(tray.toolTip()));
    quitFromThePanel(*m_store, *m_preferences);
    QTRY_COMPARE_WITH_TIMEOUT(accepted.size(), 4, Test::patience);
    QVERIFY(!guard.question());
}

void SaveStatusTest::unreadableLibraryLine_data()
{
    QTest::addColumn<bool>("isSetAside");
    QTest::addColumn<QStringList>("backups");
    QTest::addColumn<QString>("message");
    const QString folder = QStringLiteral("/notes/Vesko");
    QTest::newRow("set aside, with backups")
        << true << QStringList {folder + QStringLiteral("/Library Backups/a.json")}
        << QStringLiteral("Your notes file could not be read. It was set aside as "
                          "“Library-unreadable-2026-03-14T09-26-53Z.json”.");
    QTest::newRow("left in place, without backups")
        << false << QStringList() << QStringLiteral("Your notes file could not be read.");
}

void SaveStatusTest::unreadableLibraryLine()
{
    QFETCH(bool, isSetAside);
    QFETCH(QStringList, backups);
    QFETCH(QString, message);
    QStringList shown;
    UnreadableLibraryView line(*m_store, [&shown](const QString &path) { shown.append(path); });
    QVERIFY(line.isHidden());

    UnreadableLibrary unreadable;
    unreadable.path = isSetAside
        ? QStringLiteral("/notes/Vesko/Library-unreadable-2026-03-14T09-26-53Z.json")
        : QStringLiteral("/notes/Vesko/Library.json");
    unreadable.isSetAside = isSetAside;
    unreadable.reason = QStringLiteral("illegal value");
    unreadable.backups = backups;
    m_store->setUnreadableLibrary(unreadable);
    QVERIFY(!line.isHidden());
    QCOMPARE(line.message(), message);
    // A restore needs a backup to restore.
    QCOMPARE(line.restoreButton()->isEnabled(), !backups.isEmpty());

    line.showInFilesButton()->click();
    QCOMPARE(shown, QStringList {unreadable.path});
    // Dismissed, the line goes and the library stays as it is.
    const quint64 revision = m_store->libraryRevision();
    line.dismissButton()->click();
    QVERIFY(line.isHidden());
    QVERIFY(!m_store->unreadableLibrary());
    QCOMPARE(m_store->libraryRevision(), revision);
}

VESKO_WIDGET_TEST_MAIN(SaveStatusTest)
#include "tst_savestatus.moc"
