// SPDX-License-Identifier: GPL-3.0-or-later
//
// The vesko program: reads the library, runs until it is asked to quit, and
// writes the library back on the way out.

#include "library/LibraryFile.h"
#include "library/LibraryWriter.h"
#include "platform/Logging.h"
#include "platform/TerminationSignals.h"

#include <QCoreApplication>

using namespace Vesko;

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("Vesko"));
    QCoreApplication::setApplicationName(QStringLiteral("Vesko"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VESKO_VERSION));

    const QString path = libraryURL();
    Library library = loadLibrary(path);
    qCInfo(lcStorage, "Library at %s: %lld projects, %lld notes", qUtf8Printable(path),
        qlonglong(library.projects.size()), qlonglong(noteCount(library)));

    TerminationSignals terminationSignals;
    QObject::connect(&terminationSignals, &TerminationSignals::terminationRequested, &app,
        [] { QCoreApplication::quit(); });

    const int status = app.exec();

    if (auto failure = LibraryWriter::shared().writeNow(library, libraryURL()))
        qCCritical(lcStorage, "Save failed: %s", qUtf8Printable(*failure));
    return status;
}
