// SPDX-License-Identifier: GPL-3.0-or-later
//
// The memory a loaded library takes, against the size of its file.
//
//   library_memory <notes>
//
// Writes a generated library of that many notes, then starts itself again to
// load it in a fresh process, and prints the growth of the peak resident set
// that the load caused and the resident growth that stays while it is held.

#include "LibraryGenerator.h"

#include "library/LibraryFile.h"

#include <QCoreApplication>
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

    const qsizetype notes = arguments.size() > 1 ? arguments.at(1).toLongLong() : 100000;
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("Library.json"));
    if (auto failure = writeLibrary(Test::generateLibrary(notes, 42), path)) {
        std::fprintf(stderr, "%s\n", qPrintable(*failure));
        return 1;
    }
    QProcess child;
    child.setProcessChannelMode(QProcess::ForwardedChannels);
    child.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--load"), path});
    child.waitForFinished(-1);
    return child.exitCode();
}
