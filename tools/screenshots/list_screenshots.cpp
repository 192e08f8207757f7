// SPDX-License-Identifier: GPL-3.0-or-later
//
// Draws the panel's list on the demo library into PNG files, in the light
// and the dark appearance: notes with Markdown, an expanded note with
// attachments, a note being edited, and a search with its marks. Runs
// offscreen.
//
//   list_screenshots LIBRARY.json OUTPUT-FOLDER

#include "ScreenshotSupport.h"
#include "SilentAttachmentActions.h"
#include "TestEnvironment.h"

#include "attachments/AttachmentStore.h"
#include "library/LibraryFile.h"
#include "library/LibraryWriter.h"
#include "panel/list/PanelListView.h"
#include "panel/window/PanelState.h"
#include "search/SearchIndex.h"
#include "shell/Preferences.h"
#include "store/Store.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cstdio>

using namespace Vesko;
using Test::wait;

namespace {

std::optional<QUuid> noteWithText(const Store &store, const QString &start)
{
    for (const Note &note : store.visibleNotes()) {
        if (note.text.startsWith(start))
            return note.id;
    }
    return std::nullopt;
}

} // namespace

int main(int argc, char *argv[])
{
    Test::IsolatedEnvironment environment;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication::setAttribute(Qt::AA_Use96Dpi, true);
    QApplication app(argc, argv);
    if (argc != 3) {
        std::fprintf(stderr, "usage: list_screenshots LIBRARY.json OUTPUT-FOLDER\n");
        return 2;
    }
    const QString libraryPath = QString::fromLocal8Bit(argv[1]);
    const std::optional<Library> library = Test::readLibraryFile(libraryPath);
    if (!library)
        return 1;
    const QString folder = QString::fromLocal8Bit(argv[2]);

    // The attachments' files: a picture of the same name beside the library
    // description where there is one, a few bytes otherwise.
    const QString source = QFileInfo(libraryPath).absolutePath();
    const QString attachmentsRoot = attachmentsFolder(libraryURL());
    for (const Project &project : library->projects) {
        for (const NoteSection &section : project.sections) {
            for (const Note &note : section.notes) {
                for (const NoteAttachment &attachment : note.attachments) {
                    const QString path = attachmentsRoot + u'/' + attachment.storedFileName;
                    QDir().mkpath(QFileInfo(path).absolutePath());
                    if (!QFile::copy(source + u'/' + attachment.fileName, path)) {
                        QFile placeholder(path);
                        if (placeholder.open(QIODevice::WriteOnly))
                            placeholder.write("# Release notes\n");
                    }
                }
            }
        }
    }

    Preferences preferences;
    LibraryWriter writer;
    AttachmentStore attachments;
    SearchIndex searchIndex;
    Test::inEachAppearance([&](const QString &name) {
        Store store(*library, {preferences, writer, attachments, searchIndex});
        PanelState state;
        Test::SilentAttachmentActions attachmentActions(store, attachments);
        Test::PanelSurface surface;
        surface.resize(340, 560);
        auto *list = new PanelListView(store, state, &surface);
        list->setAttachmentActions(attachmentActions.actions, attachmentActions.thumbnails);
        list->setGeometry(10, 10, 320, 540);
        surface.show();
        wait(50);

        auto shoot = [&](const QString &what) {
            wait(400); // the fills and the scroll ease out
            const QString path = folder + QStringLiteral("/list-%1-%2.png").arg(what, name);
            surface.grab().save(path);
            std::printf("wrote %s\n", qPrintable(path));
        };

        if (const std::optional<QUuid> selected = noteWithText(store, QStringLiteral("Rename")))
            store.setSelection({*selected}, *selected);
        shoot(QStringLiteral("markdown"));

        // The same note being edited: a box to write in, not a selection.
        if (const std::optional<QUuid> edited = noteWithText(store, QStringLiteral("Rename"))) {
            store.setEditingNoteID(*edited);
            shoot(QStringLiteral("editing"));
            store.setEditingNoteID(std::nullopt);
        }

        if (const std::optional<QUuid> expanded = noteWithText(store, QStringLiteral("Screens"))) {
            store.setSelection({*expanded}, *expanded);
            store.toggleExpanded(*expanded);
        }
        shoot(QStringLiteral("expanded"));

        store.setSelection({}, std::nullopt);
        store.setSearchText(QStringLiteral("the"));
        wait(300); // the search runs after a pause, off the main thread
        shoot(QStringLiteral("search"));
        surface.hide();
    });
    return 0;
}
