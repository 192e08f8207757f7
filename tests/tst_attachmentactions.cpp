// SPDX-License-Identifier: GPL-3.0-or-later
//
// What each way of adding an attachment tells the user, with real files and
// a real Store; the dialog, the clipboard, the file manager and the toast
// are stand-ins that record what they were asked. Also the choice of what to
// read from the clipboard, and files added while the library moves.

#include "StoreFixture.h"
#include "TestEnvironment.h"
#include "TestFiles.h"

#include "attachments/AttachmentActions.h"
#include "library/LibraryFile.h"
#include "platform/DesktopFiles.h"
#include "platform/FileChooser.h"
#include "platform/Pasteboard.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>

using namespace Vesko;

namespace {

//! The dialog, the clipboard, the file manager and the toast: each answers
//! later, through the event loop, as the real ones do, and records what it
//! was asked (each toast as "message|symbol").
struct StandIns : AttachmentFeedback, FileChooser, PasteboardReader, DesktopFiles
{
    void toast(const QString &message, const QString &symbol) override
    {
        toasts.append(message + u'|' + symbol);
    }
    void chooseFiles(std::function<void(const QList<QUrl> &)> done) override
    {
        QTimer::singleShot(0, [done, files = chosen] { done(files); });
    }
    void readPasteboard(std::function<void(const PasteboardContent &)> done) override
    {
        QTimer::singleShot(0, [done, content = pasted] { done(content); });
    }
    void open(const QString &path, Unhandled unhandled) override
    {
        opened.append(path);
        answer(unhandled);
    }
    void reveal(const QString &path, Unhandled unhandled) override
    {
        revealed.append(path);
        answer(unhandled);
    }
    void answer(const Unhandled &unhandled) const
    {
        if (!handles)
            QTimer::singleShot(0, unhandled);
    }

    QList<QUrl> chosen;
    PasteboardContent pasted;
    bool handles = true;
    QStringList toasts;
    QStringList opened;
    QStringList revealed;
};

} // namespace

class AttachmentActionsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void toasts_data();
    void toasts();
    void nothingToHandTheFileTo_data();
    void nothingToHandTheFileTo();
    void sameNameTwiceOpensBoth();
    void addedDuringAMoveGoToTheNewFolder_data();
    void addedDuringAMoveGoToTheNewFolder();
    void formatsToRead_data();
    void formatsToRead();
    void localFilesOfUriList_data();
    void localFilesOfUriList();

private:
    QString makeSource(const QString &name);

    std::unique_ptr<QTemporaryDir> m_scratch;
    std::unique_ptr<Test::StoreFixture> m_fixture;
    Store *m_store = nullptr;
    AttachmentStore *m_files = nullptr;
    std::unique_ptr<StandIns> m_standIns;
    std::unique_ptr<AttachmentActions> m_actions;
    QUuid m_noteID;
};

void AttachmentActionsTest::init()
{
    m_scratch = std::make_unique<QTemporaryDir>(
        Test::IsolatedEnvironment::current().root() + QStringLiteral("/scratch-XXXXXX"));
    QDir(Test::IsolatedEnvironment::current().dataHome()).removeRecursively();
    m_fixture = std::make_unique<Test::StoreFixture>();
    m_store = &m_fixture->make(makeDefaultLibrary());
    m_files = &m_fixture->attachments();
    m_standIns = std::make_unique<StandIns>();
    m_actions = std::make_unique<AttachmentActions>(AttachmentActions::Services {
        *m_store, *m_files, *m_standIns, *m_standIns, *m_standIns, *m_standIns});
    m_noteID = m_store->addNote(QStringLiteral("target"))->id;
}

void AttachmentActionsTest::cleanup()
{
    m_actions.reset();
    m_fixture.reset();
    m_scratch.reset();
}

QString AttachmentActionsTest::makeSource(const QString &name)
{
    Test::writeFile(m_scratch->filePath(name), name.toUtf8());
    return m_scratch->filePath(name);
}

void AttachmentActionsTest::toasts_data()
{
    // clang-format off
    QTest::addColumn<QString>("entry"); // add, paste, drop
    QTest::addColumn<QString>("offered"); // file, missing, nothing
    QTest::addColumn<int>("attached");
    QTest::addColumn<QString>("message"); // empty: no toast
    QTest::addColumn<QString>("symbol");

    const QString warning = QStringLiteral("exclamationmark.triangle");
    QTest::newRow("add: success is silent") << "add" << "file" << 1 << "" << "";
    QTest::newRow("add: the dialog cancelled") << "add" << "nothing" << 0 << "" << "";
    QTest::newRow("add: failure") << "add"
                                  << "missing" << 0 << "Could Not Add Attachment" << warning;
    QTest::newRow("paste a file that went") << "paste"
        << "missing" << 0 << "Could Not Paste Attachment" << warning;
    QTest::newRow("paste with nothing usable") << "paste"
                                               << "nothing" << 0 << "No Image or File to Paste"
                                               << "clipboard";
    QTest::newRow("drop: success") << "drop" << "file" << 1 << "Attachment Added" << "paperclip";
    QTest::newRow("drop: failure") << "drop"
                                   << "missing" << 0 << "Could Not Add Attachment" << warning;
    QTest::newRow("drop: nothing is refused") << "drop" << "nothing" << 0 << "" << "";
    // clang-format on
}

void AttachmentActionsTest::toasts()
{
    QFETCH(QString, entry);
    QFETCH(QString, offered);
    QFETCH(int, attached);
    QFETCH(QString, message);
    QFETCH(QString, symbol);

    QList<QUrl> files;
    if (offered == u"file")
        files = {QUrl::fromLocalFile(makeSource(QStringLiteral("file.txt")))};
    else if (offered == u"missing")
        files = {QUrl::fromLocalFile(m_scratch->filePath(QStringLiteral("gone.txt")))};
    m_standIns->chosen = files;
    m_standIns->pasted.fileURLs = files;

    const qsizetype undoSteps = m_store->undoStepCount();
    if (entry == u"add")
        m_actions->addChosenFiles(m_noteID);
    else if (entry == u"paste")
        m_actions->pasteIntoNote(m_noteID);
    else
        QCOMPARE(m_actions->dropFiles(files, m_noteID), !files.isEmpty());

    if (message.isEmpty()) {
        QVERIFY(QTest::qWaitFor(
            [&] { return m_store->note(m_noteID)->attachments.size() == attached; }, 10000));
        // Nothing more comes: let every queued answer through.
        m_files->waitForIdle();
        QCoreApplication::processEvents();
        QCOMPARE(m_standIns->toasts.size(), 0);
    } else {
        QVERIFY(QTest::qWaitFor([&] { return !m_standIns->toasts.isEmpty(); }, 10000));
        QCOMPARE(m_standIns->toasts.size(), 1);
        QCOMPARE(m_standIns->toasts.first(), message + u'|' + symbol);
    }
    QCOMPARE(m_store->note(m_noteID)->attachments.size(), attached);
    QCOMPARE(m_store->undoStepCount(), undoSteps + (attached > 0 ? 1 : 0));
}

void AttachmentActionsTest::nothingToHandTheFileTo_data()
{
    QTest::addColumn<QString>("action"); // open, reveal
    QTest::addColumn<bool>("handles");
    QTest::addColumn<QString>("message"); // empty: no toast

    QTest::newRow("opened") << "open" << true << "";
    QTest::newRow("no application") << "open" << false << "No Application for “Q3 report.pdf”";
    QTest::newRow("no file manager") << "reveal" << false << "No File Manager Found";
}

void AttachmentActionsTest::nothingToHandTheFileTo()
{
    QFETCH(QString, action);
    QFETCH(bool, handles);
    QFETCH(QString, message);
    m_standIns->handles = handles;
    NoteAttachment attachment;
    attachment.id = QUuid::createUuid();
    attachment.fileName = QStringLiteral("Q3 report.pdf");
    attachment.storedFileName = QStringLiteral("0F5B/Q3 report.pdf");
    if (action == u"open")
        m_actions->openAttachment(attachment);
    else
        m_actions->revealAttachment(attachment);
    QCOMPARE(m_standIns->opened.size() + m_standIns->revealed.size(), 1);
    // Let the desktop's answer through.
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
    if (message.isEmpty()) {
        QVERIFY(m_standIns->toasts.isEmpty());
    } else {
        QCOMPARE(m_standIns->toasts.size(), 1);
        QCOMPARE(m_standIns->toasts.first(), message + QStringLiteral("|exclamationmark.triangle"));
    }
}

void AttachmentActionsTest::sameNameTwiceOpensBoth()
{
    const QList<QUrl> files = {QUrl::fromLocalFile(makeSource(QStringLiteral("one/same.txt"))),
        QUrl::fromLocalFile(makeSource(QStringLiteral("two/same.txt")))};
    QVERIFY(m_actions->dropFiles(files, m_noteID));
    QVERIFY(
        QTest::qWaitFor([&] { return m_store->note(m_noteID)->attachments.size() == 2; }, 10000));
    const QList<NoteAttachment> attachments = m_store->note(m_noteID)->attachments;
    for (const NoteAttachment &attachment : attachments) {
        m_actions->openAttachment(attachment);
        m_actions->revealAttachment(attachment);
    }
    QCOMPARE(m_standIns->opened.size(), 2);
    QCOMPARE(m_standIns->opened, m_standIns->revealed);
    QVERIFY(m_standIns->opened.at(0) != m_standIns->opened.at(1));
    const QString folder = attachmentsFolder(libraryURL());
    for (qsizetype i = 0; i < 2; ++i) {
        QCOMPARE(m_standIns->opened.at(i), folder + u'/' + attachments.at(i).storedFileName);
        QFile file(m_standIns->opened.at(i));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray(i == 0 ? "one/same.txt" : "two/same.txt"));
    }

    // A record whose name leads outside the folder is neither opened nor shown.
    NoteAttachment outside = attachments.first();
    outside.storedFileName = QStringLiteral("../Library.json");
    m_actions->openAttachment(outside);
    m_actions->revealAttachment(outside);
    QCOMPARE(m_standIns->opened.size(), 2);
    QCOMPARE(m_standIns->revealed.size(), 2);
}

void AttachmentActionsTest::addedDuringAMoveGoToTheNewFolder_data()
{
    QTest::addColumn<QString>("entry");
    QTest::newRow("dropped on a note") << "drop";
    QTest::newRow("file pasted into a note") << "paste file";
    QTest::newRow("image pasted into a note") << "paste image";
    QTest::newRow("file of a new note") << "new note";
}

void AttachmentActionsTest::addedDuringAMoveGoToTheNewFolder()
{
    QFETCH(QString, entry);
    // Enough for the move to take a while: it copies these first.
    const QString oldFolder = m_store->currentAttachmentsFolder();
    QDir().mkpath(oldFolder + QStringLiteral("/Earlier"));
    QFile large(oldFolder + QStringLiteral("/Earlier/large.bin"));
    QVERIFY(large.open(QIODevice::WriteOnly));
    for (int i = 0; i < 32; ++i)
        large.write(QByteArray(1024 * 1024, char('a' + i % 26)));
    large.close();
    const QString source = makeSource(QStringLiteral("added.txt"));
    const QByteArray png("\x89PNG pasted during the move");
    if (entry == u"paste file")
        m_standIns->pasted.fileURLs = {QUrl::fromLocalFile(source)};
    else if (entry == u"paste image")
        m_standIns->pasted.png = png;

    const QString destination = m_scratch->filePath(QStringLiteral("Moved"));
    QDir().mkpath(destination);
    QSignalSpy finished(m_store, &Store::libraryMoveFinished);
    m_store->moveLibrary(destination);
    QVERIFY(m_store->isMovingLibrary());

    std::optional<QList<NoteAttachment>> records;
    if (entry == u"drop") {
        QVERIFY(m_actions->dropFiles({QUrl::fromLocalFile(source)}, m_noteID));
    } else if (entry == u"new note") {
        m_actions->importForNewNote({QUrl::fromLocalFile(source)},
            [&](const std::optional<QList<NoteAttachment>> &answer) { records = answer; });
    } else {
        m_actions->pasteIntoNote(m_noteID);
    }
    QVERIFY(finished.wait(30000));
    QCOMPARE(finished.first().first().toString(), QString());
    if (entry == u"new note") {
        QVERIFY(QTest::qWaitFor([&] { return records.has_value(); }, 10000));
    } else {
        QVERIFY(QTest::qWaitFor(
            [&] { return !m_store->note(m_noteID)->attachments.isEmpty(); }, 10000));
        records = m_store->note(m_noteID)->attachments;
    }
    m_files->waitForIdle(); // the old folder goes in the background

    const QString newFolder = destination + QStringLiteral("/Attachments");
    QCOMPARE(m_store->currentAttachmentsFolder(), newFolder);
    QVERIFY(!QFileInfo::exists(oldFolder));
    QCOMPARE(records->size(), 1);
    const std::optional<QString> path
        = AttachmentStore::fileInside(newFolder, records->first().storedFileName);
    QVERIFY(path);
    QFile file(*path);
    QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(*path));
    QCOMPARE(file.readAll(), entry == u"paste image" ? png : QByteArray("added.txt"));
    QVERIFY(m_standIns->toasts.isEmpty() || entry == u"drop");
}

void AttachmentActionsTest::formatsToRead_data()
{
    QTest::addColumn<QStringList>("offers");
    QTest::addColumn<QStringList>("plan");

    QTest::newRow("files before images") << QStringList {"image/png", "text/plain", "text/uri-list"}
                                         << QStringList {"text/uri-list", "image/png"};
    QTest::newRow("PNG before other images, whatever the order offered")
        << QStringList {"image/jpeg", "image/bmp", "image/png"}
        << QStringList {"image/png", "image/jpeg", "image/bmp"};
    QTest::newRow("only other images") << QStringList {"TARGETS", "image/tiff", "image/jpeg"}
                                       << QStringList {"image/tiff", "image/jpeg"};
    QTest::newRow("text only") << QStringList {"UTF8_STRING", "text/plain"} << QStringList {};
    QTest::newRow("nothing") << QStringList {} << QStringList {};
}

void AttachmentActionsTest::formatsToRead()
{
    QFETCH(QStringList, offers);
    QFETCH(QStringList, plan);
    QCOMPARE(Pasteboard::formatsToRead(offers), plan);
}

void AttachmentActionsTest::localFilesOfUriList_data()
{
    QTest::addColumn<QByteArray>("list");
    QTest::addColumn<QStringList>("paths");

    QTest::newRow("two files, CRLF") << QByteArray("file:///tmp/a.txt\r\nfile:///tmp/b%20c.png\r\n")
                                     << QStringList {"/tmp/a.txt", "/tmp/b c.png"};
    QTest::newRow("comments and web links left out")
        << QByteArray("# copied\nhttps://example.org/x.png\nfile:///home/u/x.pdf\n")
        << QStringList {"/home/u/x.pdf"};
    QTest::newRow("UTF-8 names") << QByteArray("file:///tmp/%C3%BCber.txt")
                                 << QStringList {"/tmp/über.txt"};
    QTest::newRow("empty") << QByteArray() << QStringList {};
    QTest::newRow("not a URL") << QByteArray("just some text") << QStringList {};
}

void AttachmentActionsTest::localFilesOfUriList()
{
    QFETCH(QByteArray, list);
    QFETCH(QStringList, paths);
    QStringList found;
    for (const QUrl &url : Pasteboard::localFilesOfUriList(list))
        found.append(url.toLocalFile());
    QCOMPARE(found, paths);
}

VESKO_TEST_MAIN(AttachmentActionsTest)

#include "tst_attachmentactions.moc"
