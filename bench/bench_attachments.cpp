// SPDX-License-Identifier: GPL-3.0-or-later
//
// Attachments. Importing one 200 MB file, beside `cp` of the same file (and
// `cp` followed by a flush to the disk, since an import flushes) in the same
// run, with the growth of the peak resident memory during the import. And a
// list of 1000 image tiles over 1000 different JPEG files: the time to its
// first painted frame and to all its thumbnails, beside decoding the same
// images one after another with nothing else to do.

#include "RatioReporter.h"
#include "TestEnvironment.h"

#include "attachments/AttachmentActions.h"
#include "attachments/AttachmentListView.h"
#include "attachments/AttachmentThumbnailView.h"
#include "attachments/AttachmentTile.h"
#include "attachments/ThumbnailCache.h"
#include "library/LibraryFile.h"
#include "library/LibraryWriter.h"
#include "platform/DesktopFiles.h"
#include "platform/FileChooser.h"
#include "platform/FileSystem.h"
#include "platform/Pasteboard.h"
#include "shell/Preferences.h"
#include "store/Store.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QPainter>
#include <QProcess>
#include <QRandomGenerator>
#include <QTimer>

#include <benchmark/benchmark.h>

#include <cstdio>

using namespace Vesko;

namespace {

constexpr qint64 importBytes = 200LL * 1000 * 1000;
constexpr int tileCount = 1000;

QString scratch()
{
    return Test::IsolatedEnvironment::current().root() + QStringLiteral("/bench");
}

QString sourceFile()
{
    return scratch() + QStringLiteral("/source.bin");
}

// Random bytes, so that no file system can shortcut the copy.
void makeSourceFile()
{
    QDir().mkpath(scratch());
    QFile file(sourceFile());
    file.open(QIODevice::WriteOnly);
    QByteArray block(1 << 20, Qt::Uninitialized);
    QRandomGenerator random(7);
    for (qint64 written = 0; written < importBytes; written += block.size()) {
        random.fillRange(reinterpret_cast<quint32 *>(block.data()), block.size() / 4);
        file.write(block.constData(), std::min<qint64>(block.size(), importBytes - written));
    }
}

qint64 statusField(const char *name)
{
    QFile status(QStringLiteral("/proc/self/status"));
    status.open(QIODevice::ReadOnly);
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith(name))
            return line.mid(qsizetype(std::strlen(name))).trimmed().split(' ').first().toLongLong()
                * 1024;
    }
    return -1;
}

void runProcess(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished(-1);
}

void BM_CopyWithCp(benchmark::State &state)
{
    const QString target = scratch() + QStringLiteral("/cp.bin");
    for (auto _ : state) {
        runProcess(QStringLiteral("cp"), {sourceFile(), target});
        state.PauseTiming();
        QFile::remove(target);
        state.ResumeTiming();
    }
}

void BM_CopyWithCpAndFlush(benchmark::State &state)
{
    const QString target = scratch() + QStringLiteral("/cp.bin");
    for (auto _ : state) {
        runProcess(QStringLiteral("cp"), {sourceFile(), target});
        runProcess(QStringLiteral("sync"), {target});
        state.PauseTiming();
        QFile::remove(target);
        state.ResumeTiming();
    }
}

// The copy of an import without its flush to the disk.
void BM_CopyInPiecesUnflushed(benchmark::State &state)
{
    const QString target = scratch() + QStringLiteral("/pieces.bin");
    FileSystem::PieceCopyOptions options;
    options.durability = FileSystem::Durability::Cached;
    for (auto _ : state) {
        if (FileSystem::copyFileInPieces(sourceFile(), target, options))
            state.SkipWithError("the copy failed");
        state.PauseTiming();
        QFile::remove(target);
        state.ResumeTiming();
    }
}

qint64 importPeakGrowth = 0;

void BM_ImportFile(benchmark::State &state)
{
    AttachmentStore store;
    const QString folder = scratch() + QStringLiteral("/Attachments");
    QObject context;
    for (auto _ : state) {
        QFile clear(QStringLiteral("/proc/self/clear_refs"));
        if (clear.open(QIODevice::WriteOnly))
            clear.write("5");
        clear.close();
        const qint64 before = statusField("VmRSS:");
        bool done = false;
        QEventLoop loop;
        store.importFiles(
            {QUrl::fromLocalFile(sourceFile())}, folder, &context, [&](const ImportResult &result) {
                if (!result.succeeded())
                    state.SkipWithError(qPrintable(*result.error));
                done = true;
                loop.quit();
            });
        if (!done)
            loop.exec();
        importPeakGrowth = std::max(importPeakGrowth, statusField("VmHWM:") - before);
        state.PauseTiming();
        QDir(folder).removeRecursively();
        state.ResumeTiming();
    }
}

// -- tiles ----------------------------------------------------------------------

// Where the list looks for the files: the attachments folder beside the library.
QString imagesFolder()
{
    return attachmentsFolder(libraryURL());
}

QList<NoteAttachment> makeImages()
{
    QList<NoteAttachment> attachments;
    QImage image(640, 480, QImage::Format_RGB32);
    for (int i = 0; i < tileCount; ++i) {
        QPainter painter(&image);
        painter.fillRect(image.rect(), QColor::fromHsv(i % 360, 160, 220));
        painter.setPen(QPen(Qt::white, 6));
        for (int line = 0; line < 12; ++line)
            painter.drawLine(0, (i + line * 40) % 480, 640, (i * 7 + line * 40) % 480);
        painter.end();
        NoteAttachment attachment;
        attachment.id = QUuid::createUuid();
        attachment.fileName = QStringLiteral("Photo %1.jpg").arg(i);
        attachment.storedFileName
            = attachment.id.toString(QUuid::WithoutBraces).toUpper() + u'/' + attachment.fileName;
        attachment.kind = NoteAttachment::Kind::Image;
        attachment.contentTypeIdentifier = QStringLiteral("image/jpeg");
        const QString path = imagesFolder() + u'/' + attachment.storedFileName;
        QDir().mkpath(QFileInfo(path).absolutePath());
        image.save(path, "JPEG", 85);
        attachments.append(attachment);
    }
    return attachments;
}

QList<NoteAttachment> &images()
{
    static QList<NoteAttachment> list = makeImages();
    return list;
}

class NoFeedback : public AttachmentFeedback
{
public:
    void toast(const QString &, const QString &) override { }
};
class NoChooser : public FileChooser
{
public:
    void chooseFiles(std::function<void(const QList<QUrl> &)> done) override { done({}); }
};
class NoPasteboard : public PasteboardReader
{
public:
    void readPasteboard(std::function<void(const PasteboardContent &)> done) override { done({}); }
};
class NoDesktop : public DesktopFiles
{
public:
    void open(const QString &, Unhandled) override { }
    void reveal(const QString &, Unhandled) override { }
};

// A Store and the actions the list needs, for the life of the program.
AttachmentActions &actions()
{
    static Preferences preferences;
    static LibraryWriter writer;
    static AttachmentStore files;
    static SearchIndex index(scratch() + QStringLiteral("/index.sqlite"));
    static Store store(makeDefaultLibrary(), {preferences, writer, files, index});
    static NoChooser chooser;
    static NoPasteboard pasteboard;
    static NoDesktop desktop;
    static NoFeedback feedback;
    static AttachmentActions actions({store, files, chooser, pasteboard, desktop, feedback});
    return actions;
}

void BM_DecodeImagesAlone(benchmark::State &state)
{
    const int side = 2 * AttachmentThumbnailView::expandedSide;
    for (auto _ : state) {
        for (const NoteAttachment &attachment : std::as_const(images()))
            benchmark::DoNotOptimize(
                ThumbnailCache::decode(imagesFolder() + u'/' + attachment.storedFileName, side));
    }
}

// The window of a list of all the tiles, shown and painted once; the thumbnails
// are all in when \a allThumbnails.
void runList(benchmark::State &state, bool allThumbnails)
{
    const QString folder = imagesFolder();
    for (auto _ : state) {
        state.PauseTiming();
        ThumbnailCache cache;
        QWidget window;
        window.resize(900, 700);
        auto *list = new AttachmentListView(actions(), cache, &window);
        list->resize(900, 700);
        state.ResumeTiming();

        QElapsedTimer timer;
        timer.start();
        list->setAttachments(images(), QUuid::createUuid());
        window.show();
        window.repaint(); // the first frame, painted now
        if (allThumbnails) {
            QEventLoop loop;
            int ready = 0;
            QObject::connect(&cache, &ThumbnailCache::thumbnailReady, &loop, [&] {
                if (++ready == tileCount)
                    loop.quit();
            });
            QObject::connect(&cache, &ThumbnailCache::thumbnailFailed, &loop, [&] {
                state.SkipWithError("a thumbnail failed");
                loop.quit();
            });
            loop.exec();
            QCoreApplication::processEvents(); // the tiles take their images
            window.repaint();
        }
        state.SetIterationTime(timer.nsecsElapsed() / 1e9);
        state.PauseTiming();
        window.hide();
        state.ResumeTiming();
    }
}

void BM_TileListFirstFrame(benchmark::State &state)
{
    runList(state, false);
}

void BM_TileListAllThumbnails(benchmark::State &state)
{
    runList(state, true);
}

} // namespace

int main(int argc, char *argv[])
{
    Test::IsolatedEnvironment environment;
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    makeSourceFile();
    images();
    actions();

    for (auto *benchmark : {
             benchmark::RegisterBenchmark("BM_CopyWithCp", BM_CopyWithCp),
             benchmark::RegisterBenchmark("BM_CopyWithCpAndFlush", BM_CopyWithCpAndFlush),
             benchmark::RegisterBenchmark("BM_ImportFile", BM_ImportFile),
             benchmark::RegisterBenchmark("BM_CopyInPiecesUnflushed", BM_CopyInPiecesUnflushed),
         }) {
        benchmark->Iterations(5)->UseRealTime()->Unit(benchmark::kMillisecond);
    }
    benchmark::RegisterBenchmark("BM_DecodeImagesAlone", BM_DecodeImagesAlone)
        ->Iterations(3)
        ->UseRealTime()
        ->Unit(benchmark::kMillisecond);
    for (auto *benchmark : {
             benchmark::RegisterBenchmark("BM_TileListFirstFrame", BM_TileListFirstFrame),
             benchmark::RegisterBenchmark("BM_TileListAllThumbnails", BM_TileListAllThumbnails),
         }) {
        benchmark->Iterations(3)->UseManualTime()->Unit(benchmark::kMillisecond);
    }
    benchmark::Initialize(&argc, argv);
    Bench::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);

    const std::string cp = "BM_CopyWithCp/iterations:5/real_time";
    const std::string cpFlush = "BM_CopyWithCpAndFlush/iterations:5/real_time";
    const std::string import = "BM_ImportFile/iterations:5/real_time";
    const std::string decode = "BM_DecodeImagesAlone/iterations:3/real_time";
    std::printf("\nimport of 200 MB: %.0f ms, %.2f of cp, %.2f of cp + flush\n",
        reporter.times[import], reporter.ratio(import, cp), reporter.ratio(import, cpFlush));
    std::printf(
        "peak resident memory grew by %.1f MiB during an import\n", importPeakGrowth / 1048576.0);
    std::printf("1000 tiles, first frame: %.0f ms, %.3f of decoding the images alone\n",
        reporter.times["BM_TileListFirstFrame/iterations:3/manual_time"],
        reporter.ratio("BM_TileListFirstFrame/iterations:3/manual_time", decode));
    std::printf("1000 tiles, all thumbnails: %.0f ms, %.2f of decoding the images alone\n",
        reporter.times["BM_TileListAllThumbnails/iterations:3/manual_time"],
        reporter.ratio("BM_TileListAllThumbnails/iterations:3/manual_time", decode));
    benchmark::Shutdown();
    return 0;
}
