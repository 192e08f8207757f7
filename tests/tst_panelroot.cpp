// SPDX-License-Identifier: GPL-3.0-or-later
//
// The panel's root view on a real Store, with real keys and clicks: the
// prompts and what their answers do, the order of the modal layers, the
// empty states, the composer (Return, "# " lines, Escape, pending files), the
// search field's two-step Escape; the section and project switchers (what a
// query lists and selects, the create row, wrapping arrows, Return, F2
// rename, Escape) and the shortcut sheet's groups and hot-key rows.

#include "PanelTestRig.h"
#include "SilentAttachmentActions.h"
#include "WidgetTestMain.h"

#include "attachments/PendingAttachmentStrip.h"
#include "library/LibraryFile.h"
#include "panel/layers/PanelLayerView.h"
#include "panel/layers/PanelPromptView.h"
#include "panel/layers/ProjectSwitcherView.h"
#include "panel/layers/SectionSwitcherView.h"
#include "panel/layers/ShortcutSheetView.h"
#include "panel/layers/SwitcherList.h"
#include "panel/list/PanelListView.h"
#include "panel/text/ComposerView.h"
#include "panel/text/NativeInlineTextField.h"
#include "panel/text/SearchFieldView.h"
#include "panel/window/PanelCommands.h"
#include "panel/window/PanelController.h"
#include "panel/window/PanelRootView.h"
#include "shell/AppDelegate.h"
#include "shell/Theme.h"
#include "shell/Toast.h"

#include <QDragEnterEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMimeData>
#include <QPushButton>
#include <QSignalSpy>
#include <QTextEdit>
#include <QToolButton>

using namespace Vesko;
using Test::idFor;
using Test::noteIDs;
using Test::notesOfSection;
using Test::sectionTitles;

namespace {

//! Light ink (true) or dark ink in \a image: the mean lightness of the
//! pixels painted in it, weighted by their coverage.
bool lightInk(const QImage &image)
{
    const QImage argb = image.convertToFormat(QImage::Format_ARGB32);
    double lightness = 0;
    double weight = 0;
    for (int y = 0; y < argb.height(); ++y) {
        for (int x = 0; x < argb.width(); ++x) {
            const QColor pixel = QColor::fromRgba(argb.pixel(x, y));
            lightness += pixel.alphaF() * pixel.lightnessF();
            weight += pixel.alphaF();
        }
    }
    return weight > 0 && lightness / weight > 0.5;
}

//! Types \a text into \a widget, key by key; "\n" is Shift+Return.
void type(QWidget *widget, const QString &text)
{
    for (QChar c : text) {
        if (c == u'\n')
            QTest::keyClick(widget, Qt::Key_Return, Qt::ShiftModifier);
        else
            QTest::keyClicks(widget, QString(c));
    }
}

QList<SwitcherItem> items(const QStringList &titles)
{
    QList<SwitcherItem> list;
    for (const QString &title : titles)
        list.append({idFor(title), title});
    return list;
}

//! The rows of \a list as titles, "+" for the create row, "*" before the selected one.
QString describe(const SwitcherList &list)
{
    QStringList rows;
    for (int i = 0; i < list.count(); ++i) {
        const SwitcherSelection row = *list.rowAt(i);
        QString text = row.isCreate ? QStringLiteral("+") : QString();
        for (const SwitcherItem &item : list.items()) {
            if (!row.isCreate && item.id == row.id)
                text = item.title;
        }
        rows.append(list.selectedIndex() == i ? u'*' + text : text);
    }
    return rows.join(u' ');
}

//! The left edge of the grey ink (text, not the accent's marks) in \a row of \a image, or
//! -1. The list has no background of its own: ink is what is nearly opaque.
int textLeft(const QImage &image, const QRect &row)
{
    for (int x = row.left(); x <= row.right(); ++x) {
        for (int y = row.top(); y <= row.bottom(); ++y) {
            const QColor pixel = image.pixelColor(x, y);
            const int spread = std::max({pixel.red(), pixel.green(), pixel.blue()})
                - std::min({pixel.red(), pixel.green(), pixel.blue()});
            if (pixel.alpha() > 160 && spread < 24)
                return x;
        }
    }
    return -1;
}

} // namespace

class PanelRootTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void promptCommits_data();
    void promptCommits();
    void newSectionPromptWithPendingNotes_data();
    void newSectionPromptWithPendingNotes();
    void layersShowInTheirOrder();
    void emptyStates_data();
    void emptyStates();
    void composerCommits_data();
    void composerCommits();
    void composerWithFiles();
    void escapeTwice_data();
    void escapeTwice();
    void focusRequestsAndTheClearButton();
    void appearanceReachesTheRebuiltPanel();
    void rowsAndBars_data();
    void rowsAndBars();
    void layersAreOpaqueCardsWithShadows();

    void filtering_data();
    void filtering();
    void queryKeepsAListedSelection();
    void sectionSwitcherByKeys_data();
    void sectionSwitcherByKeys();
    void titlesLineUp();
    void renameInsideTheSwitcher();
    void projectSwitcher();

private:
    PanelRootView &showRoot(const QStringList &projects);
    PanelPromptView *prompt() const;
    template<typename View> View *openedLayer();

    std::unique_ptr<Test::StoreFixture> m_fixture;
    std::unique_ptr<PanelState> m_state;
    std::unique_ptr<PanelRootView> m_root;
};

void PanelRootTest::init()
{
    m_fixture = std::make_unique<Test::StoreFixture>();
    m_state = std::make_unique<PanelState>();
    PanelCommands::shared().setHooks({});
}

void PanelRootTest::cleanup()
{
    m_root.reset();
    m_state.reset();
    m_fixture.reset();
    PanelCommands::shared().setHooks({});
}

PanelRootView &PanelRootTest::showRoot(const QStringList &projects)
{
    Store &store = m_fixture->make(projects);
    m_root = std::make_unique<PanelRootView>(store, *m_state, m_fixture->preferences());
    m_root->resize(340, 560);
    m_root->show();
    QApplication::setActiveWindow(m_root.get());
    return *m_root;
}

PanelPromptView *PanelRootTest::prompt() const
{
    return qobject_cast<PanelPromptView *>(m_root->layerView());
}

void PanelRootTest::promptCommits_data()
{
    // clang-format off
    QTest::addColumn<int>("layer");
    QTest::addColumn<QString>("typed"); // appended to the initial text
    QTest::addColumn<QString>("how"); // "return", "add", "escape", "cancel"
    QTest::addColumn<QStringList>("sections");
    QTest::addColumn<QStringList>("projects");
    QTest::addColumn<int>("undoSteps");

    const QStringList sections = {"Inbox", "Work"};
    const QStringList projects = {"P", "Q"};
    QTest::newRow("new section by Return") << int(PanelLayer::NewSection) << "  Ideas "
        << "return" << QStringList {"Inbox", "Work", "Ideas"} << projects << 1;
    QTest::newRow("new section by Add") << int(PanelLayer::NewSection) << "Ideas"
        << "add" << QStringList {"Inbox", "Work", "Ideas"} << projects << 1;
    QTest::newRow("existing section is used, not doubled") << int(PanelLayer::NewSection) << "work"
                                                           << "return" << sections << projects << 1;
    QTest::newRow("blanks by Return are a cancel") << int(PanelLayer::NewSection) << "   "
                                                   << "return" << sections << projects << 0;
    QTest::newRow("Escape") << int(PanelLayer::NewSection) << "Ideas"
                            << "escape" << sections << projects << 0;
    QTest::newRow("Cancel, the field empty") << int(PanelLayer::NewSection) << ""
                                             << "cancel" << sections << projects << 0;
    QTest::newRow("new project") << int(PanelLayer::NewProject) << "Home"
                                 << "return" << QStringList {"Inbox"}
                                 << QStringList {"P", "Q", "Home"} << 1;
    QTest::newRow("rename project") << int(PanelLayer::RenameProject) << "2"
                                    << "return" << sections << QStringList {"P2", "Q"} << 1;
    QTest::newRow("rename project, text unchanged") << int(PanelLayer::RenameProject) << ""
                                                    << "return" << sections << projects << 1;
    // clang-format on
}

void PanelRootTest::promptCommits()
{
    QFETCH(int, layer);
    QFETCH(QString, typed);
    QFETCH(QString, how);
    QFETCH(QStringList, sections);
    QFETCH(QStringList, projects);
    QFETCH(int, undoSteps);

    PanelRootView &root = showRoot({QStringLiteral("*Inbox:a|Work:b"), QStringLiteral("Inbox:c")});
    Store &store = m_fixture->store();
    const qsizetype stepsBefore = store.undoStepCount();
    m_state->setShowing(PanelLayer(layer), true);
    QCOMPARE(root.shownLayer(), PanelLayer(layer));
    QVERIFY(prompt());
    // The field takes the keyboard a moment after the prompt appears.
    QTRY_VERIFY_WITH_TIMEOUT(prompt()->field()->hasFocus(), Test::patience);
    QTest::keyClick(prompt()->field(), Qt::Key_End);
    QTest::keyClicks(prompt()->field(), typed);
    // Add waits for a character other than a blank.
    QCOMPARE(prompt()->addButton()->isEnabled(), !prompt()->field()->text().trimmed().isEmpty());

    if (how == QLatin1String("return"))
        QTest::keyClick(prompt()->field(), Qt::Key_Return);
    else if (how == QLatin1String("escape"))
        QTest::keyClick(prompt()->field(), Qt::Key_Escape);
    else if (how == QLatin1String("add"))
        QTest::mouseClick(prompt()->addButton(), Qt::LeftButton);
    else
        QTest::mouseClick(prompt()->cancelButton(), Qt::LeftButton);

    QVERIFY(!m_state->isShowing(PanelLayer(layer)));
    QCOMPARE(root.shownLayer(), PanelLayer::None);
    QStringList projectNames;
    for (const Project &project : store.library().projects)
        projectNames.append(project.name);
    QCOMPARE(projectNames, projects);
    QCOMPARE(sectionTitles(store), sections);
    QCOMPARE(store.undoStepCount() - stepsBefore, undoSteps);
}

void PanelRootTest::newSectionPromptWithPendingNotes_data()
{
    QTest::addColumn<bool>("commit"); // Return, or a click on the dim well outside the card
    QTest::addColumn<QStringList>("sections");
    QTest::addColumn<QStringList>("inbox");

    QTest::newRow("Return moves them")
        << true << QStringList {"Inbox", "Work", "Ideas"} << QStringList {"b"};
    QTest::newRow("the dim cancels")
        << false << QStringList {"Inbox", "Work"} << QStringList {"a", "b"};
}

void PanelRootTest::newSectionPromptWithPendingNotes()
{
    QFETCH(bool, commit);
    QFETCH(QStringList, sections);
    QFETCH(QStringList, inbox);
    PanelRootView &root = showRoot({QStringLiteral("*Inbox:a,b|Work:c")});
    Store &store = m_fixture->store();
    m_state->setPendingMoveIDs(noteIDs(QStringLiteral("c,a")));
    m_state->setShowing(PanelLayer::NewSection, true);
    QVERIFY(prompt());
    QTest::keyClicks(prompt()->field(), QStringLiteral("Ideas"));
    if (commit)
        QTest::keyClick(prompt()->field(), Qt::Key_Return);
    else
        QTest::mouseClick(prompt(), Qt::LeftButton, {}, QPoint(20, 20));
    QCOMPARE(root.shownLayer(), PanelLayer::None);
    QVERIFY(m_state->pendingMoveIDs().isEmpty());
    QCOMPARE(sectionTitles(store), sections);
    QCOMPARE(notesOfSection(store, QStringLiteral("Inbox")), inbox);
    QCOMPARE(
        notesOfSection(store, QStringLiteral("Work")), commit ? QStringList() : QStringList {"c"});
    if (!commit)
        return;
    // In the order the panel showed them, in the section now active, which the composer names.
    QCOMPARE(notesOfSection(store, QStringLiteral("Ideas")), (QStringList {"a", "c"}));
    QCOMPARE(store.activeSection().title, QStringLiteral("Ideas"));
    QCOMPARE(m_root->composer()->field()->placeholder(), QStringLiteral("Add to Ideas"));
}

void PanelRootTest::layersShowInTheirOrder()
{
    PanelRootView &root = showRoot({QStringLiteral("*Inbox:a")});
    m_state->setShowing(PanelLayer::NewProject, true);
    m_state->setShowing(PanelLayer::NewSection, true);
    QCOMPARE(root.shownLayer(), PanelLayer::NewSection);
    QCOMPARE(prompt()->title(), QStringLiteral("New Section"));
    m_state->setShowing(PanelLayer::Shortcuts, true);
    QCOMPARE(root.shownLayer(), PanelLayer::Shortcuts);
    QVERIFY(!prompt());
    auto *sheet = qobject_cast<ShortcutSheetView *>(root.layerView());
    QVERIFY(sheet);
    // 42 window shortcuts, 3 for composing, 4 system-wide.
    const QStringList rows = sheet->rowTexts();
    QCOMPARE(rows.size(), qsizetype(42 + 3 + 4));
    QCOMPARE(rows.first(), QStringLiteral("New Note\tCtrl+N"));
    QCOMPARE(rows.at(10), QStringLiteral("Jump to Section 1\tCtrl+1"));
    QCOMPARE(rows.at(18), QStringLiteral("Jump to Section 9\tCtrl+9"));
    QCOMPARE(rows.at(41), QStringLiteral("Close\tEsc"));
    QCOMPARE(rows.at(42), QStringLiteral("Add Note\tReturn"));
    QCOMPARE(rows.at(44), QStringLiteral("Create or Use Section\t# Name"));
    // Without hot keys in this session, every system-wide row shows a dash.
    QCOMPARE(rows.mid(45),
        (QStringList {"Show or Hide Vesko\t—", "Capture Selection\t—", "Add a Note\t—",
            "Copy Notes as List\t—"}));
    // A click on the dim closes the sheet, and so does Escape; either uncovers the prompt.
    QTest::mouseClick(sheet, Qt::LeftButton, {}, QPoint(3, 3));
    QCOMPARE(root.shownLayer(), PanelLayer::NewSection);
    m_state->setShowing(PanelLayer::Shortcuts, true);
    QCOMPARE(m_state->dismissLayerOnEscape(), PanelLayer::Shortcuts);
    QCOMPARE(root.shownLayer(), PanelLayer::NewSection);
    QTest::keyClick(prompt()->field(), Qt::Key_Escape);
    QCOMPARE(root.shownLayer(), PanelLayer::NewProject);
    QCOMPARE(prompt()->title(), QStringLiteral("New Project"));
    QTest::keyClick(prompt()->field(), Qt::Key_Escape);
    QCOMPARE(root.shownLayer(), PanelLayer::None);
    // The keyboard goes back where it was.
    QTRY_VERIFY_WITH_TIMEOUT(root.composer()->field()->editor()->hasFocus(), Test::patience);
}

void PanelRootTest::emptyStates_data()
{
    // clang-format off
    QTest::addColumn<QString>("project");
    QTest::addColumn<QString>("search");
    QTest::addColumn<QString>("title"); // empty: no empty state

    // Without any row: no section either.
    QTest::newRow("no notes, no search") << "" << "" << "Nothing here yet";
    QTest::newRow("no notes, blanks searched") << "" << " \t " << "Nothing here yet";
    QTest::newRow("a search without matches") << "*Inbox:a" << "zzz" << "No matches";
    QTest::newRow("rows present") << "*Inbox:a" << "" << "";
    QTest::newRow("rows present, search matching") << "*Inbox:a" << "inbox" << "";
    // clang-format on
}

void PanelRootTest::emptyStates()
{
    QFETCH(QString, project);
    QFETCH(QString, search);
    QFETCH(QString, title);

    showRoot({project});
    Store &store = m_fixture->store();
    store.setSearchText(search);
    if (title.isEmpty()) {
        QTRY_VERIFY_WITH_TIMEOUT(!store.rows().isEmpty(), Test::patience);
        QVERIFY(!m_root->showsEmptyState());
        return;
    }
    QTRY_VERIFY_WITH_TIMEOUT(m_root->showsEmptyState(), Test::patience);
    QTRY_COMPARE_WITH_TIMEOUT(m_root->emptyTitle(), title, Test::patience);
    QCOMPARE(m_root->emptyHint(),
        title == QLatin1String("No matches")
            ? QStringLiteral("Try a different word.")
            : QStringLiteral(
                "Select text anywhere and press Shift twice, or Ctrl+Shift+N for a new section."));
}

void PanelRootTest::composerCommits_data()
{
    // clang-format off
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("left"); // the box afterwards
    QTest::addColumn<QStringList>("sections"); // titles afterwards
    QTest::addColumn<QString>("work"); // the notes of "Work" afterwards
    QTest::addColumn<QString>("toast");

    const QStringList sections = {"Inbox", "Work"};
    const QStringList ideas = {"Inbox", "Work", "Ideas"};
    QTest::newRow("a note") << " new note " << "" << sections << "b,new note" << "";
    QTest::newRow("two lines") << "one\ntwo" << "" << sections << "b,one\ntwo" << "";
    QTest::newRow("blanks do nothing") << "   " << "   " << sections << "b" << "";
    QTest::newRow("a hash with text is a note") << "#tag" << "" << sections << "b,#tag" << "";
    QTest::newRow("\"# \" alone stays in the box") << "# " << "# " << sections << "b" << "";
    QTest::newRow("a section line") << "# Ideas" << "" << ideas << "b" << "Using Ideas";
    QTest::newRow("a section line for an existing section")
        << "#  inbox " << "" << sections << "b" << "Using Inbox";
    // clang-format on
}

void PanelRootTest::composerCommits()
{
    QFETCH(QString, typed);
    QFETCH(QString, left);
    QFETCH(QStringList, sections);
    QFETCH(QString, work);
    QFETCH(QString, toast);

    PanelRootView &root = showRoot({QStringLiteral("Inbox:a|*Work:b")});
    Store &store = m_fixture->store();
    ToastPresenter::shared().dismiss();
    QTextEdit *editor = root.composer()->field()->editor();
    QTRY_VERIFY_WITH_TIMEOUT(editor->hasFocus(), Test::patience);
    type(editor, typed);
    QTest::keyClick(editor, Qt::Key_Return);

    QCOMPARE(root.composer()->text(), left);
    QCOMPARE(sectionTitles(store), sections);
    QCOMPARE(notesOfSection(store, QStringLiteral("Work")).join(u','), work);
    if (!toast.isEmpty())
        QCOMPARE(ToastPresenter::shared().currentMessage(), toast);
    // The composer keeps the keyboard for the next note.
    QCOMPARE(root.focusTarget(), PanelFocusTarget::Composer);
    QVERIFY(editor->hasFocus());
    if (work.contains(u',')) {
        // The new note is revealed: selected, the search cleared.
        const QUuid added = store.activeProject().sections.at(1).notes.last().id;
        QCOMPARE(store.selection(), QSet<QUuid> {added});
    }
}

//! Files for a new note: chosen by the button or dropped, each once, and
//! Escape clears them; a failed import keeps the box for another try; a
//! section line with a file makes the section and one note of the file, a
//! second Return during the import adding nothing.
void PanelRootTest::composerWithFiles()
{
    QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("plan.txt")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("plan");
    file.close();
    const QUrl chosen = QUrl::fromLocalFile(QStringLiteral("/tmp/chosen.pdf"));
    const QUrl dropped = QUrl::fromLocalFile(QStringLiteral("/tmp/dropped.png"));

    PanelRootView &root = showRoot({QStringLiteral("*Inbox:a")});
    Store &store = m_fixture->store();
    Test::SilentAttachmentActions attachments(store, m_fixture->attachments());
    PanelCommands::Hooks hooks;
    hooks.chooseFiles = [&](std::function<void(const QList<QUrl> &)> done) { done({chosen}); };
    hooks.importForNewNote = [&](const QList<QUrl> &urls, auto done) {
        attachments.actions.importForNewNote(urls, std::move(done));
    };
    PanelCommands::shared().setHooks(hooks);
    m_state->requestFocus(PanelFocusTarget::List);
    QTest::mouseClick(root.composer()->attachmentButton(), Qt::LeftButton);
    QCOMPARE(root.composer()->pendingURLs(), QList<QUrl> {chosen});
    QCOMPARE(root.focusTarget(), PanelFocusTarget::Composer);

    // Files dropped on the box join them, each file once; a drop of text alone is refused.
    m_state->requestFocus(PanelFocusTarget::List);
    QMimeData files;
    files.setUrls({dropped, chosen});
    const QPoint inside = root.composer()->rect().center();
    QDragEnterEvent enter(inside, Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(root.composer(), &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent drop(inside, Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(root.composer(), &drop);
    QVERIFY(drop.isAccepted());
    QCOMPARE(root.composer()->pendingURLs(), (QList<QUrl> {chosen, dropped}));
    QCOMPARE(
        root.composer()->pendingStrip()->chipNames(), (QStringList {"chosen.pdf", "dropped.png"}));
    QCOMPARE(root.focusTarget(), PanelFocusTarget::Composer);
    root.composer()->addPendingURLs({dropped, chosen});
    QCOMPARE(root.composer()->pendingURLs(), (QList<QUrl> {chosen, dropped}));
    QMimeData text;
    text.setText(QStringLiteral("just words"));
    QDragEnterEvent textEnter(inside, Qt::CopyAction, &text, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(root.composer(), &textEnter);
    QVERIFY(!textEnter.isAccepted());

    // Escape with files waiting clears them and keeps the composer.
    QTextEdit *editor = root.composer()->field()->editor();
    QTRY_VERIFY_WITH_TIMEOUT(editor->hasFocus(), Test::patience);
    QTest::keyClick(editor, Qt::Key_Escape);
    QVERIFY(root.composer()->pendingURLs().isEmpty());
    QCOMPARE(root.focusTarget(), PanelFocusTarget::Composer);

    // A file that is not there: the import fails, and says so.
    root.composer()->addPendingURLs({QUrl::fromLocalFile(QStringLiteral("/nonexistent/one.png"))});
    QTest::keyClicks(editor, QStringLiteral("keep me"));
    QTest::keyClick(editor, Qt::Key_Return);
    QTRY_VERIFY_WITH_TIMEOUT(!root.composer()->isSaving(), Test::patience);
    QCOMPARE(attachments.toasts, QStringList {"Could Not Add Attachment"});
    QCOMPARE(root.composer()->text(), QStringLiteral("keep me"));
    QCOMPARE(root.composer()->pendingURLs().size(), 1);
    QCOMPARE(notesOfSection(store, QStringLiteral("Inbox")), QStringList {"a"});

    QTest::keyClick(editor, Qt::Key_Escape);
    root.composer()->addPendingURLs({QUrl::fromLocalFile(file.fileName())});
    QTest::keyClicks(editor, QStringLiteral("# Files"));
    QTest::keyClick(editor, Qt::Key_Return);
    QVERIFY(root.composer()->isSaving());
    QTest::keyClick(editor, Qt::Key_Return);
    // The section at once, the note when the file has been copied.
    QCOMPARE(sectionTitles(store), (QStringList {"Inbox", "Files"}));
    QCOMPARE(ToastPresenter::shared().currentMessage(), QStringLiteral("Using Files"));
    QTRY_VERIFY_WITH_TIMEOUT(!root.composer()->isSaving(), Test::patience);
    const NoteSection section = store.activeProject().sections.at(1);
    QCOMPARE(section.notes.size(), 1);
    QCOMPARE(section.notes.first().text, QString());
    QCOMPARE(section.notes.first().attachments.size(), 1);
    const NoteAttachment attached = section.notes.first().attachments.first();
    QCOMPARE(attached.fileName, QStringLiteral("plan.txt"));
    QFile copy(attachmentsFolder(libraryURL()) + u'/' + attached.storedFileName);
    QVERIFY(copy.open(QIODevice::ReadOnly));
    QCOMPARE(copy.readAll(), QByteArray("plan"));
    QCOMPARE(root.composer()->text(), QString());
    QVERIFY(root.composer()->pendingURLs().isEmpty());
}

void PanelRootTest::escapeTwice_data()
{
    QTest::addColumn<bool>("search"); // the search field, or the composer
    QTest::addColumn<QString>("typed");
    QTest::addColumn<bool>("searching");

    QTest::newRow("composer") << false << "draft" << false;
    QTest::newRow("search, a word") << true << "ab" << true;
    QTest::newRow("search, blanks") << true << "  " << false;
}

//! The first Escape empties the field and keeps it; the second hands the keyboard to the list.
void PanelRootTest::escapeTwice()
{
    QFETCH(bool, search);
    QFETCH(QString, typed);
    QFETCH(bool, searching);

    PanelRootView &root = showRoot({QStringLiteral("*Inbox:a,b")});
    Store &store = m_fixture->store();
    const PanelFocusTarget target = search ? PanelFocusTarget::Search : PanelFocusTarget::Composer;
    m_state->requestFocus(target);
    QWidget *field = search ? static_cast<QWidget *>(root.searchField()->field())
                            : root.composer()->field()->editor();
    QTRY_VERIFY_WITH_TIMEOUT(field->hasFocus(), Test::patience);
    QTest::keyClicks(field, typed);
    QCOMPARE(store.searchText(), search ? typed : QString());
    QCOMPARE(store.isSearching(), searching);
    // Blanks show the clear button too: the text is not empty.
    QCOMPARE(root.searchField()->showsClearButton(), search);

    QTest::keyClick(field, Qt::Key_Escape);
    QCOMPARE(store.searchText(), QString());
    QCOMPARE(root.searchField()->field()->text(), QString());
    QCOMPARE(root.composer()->text(), QString());
    QCOMPARE(root.focusTarget(), target);
    QVERIFY(field->hasFocus());
    QTest::keyClick(field, Qt::Key_Escape);
    QCOMPARE(root.focusTarget(), PanelFocusTarget::List);
    QVERIFY(root.list()->hasFocus());
    QCOMPARE(notesOfSection(store, QStringLiteral("Inbox")), (QStringList {"a", "b"}));
}

void PanelRootTest::focusRequestsAndTheClearButton()
{
    PanelRootView &root = showRoot({QStringLiteral("*Inbox:a,b")});
    Store &store = m_fixture->store();
    QSignalSpy changes(&root, &PanelRootView::focusTargetChanged);
    m_state->requestFocus(PanelFocusTarget::List);
    QVERIFY(root.list()->hasFocus());
    m_state->requestFocus(PanelFocusTarget::None);
    QCOMPARE(root.focusTarget(), PanelFocusTarget::List);
    m_state->requestFocus(PanelFocusTarget::Composer);
    QTRY_VERIFY_WITH_TIMEOUT(root.composer()->field()->editor()->hasFocus(), Test::patience);
    // A click into the search field moves the panel's target with it.
    QTest::mouseClick(root.searchField()->field(), Qt::LeftButton);
    root.searchField()->field()->setFocus(Qt::MouseFocusReason);
    QCOMPARE(root.focusTarget(), PanelFocusTarget::Search);
    QCOMPARE(changes.size(), 3);

    // The field follows the Store; its clear button leaves the caret in it.
    store.setSearchText(QStringLiteral("b"));
    QCOMPARE(root.searchField()->field()->text(), QStringLiteral("b"));
    m_state->requestFocus(PanelFocusTarget::List);
    QTRY_VERIFY_WITH_TIMEOUT(root.searchField()->clearButton()->isVisible(), Test::patience);
    QTest::mouseClick(root.searchField()->clearButton(), Qt::LeftButton);
    QCOMPARE(store.searchText(), QString());
    QCOMPARE(root.focusTarget(), PanelFocusTarget::Search);
    QVERIFY(root.searchField()->field()->hasFocus());
    QTRY_VERIFY_WITH_TIMEOUT(!root.searchField()->showsClearButton(), Test::patience);
}

//! From light to dark and back, the panel is rebuilt in the new appearance.
void PanelRootTest::appearanceReachesTheRebuiltPanel()
{
    // No row at all, so that the empty state is up.
    Store &store = m_fixture->make({QString()});
    Preferences &preferences = m_fixture->preferences();
    preferences.setAppearance(AppAppearance::Light);
    Theme::applyAppearance(AppAppearance::Light);
    PanelController panel(store, *m_state, preferences);
    bool darkForTheWindows = false;
    AppDelegate::Hooks hooks;
    hooks.refreshWindows = [&darkForTheWindows] { darkForTheWindows = Theme::isDark(); };
    AppDelegate delegate(store, preferences, panel, hooks);
    panel.show(false, false);
    for (const bool dark : {true, false}) {
        QPointer<PanelRootView> before = qobject_cast<PanelRootView *>(panel.panel()->content());
        QVERIFY(before);
        preferences.setAppearance(dark ? AppAppearance::Dark : AppAppearance::Light);
        QTRY_VERIFY_WITH_TIMEOUT(!before, Test::patience);
        auto *root = qobject_cast<PanelRootView *>(panel.panel()->content());
        QVERIFY(root);
        // An offscreen panel has no blur behind it: opaque, as the controller chose.
        QVERIFY(!root->rowsRunUnderBars());
        // The other windows are told after the palette changed.
        QCOMPARE(darkForTheWindows, dark);

        // Light ink on the dark surface, dark ink on the light one: the "More
        // options" icon and both lines of the empty state.
        QVERIFY(root->showsEmptyState());
        QCOMPARE(lightInk(root->overflowButton()->icon().pixmap(15).toImage()), dark);
        for (const QString &line : {root->emptyTitle(), root->emptyHint()}) {
            QLabel *label = nullptr;
            for (QLabel *candidate : root->findChildren<QLabel *>()) {
                if (candidate->text() == line)
                    label = candidate;
            }
            QVERIFY2(label, qPrintable(line));
            QCOMPARE(label->palette().color(QPalette::WindowText).lightnessF() > 0.5, dark);
        }
    }
    panel.hide();
    Theme::applyAppearance(AppAppearance::System);
}

void PanelRootTest::rowsAndBars_data()
{
    QTest::addColumn<bool>("glass");

    QTest::newRow("opaque: the rows stop at the bars") << false;
    QTest::newRow("glass: the rows run under the bars") << true;
}

void PanelRootTest::rowsAndBars()
{
    QFETCH(bool, glass);

    PanelRootView &root = showRoot({QStringLiteral("*Inbox:a,b,c")});
    root.setRowsRunUnderBars(glass);
    const QRect list = root.list()->geometry();
    const QRect search(root.searchField()->mapTo(&root, QPoint(0, 0)), root.searchField()->size());
    const QRect composer = root.composer()->geometry();
    if (glass) {
        // The list spans the bars; its first row starts below the header.
        QVERIFY(list.top() <= search.top());
        QVERIFY(list.bottom() >= composer.bottom());
        QVERIFY(root.list()->topContentMargin() >= search.bottom() - list.top());
    } else {
        // Nothing of the list lies under either bar.
        QVERIFY2(list.top() > search.bottom(),
            qPrintable(QStringLiteral("%1 %2").arg(list.top()).arg(search.bottom())));
        QVERIFY2(list.bottom() < composer.top(),
            qPrintable(QStringLiteral("%1 %2").arg(list.bottom()).arg(composer.top())));
        QCOMPARE(root.list()->topContentMargin(), 0);
        QCOMPARE(root.list()->bottomContentMargin(), 0);
    }
}

void PanelRootTest::layersAreOpaqueCardsWithShadows()
{
    PanelRootView &root = showRoot({QStringLiteral("*Inbox:a,b|Work:c"), QStringLiteral("Q")});
    for (const PanelLayer layer : {PanelLayer::SectionSwitcher, PanelLayer::ProjectSwitcher,
             PanelLayer::Shortcuts, PanelLayer::NewSection, PanelLayer::RenameProject}) {
        const QByteArray name = QByteArray::number(int(layer));
        m_state->setShowing(layer, true);
        auto *view = qobject_cast<PanelLayerView *>(root.layerView());
        QVERIFY2(view, name);
        // Drawn alone, over nothing: what covers the card's middle row is wholly opaque.
        QTRY_VERIFY2_WITH_TIMEOUT(
            view->card()->isVisible() && view->graphicsEffect() == nullptr, name, Test::patience);
        QImage drawn(view->size(), QImage::Format_ARGB32);
        drawn.fill(Qt::transparent);
        view->render(&drawn, QPoint(), QRegion(), QWidget::DrawChildren);
        const QRect card = view->card()->geometry();
        QVERIFY2(card.height() > 20 && card.bottom() + 20 < view->height(), name);
        for (int x = card.left() + PanelLayerView::cardRadius;
             x < card.right() - PanelLayerView::cardRadius; ++x) {
            QVERIFY2(qAlpha(drawn.pixel(x, card.center().y())) == 255, name);
        }
        // Below the card its shadow darkens the dim, which is all there is far from it.
        const int dim = qAlpha(drawn.pixel(card.center().x(), view->height() - 4));
        const int shadow = qAlpha(drawn.pixel(card.center().x(), card.bottom() + 4));
        QVERIFY2(shadow > dim + 10,
            qPrintable(QStringLiteral("%1: %2 %3").arg(name).arg(shadow).arg(dim)));
        m_state->setShowing(layer, false);
    }
}

template<typename View> View *PanelRootTest::openedLayer()
{
    auto *view = qobject_cast<View *>(m_root->layerView());
    if (!view)
        return nullptr;
    // The filter field takes the keyboard a moment after the switcher appeared.
    if (!QTest::qWaitFor([view] { return view->filterField()->hasFocus(); }))
        return nullptr;
    return view;
}

void PanelRootTest::filtering_data()
{
    // clang-format off
    QTest::addColumn<QStringList>("titles");
    QTest::addColumn<QString>("query");
    QTest::addColumn<int>("delta"); // arrow presses from the first row, where the selection starts
    QTest::addColumn<QString>("rows");

    const QStringList three = {"Inbox", "Work", "Links"};
    QTest::newRow("empty query lists all") << QStringList {"Inbox", "Work"} << "" << 0 << "*Inbox Work";
    QTest::newRow("equal title, any case: no create row")
        << QStringList {"Inbox", "Work"} << "inbox" << 0 << "*Inbox";
    QTest::newRow("blanks around do not count") << QStringList {"Inbox", "Work"} << "  inb  " << 0
                                                << "*Inbox +";
    QTest::newRow("two matches in order, create third") << three << "in" << 0 << "*Inbox Links +";
    QTest::newRow("no match: create alone") << QStringList {"Inbox"} << "zz" << 0 << "*+";
    QTest::newRow("no ranking by prefix") << QStringList {"Pin", "In"} << "in" << 0 << "*Pin In";
    QTest::newRow("blanks only is an empty query") << QStringList {"Inbox"} << "   " << 0 << "*Inbox";
    QTest::newRow("up from the first goes to the create row") << three << "in" << -1
                                                              << "Inbox Links *+";
    QTest::newRow("down") << three << "in" << 1 << "Inbox *Links +";
    QTest::newRow("up without create goes to the last section") << three << "" << -1
                                                                << "Inbox Work *Links";
    // clang-format on
}

void PanelRootTest::filtering()
{
    QFETCH(QStringList, titles);
    QFETCH(QString, query);
    QFETCH(int, delta);
    QFETCH(QString, rows);
    SwitcherList list(items(titles), true);
    list.setQuery(query);
    if (delta)
        list.move(delta);
    QCOMPARE(describe(list), rows);
}

void PanelRootTest::queryKeepsAListedSelection()
{
    SwitcherList list(items({"Inbox", "Work", "Links"}), true);
    list.selectInitial(idFor("Links"));
    QCOMPARE(describe(list), QStringLiteral("Inbox Work *Links"));
    list.setQuery("n");
    QCOMPARE(describe(list), QStringLiteral("Inbox *Links +"));
    list.setQuery("wo");
    QCOMPARE(describe(list), QStringLiteral("*Work +"));
    // The create row stays selected while it is offered.
    list.move(1);
    list.setQuery("wor");
    QCOMPARE(describe(list), QStringLiteral("Work *+"));
    // With no rows at all, moving selects nothing, and a commit would create.
    SwitcherList empty({}, true);
    empty.selectInitial(std::nullopt);
    QCOMPARE(empty.count(), 0);
    empty.move(1);
    QVERIFY(!empty.selection());
    QVERIFY(empty.commitTarget() && empty.commitTarget()->isCreate);
}

void PanelRootTest::sectionSwitcherByKeys_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QList<int>>("keys");
    QTest::addColumn<QString>("active"); // the active section afterwards
    QTest::addColumn<QStringList>("sections");
    QTest::addColumn<bool>("open");

    const QStringList sections = {"Inbox", "Work", "Links"};
    QTest::newRow("Return on the active section")
        << "" << QList<int> {Qt::Key_Return} << "Work" << sections << false;
    QTest::newRow("Down, Return") << "" << QList<int> {Qt::Key_Down, Qt::Key_Return} << "Links"
                                  << sections << false;
    QTest::newRow("Down wraps to the first")
        << "" << QList<int> {Qt::Key_Down, Qt::Key_Down, Qt::Key_Return} << "Inbox" << sections
        << false;
    QTest::newRow("Tab moves like Down")
        << "" << QList<int> {Qt::Key_Tab, Qt::Key_Return} << "Links" << sections << false;
    QTest::newRow("filter, then Return")
        << "lin" << QList<int> {Qt::Key_Return} << "Links" << sections << false;
    QTest::newRow("create by Return") << " Ideas " << QList<int> {Qt::Key_Return} << "Ideas"
                                      << QStringList {"Inbox", "Work", "Links", "Ideas"} << false;
    QTest::newRow("Up to the create row") << "in" << QList<int> {Qt::Key_Up, Qt::Key_Return} << "in"
                                          << QStringList {"Inbox", "Work", "Links", "in"} << false;
    QTest::newRow("Escape closes, nothing changes")
        << "lin" << QList<int> {Qt::Key_Escape} << "Work" << sections << false;
    QTest::newRow("F2 on the create row does nothing")
        << "zz" << QList<int> {Qt::Key_F2} << "Work" << sections << true;
}

void PanelRootTest::sectionSwitcherByKeys()
{
    QFETCH(QString, typed);
    QFETCH(QList<int>, keys);
    QFETCH(QString, active);
    QFETCH(QStringList, sections);
    QFETCH(bool, open);

    showRoot({"Inbox:a|*Work:b|Links:c"});
    Store &store = m_fixture->store();
    m_state->setShowing(PanelLayer::SectionSwitcher, true);
    auto *view = openedLayer<SectionSwitcherView>();
    QVERIFY(view);
    QTest::keyClicks(view->filterField(), typed);
    for (int key : keys)
        QTest::keyClick(view->filterField(), Qt::Key(key));

    QCOMPARE(store.activeSection().title, active);
    QStringList titles;
    for (const NoteSection &section : store.activeProject().sections)
        titles.append(section.title);
    QCOMPARE(titles, sections);
    QCOMPARE(m_state->isShowing(PanelLayer::SectionSwitcher), open);
    if (!open && active != "Work")
        QCOMPARE(ToastPresenter::shared().currentMessage(), "Using " + active);
}

//! Every title starts where the others do, the active one's too: with the
//! active row selected, another one, and in a filtered list.
void PanelRootTest::titlesLineUp()
{
    showRoot({"Inbox:a|*Work:b|Links:c|Notes:d"});
    m_state->setShowing(PanelLayer::SectionSwitcher, true);
    auto *view = openedLayer<SectionSwitcherView>();
    QVERIFY(view);
    QListWidget *list = view->listView();
    const auto lineUp = [&](const char *step) {
        QVERIFY2(list->count() >= 3, step);
        QVERIFY2(view->rowTexts().contains(QStringLiteral("Work")), step);
        const QImage image = list->viewport()->grab().toImage();
        QList<int> lefts;
        // The rows of sections; the create row leads with its symbol.
        for (int i = 0; i < list->count(); ++i) {
            if (list->item(i)->text().startsWith(QStringLiteral("Create")))
                continue;
            const QRect row = list->visualItemRect(list->item(i));
            const qreal scale = image.devicePixelRatio();
            lefts.append(textLeft(image, QRect(row.topLeft() * scale, row.size() * scale)));
        }
        QVERIFY2(lefts.first() > 0, qPrintable(QString::number(lefts.first())));
        for (int left : std::as_const(lefts))
            QVERIFY2(std::abs(left - lefts.first()) <= 1,
                qPrintable(
                    QStringLiteral("%1: %2 against %3").arg(step).arg(left).arg(lefts.first())));
    };
    lineUp("the active row selected");
    QTest::keyClick(view->filterField(), Qt::Key_Down);
    lineUp("another row selected");
    QTest::keyClicks(view->filterField(), QStringLiteral("o"));
    QTest::keyClick(view->filterField(), Qt::Key_Down);
    lineUp("filtered");
}

void PanelRootTest::renameInsideTheSwitcher()
{
    showRoot({"Inbox:a|*Work:b"});
    Store &store = m_fixture->store();
    m_state->setShowing(PanelLayer::SectionSwitcher, true);
    auto *view = openedLayer<SectionSwitcherView>();
    QVERIFY(view);
    // Escape in the rename form cancels the rename, not the switcher.
    QTest::keyClick(view->filterField(), Qt::Key_F2);
    QTRY_VERIFY_WITH_TIMEOUT(view->renameField()->hasFocus(), Test::patience);
    QTest::keyClick(view->renameField(), Qt::Key_Escape);
    QVERIFY(!view->renamingSectionID());
    QVERIFY(m_state->isShowing(PanelLayer::SectionSwitcher));

    QTest::keyClick(view->filterField(), Qt::Key_F2);
    QCOMPARE(view->renamingSectionID().value_or(QUuid()), store.activeSection().id);
    QTRY_VERIFY_WITH_TIMEOUT(view->renameField()->hasFocus(), Test::patience);
    QCOMPARE(view->renameField()->text(), QStringLiteral("Work"));

    view->renameField()->setText(" \t ");
    QVERIFY(!view->renameButton()->isEnabled());
    view->renameField()->setText("  Jobs ");
    QVERIFY(view->renameButton()->isEnabled());
    QTest::keyClick(view->renameField(), Qt::Key_Return);

    QCOMPARE(store.activeSection().title, QStringLiteral("Jobs"));
    QCOMPARE(ToastPresenter::shared().currentMessage(), QStringLiteral("Renamed"));
    QVERIFY(!view->renamingSectionID());
    QVERIFY(m_state->isShowing(PanelLayer::SectionSwitcher));
    QCOMPARE(view->rowTexts(), (QStringList {"Inbox", "Jobs"}));
    QVERIFY(view->filterField()->hasFocus());
    // A click on a row chooses it.
    QListWidget *list = view->listView();
    QTest::mouseClick(
        list->viewport(), Qt::LeftButton, {}, list->visualItemRect(list->item(0)).center());
    QCOMPARE(store.activeSection().title, QStringLiteral("Inbox"));
    QVERIFY(!m_state->isShowing(PanelLayer::SectionSwitcher));
    // An empty title is refused, so a create row without a query leaves the switcher open.
    QVERIFY(!store.createOrUseSection(QString()));
}

void PanelRootTest::projectSwitcher()
{
    showRoot({"*Inbox:a", "Home:b", "Garden:c"});
    Store &store = m_fixture->store();
    m_state->setShowing(PanelLayer::ProjectSwitcher, true);
    auto *view = openedLayer<ProjectSwitcherView>();
    QVERIFY(view);
    QCOMPARE(view->filterField()->placeholderText(), QStringLiteral("Switch project"));
    QTest::keyClicks(view->filterField(), "zz");
    QCOMPARE(view->rowTexts(), QStringList());
    QTest::keyClick(view->filterField(), Qt::Key_Return);
    QVERIFY(m_state->isShowing(PanelLayer::ProjectSwitcher));
    QCOMPARE(store.library().projects.size(), qsizetype(3));

    view->filterField()->clear();
    QTest::keyClick(view->filterField(), Qt::Key_F2); // no rename here
    QTest::keyClick(view->filterField(), Qt::Key_Up); // wraps to the last project
    QTest::keyClick(view->filterField(), Qt::Key_Return);
    QCOMPARE(store.activeProject().id, store.library().projects.at(2).id);
    QVERIFY(!m_state->isShowing(PanelLayer::ProjectSwitcher));
}

VESKO_WIDGET_TEST_MAIN(PanelRootTest)
#include "tst_panelroot.moc"
