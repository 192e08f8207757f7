// SPDX-License-Identifier: GPL-3.0-or-later
//
// Starts like the program (the Store of the process, over the library file
// that the settings name) and does one thing, so that a test can kill it:
//
//   store_task use PATH      names PATH as the library file in the settings
//   store_task move TARGET   prints "working", moves the library to TARGET,
//                            prints "done" once the old one is gone
//   store_task import FILE.. prints "working", imports the files to the first
//                            note, prints "done" once the library is saved
//   store_task start         prints "library PATH NOTES ATTACHMENTS" for the
//                            file in use, once what a start cleans is clean
//   store_task save-loop PATH N  writes the numbered states N, N+1, ... to PATH
//                            through the program's writer until it is killed,
//                            printing "saved N" once each is on disk

#include "LibraryGenerator.h"

#include "attachments/AttachmentStore.h"
#include "library/Library.h"
#include "library/LibraryWriter.h"
#include "shell/Preferences.h"
#include "store/Store.h"

#include <QCoreApplication>
#include <QUrl>

#include <cstdio>
#include <cstdlib>

using namespace Vesko;

namespace {

void finish(const QString &failure)
{
    if (!failure.isEmpty()) {
        std::fprintf(stderr, "%s\n", qPrintable(failure));
        QCoreApplication::exit(1);
        return;
    }
    AttachmentStore::shared().waitForIdle();
    std::puts("done");
    std::fflush(stdout);
    QCoreApplication::exit(0);
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const QString command = arguments.value(1);
    if (command == u"use" && arguments.size() == 3) {
        Preferences::shared().setLibraryPath(arguments.at(2));
        Preferences::shared().flush();
        return 0;
    }
    if (command == u"save-loop" && arguments.size() == 4) {
        for (int state = arguments.at(3).toInt();; ++state) {
            if (auto failure
                = LibraryWriter::shared().writeNow(Test::numberedLibrary(state), arguments.at(2))) {
                std::fprintf(stderr, "%s\n", qPrintable(*failure));
                return 1;
            }
            std::printf("saved %d\n", state);
            std::fflush(stdout);
        }
    }
    if (command != u"start" && command != u"move" && command != u"import") {
        std::fprintf(stderr,
            "usage: store_task use PATH | move TARGET | import FILE... | start | save-loop PATH "
            "N\n");
        return 2;
    }
    Store &store = Store::shared();
    if (command == u"start") {
        AttachmentStore::shared().waitForIdle();
        qsizetype attachments = 0;
        for (const Project &project : store.library().projects) {
            for (const NoteSection &section : project.sections) {
                for (const Note &note : section.notes)
                    attachments += note.attachments.size();
            }
        }
        std::printf("library %s %lld %lld\n", qPrintable(Preferences::shared().libraryURL()),
            qlonglong(noteCount(store.library())), qlonglong(attachments));
        // The answer is out: end here, without the exit-time teardown racing
        // the search index's thread, which may still be indexing.
        std::fflush(stdout);
        std::_Exit(0);
    }
    std::puts("working");
    std::fflush(stdout);
    if (command == u"move") {
        QObject::connect(&store, &Store::libraryMoveFinished, &app, &finish);
        store.moveLibrary(arguments.value(2));
    } else {
        QList<QUrl> files;
        for (const QString &file : arguments.mid(2))
            files.append(QUrl::fromLocalFile(file));
        const QUuid noteID = store.library().projects.at(0).sections.at(0).notes.at(0).id;
        store.importAttachments(files, noteID, [&store](const ImportResult &result) {
            store.flushSave();
            finish(result.error.value_or(QString()));
        });
    }
    return QCoreApplication::exec();
}
