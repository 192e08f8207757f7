// SPDX-License-Identifier: GPL-3.0-or-later
//
// The panel's list on its real widgets and a real Store: clicks, edits, the
// done control, drops, headers and their reorder, what a screen reader is
// told, and where the list scrolls on a reveal, a jump and a reset. Where the
// list scrolls is checked against the rows' own places: a row "at the top"
// has its top edge at the top of the area between the bars.

#include "PanelTestRig.h"
#include "SilentAttachmentActions.h"
#include "WidgetTestMain.h"

#include "attachments/AttachmentListView.h"
#include "panel/list/NoteRowView.h"
#include "panel/list/PanelListView.h"
#include "panel/list/SectionHeaderView.h"
#include "panel/text/NativeInlineTextField.h"
#include "shell/Theme.h"

#include <QAccessible>
#include <QApplication>
#include <QDesktopServices>
#include <QDrag>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QScopeGuard>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTextEdit>
#include <QVBoxLayout>

using namespace Vesko;
using namespace Vesko::Test;

namespace {

//! A project of \a sections sections "S1"… of \a perSection notes each, "n0"… in order;
//! every third note of \a lines short lines.
Library manyNotes(int sections, int perSection, int lines = 1)
{
    Library library;
    Project project;
    project.id = idFor(QStringLiteral("project"));
    project.name = QStringLiteral("P");
    int number = 0;
    for (int s = 1; s <= sections; ++s) {
        NoteSection section;
        section.title = QStringLiteral("S%1").arg(s);
        section.id = idFor(section.title);
        for (int n = 0; n < perSection; ++n, ++number) {
            Note note;
            note.id = idFor(QStringLiteral("n%1").arg(number));
            note.text = QStringLiteral("note %1").arg(number);
            if (number % 7 == 0)
                note.text += QStringLiteral(" with a longer text that wraps onto a second line");
            if (number % 3 == 0)
                note.text += QStringLiteral("\nline").repeated(lines - 1);
            section.notes.append(note);
        }
        project.sections.append(section);
    }
    project.activeSectionID = project.sections.first().id;
    library.projects = {project};
    library.activeProjectID = project.id;
    return library;
}

//! What QDesktopServices was asked to open.
class OpenedUrls : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void open(const QUrl &url) { urls.append(url); }

public:
    QList<QUrl> urls;
};

//! The list in a window of the panel's size, with a field to take the focus away.
struct ListWindow
{
    explicit ListWindow(PanelTestRig &rig)
        : attachments(rig.store(), rig.attachments())
    {
        auto *layout = new QVBoxLayout(&window);
        list = new PanelListView(rig.store(), rig.state(), &window);
        list->setAttachmentActions(attachments.actions, attachments.thumbnails);
        other = new QLineEdit(&window);
        layout->addWidget(list, 1);
        layout->addWidget(other);
        window.resize(340, 560);
        window.show();
        QCoreApplication::processEvents();
    }

    //! Lets the deferred scrolls run and ends a running animation.
    void settle()
    {
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();
        list->finishScrollAnimation();
        QCoreApplication::processEvents();
    }

    NoteRowView *note(const QString &name) const { return list->noteRowView(idFor(name)); }
    SectionHeaderView *header(const QString &name) const
    {
        return list->sectionHeaderView(idFor(name));
    }
    //! The row's top, measured from the top of the area between the bars.
    int topInClearArea(const QString &name) const
    {
        return list->rowRect(idFor(name)).top() - list->clearArea().top();
    }
    int centreOffset(const QString &name) const
    {
        return list->rowRect(idFor(name)).center().y() - list->clearArea().center().y();
    }

    SilentAttachmentActions attachments;
    QWidget window;
    PanelListView *list = nullptr;
    QLineEdit *other = nullptr;
};

QPoint inText(QWidget *row)
{
    return QPoint(row->width() / 2, row->height() / 2);
}

void sendDrop(QWidget *target, QMimeData *data, bool *accepted = nullptr)
{
    const QPointF at(target->width() / 2.0, target->height() / 2.0);
    QDragEnterEvent enter(at.toPoint(), Qt::CopyAction | Qt::MoveAction, data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(target, &enter);
    QDragMoveEvent move(at.toPoint(), Qt::CopyAction | Qt::MoveAction, data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(target, &move);
    QDropEvent drop(at, Qt::CopyAction | Qt::MoveAction, data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(target, &drop);
    if (accepted)
        *accepted = drop.isAccepted();
}

} // namespace

class PanelListTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void onlyTheRowsInViewAreLaidOut();
    void everyRowIsReachable();

    void clicks_data();
    void clicks();
    void doneControlActsOnTheMenuTarget_data();
    void doneControlActsOnTheMenuTarget();
    void fillFollowsTheNote_data();
    void fillFollowsTheNote();
    void hoverFollowsThePointer_data();
    void hoverFollowsThePointer();

    void editInPlace_data();
    void editInPlace();

    void rowsShowTheirNotes();

    void headerShowsWhatItsStateAllows_data();
    void headerShowsWhatItsStateAllows();
    void openSectionHeader();
    void collapsedSectionIsReordered();

    void scrollsToTheRow_data();
    void scrollsToTheRow();
    void resetsScrollToTheTop_data();
    void resetsScrollToTheTop();

    void drops_data();
    void drops();
    void filesDroppedOnANote();
    void dragOutAndContextMenus();
};

void PanelListTest::onlyTheRowsInViewAreLaidOut()
{
    PanelTestRig rig(manyNotes(2, 5000));
    ListWindow w(rig);
    QCOMPARE(w.list->rowCount(), 10002);
    QVERIFY2(w.list->rowWidgetCount() < 40, qPrintable(QString::number(w.list->rowWidgetCount())));
    QVERIFY(w.note(QStringLiteral("n0")));
    QVERIFY(!w.note(QStringLiteral("n9999")));
    NoteRowView *edited = w.note(QStringLiteral("n1"));
    QTest::mouseDClick(edited, Qt::LeftButton, {}, inText(edited));
    QCoreApplication::processEvents();
    QTest::keyClicks(edited->editor()->editor(), QStringLiteral("!"));

    w.list->scrollToRow(idFor(QStringLiteral("n9999")), ScrollAnchor::Top, false);
    QCoreApplication::processEvents();
    QVERIFY(w.note(QStringLiteral("n9999")));
    QVERIFY(!w.note(QStringLiteral("n0")));
    QVERIFY(w.list->clearArea().intersects(w.list->rowRect(idFor(QStringLiteral("n9999")))));
    QVERIFY(w.list->rowWidgetCount() < 40);
    // The edited row kept its widget and its field the keyboard.
    QCOMPARE(w.note(QStringLiteral("n1")), edited);
    QVERIFY(edited->editor()->editor()->hasFocus());
    QTest::keyClick(edited->editor()->editor(), Qt::Key_Return);
    QCOMPARE(rig.store().note(idFor("n1"))->text, QStringLiteral("note 1!"));

    // A collapse of a section of 5000 notes reuses the same widgets.
    rig.store().toggleSectionCollapsed(idFor(QStringLiteral("S1")));
    rig.store().commit();
    w.settle();
    QCOMPARE(w.list->rowCount(), 5002);
    QVERIFY(w.list->rowWidgetCount() < 40);
}

void PanelListTest::everyRowIsReachable()
{
    PanelTestRig rig(manyNotes(3, 40));
    ListWindow w(rig);
    // By the keyboard: each step down brings the anchor between the bars.
    for (int number = 0; number < 120; ++number) {
        rig.store().moveSelection(1, false);
        w.settle();
        const QString name = QStringLiteral("n%1").arg(number);
        QVERIFY2(w.list->clearArea().contains(w.list->rowRect(idFor(name))), qPrintable(name));
        QVERIFY(w.note(name));
    }
    // By the pointer: the scroll range ends at the last row, just above the composer.
    w.list->verticalScrollBar()->setValue(w.list->verticalScrollBar()->maximum());
    QCoreApplication::processEvents();
    QCOMPARE(w.list->rowRect(idFor(QStringLiteral("n119"))).bottom() + 1,
        w.list->clearArea().bottom() + 1);
    QVERIFY(w.note(QStringLiteral("n119")));
    // The user's scroll during a glide stops it where the user left the list
    // (in the same turn, so that the glide cannot have ended on a slow machine).
    w.list->scrollToRow(idFor("n0"), ScrollAnchor::Top, true);
    QVERIFY(w.list->isScrollAnimating());
    const int left = w.list->verticalScrollBar()->value() - 10;
    w.list->verticalScrollBar()->setValue(left);
    QVERIFY(!w.list->isScrollAnimating());
    QCoreApplication::processEvents();
    QCOMPARE(w.list->verticalScrollBar()->value(), left);
}

void PanelListTest::clicks_data()
{
    // clang-format off
    QTest::addColumn<QString>("clicks"); // a name each, "^" before it for Ctrl, "+" for Shift, "@" on its link
    QTest::addColumn<QString>("selection");
    QTest::addColumn<QString>("anchor");

    QTest::newRow("a click") << "b" << "b" << "b";
    QTest::newRow("another click replaces") << "b,d" << "d" << "d";
    QTest::newRow("ctrl adds") << "b,^d" << "b,d" << "d";
    QTest::newRow("ctrl removes, the anchor stays") << "b,^b" << "" << "b";
    QTest::newRow("shift extends from the anchor") << "b,+e" << "b,c,d,e" << "b";
    QTest::newRow("shift upwards") << "e,+b" << "b,c,d,e" << "e";
    QTest::newRow("shift without an anchor") << "+c" << "c" << "c";
    // A click on a link selects as any click does, and opens nothing.
    QTest::newRow("a click on a link") << "a,@b" << "b" << "b";
    QTest::newRow("a Ctrl+click on a link adds") << "a,^@b" << "a,b" << "b";
    QTest::newRow("a Shift+click on a link extends") << "a,+@b" << "a,b" << "a";
    // clang-format on
}

void PanelListTest::clicks()
{
    QFETCH(QString, clicks);
    QFETCH(QString, selection);
    QFETCH(QString, anchor);
    PanelTestRig rig(QStringLiteral("S1:a,b,c|S2:d,e"));
    rig.store().updateNote(idFor("b"),
        QStringLiteral(
            "[the quarterly report for the board and its members](https://example.org/r)"));
    ListWindow w(rig);
    OpenedUrls opened;
    QDesktopServices::setUrlHandler(QStringLiteral("https"), &opened, "open");
    auto restore = qScopeGuard([] { QDesktopServices::unsetUrlHandler(QStringLiteral("https")); });
    for (QString click : clicks.split(u',')) {
        Qt::KeyboardModifiers modifiers;
        if (click.startsWith(u'^'))
            modifiers = Qt::ControlModifier;
        else if (click.startsWith(u'+'))
            modifiers = Qt::ShiftModifier;
        if (modifiers)
            click.remove(0, 1);
        const bool onLink = click.startsWith(u'@');
        NoteRowView *row = w.note(click.remove(u'@'));
        QVERIFY(row);
        // The link's words are the first of the text.
        const QPoint at = onLink
            ? QPoint(NoteRowView::cardPaddingH + DoneControl::diameter + NoteRowView::spacing + 6,
                NoteRowView::rowPadding + NoteRowView::cardPaddingV + 6)
            : inText(row);
        QTest::mouseClick(row, Qt::LeftButton, modifiers, at);
    }
    QCoreApplication::processEvents();
    QCOMPARE(namesOf(rig.store().selection().values()), selection);
    QCOMPARE(nameOf(rig.store().selectionAnchor()), anchor);
    QCOMPARE(rig.state().focusTarget(), PanelFocusTarget::List);
    QCOMPARE(w.note(QStringLiteral("b"))->isSelected(), selection.contains(u'b'));
    QVERIFY(opened.urls.isEmpty());
}

void PanelListTest::doneControlActsOnTheMenuTarget_data()
{
    // clang-format off
    QTest::addColumn<QString>("selection");
    QTest::addColumn<QString>("pressed");
    QTest::addColumn<QString>("after");

    QTest::newRow("on the selection") << "a,b" << "b" << "*S1:A,B,c,D";
    QTest::newRow("outside the selection") << "a,b" << "c" << "*S1:a,b,C,D";
    QTest::newRow("on a done note") << "" << "d" << "*S1:a,b,c,d";
    // clang-format on
}

void PanelListTest::doneControlActsOnTheMenuTarget()
{
    QFETCH(QString, selection);
    QFETCH(QString, pressed);
    QFETCH(QString, after);
    PanelTestRig rig(QStringLiteral("S1:a,b,c,D"));
    ListWindow w(rig);
    const QList<QUuid> ids = idsFor(selection);
    rig.store().setSelection(QSet<QUuid>(ids.cbegin(), ids.cend()), std::nullopt);
    QTest::mouseClick(w.note(pressed)->doneControl(), Qt::LeftButton);
    QCOMPARE(rig.describe(), after);
    // The click changes no selection.
    QCOMPARE(namesOf(rig.store().selection().values()), selection);
}

void PanelListTest::fillFollowsTheNote_data()
{
    // clang-format off
    QTest::addColumn<QString>("notes");
    QTest::addColumn<QString>("change");
    QTest::addColumn<QString>("fill"); // the theme's colour the card ends in

    QTest::newRow("marked done") << "S1:a,b" << "done" << "done";
    QTest::newRow("marked not done") << "S1:A,b" << "undone" << "plain";
    QTest::newRow("its done control pressed") << "S1:a,b" << "control" << "done";
    QTest::newRow("selected") << "S1:a,b" << "select" << "selected";
    QTest::newRow("hovered") << "S1:a,b" << "hover" << "selected";
    QTest::newRow("done wins over selected") << "S1:A,b" << "select" << "done";
    QTest::newRow("done wins over hovered") << "S1:A,b" << "hover" << "done";
    // Being edited is not being selected: the card is a box to write in.
    QTest::newRow("edited") << "S1:a,b" << "edit" << "editing";
    QTest::newRow("a done note edited") << "S1:A,b" << "edit" << "editing";
    QTest::newRow("the edit ends") << "S1:a,b" << "edit,escape" << "selected";
    // clang-format on
}

void PanelListTest::fillFollowsTheNote()
{
    QFETCH(QString, notes);
    QFETCH(QString, change);
    QFETCH(QString, fill);
    PanelTestRig rig(notes);
    ListWindow w(rig);
    NoteRowView *row = w.note(QStringLiteral("a"));
    QVERIFY(row);
    for (const QString &step : change.split(u',')) {
        if (step == u"done" || step == u"undone") {
            rig.store().setDone({idFor("a")}, step == u"done");
        } else if (step == u"control") {
            QTest::mouseClick(row->doneControl(), Qt::LeftButton);
        } else if (step == u"select") {
            rig.store().setSelection({idFor("a")}, idFor("a"));
        } else if (step == u"hover") {
            QEnterEvent enter(QPointF(5, 5), QPointF(5, 5), row->mapToGlobal(QPointF(5, 5)));
            QCoreApplication::sendEvent(row, &enter);
        } else if (step == u"edit") {
            QTest::mouseDClick(row, Qt::LeftButton, {}, inText(row));
            QVERIFY(QTest::qWaitFor([row] { return row->isEditing(); }));
        } else if (step == u"escape") {
            QTest::keyClick(row->editor()->editor(), Qt::Key_Escape);
        }
        QCoreApplication::processEvents();
    }
    QCOMPARE(w.note(QStringLiteral("a")), row);
    const ThemeColors colors = Theme::currentColors();
    const QHash<QString, QColor> fills {{"done", colors.noteFillDone}, {"plain", colors.noteFill},
        {"selected", colors.noteFillSelected}, {"editing", colors.surfaceHoverFill}};
    // At once or after its ease, without a hover or a click to wake it.
    QTRY_COMPARE_WITH_TIMEOUT(row->fillColor().rgba(), fills.value(fill).rgba(), Test::patience);
    const QList<QColor> all = fills.values();
    QCOMPARE(all.count(fills.value(fill)), 1);
}

void PanelListTest::hoverFollowsThePointer_data()
{
    QTest::addColumn<QString>("kind");

    QTest::newRow("section headers") << "headers";
    QTest::newRow("notes") << "notes";
}

void PanelListTest::hoverFollowsThePointer()
{
    QFETCH(QString, kind);
    const bool headers = kind == u"headers";
    QStringList sections;
    for (int i = 1; i <= 40; ++i)
        sections.append(QStringLiteral("S%1+:n%1").arg(i));
    auto rig = headers ? std::make_unique<PanelTestRig>(sections.join(u'|'))
                       : std::make_unique<PanelTestRig>(manyNotes(1, 300));
    ListWindow w(*rig);
    const QString first = headers ? QStringLiteral("S5") : QStringLiteral("n5");
    const QString below = headers ? QStringLiteral("S8") : QStringLiteral("n8");
    auto hovered = [&](const QString &name) {
        if (headers)
            return w.header(name) && w.header(name)->isHovered();
        return w.note(name) && w.note(name)->isHovered();
    };
    QWidget *viewport = w.list->viewport();
    const QPoint at = w.list->rowRect(idFor(first)).center();
    QTest::mouseMove(viewport, at);
    QTRY_VERIFY_WITH_TIMEOUT(hovered(first), Test::patience);
    if (headers)
        QVERIFY(w.header(first)->showsGrip());

    // The list scrolls three rows under the pointer, which stays where it was.
    const int delta = w.list->rowRect(idFor(below)).top() - w.list->rowRect(idFor(first)).top();
    w.list->verticalScrollBar()->setValue(w.list->verticalScrollBar()->value() + delta);
    QCoreApplication::processEvents();
    QVERIFY(w.list->rowRect(idFor(below)).contains(at));
    QVERIFY(!hovered(first));
    QVERIFY(hovered(below));
    if (headers) {
        QVERIFY(!w.header(first) || !w.header(first)->showsGrip());
        QVERIFY(w.header(below)->showsGrip());
    } else {
        QCOMPARE(w.note(first)->fill(), NoteRowView::Fill::Plain);
    }
}

void PanelListTest::editInPlace_data()
{
    // clang-format off
    QTest::addColumn<QString>("ending"); // how the edit ends
    QTest::addColumn<QString>("text"); // the note's text afterwards

    // Shift+Return adds a line; Return commits.
    QTest::newRow("Return commits") << "return" << "bee\ntwo";
    QTest::newRow("leaving the field commits") << "leave" << "bee\ntwo";
    // Leaving afterwards saves nothing either.
    QTest::newRow("Escape cancels") << "escape" << "b";
    // clang-format on
}

void PanelListTest::editInPlace()
{
    QFETCH(QString, ending);
    QFETCH(QString, text);
    PanelTestRig rig(QStringLiteral("S1:a,b,c"));
    ListWindow w(rig);
    NoteRowView *row = w.note(QStringLiteral("b"));
    QTest::mouseDClick(row, Qt::LeftButton, {}, inText(row));
    QCoreApplication::processEvents();
    QVERIFY(row->isEditing());
    QCOMPARE(nameOf(rig.store().editingNoteID()), QStringLiteral("b"));
    QCOMPARE(namesOf(rig.store().selection().values()), QStringLiteral("b"));
    QTextEdit *editor = row->editor()->editor();
    QVERIFY(editor->hasFocus());
    QCOMPARE(editor->toPlainText(), QStringLiteral("b"));

    QTest::keyClicks(editor, QStringLiteral("ee"));
    QTest::keyClick(editor, Qt::Key_Return, Qt::ShiftModifier);
    QTest::keyClicks(editor, QStringLiteral("two"));
    if (ending == u"return") {
        QTest::keyClick(editor, Qt::Key_Return);
        QCOMPARE(rig.state().focusTarget(), PanelFocusTarget::List);
    } else if (ending == u"escape") {
        QTest::keyClick(editor, Qt::Key_Escape);
        QVERIFY(!rig.store().canUndo());
    }
    w.other->setFocus(Qt::MouseFocusReason);
    QCoreApplication::processEvents();
    QCOMPARE(rig.store().note(idFor("b"))->text, text);
    QVERIFY(!rig.store().editingNoteID());
    QVERIFY(!row->isEditing());
}

//! What the rows show and tell a screen reader: a long note, a done one, one
//! of attachments alone, one of five lines, one with a source, the headers.
void PanelListTest::rowsShowTheirNotes()
{
    Library library;
    library.projects = {projectFrom(QStringLiteral("S1:a,B,c,d,e|S2+:f"))};
    library.activeProjectID = library.projects.first().id;
    NoteList &notes = library.projects[0].sections[0].notes;
    notes[0].text = QString(130, u'x');
    notes[2].text.clear();
    notes[2].attachments = noteWith(QString(), {"scan.pdf", "photo.png"}).attachments;
    notes[3].text = QStringLiteral("one\ntwo\nthree\nfour\nfive");
    notes[4].source = NoteSource {QStringLiteral("Terminal"), std::nullopt, std::nullopt};
    PanelTestRig rig(library);
    ListWindow w(rig);
    const auto accessible
        = [](QObject *object) { return QAccessible::queryAccessibleInterface(object); };

    QAccessibleInterface *row = accessible(w.note(QStringLiteral("a")));
    QCOMPARE(row->text(QAccessible::Name), QString(120, u'x') + u'…');
    QAccessibleInterface *done = accessible(w.note(QStringLiteral("a"))->doneControl());
    QCOMPARE(
        accessible(w.note(QStringLiteral("b")))->text(QAccessible::Value), QStringLiteral("Done"));
    QCOMPARE(accessible(w.note(QStringLiteral("b"))->doneControl())->text(QAccessible::Name),
        QStringLiteral("Mark as not done"));
    // Pressing the control through the accessibility action marks the note.
    done->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    // The press animates the button before it clicks.
    QTRY_COMPARE_WITH_TIMEOUT(rig.store().note(idFor("a"))->isDone, true, Test::patience);
    QCOMPARE(row->text(QAccessible::Value), QStringLiteral("Done"));
    QCOMPARE(done->text(QAccessible::Name), QStringLiteral("Mark as not done"));
    QAccessibleInterface *open = accessible(w.header(QStringLiteral("S1")));
    QCOMPARE(open->text(QAccessible::Name), QStringLiteral("S1 section, 3 remaining"));
    QVERIFY(open->state().expanded);
    QAccessibleInterface *collapsed = accessible(w.header(QStringLiteral("S2")));
    QCOMPARE(collapsed->text(QAccessible::Name), QStringLiteral("S2 section, 1 remaining"));
    QVERIFY(collapsed->state().collapsed);

    // Attachments alone: the tiles take the place of the text, at the top of the card.
    NoteRowView *files = w.note(QStringLiteral("c"));
    QVERIFY(!files->showsText());
    QVERIFY(files->attachmentsView()->isVisible());
    QCOMPARE(files->attachmentsView()->geometry().top(), 3 + 9);
    QCOMPARE(accessible(files)->text(QAccessible::Name), QStringLiteral("scan.pdf, photo.png"));
    NoteRowView *plain = w.note(QStringLiteral("b"));
    QVERIFY(plain->showsText());
    QVERIFY(!plain->attachmentsView() || !plain->attachmentsView()->isVisible());

    // Expanded, a note shows all its lines.
    NoteRowView *five = w.note(QStringLiteral("d"));
    QVERIFY(five->isTextTruncated());
    const int fiveCollapsed = five->height();
    rig.store().toggleExpanded(idFor("d"));
    QCoreApplication::processEvents();
    QVERIFY(five->isExpanded());
    QVERIFY(!five->isTextTruncated());
    QVERIFY(five->height() > fiveCollapsed);
    QCOMPARE(w.list->rowRect(idFor("d")).height(), five->height());
    // A source line comes with the expansion, only for a note with a source.
    NoteRowView *sourced = w.note(QStringLiteral("e"));
    const int sourcedCollapsed = sourced->height();
    QVERIFY(sourced->sourceLine().startsWith(QStringLiteral("Terminal \u00B7 ")));
    rig.store().toggleExpanded(idFor("e"));
    QCoreApplication::processEvents();
    QVERIFY(sourced->height() > sourcedCollapsed);
    const int plainCollapsed = plain->height();
    rig.store().toggleExpanded(idFor("b"));
    QCoreApplication::processEvents();
    QVERIFY(plain->isExpanded());
    QCOMPARE(plain->height(), plainCollapsed);
    QVERIFY(plain->sourceLine().isEmpty());
}

void PanelListTest::headerShowsWhatItsStateAllows_data()
{
    QTest::addColumn<QString>("project");
    QTest::addColumn<bool>("hovered");
    QTest::addColumn<bool>("grip");
    QTest::addColumn<bool>("count");
    QTest::addColumn<bool>("activeMark");

    QTest::newRow("open") << "*S1:a|S2:b" << false << false << false << true;
    QTest::newRow("open, hovered: count, no grip") << "*S1:a|S2:b" << true << false << true << true;
    QTest::newRow("collapsed: count") << "*S1+:a|S2:b" << false << false << true << true;
    QTest::newRow("collapsed, hovered: grip") << "*S1+:a|S2:b" << true << true << true << true;
    QTest::newRow("zero count shows no number") << "*S1+:A|S2:b" << true << true << false << true;
    QTest::newRow("not active") << "S1+:a|*S2:b" << false << false << true << false;
}

void PanelListTest::headerShowsWhatItsStateAllows()
{
    QFETCH(QString, project);
    QFETCH(bool, hovered);
    QFETCH(bool, grip);
    QFETCH(bool, count);
    QFETCH(bool, activeMark);
    PanelTestRig rig(project);
    ListWindow w(rig);
    SectionHeaderView *header = w.header(QStringLiteral("S1"));
    QVERIFY(header);
    if (hovered) {
        QEnterEvent enter(QPointF(5, 5), QPointF(5, 5), header->mapToGlobal(QPointF(5, 5)));
        QCoreApplication::sendEvent(header, &enter);
    }
    QCOMPARE(header->showsGrip(), grip);
    QCOMPARE(header->showsCount(), count);
    QCOMPARE(header->showsActiveMark(), activeMark);
    QCOMPARE(header->displayedTitle(), QStringLiteral("S1"));
}

//! An open section's header: a drag is no click, a click collapses and
//! opens; in rename, typing replaces the title and a click does nothing.
void PanelListTest::openSectionHeader()
{
    PanelTestRig rig(QStringLiteral("S1:a,b|S2:c|S3:d"));
    ListWindow w(rig);
    SectionHeaderView *header = w.header(QStringLiteral("S1"));
    QVERIFY(!header->canReorder());
    QTest::mousePress(header, Qt::LeftButton, {}, QPoint(40, 12));
    QTest::mouseMove(header, QPoint(40, 150));
    QVERIFY(!header->isReordering());
    QVERIFY(!w.list->sectionDragSourceID());
    QTest::mouseRelease(header, Qt::LeftButton, {}, QPoint(40, 150));
    w.settle();
    // Neither moved nor collapsed: a drag is no click.
    QCOMPARE(rig.describe(), QStringLiteral("*S1:a,b|S2:c|S3:d"));

    // A click collapses it, and the next one opens it again.
    QTest::mouseClick(w.header(QStringLiteral("S1")), Qt::LeftButton, {}, QPoint(40, 12));
    w.settle();
    QCOMPARE(rig.describe(), QStringLiteral("*S1+:a,b|S2:c|S3:d"));
    QVERIFY(!w.note(QStringLiteral("a")));
    QTest::mouseClick(w.header(QStringLiteral("S1")), Qt::LeftButton, {}, QPoint(40, 12));
    w.settle();
    QCOMPARE(rig.describe(), QStringLiteral("*S1:a,b|S2:c|S3:d"));
    QVERIFY(w.note(QStringLiteral("a")));

    rig.state().setRenamingSectionID(idFor("S2"));
    QCoreApplication::processEvents();
    header = w.header(QStringLiteral("S2"));
    QVERIFY(header->isRenaming());
    QTextEdit *editor = header->editor()->editor();
    QVERIFY(editor->hasFocus());
    QCOMPARE(editor->toPlainText(), QStringLiteral("S2"));
    // The title is selected: typing replaces it.
    QTest::keyClicks(editor, QStringLiteral("Later"));
    QTest::mouseClick(header, Qt::LeftButton, {}, QPoint(2, 2));
    QTest::keyClick(editor, Qt::Key_Return);
    QCOMPARE(rig.describe(), QStringLiteral("*S1:a,b|Later:c|S3:d"));
    QVERIFY(!rig.state().renamingSectionID());
    QVERIFY(!header->isRenaming());
    rig.state().setRenamingSectionID(idFor("S1"));
    QCoreApplication::processEvents();
    QTest::keyClicks(w.header(QStringLiteral("S1"))->editor()->editor(), QStringLiteral("zz"));
    QTest::keyClick(w.header(QStringLiteral("S1"))->editor()->editor(), Qt::Key_Escape);
    QCOMPARE(rig.describe(), QStringLiteral("*S1:a,b|Later:c|S3:d"));
}

void PanelListTest::collapsedSectionIsReordered()
{
    PanelTestRig rig(QStringLiteral("S1+:a|S2+:b|S3+:c|S4+:d"));
    ListWindow w(rig);
    // The pointer goes by the viewport, which stays put while the header follows it.
    QWidget *viewport = w.list->viewport();
    auto centre = [&](const char *name) { return w.list->rowRect(idFor(name)).center(); };
    SectionHeaderView *header = nullptr;
    auto press = [&](const char *name) {
        header = w.header(QString::fromLatin1(name));
        QTest::mousePress(header, Qt::LeftButton, {}, header->mapFrom(viewport, centre(name)));
    };
    auto moveTo = [&](QPoint at) { QTest::mouseMove(header, header->mapFrom(viewport, at)); };
    auto release = [&](QPoint at) {
        QTest::mouseRelease(header, Qt::LeftButton, {}, header->mapFrom(viewport, at));
    };
    const QPoint start = centre("S1");
    const QPoint belowS3 = centre("S3") + QPoint(0, 2);
    press("S1");
    moveTo((start + belowS3) / 2);
    QVERIFY(header->isReordering());
    moveTo(belowS3);
    QCOMPARE(nameOf(w.list->sectionDragSourceID()), QStringLiteral("S1"));
    // Its middle passed the middle of S3: it lands before S4.
    QCOMPARE(nameOf(w.list->sectionDragTargetID()), QStringLiteral("S4"));
    release(belowS3);
    w.settle();
    QCOMPARE(rig.describe(), QStringLiteral("S2+:b|S3+:c|*S1+:a|S4+:d"));
    QVERIFY(!w.list->sectionDragSourceID());

    // Past the last header: to the end, with the line under the last header.
    const QPoint s2 = centre("S2");
    const QPoint farBelow = s2 + QPoint(0, 300);
    press("S2");
    moveTo(s2 + QPoint(0, 20));
    moveTo(farBelow);
    QCOMPARE(nameOf(w.list->sectionDragSourceID()), QStringLiteral("S2"));
    QVERIFY(!w.list->sectionDragTargetID());
    QVERIFY(w.list->showsDropLineBelow(idFor("S4")));
    QVERIFY(!w.list->showsDropLineBelow(idFor("S3")));
    release(farBelow);
    w.settle();
    QCOMPARE(rig.describe(), QStringLiteral("S3+:c|*S1+:a|S4+:d|S2+:b"));
}

void PanelListTest::scrollsToTheRow_data()
{
    // clang-format off
    QTest::addColumn<QString>("scrolledTo"); // the row at the top before, or none
    QTest::addColumn<QString>("target"); // a note revealed, or a section jumped to
    QTest::addColumn<QString>("atTop"); // the row expected at the top; empty for centred
    QTest::addColumn<int>("sections");
    QTest::addColumn<int>("perSection");
    QTest::addColumn<int>("lines"); // of every third note

    // Sections of 30 notes: S3 is row 62, after note n59. Near or far, the
    // list glides until the row stands in the middle.
    QTest::newRow("note out of view below") << "" << "n150" << "" << 8 << 30 << 1;
    QTest::newRow("note out of view above") << "n150" << "n20" << "" << 8 << 30 << 1;
    QTest::newRow("near the start the first row stays on top") << "n150" << "n1" << "S1" << 8 << 30 << 1;
    QTest::newRow("note in view") << "n100" << "n103" << "" << 8 << 30 << 1;
    QTest::newRow("note in view, partly under the composer") << "n100" << "straddling" << "" << 8 << 30 << 1;
    QTest::newRow("section out of view") << "" << "S6" << "" << 8 << 30 << 1;
    QTest::newRow("back to the first section") << "n200" << "S1" << "S1" << 8 << 30 << 1;
    QTest::newRow("section in view") << "n57" << "S3" << "" << 8 << 30 << 1;
    // Rows far from both ends are laid out at a guess until they come into
    // view: notes of several lines are taller than it.
    QTest::newRow("far below, notes of lines") << "" << "n1500" << "" << 1 << 3000 << 3;
    QTest::newRow("far above, notes of lines") << "n2500" << "n900" << "" << 1 << 3000 << 3;
    QTest::newRow("in view far down, notes of lines") << "n1500" << "n1503" << "" << 1 << 3000 << 3;
    // clang-format on
}

void PanelListTest::scrollsToTheRow()
{
    QFETCH(QString, scrolledTo);
    QFETCH(QString, target);
    QFETCH(QString, atTop);
    QFETCH(int, sections);
    QFETCH(int, perSection);
    QFETCH(int, lines);
    PanelTestRig rig(manyNotes(sections, perSection, lines));
    ListWindow w(rig);
    if (!scrolledTo.isEmpty()) {
        w.list->scrollToRow(idFor(scrolledTo), ScrollAnchor::Top, false);
        QCoreApplication::processEvents();
        QCOMPARE(w.topInClearArea(scrolledTo), 0);
    }
    if (target == u"straddling") {
        // The row across the lower edge of the area between the bars.
        const int edge = w.list->clearArea().bottom();
        for (int number = 100; number < 130; ++number) {
            const QRect row = w.list->rowRect(idFor(QStringLiteral("n%1").arg(number)));
            if (row.top() < edge && row.bottom() > edge)
                target = QStringLiteral("n%1").arg(number);
        }
        QVERIFY(target.startsWith(u'n'));
    }
    const bool section = target.startsWith(u'S');
    if (section) {
        rig.store().activateSection(idFor(target));
        rig.state().setSectionJumpRequest(idFor(target));
        // The list empties the slot, so the same jump can be asked again.
        QVERIFY(!rig.state().sectionJumpRequest());
    } else {
        rig.store().setSelection({idFor(target)}, idFor(target));
    }
    // Looked at after each turn: the turn that starts the glide cannot end it.
    bool glides = false;
    for (int turn = 0; turn < 10 && !glides; ++turn) {
        QCoreApplication::processEvents();
        glides = w.list->isScrollAnimating();
    }
    QVERIFY(glides);
    w.settle();
    if (atTop.isEmpty())
        QVERIFY2(std::abs(w.centreOffset(target)) <= 1,
            qPrintable(QString::number(w.centreOffset(target))));
    else
        QCOMPARE(w.topInClearArea(atTop), 0);
    QVERIFY(section ? static_cast<QWidget *>(w.header(target)) : w.note(target));
}

void PanelListTest::resetsScrollToTheTop_data()
{
    // clang-format off
    QTest::addColumn<QString>("change");
    QTest::addColumn<QString>("atTop"); // empty for the top of the list

    QTest::newRow("a collapse") << "collapse" << "";
    QTest::newRow("a search") << "search" << "";
    // The rows shrink, and the next note, now anchored, is revealed.
    QTest::newRow("a deletion") << "delete" << "anchor";
    QTest::newRow("more rows") << "add" << "n120";
    QTest::newRow("an edit") << "edit" << "n120";
    // clang-format on
}

void PanelListTest::resetsScrollToTheTop()
{
    QFETCH(QString, change);
    QFETCH(QString, atTop);
    PanelTestRig rig(manyNotes(2, 100));
    ListWindow w(rig);
    w.list->scrollToRow(idFor("n120"), ScrollAnchor::Top, false);
    QCoreApplication::processEvents();
    Store &store = rig.store();
    if (change == u"delete")
        store.deleteNotes({idFor("n150"), idFor("n151")});
    else if (change == u"collapse") {
        store.toggleSectionCollapsed(idFor("S2"));
        store.commit();
    } else if (change == u"search")
        store.setSearchText(QStringLiteral("note"));
    else if (change == u"add")
        store.addNote(QStringLiteral("new"), idFor("S2"));
    else
        store.updateNote(idFor("n121"), QStringLiteral("changed"));
    w.settle();
    if (atTop.isEmpty()) {
        QCOMPARE(w.list->verticalScrollBar()->value(), 0);
    } else if (atTop == u"anchor") {
        QVERIFY(store.selectionAnchor() == idFor("n152"));
        QVERIFY(std::abs(w.centreOffset(QStringLiteral("n152"))) <= 1);
    } else {
        QCOMPARE(w.topInClearArea(atTop), 0);
    }
}

void PanelListTest::drops_data()
{
    // clang-format off
    QTest::addColumn<QString>("dragging");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("target");
    QTest::addColumn<bool>("accepted");
    QTest::addColumn<QString>("after");

    QTest::newRow("text on a row") << "" << "from elsewhere"
                                   << "d" << true << "*S1:a,b,c|S2:d,e,from elsewhere";
    QTest::newRow("text on a header") << "" << "x" << "S1" << true << "*S1:a,b,c,x|S2:d,e";
    QTest::newRow("blank text") << "" << " \n " << "d" << false << "*S1:a,b,c|S2:d,e";
    QTest::newRow("notes on a row") << "a,b" << "a\n\nb" << "e" << true << "*S1:c|S2:d,a,b,e";
    QTest::newRow("notes on their own header") << "a" << "a" << "S1" << true << "*S1:b,c,a|S2:d,e";
    QTest::newRow("text behind the rows") << "" << "y" << "list" << true << "*S1:a,b,c,y|S2:d,e";
    // clang-format on
}

void PanelListTest::drops()
{
    QFETCH(QString, dragging);
    QFETCH(QString, text);
    QFETCH(QString, target);
    QFETCH(bool, accepted);
    QFETCH(QString, after);
    PanelTestRig rig(QStringLiteral("S1:a,b,c|S2:d,e"));
    ListWindow w(rig);
    rig.state().setDraggingNoteIDs(idsFor(dragging));
    QWidget *widget = target == u"list" ? w.list->viewport()
        : target.startsWith(u'S')       ? static_cast<QWidget *>(w.header(target))
                                        : w.note(target);
    QMimeData data;
    data.setText(text);

    if (target != u"list") {
        const QPointF at(widget->width() / 2.0, widget->height() / 2.0);
        QDragEnterEvent enter(at.toPoint(), Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(widget, &enter);
        QCOMPARE(nameOf(w.list->dropTargetID()), target);
    }
    bool wasAccepted = false;
    sendDrop(widget, &data, &wasAccepted);
    QCOMPARE(wasAccepted, accepted);
    QCOMPARE(rig.describe(), after);
    QVERIFY(!w.list->dropTargetID());
    QVERIFY(rig.state().draggingNoteIDs().isEmpty());
}

//! Files dropped on a note are attached to it (what a failed import does is
//! the note window's and the composer's tests' to check).
void PanelListTest::filesDroppedOnANote()
{
    const QStringList attached = {"one.txt", "two.png"};
    QTemporaryDir folder;
    QList<QUrl> urls;
    for (const QString &name : attached) {
        QFile file(folder.filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("some bytes");
        urls.append(QUrl::fromLocalFile(folder.filePath(name)));
    }

    PanelTestRig rig(QStringLiteral("S1:a,b"));
    ListWindow w(rig);
    QMimeData data;
    data.setUrls(urls);
    bool wasAccepted = false;
    sendDrop(w.note(QStringLiteral("b")), &data, &wasAccepted);
    QVERIFY(wasAccepted);
    // The files are copied on the importer's thread; the answer comes back.
    QTRY_COMPARE_WITH_TIMEOUT(
        w.attachments.toasts, QStringList {"Attachment Added"}, Test::patience);
    QStringList names;
    const Note dropped = *rig.store().note(idFor("b"));
    for (const NoteAttachment &attachment : dropped.attachments)
        names.append(attachment.fileName);
    QCOMPARE(names, attached);
    QVERIFY(rig.store().note(idFor("a"))->attachments.isEmpty());
    // The row shows the tiles of what was attached.
    QCoreApplication::processEvents();
    NoteRowView *row = w.note(QStringLiteral("b"));
    QVERIFY(row->attachmentsView() && row->attachmentsView()->isVisible());
}

//! A drag out of the list carries the notes as text; a row and a header open their menus.
void PanelListTest::dragOutAndContextMenus()
{
    PanelTestRig rig(QStringLiteral("S1:a,b,c"));
    ListWindow w(rig);
    rig.store().setSelection({idFor("a"), idFor("c")}, idFor("a"));
    QList<QList<QUuid>> marked;
    connect(&rig.state(), &PanelState::draggingNoteIDsChanged, this,
        [&] { marked.append(rig.state().draggingNoteIDs()); });

    NoteRowView *row = w.note(QStringLiteral("c"));
    QTest::mousePress(row, Qt::LeftButton, {}, inText(row));
    QTest::mouseMove(row, inText(row) + QPoint(0, 3 * QApplication::startDragDistance()));
    // The drag carried the selection, in the panel's order, as plain text,
    // and left no notes marked as dragged once it was over.
    const QDrag *drag = row->findChild<QDrag *>();
    QVERIFY(drag);
    QCOMPARE(drag->mimeData()->text(), QStringLiteral("a\n\nc"));
    QCOMPARE(marked.size(), 2);
    QCOMPARE(namesOf(marked.at(0)), QStringLiteral("a,c"));
    QVERIFY(marked.at(1).isEmpty());
    // No click came of it.
    QTest::mouseRelease(row, Qt::LeftButton, {}, inText(row));
    QCOMPARE(namesOf(rig.store().selection().values()), QStringLiteral("a,c"));

    for (QWidget *target : QWidgetList {row, w.header(QStringLiteral("S1"))}) {
        QContextMenuEvent event(
            QContextMenuEvent::Mouse, QPoint(20, 10), target->mapToGlobal(QPoint(20, 10)));
        QCoreApplication::sendEvent(target, &event);
        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        QVERIFY(menu);
        QVERIFY(!menu->actions().isEmpty());
        menu->close();
        QCoreApplication::processEvents();
    }
}

VESKO_WIDGET_TEST_MAIN(PanelListTest)
#include "tst_panellist.moc"
