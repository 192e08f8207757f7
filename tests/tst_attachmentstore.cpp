// SPDX-License-Identifier: GPL-3.0-or-later
//
// Importing files and pasted images into the attachments folder with real
// files: all or nothing under real faults (a full disk on a small tmpfs among
// them), private permissions, a 1 GiB sparse file copied in pieces, the
// importer stopped at quit, and the Store's imports, one racing its note's deletion.

#include "OtherUser.h"
#include "SmallFileSystem.h"
#include "StoreFixture.h"
#include "TestEnvironment.h"
#include "TestFiles.h"

#include "attachments/AttachmentStore.h"
#include "library/LibraryFile.h"
#include "platform/FileSystem.h"

#include <QDir>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <future>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Vesko;
using namespace Qt::StringLiterals;
using namespace Vesko::Test;

namespace {

QByteArray randomBytes(qsizetype size, quint32 seed)
{
    QByteArray bytes(size, Qt::Uninitialized);
    QRandomGenerator random(seed);
    random.fillRange(reinterpret_cast<quint32 *>(bytes.data()), size / 4);
    return bytes;
}

//! A line of /proc/self/status in bytes: "VmHWM:" the peak resident memory
//! since the last reset, "VmRSS:" the resident memory now.
qint64 memoryStatus(const QByteArray &key)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith(key))
            return line.mid(key.size()).trimmed().split(' ').first().toLongLong() * 1024;
    }
    return -1;
}

bool resetResidentPeak()
{
    QFile clear(QStringLiteral("/proc/self/clear_refs"));
    return clear.open(QIODevice::WriteOnly) && clear.write("5") == 1;
}

} // namespace

class AttachmentStoreTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void recordKeepsNameTypeAndSize_data();
    void recordKeepsNameTypeAndSize();
    void importIsAllOrNothing_data();
    void importIsAllOrNothing();
    void contentType_data();
    void contentType();
    void largeSparseFileIsCopiedInPieces();
    void copyInPiecesRefusesWhatItShould();
    void stoppedImporterLeavesNothingHalfCopied();

    void storeImportAttachesInOrder();

private:
    Store *makeStore() { return &m_fixture->make(makeDefaultLibrary()); }

    std::unique_ptr<QTemporaryDir> m_scratch;
    QString m_sources;
    QString m_folder;
    std::unique_ptr<StoreFixture> m_fixture;
    AttachmentStore *m_attachments = nullptr;
};

void AttachmentStoreTest::init()
{
    m_scratch = std::make_unique<QTemporaryDir>(
        Test::IsolatedEnvironment::current().root() + QStringLiteral("/scratch-XXXXXX"));
    m_sources = m_scratch->filePath(QStringLiteral("sources"));
    m_folder = m_scratch->filePath(QStringLiteral("Vesko/Attachments"));
    QDir().mkpath(m_sources);
    m_fixture = std::make_unique<StoreFixture>();
    m_attachments = &m_fixture->attachments();
}

void AttachmentStoreTest::cleanup()
{
    m_fixture.reset();
    m_scratch.reset();
}

void AttachmentStoreTest::recordKeepsNameTypeAndSize_data()
{
    QTest::addColumn<bool>("pasted");
    QTest::addColumn<QString>("fileName"); // and the source's name
    QTest::addColumn<QString>("type");
    QTest::newRow("an imported file") << false << "Holiday Photo.JPG" << u"image/jpeg"_s;
    QTest::newRow("a pasted image") << true << "Pasted Image.png" << u"image/png"_s;
}

void AttachmentStoreTest::recordKeepsNameTypeAndSize()
{
    QFETCH(bool, pasted);
    QFETCH(QString, fileName);
    QFETCH(QString, type);
    const QString source = m_sources + u'/' + fileName;
    const QByteArray bytes = randomBytes(3 * 1024 * 1024 + 12, 1);
    const QDateTime before = QDateTime::currentDateTimeUtc().addSecs(-1);
    ImportResult result;
    // Private whatever the process's mask and the source's permissions allow.
    const mode_t previous = ::umask(0);
    if (pasted) {
        result = AttachmentStore::writePastedImageNow(bytes, m_folder);
    } else {
        writeFile(source, bytes);
        ::chmod(QFile::encodeName(source).constData(), 0666);
        // A folder among the sources is skipped.
        writeFile(m_sources + QStringLiteral("/folder/inner/b.txt"), "b");
        result = AttachmentStore::importFilesNow(
            {QUrl::fromLocalFile(m_sources + QStringLiteral("/folder")),
                QUrl::fromLocalFile(source)},
            m_folder);
    }
    ::umask(previous);
    if (!pasted)
        QCOMPARE(readFile(source), bytes); // the source stays
    QVERIFY2(result.succeeded(), qPrintable(result.error.value_or(QString())));
    QCOMPARE(result.attachments.size(), 1);
    const NoteAttachment &attachment = result.attachments.first();

    // The folder is the record's id, upper case and hyphenated, holding the file under its name.
    const QString folderName = attachment.id.toString(QUuid::WithoutBraces).toUpper();
    QCOMPARE(attachment.storedFileName, folderName + u'/' + fileName);
    QCOMPARE(attachment.fileName, fileName);
    QCOMPARE(attachment.kind, NoteAttachment::Kind::Image);
    QCOMPARE(attachment.contentTypeIdentifier, type);
    QCOMPARE(attachment.byteCount, bytes.size());
    QVERIFY(attachment.createdAt >= before);
    QVERIFY(attachment.createdAt <= QDateTime::currentDateTimeUtc().addSecs(1));
    // Nothing but the file: no partial file is left beside it.
    QCOMPARE(fileTree(m_folder), QStringList({folderName, attachment.storedFileName}));
    QCOMPARE(readFile(m_folder + u'/' + attachment.storedFileName), bytes);
    QCOMPARE(fileMode(m_folder + u'/' + attachment.storedFileName), 0600u);
    // The folders too, those made on the way among them.
    for (const QString &folder :
        {m_folder + u'/' + folderName, m_folder, QFileInfo(m_folder).absolutePath()})
        QCOMPARE(fileMode(folder), 0700u);
}

void AttachmentStoreTest::importIsAllOrNothing_data()
{
    QTest::addColumn<QString>("fault");
    QTest::newRow("second file missing") << "missing";
    QTest::newRow("second file a dangling link") << "dangling link";
    QTest::newRow("second file without read permission") << "no permission";
    QTest::newRow("second file not on this computer") << "remote";
    QTest::newRow("disk full during the second file") << "full disk";
    QTest::newRow("disk full during a pasted image") << "full disk, pasted";
    QTest::newRow("cancelled") << "cancelled";
}

void AttachmentStoreTest::importIsAllOrNothing()
{
    QFETCH(QString, fault);
    const QString first = m_sources + QStringLiteral("/first.bin");
    writeFile(first, randomBytes(100 * 1024, 2));
    QUrl second = QUrl::fromLocalFile(m_sources + QStringLiteral("/second.bin"));
    std::optional<SmallFileSystem> disk;
    if (fault == u"dangling link") {
        QVERIFY(QFile::link(m_sources + QStringLiteral("/gone.bin"), second.toLocalFile()));
    } else if (fault == u"remote") {
        second = QUrl(QStringLiteral("https://example.org/second.bin"));
    } else if (fault.startsWith(u"full disk")) {
        disk.emplace(m_folder, 300);
        if (!disk->isMounted())
            QSKIP(qPrintable(disk->failure()));
        writeFile(second.toLocalFile(), randomBytes(1024 * 1024, 3));
    } else if (fault == u"no permission") {
        // The file exists but its owner alone may read it; the import runs as
        // another user, which root's permissions do not reach.
        writeFile(second.toLocalFile(), "private");
        QVERIFY(QFile::setPermissions(second.toLocalFile(), QFileDevice::WriteOwner));
        QDir().mkpath(m_folder);
        const QString top = Test::IsolatedEnvironment::current().root();
        Test::letNobodyIn(m_sources, top, false);
        Test::letNobodyIn(m_folder, top, true);
        ::chmod(QFile::encodeName(first).constData(), 0644);
    } else if (fault == u"cancelled") {
        writeFile(second.toLocalFile(), "second");
    }

    ImportResult result;
    {
        std::optional<Test::FileAccessAsNobody> otherUser;
        if (fault == u"no permission")
            otherUser.emplace();
        std::atomic_bool cancelled = true;
        result = fault == u"full disk, pasted"
            ? AttachmentStore::writePastedImageNow(randomBytes(1024 * 1024, 11), m_folder)
            : AttachmentStore::importFilesNow({QUrl::fromLocalFile(first), second}, m_folder,
                fault == u"cancelled" ? &cancelled : nullptr);
    }
    QVERIFY(!result.succeeded());
    if (fault == u"no permission")
        QVERIFY2(result.error->contains(second.toLocalFile())
                && result.error->contains(QStringLiteral("ermission")),
            qPrintable(*result.error));
    QVERIFY(!result.error->isEmpty());
    QVERIFY(result.attachments.isEmpty());
    QVERIFY(QFileInfo(m_folder).isDir());
    const QStringList left = fileTree(m_folder);
    if (fault == u"full disk, pasted") {
        // The folder made for the image stays, empty: nothing half written in it.
        QCOMPARE(left.size(), 1);
        QVERIFY(!QUuid::fromString(left.first()).isNull());
        QVERIFY(QFileInfo(m_folder + u'/' + left.first()).isDir());
    } else {
        QCOMPARE(left, QStringList());
    }
}

void AttachmentStoreTest::contentType_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<QString>("type"); // empty: none
    QTest::addColumn<bool>("image");

    QTest::newRow("png") << "shot.png" << u"image/png"_s << true;
    QTest::newRow("upper-case extension") << "SCAN.JPEG" << u"image/jpeg"_s << true;
    QTest::newRow("svg is an image") << "logo.svg" << u"image/svg+xml"_s << true;
    QTest::newRow("pdf") << "report.pdf" << u"application/pdf"_s << false;
    // The type of the last extension alone, whatever the rest of the name.
    QTest::newRow("double extension") << "backup.tar.gz" << u"application/gzip"_s << false;
    QTest::newRow("a name with a type of its own") << "CMakeLists.txt" << u"text/plain"_s << false;
    QTest::newRow("no extension") << "README" << u""_s << false;
    QTest::newRow("hidden file without extension") << ".profile" << u""_s << false;
    QTest::newRow("trailing dot") << "draft." << u""_s << false;
    QTest::newRow("unknown extension") << "data.qqzx" << u""_s << false;
}

void AttachmentStoreTest::contentType()
{
    QFETCH(QString, fileName);
    QFETCH(QString, type);
    QFETCH(bool, image);
    const std::optional<QString> expected
        = type.isEmpty() ? std::nullopt : std::optional<QString>(type);
    QCOMPARE(AttachmentStore::contentTypeForFileName(fileName), expected);
    QCOMPARE(AttachmentStore::kindOfContentType(expected),
        image ? NoteAttachment::Kind::Image : NoteAttachment::Kind::File);
}

void AttachmentStoreTest::largeSparseFileIsCopiedInPieces()
{
    // 1 GiB, of which three stretches hold data and the rest is holes.
    constexpr qint64 size = qint64(1) << 30;
    const QString source = m_sources + QStringLiteral("/disk.img");
    const QByteArray head = randomBytes(4 * 1024 * 1024, 5);
    const QByteArray middle = randomBytes(4 * 1024 * 1024, 6);
    const QByteArray tail = randomBytes(1024 * 1024, 7);
    {
        QFile file(source);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QVERIFY(file.resize(size));
        QVERIFY(file.seek(0) && file.write(head) == head.size());
        QVERIFY(file.seek(size / 2) && file.write(middle) == middle.size());
        QVERIFY(file.seek(size - tail.size()) && file.write(tail) == tail.size());
    }

    if (!resetResidentPeak())
        QSKIP("the peak resident memory cannot be reset here");
    const qint64 before = memoryStatus("VmRSS:");
    bool answered = false;
    ImportResult result;
    QObject context;
    m_attachments->importFiles(
        {QUrl::fromLocalFile(source)}, m_folder, &context, [&](const ImportResult &r) {
            result = r;
            answered = true;
        });
    QVERIFY(QTest::qWaitFor([&] { return answered; }, 120000));
    const qint64 growth = memoryStatus("VmHWM:") - before;
    QVERIFY2(result.succeeded(), qPrintable(result.error.value_or(QString())));
    QVERIFY2(growth < 64 * 1024 * 1024,
        qPrintable(QStringLiteral("resident memory grew by %1 bytes").arg(growth)));

    const QString copy = m_folder + u'/' + result.attachments.first().storedFileName;
    QCOMPARE(QFileInfo(copy).size(), size);
    QCOMPARE(result.attachments.first().byteCount, size);
    QFile file(copy);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.read(head.size()), head);
    QVERIFY(file.seek(size / 4));
    QCOMPARE(file.read(4096), QByteArray(4096, '\0'));
    QVERIFY(file.seek(size / 2));
    QCOMPARE(file.read(middle.size()), middle);
    QVERIFY(file.seek(size - tail.size()));
    QCOMPARE(file.read(tail.size()), tail);
    // The holes stayed holes: the copy takes about what the data take.
    struct stat info;
    QCOMPARE(::stat(QFile::encodeName(copy).constData(), &info), 0);
    QVERIFY(qint64(info.st_blocks) * 512 < 64 * 1024 * 1024);
}

void AttachmentStoreTest::copyInPiecesRefusesWhatItShould()
{
    const QString source = m_sources + QStringLiteral("/source.bin");
    const QByteArray bytes = randomBytes(9 * 1024 * 1024 + 3, 8);
    writeFile(source, bytes);
    const QString link = m_sources + QStringLiteral("/link.bin");
    QVERIFY(QFile::link(source, link));
    const QString targets = m_scratch->filePath(QStringLiteral("targets"));
    QDir().mkpath(targets);

    FileSystem::PieceCopyOptions noLinks;
    noLinks.followLinks = false;
    QVERIFY(FileSystem::copyFileInPieces(link, targets + QStringLiteral("/a"), noLinks));
    QVERIFY(!QFileInfo::exists(targets + QStringLiteral("/a")));
    QVERIFY(!FileSystem::copyFileInPieces(link, targets + QStringLiteral("/a")));
    QCOMPARE(readFile(targets + QStringLiteral("/a")), bytes);

    // The target must not exist: nothing is overwritten.
    writeFile(targets + QStringLiteral("/b"), "keep");
    QVERIFY(FileSystem::copyFileInPieces(source, targets + QStringLiteral("/b")));
    QCOMPARE(readFile(targets + QStringLiteral("/b")), QByteArray("keep"));

    QVERIFY(FileSystem::copyFileInPieces(m_sources, targets + QStringLiteral("/c")));
    QVERIFY(!QFileInfo::exists(targets + QStringLiteral("/c")));

    // A pipe where a file was expected is refused at once, without waiting
    // for a program to write into it.
    const QString pipe = m_sources + QStringLiteral("/pipe");
    QCOMPARE(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    auto copy = std::async(std::launch::async,
        [&] { return FileSystem::copyFileInPieces(pipe, targets + QStringLiteral("/p")); });
    if (copy.wait_for(std::chrono::seconds(20)) != std::future_status::ready) {
        // Let the stuck copy go before failing.
        const int writer = ::open(QFile::encodeName(pipe).constData(), O_WRONLY);
        ::close(writer);
        copy.wait();
        QFAIL("the copy waited for a writer to the pipe");
    }
    QVERIFY(copy.get());
    QVERIFY(!QFileInfo::exists(targets + QStringLiteral("/p")));

    // Stopped after its first piece (of 8 MiB): nothing of the copy stays.
    FileSystem::PieceCopyOptions stopping;
    int asked = 0;
    stopping.shouldContinue = [&asked] { return ++asked < 2; };
    QVERIFY(FileSystem::copyFileInPieces(source, targets + QStringLiteral("/s"), stopping));
    QCOMPARE(asked, 2);
    QVERIFY(!QFileInfo::exists(targets + QStringLiteral("/s")));

    // Keeping the date.
    const QDateTime old = QDateTime::fromSecsSinceEpoch(1000000000, Qt::UTC);
    QFile file(source);
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.setFileTime(old, QFileDevice::FileModificationTime));
    file.close();
    FileSystem::PieceCopyOptions keepDate;
    keepDate.keepDate = true;
    QVERIFY(!FileSystem::copyFileInPieces(source, targets + QStringLiteral("/d"), keepDate));
    QCOMPARE(QFileInfo(targets + QStringLiteral("/d")).lastModified().toUTC(), old);
    QCOMPARE(readFile(targets + QStringLiteral("/d")), bytes);
}

void AttachmentStoreTest::stoppedImporterLeavesNothingHalfCopied()
{
    const QString source = m_sources + QStringLiteral("/large.bin");
    const QByteArray bytes = randomBytes(256 * 1024 * 1024, 12);
    writeFile(source, bytes);
    std::optional<ImportResult> result;
    QObject context;
    m_attachments->importFiles({QUrl::fromLocalFile(source)}, m_folder, &context,
        [&](const ImportResult &r) { result = r; });
    // As at quit: the copy under way stops and cleans up before this returns.
    m_attachments->stopImports();
    QVERIFY(QTest::qWaitFor([&] { return result.has_value(); }, 10000));
    if (result->succeeded()) {
        // It was done before the stop came: whole, under its name.
        QCOMPARE(result->attachments.size(), 1);
        QCOMPARE(fileTree(m_folder).size(), 2);
        QCOMPARE(readFile(m_folder + u'/' + result->attachments.first().storedFileName), bytes);
    } else {
        QCOMPARE(fileTree(m_folder), QStringList());
    }

    // Nothing is imported after the stop.
    result.reset();
    writeFile(m_sources + QStringLiteral("/small.txt"), "small");
    m_attachments->importFiles({QUrl::fromLocalFile(m_sources + QStringLiteral("/small.txt"))},
        m_folder, &context, [&](const ImportResult &r) { result = r; });
    QVERIFY(QTest::qWaitFor([&] { return result.has_value(); }, 10000));
    QVERIFY(!result->succeeded());
}

void AttachmentStoreTest::storeImportAttachesInOrder()
{
    auto store = makeStore();
    writeFile(m_sources + QStringLiteral("/a.txt"), "a");
    writeFile(m_sources + QStringLiteral("/b.png"), "b");
    const QList<QUrl> files = {QUrl::fromLocalFile(m_sources + QStringLiteral("/a.txt")),
        QUrl::fromLocalFile(m_sources + QStringLiteral("/b.png"))};
    int answers = 0;
    const auto done = [&answers](const ImportResult &result) {
        ++answers;
        QVERIFY(result.succeeded());
    };
    // The first import's note, the only one, is deleted before the answer,
    // which can only come through the event loop: its files go with it.
    const QUuid gone = store->addNote(QStringLiteral("short-lived"))->id;
    store->importAttachments(files, gone, done);
    store->deleteNotes({gone});
    const QUuid kept = store->addNote(QStringLiteral("with files"))->id;
    const qsizetype undoSteps = store->undoStepCount();
    store->importAttachments(files, kept, done);
    QVERIFY(QTest::qWaitFor([&] { return answers == 2; }, 10000));
    m_attachments->waitForIdle();

    const Note updated = *store->note(kept);
    QCOMPARE(updated.attachments.size(), 2);
    QCOMPARE(updated.attachments.at(0).fileName, QStringLiteral("a.txt"));
    QCOMPARE(updated.attachments.at(1).fileName, QStringLiteral("b.png"));
    QCOMPARE(store->undoStepCount(), undoSteps + 1);
    // Only the kept note's two folders with their files.
    const QString folder = attachmentsFolder(libraryURL());
    QCOMPARE(fileTree(folder).size(), 4);
    for (const NoteAttachment &attachment : updated.attachments)
        QVERIFY(QFileInfo(folder + u'/' + attachment.storedFileName).isFile());
}

VESKO_TEST_MAIN(AttachmentStoreTest)

#include "tst_attachmentstore.moc"
