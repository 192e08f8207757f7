// SPDX-License-Identifier: GPL-3.0-or-later
//
// The memory a loaded library takes, against the size of its file.
//
//   library_memory <notes>...
//
// For each size, writes a generated library of that many notes below the
// current folder, then starts itself again to load it in a fresh process,
// and prints the growth of the peak resident set that the load caused and the
// resident growth that stays while it is held.
//
//   library_memory --write <notes> <path>
//
// Only writes the generated library of that many notes to \a path, for
// measuring the program itself over it.

#include "LibraryGenerator.h"

#include "library/LibraryFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

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

int measure(const QString &path)
{
    const qint64 peakBefore = statusKiB("VmHWM");
    const qint64 residentBefore = statusKiB("VmRSS");
    const Library library = loadLibrary(path);
    const qint64 peakAfter = statusKiB("VmHWM");
    const qint64 residentAfter = statusKiB("VmRSS");
    const double fileKiB = double(QFileInfo(path).size()) / 1024.0;
    std::printf("notes %lld, file %.1f MiB, peak growth %.1f MiB (%.2f x file), held %.1f MiB "
                "(%.2f x file)\n",
        qlonglong(noteCount(library)), fileKiB / 1024.0, double(peakAfter - peakBefore) / 1024.0,
        double(peakAfter - peakBefore) / fileKiB, double(residentAfter - residentBefore) / 1024.0,
        double(residentAfter - residentBefore) / fileKiB);
    return 0;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    const QStringList arguments = app.arguments();
    if (arguments.size() == 3 && arguments.at(1) == u"--load")
        return measure(arguments.at(2));
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
        QProcess child;
        child.setProcessChannelMode(QProcess::ForwardedChannels);
        child.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--load"), path});
        child.waitForFinished(-1);
        if (child.exitCode() != 0)
            return child.exitCode();
    }
    return 0;
}
