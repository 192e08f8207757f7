// SPDX-License-Identifier: GPL-3.0-or-later
//
// The attachment views with real image files: thumbnails made off the main
// thread and read once per file and side, the symbol kept where no image can
// be had and shown again when the file goes, the tiles' texts and menu
// acting on a real Store, the pending strip as a screen reader meets it, the
// file dialog that blocks no window, and the composer's import with its toast.

#include "SilentAttachmentActions.h"
#include "StoreFixture.h"
#include "TestFiles.h"
#include "WidgetTestMain.h"

#include "attachments/AttachmentFileDialog.h"
#include "attachments/AttachmentListView.h"
#include "attachments/AttachmentThumbnailView.h"
#include "attachments/AttachmentTile.h"
#include "attachments/DesktopAttachments.h"
#include "attachments/PendingAttachmentStrip.h"
#include "attachments/ThumbnailCache.h"
#include "library/LibraryFile.h"
#include "panel/window/PanelCommands.h"
#include "shell/Toast.h"

#include <QAccessible>
#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <QMenu>
#include <QScreen>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QToolButton>

using namespace Vesko;

namespace {

// The side in device pixels a thumbnail of \a view is made at: twice the
// view's side (30 collapsed, 38 expanded) at the screen's pixel ratio.
int thumbnailSide(const QWidget &view, bool expanded)
{
    const QScreen *screen = view.screen();
    return qCeil(2 * (expanded ? 38 : 30) * (screen ? screen->devicePixelRatio() : 2.0));
}

QImage filled(int width, int height, QColor colour)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(colour);
    return image;
}

bool near(QColor a, QColor b)
{
    return qAbs(a.red() - b.red()) < 12 && qAbs(a.green() - b.green()) < 12
        && qAbs(a.blue() - b.blue()) < 12;
}

NoteAttachment recordFor(const QString &storedFileName, NoteAttachment::Kind kind,
    std::optional<QString> type = std::nullopt, std::optional<qint64> bytes = std::nullopt)
{
    NoteAttachment attachment;
    attachment.id = QUuid::createUuid();
    attachment.fileName = QFileInfo(storedFileName).fileName();
    attachment.storedFileName = storedFileName;
    attachment.kind = kind;
    attachment.contentTypeIdentifier = type;
    attachment.byteCount = bytes;
    attachment.createdAt = QDateTime::currentDateTimeUtc();
    return attachment;
}

} // namespace

class AttachmentViewsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void thumbnails_data();
    void thumbnails();
    void largeImageDecodesOffTheMainThread();
    void manyTilesReadEachFileOnce();
    void removedFileShowsTheSymbol();
    void changedFileIsReadAgain_data();
    void changedFileIsReadAgain();
    void sizeText_data();
    void sizeText();
    void listTakesNoRoomWrapsAndItsTilesAct();
    void pendingStripRemovesItsChips();
    void fileDialogDoesNotBlock();
    void newNoteImportFailureIsToasted();

private:
    //! Writes \a image as \a storedFileName into the attachments folder.
    QString saveImage(const QString &storedFileName, const QImage &image, const char *format);
    QString writeBytes(const QString &storedFileName, const QByteArray &bytes);

    QString m_folder;
    std::unique_ptr<Test::StoreFixture> m_fixture;
    Store *m_store = nullptr;
    AttachmentStore *m_files = nullptr;
    std::unique_ptr<Test::ScriptedAttachmentActions> m_attachments;
    std::unique_ptr<ThumbnailCache> m_cache;
};

void AttachmentViewsTest::init()
{
    m_fixture = std::make_unique<Test::StoreFixture>();
    m_store = &m_fixture->make(makeDefaultLibrary());
    m_files = &m_fixture->attachments();
    m_folder = attachmentsFolder(libraryURL());
    QDir().mkpath(m_folder);
    m_attachments = std::make_unique<Test::ScriptedAttachmentActions>(*m_store, *m_files);
    m_cache = std::make_unique<ThumbnailCache>();
}

void AttachmentViewsTest::cleanup()
{
    m_cache.reset();
    m_attachments.reset();
    m_fixture.reset();
}

QString AttachmentViewsTest::saveImage(
    const QString &storedFileName, const QImage &image, const char *format)
{
    const QString path = m_folder + u'/' + storedFileName;
    QDir().mkpath(QFileInfo(path).absolutePath());
    image.save(path, format);
    return path;
}

QString AttachmentViewsTest::writeBytes(const QString &storedFileName, const QByteArray &bytes)
{
    Test::writeFile(m_folder + u'/' + storedFileName, bytes);
    return m_folder + u'/' + storedFileName;
}

void AttachmentViewsTest::thumbnails_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QColor>("colour"); // invalid: not an image

    QTest::newRow("png") << "png" << QColor(220, 20, 20);
    QTest::newRow("jpeg") << "jpeg" << QColor(20, 180, 20);
    QTest::newRow("text file") << "text" << QColor();
}

void AttachmentViewsTest::thumbnails()
{
    QFETCH(QString, file);
    QFETCH(QColor, colour);

    NoteAttachment attachment;
    QString path;
    if (colour.isValid()) {
        const QString name = QStringLiteral("A/picture.") + file;
        path = saveImage(name, filled(300, 200, colour), file == u"png" ? "PNG" : "JPEG");
        attachment = recordFor(name, NoteAttachment::Kind::Image, QStringLiteral("image/") + file);
    } else {
        path = writeBytes(QStringLiteral("D/notes.txt"), "plain words");
        attachment = recordFor(QStringLiteral("D/notes.txt"), NoteAttachment::Kind::File,
            QStringLiteral("text/plain"));
    }

    AttachmentThumbnailView view(*m_cache);
    view.setAttachment(attachment, path);
    view.show();
    if (colour.isValid()) {
        QVERIFY(QTest::qWaitFor([&] { return view.hasImage(); }, 10000));
        // Twice the collapsed view's side, filling the square.
        const int side = thumbnailSide(view, false);
        QCOMPARE(view.image().size(), QSize(side, side));
        QVERIFY(near(view.image().pixelColor(side / 2, side / 2), colour));
    } else {
        QCoreApplication::processEvents();
        QVERIFY(!view.hasImage());
        QCOMPARE(m_cache->readCount(), 0); // files are never decoded
    }
}

void AttachmentViewsTest::largeImageDecodesOffTheMainThread()
{
    // 6100 × 6100 pixels take 149 MB decoded: more than image readers accept
    // by default (128 MB), and a BMP, unlike a PNG or a JPEG, is decoded
    // whole before it is scaled.
    const QColor colour(200, 120, 0);
    const QString name = QStringLiteral("L/huge.bmp");
    const QString path = saveImage(name, filled(6100, 6100, colour), "BMP");
    AttachmentThumbnailView view(*m_cache);
    view.setAttachment(
        recordFor(name, NoteAttachment::Kind::Image, QStringLiteral("image/bmp")), path);
    view.show();
    // The request came back at once, without the image.
    QVERIFY(!view.hasImage());
    QCOMPARE(m_cache->state(path), ThumbnailCache::State::Pending);

    // Events keep flowing while the image is decoded elsewhere.
    bool turned = false;
    bool turnedBeforeImage = false;
    QTimer::singleShot(0, [&] {
        turned = true;
        turnedBeforeImage = !view.hasImage();
    });
    QVERIFY(QTest::qWaitFor(
        [&] { return view.hasImage() || m_cache->state(path) == ThumbnailCache::State::Failed; },
        60000));
    QVERIFY(view.hasImage());
    QVERIFY(turned);
    QVERIFY(turnedBeforeImage);
    QCOMPARE(view.image().size(), QSize(thumbnailSide(view, false), thumbnailSide(view, false)));
    QVERIFY(near(view.image().pixelColor(5, 5), colour));
}

void AttachmentViewsTest::manyTilesReadEachFileOnce()
{
    QList<NoteAttachment> attachments;
    for (int file = 0; file < 10; ++file) {
        const QString name = QStringLiteral("F%1/image.png").arg(file);
        saveImage(name, filled(120, 90, QColor::fromHsv(file * 30, 200, 200)), "PNG");
        attachments.append(
            recordFor(name, NoteAttachment::Kind::Image, QStringLiteral("image/png")));
    }
    QList<NoteAttachment> many;
    for (int i = 0; i < 1000; ++i)
        many.append(attachments.at(i % 10));

    AttachmentListView list(m_attachments->actions, *m_cache);
    list.resize(600, 400);
    list.setAttachments(many, QUuid::createUuid());
    list.show();
    QCOMPARE(list.tiles().size(), 1000);
    QVERIFY(QTest::qWaitFor(
        [&] {
            return std::all_of(list.tiles().cbegin(), list.tiles().cend(),
                [](AttachmentTile *tile) { return tile->thumbnail()->hasImage(); });
        },
        30000));
    QCOMPARE(m_cache->readCount(), 10);

    // Expanded tiles want larger images: each file is read once more, not once per tile.
    list.setExpanded(true);
    QVERIFY(QTest::qWaitFor(
        [&] {
            return std::all_of(
                list.tiles().cbegin(), list.tiles().cend(), [&](AttachmentTile *tile) {
                    return tile->thumbnail()->image().width() == thumbnailSide(list, true);
                });
        },
        30000));
    QCOMPARE(m_cache->readCount(), 20);
    // Collapsing again makes do with what was read.
    list.setExpanded(false);
    QCoreApplication::processEvents();
    QCOMPARE(m_cache->readCount(), 20);
}

void AttachmentViewsTest::removedFileShowsTheSymbol()
{
    // The cache hears of removals as the program's shared cache does.
    m_files->observeRemovals(
        m_cache.get(), [cache = m_cache.get()](const QStringList &files) { cache->forget(files); });
    const QUuid noteID = m_store->addNote(QStringLiteral("note"))->id;
    const NoteAttachment record = recordFor(
        QStringLiteral("R/photo.png"), NoteAttachment::Kind::Image, QStringLiteral("image/png"));
    const QString path = saveImage(record.storedFileName, filled(80, 80, Qt::red), "PNG");
    m_store->addAttachments({record}, noteID);

    auto view = std::make_unique<AttachmentThumbnailView>(*m_cache);
    view->setAttachment(record, path);
    view->show();
    QVERIFY(QTest::qWaitFor([&] { return view->hasImage(); }, 10000));

    // Removing the attachment deletes its file at once, while undo brings the
    // record back: its tile shows the symbol, never the old picture.
    m_store->removeAttachment(record.id, noteID);
    m_files->waitForIdle();
    QVERIFY(!QFileInfo::exists(path));
    QVERIFY(QTest::qWaitFor([&] { return !view->hasImage(); }, 10000));
    m_store->undo();
    QCOMPARE(m_store->note(noteID)->attachments, QList<NoteAttachment> {record});
    view = std::make_unique<AttachmentThumbnailView>(*m_cache);
    view->setAttachment(record, path);
    view->show();
    QVERIFY(!view->hasImage());
    QVERIFY(QTest::qWaitFor(
        [&] { return m_cache->state(path) == ThumbnailCache::State::Failed; }, 10000));
    QCoreApplication::processEvents();
    QVERIFY(!view->hasImage());
}

void AttachmentViewsTest::changedFileIsReadAgain_data()
{
    QTest::addColumn<bool>("firstDecodes");
    QTest::newRow("an image replaced by another") << true;
    QTest::newRow("a broken image mended") << false;
}

void AttachmentViewsTest::changedFileIsReadAgain()
{
    QFETCH(bool, firstDecodes);
    const NoteAttachment record = recordFor(
        QStringLiteral("C/picture.png"), NoteAttachment::Kind::Image, QStringLiteral("image/png"));
    const QString path = firstDecodes
        ? saveImage(record.storedFileName, filled(90, 90, Qt::blue), "PNG")
        : writeBytes(record.storedFileName, "\x89PNG\r\n\x1a\n cut short");
    {
        AttachmentThumbnailView first(*m_cache);
        first.setAttachment(record, path);
        first.show();
        QVERIFY(QTest::qWaitFor(
            [&] { return m_cache->state(path) != ThumbnailCache::State::Pending; }, 10000));
        QCOMPARE(first.hasImage(), firstDecodes);
        QCOMPARE(m_cache->state(path) == ThumbnailCache::State::Failed, !firstDecodes);
        if (!firstDecodes) {
            // Asked again while it is unchanged, a file that failed is not read again.
            bool answered = false;
            m_cache->thumbnail(path, thumbnailSide(first, false), &first,
                [&answered](const QImage &) { answered = true; });
            QVERIFY(QTest::qWaitFor([&] { return answered; }, 10000));
            QCOMPARE(m_cache->readCount(), 1);
        }
    }

    // Another file under the same name (written beside it and renamed over
    // it, as programs save): a view of it gets its picture.
    const QString beside = m_folder + QStringLiteral("/C/new.png");
    filled(70, 50, Qt::green).save(beside, "PNG");
    QVERIFY(
        ::rename(QFile::encodeName(beside).constData(), QFile::encodeName(path).constData()) == 0);
    AttachmentThumbnailView view(*m_cache);
    view.setAttachment(record, path);
    view.show();
    QVERIFY(QTest::qWaitFor(
        [&] { return view.hasImage() && near(view.image().pixelColor(20, 20), Qt::green); },
        10000));
    QCOMPARE(m_cache->readCount(), 2);

    // A view that asks while an earlier look at the file is on its way is not
    // answered by that look alone: the file may have changed in between.
    m_cache->thumbnail(path, thumbnailSide(view, false));
    m_cache->waitForWorker(); // it has looked at the file; the answer waits for the event loop
    filled(70, 50, Qt::red).save(beside, "PNG");
    QVERIFY(
        ::rename(QFile::encodeName(beside).constData(), QFile::encodeName(path).constData()) == 0);
    AttachmentThumbnailView late(*m_cache);
    late.setAttachment(record, path);
    late.show();
    QVERIFY(QTest::qWaitFor(
        [&] { return late.hasImage() && near(late.image().pixelColor(20, 20), Qt::red); }, 10000));
}

void AttachmentViewsTest::sizeText_data()
{
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<QString>("text");
    // Decimal units: 1 kB is 1000 bytes.
    QTest::newRow("bytes") << qint64(999) << "999 bytes";
    QTest::newRow("kilobytes") << qint64(1500) << "1.5 kB";
    QTest::newRow("megabytes") << qint64(1234567) << "1.2 MB";
    QTest::newRow("gigabytes") << qint64(5000000000) << "5.0 GB";
}

void AttachmentViewsTest::sizeText()
{
    QFETCH(qint64, bytes);
    QFETCH(QString, text);
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    AttachmentTile tile(m_attachments->actions, *m_cache);
    tile.setAttachment(
        recordFor(QStringLiteral("S/size.bin"), NoteAttachment::Kind::File, std::nullopt, bytes),
        QUuid::createUuid(), m_folder + QStringLiteral("/S/size.bin"));
    QCOMPARE(tile.sizeText(), QString()); // only when expanded
    QCOMPARE(tile.thumbnail()->side(), 30);
    tile.setExpanded(true);
    QCOMPARE(tile.sizeText(), text);
    QCOMPARE(tile.thumbnail()->side(), 38);
    QCOMPARE(tile.toolTip(), QStringLiteral("Open size.bin"));

    tile.setAttachment(
        recordFor(QStringLiteral("S/no size.bin"), NoteAttachment::Kind::File), QUuid(), {});
    QCOMPARE(tile.sizeText(), QString());
    QCOMPARE(tile.toolTip(), QStringLiteral("Open no size.bin"));
}

void AttachmentViewsTest::listTakesNoRoomWrapsAndItsTilesAct()
{
    QWidget window;
    AttachmentListView list(m_attachments->actions, *m_cache, &window);
    window.show();
    QVERIFY(list.isHidden());
    QCOMPARE(list.sizeHint(), QSize(0, 0));

    const QUuid noteID = m_store->addNote(QStringLiteral("note"))->id;
    QList<NoteAttachment> records;
    for (int i = 0; i < 4; ++i) {
        records.append(recordFor(QStringLiteral("W%1/a rather long file name number %1.txt").arg(i),
            NoteAttachment::Kind::File));
        writeBytes(records.last().storedFileName, QByteArray::number(i));
    }
    m_store->addAttachments(records, noteID);
    list.setAttachments(m_store->note(noteID)->attachments, noteID);
    QVERIFY(!list.isHidden());
    const AttachmentTile *tile = list.tiles().first();
    const int oneLine = tile->sizeHint().height();
    QCOMPARE(list.heightForWidth(100000), oneLine);
    // Too narrow for two tiles side by side: one line each.
    const int narrow = tile->sizeHint().width() + 10;
    QCOMPARE(list.heightForWidth(narrow), 4 * oneLine + 3 * AttachmentListView::spacing);

    list.resize(list.sizeHint());
    QTest::mouseClick(list.tiles().at(1), Qt::LeftButton);
    const auto pathOf = [&](int i) { return m_folder + u'/' + records.at(i).storedFileName; };
    QCOMPARE(m_attachments->opened, QStringList {pathOf(1)});

    QMenu menu;
    fillAttachmentMenu(
        menu, m_attachments->actions, records.last(), noteID, QStringLiteral("Remove Attachment"));
    QStringList entries;
    for (QAction *action : menu.actions())
        entries.append(action->isSeparator() ? QStringLiteral("-") : action->text());
    QCOMPARE(entries, QStringList({"Open", "Show in Files", "-", "Remove Attachment"}));
    menu.actions().at(0)->trigger();
    menu.actions().at(1)->trigger();
    QCOMPARE(m_attachments->opened.last(), pathOf(3));
    QCOMPARE(m_attachments->revealed, QStringList {pathOf(3)});

    const qsizetype undoSteps = m_store->undoStepCount();
    menu.actions().at(3)->trigger();
    QCOMPARE(m_store->note(noteID)->attachments, records.mid(0, 3));
    QCOMPARE(m_store->undoStepCount(), undoSteps + 1);
    m_files->waitForIdle();
    QVERIFY(!QFileInfo::exists(m_folder + QStringLiteral("/W3")));
    QVERIFY(QFileInfo::exists(pathOf(2)));

    // Tiles are kept when the list is given records again.
    const QList<AttachmentTile *> before = list.tiles();
    list.setAttachments(m_store->note(noteID)->attachments, noteID);
    QCOMPARE(list.tiles(), before.mid(0, 3));

    list.setAttachments({}, noteID);
    QVERIFY(list.isHidden());
    QVERIFY(list.tiles().isEmpty());
}

void AttachmentViewsTest::pendingStripRemovesItsChips()
{
    QWidget window;
    PendingAttachmentStrip strip(&window);
    window.show();
    QVERIFY(strip.isHidden());

    const QList<QUrl> urls = {QUrl::fromLocalFile(QStringLiteral("/tmp/a.txt")),
        QUrl::fromLocalFile(QStringLiteral("/tmp/b photo.png")),
        QUrl::fromLocalFile(QStringLiteral("/home/c.pdf"))};
    QSignalSpy changed(&strip, &PendingAttachmentStrip::urlsChanged);
    strip.setUrls(urls);
    QVERIFY(!strip.isHidden());
    QCOMPARE(strip.chipNames(), QStringList({"a.txt", "b photo.png", "c.pdf"}));
    // What a screen reader finds inside a chip: the name and the button,
    // not the paperclip beside them.
    QAccessibleInterface *chip = QAccessible::queryAccessibleInterface(
        strip.findChildren<QToolButton *>().value(0)->parentWidget());
    QVERIFY(chip);
    QStringList children;
    for (int i = 0; i < chip->childCount(); ++i)
        children.append(QStringLiteral("%1:%2")
                            .arg(int(chip->child(i)->role()))
                            .arg(chip->child(i)->text(QAccessible::Name)));
    QCOMPARE(children,
        QStringList({QStringLiteral("%1:a.txt").arg(int(QAccessible::StaticText)),
            QStringLiteral("%1:Remove a.txt").arg(int(QAccessible::Button))}));

    QToolButton *remove = nullptr;
    for (QToolButton *button : strip.findChildren<QToolButton *>()) {
        if (button->accessibleName() == u"Remove b photo.png")
            remove = button;
    }
    QVERIFY(remove);
    QTest::mouseClick(remove, Qt::LeftButton);
    QCOMPARE(strip.urls(), QList<QUrl>({urls.at(0), urls.at(2)}));
    QCOMPARE(strip.chipNames(), QStringList({"a.txt", "c.pdf"}));
    QCOMPARE(changed.count(), 2);

    strip.setUrls({});
    QVERIFY(strip.isHidden());

    // Records: the strip asks, and the owner decides.
    const NoteAttachment record
        = recordFor(QStringLiteral("P/made.txt"), NoteAttachment::Kind::File);
    QSignalSpy requested(&strip, &PendingAttachmentStrip::removeRequested);
    strip.setAttachments({record});
    QCOMPARE(strip.chipNames(), QStringList {"made.txt"});
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); // the old chips go
    const QList<QToolButton *> buttons = strip.findChildren<QToolButton *>();
    QCOMPARE(buttons.size(), 1);
    QCOMPARE(buttons.first()->accessibleName(), QStringLiteral("Remove made.txt"));
    QTest::mouseClick(buttons.first(), Qt::LeftButton);
    QCOMPARE(requested.count(), 1);
    QCOMPARE(requested.first().first().value<QUuid>(), record.id);
}

void AttachmentViewsTest::fileDialogDoesNotBlock()
{
    const QString folder = Test::IsolatedEnvironment::current().root() + QStringLiteral("/pick");
    QDir().mkpath(folder);
    for (const char *name : {"one.txt", "two.txt"}) {
        QFile file(folder + u'/' + QLatin1String(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
    }

    // The window the dialog is asked from, as the panel is.
    QWidget panel;
    panel.show();
    panel.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&panel));

    AttachmentFileDialog chooser;
    std::optional<QList<QUrl>> chosen;
    chooser.chooseFiles([&](const QList<QUrl> &files) { chosen = files; });
    // Back at once, with the dialog open above the panel, which it does not block.
    QVERIFY(!chosen);
    QFileDialog *dialog = chooser.dialog();
    QVERIFY(dialog);
    QVERIFY(QTest::qWaitForWindowExposed(dialog));
    QCOMPARE(dialog->parentWidget(), &panel);
    QCOMPARE(dialog->windowModality(), Qt::NonModal);
    QCOMPARE(QApplication::activeModalWidget(), nullptr);
    QCOMPARE(dialog->windowTitle(), QStringLiteral("Add Attachments"));
    QCOMPARE(dialog->labelText(QFileDialog::Accept), QStringLiteral("Add"));
    QCOMPARE(dialog->fileMode(), QFileDialog::ExistingFiles);

    dialog->setDirectory(folder);
    // As the user types them.
    auto *nameEdit = dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
    QVERIFY(nameEdit);
    nameEdit->setText(QStringLiteral("\"one.txt\" \"two.txt\""));
    static_cast<QDialog *>(dialog)->accept();
    QVERIFY(QTest::qWaitFor([&] { return chosen.has_value(); }, 5000));
    QCOMPARE(*chosen,
        QList<QUrl>({QUrl::fromLocalFile(folder + QStringLiteral("/one.txt")),
            QUrl::fromLocalFile(folder + QStringLiteral("/two.txt"))}));

    chosen.reset();
    chooser.chooseFiles([&](const QList<QUrl> &files) { chosen = files; });
    QVERIFY(chooser.dialog());
    chooser.dialog()->reject();
    QVERIFY(QTest::qWaitFor([&] { return chosen.has_value(); }, 5000));
    QVERIFY(chosen->isEmpty());
}

void AttachmentViewsTest::newNoteImportFailureIsToasted()
{
    // The composer's files go through the program's commands, as in the program.
    PanelCommands commands;
    installAttachmentCommands(commands);
    bool answered = false;
    commands.importForNewNote({QUrl::fromLocalFile(m_folder + QStringLiteral("/nowhere.txt"))},
        [&](const std::optional<QList<NoteAttachment>> &records) {
            QVERIFY(!records);
            answered = true;
        });
    QVERIFY(QTest::qWaitFor([&] { return answered; }, 10000));
    QCOMPARE(ToastPresenter::shared().currentMessage(), QStringLiteral("Could Not Add Attachment"));
}

VESKO_WIDGET_TEST_MAIN(AttachmentViewsTest)

#include "tst_attachmentviews.moc"
