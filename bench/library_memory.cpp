// SPDX-License-Identifier: GPL-3.0-or-later
//
// The memory a loaded library takes, against the size of its file.
//
//   library_memory <notes>...
//
// For each size, writes a generated library of that many notes below the
// current folder, then starts itself again to load it in a fresh process,
// and prints the growth of the peak resident set that the load caused and the
// resident growth that stays while it is held, and the time of that load in
// a fresh process beside its floor, reading the same file and parsing it
// with simdjson in another fresh process.
//
//   library_memory --write <notes> <path>
//
// Only writes the generated library of that many notes to \a path, for
// measuring the program itself over it.
//
//   library_memory --undo <notes>...
//
// For each size, the heap that a full undo history holds for a section of
// that many notes: notes are added to it one at a time, each an undo step,
// until the history is as long as the Store keeps it, and the heap's growth
// is divided by the note copies the steps hold (steps × notes).

#include "LibraryGenerator.h"

#include "StoreFixture.h"
#include "TestEnvironment.h"

#include "library/LibraryFile.h"
#include "store/Store.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <simdjson.h>

#include <cstdio>
#include <malloc.h>

using namespace Vesko;

namespace {

// A field of /proc/self/status in kibibytes, such as "VmHWM" or "VmRSS".
qint64 statusKiB(const char *field)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    const QByteArray prefix = QByteArray(field) + ':';
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith(prefix))
            return line.mid(prefix.size()).trimmed().split(' ').first().toLongLong();
    }
    return -1;
}

// Reads the file and parses it, as the floor of a load; prints the milliseconds.
int parseFloor(const QString &path)
{
    QElapsedTimer timer;
    timer.start();
    simdjson::padded_string bytes;
    simdjson::dom::parser parser;
    simdjson::dom::element root;
    if (simdjson::padded_string::load(path.toStdString()).get(bytes) != simdjson::SUCCESS
        || parser.parse(bytes).get(root) != simdjson::SUCCESS)
        return 1;
    std::printf("%.1f\n", double(timer.nsecsElapsed()) / 1e6);
    return 0;
}

int measure(const QString &path)
{
    const qint64 peakBefore = statusKiB("VmHWM");
    const qint64 residentBefore = statusKiB("VmRSS");
    QElapsedTimer timer;
    timer.start();
    const Library library = loadLibrary(path);
    const double milliseconds = double(timer.nsecsElapsed()) / 1e6;
    const qint64 peakAfter = statusKiB("VmHWM");
    const qint64 residentAfter = statusKiB("VmRSS");
    const double fileKiB = double(QFileInfo(path).size()) / 1024.0;
    std::printf("notes %lld, file %.1f MiB, peak growth %.1f MiB (%.2f x file), held %.1f MiB "
                "(%.2f x file)\n",
        qlonglong(noteCount(library)), fileKiB / 1024.0, double(peakAfter - peakBefore) / 1024.0,
        double(peakAfter - peakBefore) / fileKiB, double(residentAfter - residentBefore) / 1024.0,
        double(residentAfter - residentBefore) / fileKiB);
    std::printf("load %.1f ms\n", milliseconds);
    std::fflush(stdout);
    return 0;
}

// The bytes of the heap in use.
qint64 heapInUse()
{
    return qint64(mallinfo2().uordblks);
}

int measureUndo(const QList<qsizetype> &sizes)
{
    const Test::IsolatedEnvironment environment; // the Store's settings and files
    for (qsizetype notes : sizes) {
        Library library = makeDefaultLibrary();
        NoteList &inbox = library.projects[0].sections[0].notes;
        const QDateTime now = QDateTime::currentDateTimeUtc();
        for (qsizetype i = 0; i < notes; ++i)
            inbox.append(Note {QUuid::createUuid(), QStringLiteral("note %1 of a soak").arg(i),
                false, now, now, std::nullopt, std::nullopt, {}});
        Test::StoreFixture fixture;
        Store &store = fixture.make(library);
        const qint64 before = heapInUse();
        int steps = 0;
        while (store.undoStepCount() < Store::maximumUndoSteps) {
            const qsizetype held = store.undoStepCount();
            store.addNote(QStringLiteral("added %1").arg(steps++));
            if (store.undoStepCount() == held)
                break; // the limit for this many notes is reached
        }
        const qint64 grown = heapInUse() - before;
        const double copies = double(store.undoStepCount()) * double(notes);
        std::printf("notes %lld, %lld undo steps, heap %+.1f MiB, %.0f bytes a note copy, "
                    "%.1f KiB a note of the section\n",
            qlonglong(notes), qlonglong(store.undoStepCount()), double(grown) / 1048576.0,
            double(grown) / copies, double(grown) / 1024.0 / double(notes));
        std::fflush(stdout);
    }
    return 0;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    const QStringList arguments = app.arguments();
    if (arguments.size() == 3 && arguments.at(1) == u"--load")
        return measure(arguments.at(2));
    if (arguments.size() == 3 && arguments.at(1) == u"--parse")
        return parseFloor(arguments.at(2));
    if (arguments.size() == 4 && arguments.at(1) == u"--write") {
        if (auto failure = writeLibrary(
                Test::generateLibrary(arguments.at(2).toLongLong(), 42), arguments.at(3))) {
            std::fprintf(stderr, "%s\n", qPrintable(*failure));
            return 1;
        }
        return 0;
    }

    const bool undo = arguments.size() > 1 && arguments.at(1) == u"--undo";
    QList<qsizetype> sizes;
    for (qsizetype i = undo ? 2 : 1; i < arguments.size(); ++i)
        sizes.append(arguments.at(i).toLongLong());
    if (undo)
        return measureUndo(sizes);
    if (sizes.isEmpty())
        sizes.append(100000);
    for (qsizetype notes : sizes) {
        // A million notes make a file of about 760 MB: not for a small /tmp.
        QTemporaryDir folder(QDir::currentPath() + QStringLiteral("/vesko-memory-XXXXXX"));
        const QString path = folder.filePath(QStringLiteral("Library.json"));
        if (auto failure = writeLibrary(Test::generateLibrary(notes, 42), path)) {
            std::fprintf(stderr, "%s\n", qPrintable(*failure));
            return 1;
        }
        // Each in a process of its own, the floor first, so that both find
        // the file in the page cache.
        QProcess floor;
        floor.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--parse"), path});
        floor.waitForFinished(-1);
        const double floorMilliseconds = floor.readAllStandardOutput().trimmed().toDouble();
        QProcess child;
        child.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--load"), path});
        child.waitForFinished(-1);
        if (child.exitCode() != 0 || floor.exitCode() != 0)
            return 1;
        const QByteArray report = child.readAllStandardOutput();
        const double loadMilliseconds
            = report.mid(report.indexOf("load ") + 5).split(' ').first().toDouble();
        std::printf("%s", report.left(report.indexOf("load ")).constData());
        std::printf("  load %.0f ms, read and parse %.0f ms, load / (read + parse) %.2f\n",
            loadMilliseconds, floorMilliseconds,
            floorMilliseconds > 0 ? loadMilliseconds / floorMilliseconds : 0.0);
        std::fflush(stdout);
    }
    return 0;
}
