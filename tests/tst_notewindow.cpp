// SPDX-License-Identifier: GPL-3.0-or-later
//
// Note windows on a real Store, in process: one window per note, the title
// cut from the note's text, typing that reaches the Store at every key, the
// bar: preview of the inline Markdown, done toggle, copy and attachment
// import, the window of a deleted note, the remembered frame and the
// appearance, taken at creation and followed while the window is open.

#include "SilentAttachmentActions.h"
#include "StoreFixture.h"
#include "WidgetTestMain.h"

#include "attachments/AttachmentListView.h"
#include "attachments/AttachmentTile.h"
#include "attachments/ThumbnailCache.h"
#include "library/LibraryFile.h"
#include "panel/notewindow/NoteEditorView.h"
#include "panel/notewindow/NoteWindow.h"
#include "panel/notewindow/NoteWindowManager.h"
#include "panel/window/PanelCommands.h"
#include "platform/SettingsFile.h"
#include "shell/Theme.h"
#include "shell/Toast.h"
#include "store/NoteTitle.h"

#include <QClipboard>
#include <QLabel>
#include <QPlainTextEdit>
#include <QSettings>
#include <QTemporaryDir>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTextCursor>
#include <QToolButton>

using namespace Vesko;
using Test::idFor;

namespace {

const QString ellipsis = QStringLiteral("…");

//! The note's text in the Store, or "(gone)".
QString noteText(const Store &store, const QString &letter)
{
    const std::optional<Note> note = store.note(idFor(letter));
    return note ? note->text : QStringLiteral("(gone)");
}

} // namespace

class NoteWindowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void titles_data();
    void titles();
    void oneWindowPerNote();
    void deletedNoteLeavesAHarmlessWindow();
    void barButtonsAct();
    void addAttachment_data();
    void addAttachment();
    void frameIsRememberedAcrossOpeningsAndRestarts();
    void appearanceFollowed();

private:
    NoteWindow *openNote(const QString &letter);

    std::unique_ptr<Test::StoreFixture> m_fixture;
    std::unique_ptr<Test::ScriptedAttachmentActions> m_attachments;
    std::unique_ptr<NoteWindowManager> m_manager;
    QList<QUrl> m_chosen;
};

void NoteWindowTest::init()
{
    m_fixture = std::make_unique<Test::StoreFixture>();
    PanelCommands::shared().setHooks({});
    m_chosen.clear();
}

void NoteWindowTest::cleanup()
{
    m_manager.reset();
    m_attachments.reset();
    m_fixture.reset();
}

NoteWindow *NoteWindowTest::openNote(const QString &letter)
{
    if (!m_manager) {
        m_attachments = std::make_unique<Test::ScriptedAttachmentActions>(
            m_fixture->store(), m_fixture->attachments());
        m_attachments->chosen = m_chosen;
        m_manager = std::make_unique<NoteWindowManager>(
            m_fixture->store(), m_fixture->preferences(), m_attachments->actions);
    }
    return m_manager->open(idFor(letter));
}

void NoteWindowTest::titles_data()
{
    // clang-format off
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("title");

    const QString a44 = QString(44, u'a');
    const QString a45 = QString(45, u'a');
    QTest::newRow("strong emphasis markers go") << "**Plan** the _week_" << "Plan the week";
    QTest::newRow("a heading marker stays") << "# Heading" << "# Heading";
    QTest::newRow("two lines joined by a space") << "first line\nsecond line"
                                                 << "first line second line";
    QTest::newRow("45 characters stay whole") << a45 << a45;
    QTest::newRow("46 characters are cut to 45") << a45 + u'b' << a45 + ellipsis;
    QTest::newRow("50 characters are cut to 45")
        << QString(50, u'c') << QString(45, u'c') + ellipsis;
    QTest::newRow("a space at 45 goes before the ellipsis")
        << a44 + u' ' + QString(10, u'b') << a44 + ellipsis;
    // 👍🏽 is one character of four code units; a cut by code units would split it.
    QTest::newRow("characters as the reader counts them") << a44 + QStringLiteral("👍🏽")
            + QStringLiteral("tail") << a44 + QStringLiteral("👍🏽") + ellipsis;
    // clang-format on
}

void NoteWindowTest::titles()
{
    QFETCH(QString, text);
    QFETCH(QString, title);
    QCOMPARE(noteWindowTitle(text), title);
}

void NoteWindowTest::oneWindowPerNote()
{
    Store &store = m_fixture->make({QStringLiteral("*Inbox:a,b")});
    store.updateNote(
        idFor(QStringLiteral("a")), QStringLiteral("**Call** Anna\nabout [*] the trip"));
    NoteWindow *first = openNote(QStringLiteral("a"));
    QVERIFY(first);
    QVERIFY(QTest::qWaitForWindowExposed(first));
    QCOMPARE(
        first->objectName(), idFor(QStringLiteral("a")).toString(QUuid::WithoutBraces).toUpper());
    // The title is the note's at opening; "[*]" is doubled so that Qt shows it
    // as typed rather than as a modified mark.
    QCOMPARE(first->windowTitle(), QStringLiteral("Call Anna about [*][*] the trip"));
    QPlainTextEdit *editor = first->editor()->editor();
    QTRY_COMPARE_WITH_TIMEOUT(QApplication::focusWidget(), editor, Test::patience);
    QString expected = QStringLiteral("**Call** Anna\nabout [*] the trip");
    for (QChar key : QStringLiteral(" soon ")) {
        QTest::keyClick(editor, key.toLatin1());
        expected += key;
        // At once, with no pause of the window's own: the panel's row follows.
        // A space at the end stays in the editor; the library keeps the text trimmed.
        QCOMPARE(noteText(store, QStringLiteral("a")), expected.trimmed());
        QCOMPARE(store.rows().at(1).note().text, expected.trimmed());
    }
    QCOMPARE(first->editor()->text(), expected);
    QVERIFY(store.hasPendingSave());
    QCOMPARE(first->windowTitle(), QStringLiteral("Call Anna about [*][*] the trip"));

    NoteWindow *other = openNote(QStringLiteral("b"));
    QVERIFY(other && other != first);
    QTRY_COMPARE_WITH_TIMEOUT(QApplication::activeWindow(), other, Test::patience);

    // The second open of a note brings its window forward; no new one is made.
    QCOMPARE(openNote(QStringLiteral("a")), first);
    QTRY_COMPARE_WITH_TIMEOUT(QApplication::activeWindow(), first, Test::patience);
    QCOMPARE(m_manager->openNoteIDs().size(), 2);
    const QWidgetList windows = QApplication::topLevelWidgets();
    QCOMPARE(std::count_if(windows.begin(), windows.end(),
                 [](QWidget *w) { return qobject_cast<NoteWindow *>(w) && w->isVisible(); }),
        2);

    // A note that is not there opens nothing.
    QVERIFY(!openNote(QStringLiteral("z")));
    QCOMPARE(m_manager->openNoteIDs().size(), 2);
}

//! A deleted note's window stays harmless and edits the note again after an
//! undo; clearing the text deletes a note only when it has no attachments.
void NoteWindowTest::deletedNoteLeavesAHarmlessWindow()
{
    Library library;
    library.projects.append(Test::describedProject(QStringLiteral("*Inbox:a,b")));
    library.activeProjectID = library.projects.first().id;
    // Records of files that need not exist.
    library.projects[0].sections[0].notes[0].attachments
        = Test::noteWith(QString(), {"plan.pdf", "map.png"}).attachments;
    Store &store = m_fixture->make(library);
    store.updateNote(idFor(QStringLiteral("a")), QStringLiteral("kept on screen"));
    ThumbnailCache &cache = ThumbnailCache::shared();
    const int readsBefore = cache.readCount();
    NoteWindow *window = openNote(QStringLiteral("a"));
    NoteEditorView *view = window->editor();
    view->setShowsPreview(true);
    QCOMPARE(view->attachmentList()->tiles().size(), 2);
    QVERIFY(view->attachmentList()->isVisibleTo(view));
    store.deleteNotes({idFor(QStringLiteral("a"))});

    // The tiles go with the note, the text stays and can be typed into.
    QCOMPARE(view->attachmentList()->tiles().size(), 0);
    QVERIFY(!view->attachmentList()->isVisibleTo(view));
    const Library before = store.library();
    const qsizetype undoSteps = store.undoStepCount();
    QVERIFY(window->isVisible());
    QCOMPARE(view->text(), QStringLiteral("kept on screen"));
    QTest::keyClicks(view->editor(), QStringLiteral(" and typed"));
    QCOMPARE(view->text(), QStringLiteral("kept on screen and typed"));
    QVERIFY(!view->doneButton()->isEnabled());
    QVERIFY(!view->attachButton()->isEnabled());
    QTest::mouseClick(view->doneButton(), Qt::LeftButton);
    QCOMPARE(store.library(), before);
    QCOMPARE(store.undoStepCount(), undoSteps);

    // Undo brings the note back, its tiles, and a window that edits it again.
    store.undo();
    QCOMPARE(noteText(store, QStringLiteral("a")), QStringLiteral("kept on screen"));
    QCOMPARE(view->attachmentList()->tiles().size(), 2);
    QVERIFY(view->doneButton()->isEnabled());
    QTest::keyClick(view->editor(), u'!');
    QCOMPARE(noteText(store, QStringLiteral("a")), QStringLiteral("kept on screen and typed!"));
    // A tile's file that is missing has no thumbnail: the failure is
    // remembered, and the next request is told so without another read.
    const QString missing = attachmentsFolder(libraryURL()) + QStringLiteral("/gone/map.png");
    int told = 0;
    QObject receiver;
    const auto ask = [&] {
        cache.thumbnail(
            missing, 16, &receiver, [&](const QImage &image) { told += image.isNull(); });
    };
    ask();
    QTRY_COMPARE_WITH_TIMEOUT(told, 1, Test::patience);
    QCOMPARE(cache.state(missing), ThumbnailCache::State::Failed);
    ask();
    QTRY_COMPARE_WITH_TIMEOUT(told, 2, Test::patience);
    QCOMPARE(cache.readCount(), readsBefore + 1);

    // Cleared, a note with attachments stays, empty; one without goes.
    view->editor()->selectAll();
    QTest::keyClick(view->editor(), Qt::Key_Backspace);
    QCOMPARE(noteText(store, QStringLiteral("a")), QString());
    QPlainTextEdit *other = openNote(QStringLiteral("b"))->editor()->editor();
    other->selectAll();
    QTest::keyClick(other, Qt::Key_Backspace);
    QCOMPARE(other->toPlainText(), QString());
    QCOMPARE(noteText(store, QStringLiteral("b")), QStringLiteral("(gone)"));
    QVERIFY(m_manager->window(idFor(QStringLiteral("b"))));
}

//! The bar's buttons: the preview of the inline Markdown, following every
//! key; the done toggle, following the note; the copy key.
void NoteWindowTest::barButtonsAct()
{
    Store &store = m_fixture->make({QStringLiteral("*Inbox:a")});
    store.updateNote(idFor(QStringLiteral("a")),
        QStringLiteral(
            "# Trip **bold** and `code`\n- item  with  spaces [site](https://example.org)"));
    NoteWindow *window = openNote(QStringLiteral("a"));
    QVERIFY(QTest::qWaitForWindowExposed(window));
    QTRY_VERIFY_WITH_TIMEOUT(window->isActiveWindow(), Test::patience);
    NoteEditorView *view = window->editor();
    QVERIFY(!view->showsPreview());
    QVERIFY(!view->previewArea()->isVisible());

    QTest::mouseClick(view->previewButton(), Qt::LeftButton);
    QVERIFY(view->showsPreview());
    QVERIFY(view->previewArea()->isVisible());
    QVERIFY(view->previewArea()->height() >= NoteEditorView::previewMinimumHeight);
    QTextDocument *document = view->previewText()->document();
    // Block markers stay as typed, inline markers go, spaces and the line break stay.
    QCOMPARE(
        document->toPlainText(), QStringLiteral("# Trip bold and code\n- item  with  spaces site"));

    auto formatAt = [document](const QString &word) {
        const int position = document->toPlainText().indexOf(word);
        QTextCursor cursor(document);
        cursor.setPosition(position + 1);
        return cursor.charFormat();
    };
    QCOMPARE(formatAt(QStringLiteral("bold")).fontWeight(), int(QFont::Bold));
    QCOMPARE(formatAt(QStringLiteral("Trip")).fontWeight(), int(QFont::Normal));
    QVERIFY(formatAt(QStringLiteral("code")).fontFamilies().toStringList()
        != formatAt(QStringLiteral("Trip")).fontFamilies().toStringList());
    QCOMPARE(formatAt(QStringLiteral("site")).anchorHref(), QStringLiteral("https://example.org"));

    // It follows every key.
    QTest::keyClicks(view->editor(), QStringLiteral(" *now*"));
    QVERIFY(document->toPlainText().endsWith(QStringLiteral("site now")));
    QVERIFY(formatAt(QStringLiteral("now")).fontItalic());

    QTest::mouseClick(view->previewButton(), Qt::LeftButton);
    QVERIFY(!view->previewArea()->isVisible());

    // The done toggle follows the note, also when it changes elsewhere.
    QToolButton *done = window->editor()->doneButton();
    QCOMPARE(done->text(), QStringLiteral("Mark as Done"));
    QTest::mouseClick(done, Qt::LeftButton);
    QVERIFY(store.note(idFor(QStringLiteral("a")))->isDone);
    QCOMPARE(done->text(), QStringLiteral("Done"));
    QTest::mouseClick(done, Qt::LeftButton);
    QVERIFY(!store.note(idFor(QStringLiteral("a")))->isDone);
    QCOMPARE(done->text(), QStringLiteral("Mark as Done"));
    store.setDone({idFor(QStringLiteral("a"))}, true);
    QCOMPARE(done->text(), QStringLiteral("Done"));

    // The copy key works while the editor has the focus; the button shows
    // itself pressed for a moment, then copies.
    QGuiApplication::clipboard()->setText(QStringLiteral("before"));
    QTest::keyClick(window->editor()->editor(), Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
    const QString all = QStringLiteral(
        "# Trip **bold** and `code`\n- item  with  spaces [site](https://example.org) *now*");
    QTRY_COMPARE_WITH_TIMEOUT(QGuiApplication::clipboard()->text(), all, Test::patience);
    QCOMPARE(ToastPresenter::shared().currentMessage(), QStringLiteral("Copied"));
    QCOMPARE(window->editor()->editor()->toPlainText(), all);
}

void NoteWindowTest::addAttachment_data()
{
    QTest::addColumn<QStringList>("chosen");
    QTest::addColumn<QStringList>("attached");
    QTest::addColumn<QStringList>("toasts");

    QTest::newRow("a file") << QStringList {"plan.txt"} << QStringList {"plan.txt"}
                            << QStringList();
    QTest::newRow("two files, one missing: nothing") << QStringList {
        "plan.txt", "missing.txt"} << QStringList() << QStringList {"Could Not Add Attachment"};
    QTest::newRow("cancelled") << QStringList() << QStringList() << QStringList();
}

void NoteWindowTest::addAttachment()
{
    QFETCH(QStringList, chosen);
    QFETCH(QStringList, attached);
    QFETCH(QStringList, toasts);

    Store &store = m_fixture->make({QStringLiteral("*Inbox:a")});
    QTemporaryDir sources;
    QFile file(sources.filePath(QStringLiteral("plan.txt")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("the plan\n");
    file.close();
    for (const QString &name : chosen)
        m_chosen.append(QUrl::fromLocalFile(sources.filePath(name)));

    NoteWindow *window = openNote(QStringLiteral("a"));
    NoteEditorView *view = window->editor();
    view->setShowsPreview(true);
    QTest::mouseClick(view->attachButton(), Qt::LeftButton);

    // The import runs on the importer's thread; its answer comes back here.
    auto names = [&store] {
        const std::optional<Note> note = store.note(idFor(QStringLiteral("a")));
        QStringList names;
        for (const NoteAttachment &attachment : note->attachments)
            names.append(attachment.fileName);
        return names;
    };
    QTRY_COMPARE_WITH_TIMEOUT(m_attachments->toasts, toasts, Test::patience);
    QTRY_COMPARE_WITH_TIMEOUT(names(), attached, Test::patience);
    QTRY_COMPARE_WITH_TIMEOUT(
        view->attachmentList()->tiles().size(), attached.size(), Test::patience);
    QCOMPARE(view->attachmentList()->isVisibleTo(view), !attached.isEmpty());
    if (!attached.isEmpty()) {
        const NoteAttachment record = store.note(idFor(QStringLiteral("a")))->attachments.first();
        QFile copy(attachmentsFolder(libraryURL()) + u'/' + record.storedFileName);
        QVERIFY(copy.open(QIODevice::ReadOnly));
        QCOMPARE(copy.readAll(), QByteArray("the plan\n"));
    }
}

void NoteWindowTest::frameIsRememberedAcrossOpeningsAndRestarts()
{
    m_fixture->make({QStringLiteral("*Inbox:a,b")});
    NoteWindow *window = openNote(QStringLiteral("a"));
    QVERIFY(QTest::qWaitForWindowExposed(window));
    // A first window has the default size.
    QCOMPARE(window->size(), NoteWindowManager::contentSize);

    const QRect moved(70, 90, 520, 410);
    window->setGeometry(moved);
    QTRY_COMPARE_WITH_TIMEOUT(window->geometry(), moved, Test::patience);
    // A closed window is forgotten; the next open makes a new one.
    QPointer<NoteWindow> closed(window);
    window->close();
    QVERIFY(!m_manager->window(idFor(QStringLiteral("a"))));
    QTRY_VERIFY_WITH_TIMEOUT(!closed, Test::patience);

    NoteWindow *reopened = openNote(QStringLiteral("a"));
    QVERIFY(QTest::qWaitForWindowExposed(reopened));
    QCOMPARE(m_manager->window(idFor(QStringLiteral("a"))), reopened);
    QCOMPARE(reopened->geometry(), moved);
    // Another note's window opens there too.
    reopened->close();
    NoteWindow *other = openNote(QStringLiteral("b"));
    QVERIFY(QTest::qWaitForWindowExposed(other));
    QCOMPARE(other->geometry(), moved);
    other->close();

    // A new manager, as after a restart, reads the frame from the settings file.
    m_manager.reset();
    SettingsWriter::shared().flush();
    QVERIFY(!QSettings(Preferences::openSettings()->fileName(), QSettings::IniFormat)
                 .value(NoteWindowManager::frameKey)
                 .toByteArray()
                 .isEmpty());
    NoteWindow *afterRestart = openNote(QStringLiteral("a"));
    QVERIFY(QTest::qWaitForWindowExposed(afterRestart));
    QCOMPARE(afterRestart->geometry(), moved);
}

//! The appearance is taken at creation and followed while the window is open.
void NoteWindowTest::appearanceFollowed()
{
    // The application turns to a new appearance as its delegate does: the
    // palette first, then the open windows.
    auto setAppearance = [this](AppAppearance value) {
        m_fixture->preferences().setAppearance(value);
        Theme::applyAppearance(value);
        if (m_manager)
            m_manager->refreshAppearance();
        QCoreApplication::processEvents();
    };
    // "dark" for light text on a dark ground, "light" for the reverse.
    auto looks = [](const NoteWindow *window) {
        const QPalette palette = window->editor()->palette();
        const bool darkBase = palette.color(QPalette::Base).lightness() < 128;
        const bool darkText = palette.color(QPalette::Text).lightness() < 128;
        if (darkBase == darkText)
            return QStringLiteral("mixed");
        return darkBase ? QStringLiteral("dark") : QStringLiteral("light");
    };

    m_fixture->make({QStringLiteral("*Inbox:a,b")});
    setAppearance(AppAppearance::Light);
    NoteWindow *window = openNote(QStringLiteral("a"));
    QCOMPARE(looks(window), QStringLiteral("light"));

    // A later change reaches the open window, its bar's icons included; a
    // new window is made in it, and follows the change back.
    const QImage lightIcon = window->editor()->copyButton()->icon().pixmap(14).toImage();
    setAppearance(AppAppearance::Dark);
    QCOMPARE(looks(window), QStringLiteral("dark"));
    QVERIFY(window->editor()->copyButton()->icon().pixmap(14).toImage() != lightIcon);
    NoteWindow *made = openNote(QStringLiteral("b"));
    QCOMPARE(looks(made), QStringLiteral("dark"));
    const QImage darkIcon = made->editor()->copyButton()->icon().pixmap(14).toImage();
    setAppearance(AppAppearance::Light);
    QCOMPARE(looks(made), QStringLiteral("light"));
    QVERIFY(made->editor()->copyButton()->icon().pixmap(14).toImage() != darkIcon);
    setAppearance(AppAppearance::System);
}

VESKO_WIDGET_TEST_MAIN(NoteWindowTest)
#include "tst_notewindow.moc"
