// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the operations on notes do beyond the library, which tst_storemodel
// checks against a model: the files of attachments, and the anchor that
// follows a revealed note a moment later.

#include "StoreFixture.h"
#include "TestEnvironment.h"
#include "TestFiles.h"

#include "library/LibraryFile.h"

#include <QDir>
#include <QFileInfo>

using namespace Vesko;

class OperationsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void lateAnchorFollowsOnlyASelectedNote();
    void attachmentFilesGoOnlyWhenUnreferenced();
    void removalStaysInsideTheAttachmentsFolder_data();
    void removalStaysInsideTheAttachmentsFolder();

private:
    std::unique_ptr<Test::StoreFixture> m_fixture;
    AttachmentStore *m_attachments = nullptr;
};

void OperationsTest::init()
{
    m_fixture = std::make_unique<Test::StoreFixture>();
    m_attachments = &m_fixture->attachments();
}

void OperationsTest::cleanup()
{
    m_fixture.reset();
}

// That the anchor follows a revealed note still selected is the model test's.
void OperationsTest::lateAnchorFollowsOnlyASelectedNote()
{
    Store &store = m_fixture->make({QStringLiteral("*Inbox:a")});
    store.addNote(QStringLiteral("c"), std::nullopt, std::nullopt, false, std::nullopt, {}, true);
    store.setSelection({}, std::nullopt);
    QTest::qWait(60);
    QVERIFY(!store.selectionAnchor());
}

void OperationsTest::attachmentFilesGoOnlyWhenUnreferenced()
{
    const QString folder = attachmentsFolder(libraryURL());
    auto makeFile = [&](const QString &stored) { Test::writeFile(folder + u'/' + stored, "data"); };
    makeFile(QStringLiteral("A/shared.png"));
    makeFile(QStringLiteral("B/own.pdf"));

    Library library;
    library.projects = {Test::describedProject(QStringLiteral("*S:a,b,c"))};
    library.activeProjectID = library.projects[0].id;
    auto attach = [](Note &note, const QString &stored) {
        note.attachments.append({makeID(), QFileInfo(stored).fileName(), stored,
            NoteAttachment::Kind::File, std::nullopt, std::nullopt, currentDate()});
    };
    attach(library.projects[0].sections[0].notes[0], QStringLiteral("A/shared.png"));
    attach(library.projects[0].sections[0].notes[1], QStringLiteral("A/shared.png"));
    attach(library.projects[0].sections[0].notes[1], QStringLiteral("B/own.pdf"));
    Store &store = m_fixture->make(library);

    store.deleteNotes({Test::idFor(QStringLiteral("b"))});
    m_attachments->waitForIdle();
    QVERIFY(QFileInfo::exists(folder + QStringLiteral("/A/shared.png"))); // still referenced by a
    QVERIFY(!QFileInfo::exists(folder + QStringLiteral("/B/own.pdf")));
    QVERIFY(!QFileInfo::exists(folder + QStringLiteral("/B"))); // emptied folder goes
    // Undo brings the record back, not the file.
    store.undo();
    QCOMPARE(store.note(Test::idFor(QStringLiteral("b")))->attachments.size(), 2);
    QVERIFY(!QFileInfo::exists(folder + QStringLiteral("/B/own.pdf")));

    const QUuid attachmentID = store.note(Test::idFor(QStringLiteral("a")))->attachments.first().id;
    store.removeAttachment(attachmentID, Test::idFor(QStringLiteral("a")));
    m_attachments->waitForIdle();
    QVERIFY(QFileInfo::exists(folder + QStringLiteral("/A/shared.png"))); // b refers to it again
    store.deleteNotes({Test::idFor(QStringLiteral("b"))});
    m_attachments->waitForIdle();
    QVERIFY(!QFileInfo::exists(folder + QStringLiteral("/A")));
    QVERIFY(QFileInfo::exists(folder)); // the folder itself stays
    // Files imported for a note that has gone are removed.
    makeFile(QStringLiteral("C/late.txt"));
    store.addAttachments(
        {{makeID(), QStringLiteral("late.txt"), QStringLiteral("C/late.txt"),
            NoteAttachment::Kind::File, std::nullopt, std::nullopt, currentDate()}},
        Test::idFor(QStringLiteral("b")));
    m_attachments->waitForIdle();
    QVERIFY(!QFileInfo::exists(folder + QStringLiteral("/C")));
}

void OperationsTest::removalStaysInsideTheAttachmentsFolder_data()
{
    QTest::addColumn<QString>("stored");
    QTest::newRow("parent reference") << "../outside.txt";
    QTest::newRow("deep parent reference") << "A/../../outside.txt";
    QTest::newRow("through a linked folder") << "link/outside.txt";
    QTest::newRow("the folder itself") << ".";
    QTest::newRow("nothing") << "";
}

void OperationsTest::removalStaysInsideTheAttachmentsFolder()
{
    QFETCH(QString, stored);
    const QString root = Test::IsolatedEnvironment::current().root() + QStringLiteral("/traversal");
    const QString folder = root + QStringLiteral("/Vesko/Attachments");
    QDir().mkpath(folder + QStringLiteral("/A"));
    const QString outsideFolder = root + QStringLiteral("/Vesko");
    QFile::link(outsideFolder, folder + QStringLiteral("/link"));
    Test::writeFile(outsideFolder + QStringLiteral("/outside.txt"), {});

    NoteAttachment attachment;
    attachment.storedFileName = stored;
    m_attachments->removeFiles({attachment}, folder);
    m_attachments->waitForIdle();
    QVERIFY(QFileInfo::exists(outsideFolder + QStringLiteral("/outside.txt")));
    QVERIFY(QFileInfo::exists(folder));
    QDir(root).removeRecursively();
}

VESKO_TEST_MAIN(OperationsTest)
#include "tst_operations.moc"
