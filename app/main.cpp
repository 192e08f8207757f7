// SPDX-License-Identifier: GPL-3.0-or-later
//
// The vesko program: reads the library into the Store, runs until it is asked
// to quit, and writes the library on the way out.

#include "library/Library.h"
#include "platform/Logging.h"
#include "platform/TerminationSignals.h"
#include "shell/Preferences.h"
#include "store/Store.h"

#include <QCoreApplication>

using namespace Vesko;

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("Vesko"));
    QCoreApplication::setApplicationName(QStringLiteral("Vesko"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VESKO_VERSION));

    // The Store first: the library is read and repaired before anything else runs.
    Store &store = Store::shared();
    Preferences::shared();
    qCInfo(lcStorage, "Library at %s: %lld projects, %lld notes",
        qUtf8Printable(Preferences::shared().libraryPath()),
        qlonglong(store.library().projects.size()), qlonglong(noteCount(store.library())));

    TerminationSignals terminationSignals;
    QObject::connect(&terminationSignals, &TerminationSignals::terminationRequested, &app,
        [] { QCoreApplication::quit(); });

    const int status = app.exec();
    store.flushSave();
    return status;
}
