// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the user sees while the library cannot be saved, with a save that
// really fails (the data folder's place is taken by a file): the line at the
// foot of the panel, the tray icon's tool tip and the question before quitting.

#include "TestEnvironment.h"

#include "attachments/AttachmentStore.h"
#include "library/LibraryWriter.h"
#include "panel/PanelController.h"
#include "panel/PanelState.h"
#include "panel/SaveStatusView.h"
#include "search/SearchIndex.h"
#include "shell/Preferences.h"
#include "shell/QuitGuard.h"
#include "shell/TrayIcon.h"
#include "store/Store.h"

#include <QApplication>
#include <QDir>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>

using namespace Vesko;

namespace {

Library libraryWithOneNote()
{
    Library library = makeDefaultLibrary();
    Note note;
    note.id = makeID();
    note.text = QStringLiteral("first");
    library.projects[0].sections[0].notes.append(note);
    return library;
}

QPushButton *buttonTitled(QMessageBox *box, const QString &title)
{
    for (QAbstractButton *button : box->buttons()) {
        if (button->text() == title)
            return qobject_cast<QPushButton *>(button);
    }
    return nullptr;
}

} // namespace

class SaveStatusTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void panelLineAndTrayFollowTheSaves();
    void quitAsksWhileTheLastSaveFailed();

private:
    // Edits the note; the save follows 0.35 seconds later.
    void edit(const QString &text) { m_store->updateNote(m_noteID, text); }
    void blockSaves(bool blocked);

    std::unique_ptr<Preferences> m_preferences;
    std::unique_ptr<LibraryWriter> m_writer;
    std::unique_ptr<AttachmentStore> m_attachments;
    std::unique_ptr<SearchIndex> m_searchIndex;
    std::unique_ptr<Store> m_store;
    QUuid m_noteID;
};

void SaveStatusTest::init()
{
    Preferences::openSettings()->clear();
    blockSaves(false);
    m_preferences = std::make_unique<Preferences>();
    m_writer = std::make_unique<LibraryWriter>();
    m_attachments = std::make_unique<AttachmentStore>();
    m_searchIndex = std::make_unique<SearchIndex>();
    const Library library = libraryWithOneNote();
    m_noteID = library.projects[0].sections[0].notes[0].id;
    m_store = std::make_unique<Store>(
        library, Store::Services {*m_preferences, *m_writer, *m_attachments, *m_searchIndex});
}

void SaveStatusTest::cleanup()
{
    m_store.reset();
    m_writer.reset();
    m_searchIndex.reset();
    m_attachments.reset();
    m_preferences.reset();
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

void SaveStatusTest::panelLineAndTrayFollowTheSaves()
{
    PanelState state;
    PanelController panel(*m_store, state, *m_preferences);
    TrayIcon tray(*m_store, panel, *m_preferences);
    SaveStatusView line(*m_store);
    line.resize(200, 20);
    QVERIFY(line.isHidden());
    // The tray says how many notes are open, and nothing about saving.
    QVERIFY2(!tray.toolTip().contains(u'\n'), qPrintable(tray.toolTip()));

    blockSaves(true);
    QTest::ignoreMessage(QtCriticalMsg, QRegularExpression(QStringLiteral("^Save failed: ")));
    edit(QStringLiteral("second"));
    QTRY_VERIFY(!line.isHidden());
    QVERIFY2(line.statusText().startsWith(QStringLiteral("Not saved: “"))
            && line.statusText().endsWith(QStringLiteral("” exists and is not a folder.")),
        qPrintable(line.statusText()));
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

    // The next change is saved: the line goes.
    blockSaves(false);
    edit(QStringLiteral("third"));
    QTRY_VERIFY(line.isHidden());
    QCOMPARE(line.statusText(), QString());
    QVERIFY2(!tray.toolTip().contains(u'\n'), qPrintable(tray.toolTip()));
}

void SaveStatusTest::quitAsksWhileTheLastSaveFailed()
{
    QuitGuard guard(*m_store);
    QSignalSpy accepted(&guard, &QuitGuard::quitAccepted);
    guard.requestQuit(); // all saved: no question
    QCOMPARE(accepted.size(), 1);
    QVERIFY(!guard.question());

    blockSaves(true);
    QTest::ignoreMessage(QtCriticalMsg, QRegularExpression(QStringLiteral("^Save failed: ")));
    edit(QStringLiteral("unsaved"));
    QTRY_VERIFY(!m_store->saveFailure().isEmpty());

    for (const QString &answer : {QStringLiteral("Cancel"), QStringLiteral("Quit Anyway")}) {
        guard.requestQuit();
        QMessageBox *question = guard.question();
        QVERIFY(question);
        QTRY_VERIFY(question->isVisible());
        QCOMPARE(question->text(), QStringLiteral("Your latest changes could not be saved."));
        QCOMPARE(question->buttons().size(), 2);
        QPushButton *button = buttonTitled(question, answer);
        QVERIFY2(button, qPrintable(answer));
        button->click();
        QTRY_VERIFY(!guard.question());
    }
    QCOMPARE(accepted.size(), 2); // Cancel kept the program; Quit Anyway ended it
}

int main(int argc, char *argv[])
{
    Vesko::Test::IsolatedEnvironment environment;
    QApplication app(argc, argv);
    SaveStatusTest test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_savestatus.moc"
