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

#include "LibraryGenerator.h"

#include "library/LibraryFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <simdjson.h>

#include <cstdio>

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

    QList<qsizetype> sizes;
    for (qsizetype i = 1; i < arguments.size(); ++i)
        sizes.append(arguments.at(i).toLongLong());
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
