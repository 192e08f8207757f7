// SPDX-License-Identifier: GPL-3.0-or-later
//
// Draws the panel's list on the demo library into PNG files, in the light
// and the dark appearance: notes with Markdown, an expanded note with
// attachments, and a search with its marks. Runs offscreen.
//
//   list_screenshots LIBRARY.json OUTPUT-FOLDER

#include "TestEnvironment.h"

#include "attachments/AttachmentActions.h"
#include "attachments/AttachmentFileDialog.h"
#include "attachments/AttachmentStore.h"
#include "attachments/ThumbnailCache.h"
#include "library/LibraryCoding.h"
#include "library/LibraryFile.h"
#include "library/LibraryWriter.h"
#include "panel/PanelListView.h"
#include "panel/PanelState.h"
#include "platform/qt/QtDesktopFiles.h"
#include "platform/qt/QtPasteboardReader.h"
#include "search/SearchIndex.h"
#include "shell/Preferences.h"
#include "shell/Theme.h"
#include "store/Store.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPainter>
#include <QPainterPath>

#include <cstdio>

using namespace Vesko;

namespace {

//! The panel's rounded surface behind the list.
class Surface : public QWidget
{
protected:
    void paintEvent(QPaintEvent *) override
    {
        const ThemeColors colors = Theme::currentColors();
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        QPainterPath path;
        path.addRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 22, 22);
        QColor surface = colors.panelSurface;
        surface.setAlpha(255);
        painter.fillPath(path, surface);
        painter.setPen(QPen(colors.panelStroke, 1));
        painter.drawPath(path);
    }
};

//! Attachment actions over this program's own Store, with the desktop's
//! services; what they say goes nowhere.
struct Attachments : AttachmentFeedback
{
    Attachments(Store &store, AttachmentStore &files)
        : actions({store, files, chooser, pasteboard, desktop, *this})
    { }
    void toast(const QString &, const QString &) override { }

    AttachmentFileDialog chooser;
    QtPasteboardReader pasteboard;
    QtDesktopFiles desktop;
    AttachmentActions actions;
    ThumbnailCache thumbnails;
};

void wait(int milliseconds)
{
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < milliseconds)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
}

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
    QFile file(QString::fromLocal8Bit(argv[1]));
    if (!file.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "cannot read %s\n", argv[1]);
        return 1;
    }
    QString error;
    const std::optional<Library> library = decodeLibrary(file.readAll(), &error);
    if (!library) {
        std::fprintf(stderr, "cannot decode the library: %s\n", qPrintable(error));
        return 1;
    }
    const QString folder = QString::fromLocal8Bit(argv[2]);

    // The attachments' files: a picture of the same name beside the library
    // description where there is one, a few bytes otherwise.
    const QString source = QFileInfo(file.fileName()).absolutePath();
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
    for (const AppAppearance appearance : {AppAppearance::Light, AppAppearance::Dark}) {
        const QString name
            = appearance == AppAppearance::Light ? QStringLiteral("light") : QStringLiteral("dark");
        Theme::applyAppearance(appearance);
        Store store(*library, {preferences, writer, attachments, searchIndex});
        PanelState state;
        Attachments attachmentActions(store, attachments);
        Surface surface;
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
    }
    return 0;
}
