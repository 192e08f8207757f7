// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the panel's rows and list decide without widgets: the search marks
// on a rendered note, what a screen reader hears, which notes a row acts on,
// drops, the target of a dragged section, the geometry of the virtual list,
// and clicks and edits on a real Store.

#include "PanelTestRig.h"
#include "TestEnvironment.h"

#include "panel/list/HighlightedText.h"
#include "panel/list/NoteRowActions.h"
#include "panel/list/PanelDrop.h"
#include "panel/list/RowAccessibility.h"
#include "panel/list/SectionReorder.h"
#include "panel/list/VirtualRowLayout.h"

#include <QMimeData>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QUrl>

using namespace Vesko;
using namespace Vesko::Test;

namespace {

QHash<QUuid, QRectF> framesFor(const QString &layout)
{
    // "S1@0,S2@30": headers 24 high with their tops.
    QHash<QUuid, QRectF> frames;
    for (const QString &entry : layout.split(u',', Qt::SkipEmptyParts))
        frames.insert(idFor(entry.section(u'@', 0, 0)),
            QRectF(0, entry.section(u'@', 1).toDouble(), 300, 24));
    return frames;
}

} // namespace

class PanelLogicTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void highlightedText_data();
    void highlightedText();

    void noteLabel_data();
    void noteLabel();
    void otherLabels();

    void editing();

    void drop_data();
    void drop();
    void textOfADrag();

    void reorderTarget_data();
    void reorderTarget();
    void reorderMovesTheSection_data();
    void reorderMovesTheSection();

    void virtualLayoutAgreesWithAPlainSum();
};

void PanelLogicTest::highlightedText_data()
{
    // clang-format off
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("query");
    QTest::addColumn<QString>("rendered");
    QTest::newRow("no query keeps the parse") << "plain **b**" << "" << "plain {S:b}";
    QTest::newRow("blank query keeps the parse") << "plain *e*" << " \t " << "plain {E:e}";
    QTest::newRow("every occurrence, any case") << "Hello hello HELLO" << "hello"
                                                << "{SH:Hello} {SH:hello} {SH:HELLO}";
    QTest::newRow("query in capitals marks lower case") << "a word here" << "WORD"
                                                        << "a {SH:word} here";
    QTest::newRow("query trimmed") << "a word here" << "  word " << "a {SH:word} here";
    QTest::newRow("no overlaps") << "aaa" << "aa" << "{SH:aa}a";
    QTest::newRow("across a run's edge") << "x **ab**cd" << "bc" << "x {S:a}{SH:bc}d";
    QTest::newRow("on the rendered characters") << "**bo**ld" << "bold" << "{SH:bold}";
    QTest::newRow("markers are not matched") << "**x**" << "**" << "{S:x}";
    QTest::newRow("inside a link") << "[docs](https://example.org) here" << "doc"
                                   << "{SL(https://example.org)H:doc}{L(https://example.org):s} here";
    QTest::newRow("code keeps its attribute") << "run `a+b` now" << "A+B" << "run {SCH:a+b} now";
    QTest::newRow("struck and emphasised") << "~~old~~ *new*" << "ld n"
                                           << "{X:o}{SXH:ld}{SH: }{ESH:n}{E:ew}";
    QTest::newRow("no occurrence") << "**bold** text" << "zzz" << "{S:bold} text";
    // clang-format on
}

void PanelLogicTest::highlightedText()
{
    QFETCH(QString, text);
    QFETCH(QString, query);
    QFETCH(QString, rendered);
    QCOMPARE(describeRuns(Vesko::highlightedText(text, query), {{highlightedAttribute, u'H'}}),
        rendered);
}

void PanelLogicTest::noteLabel_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("attachments");
    QTest::addColumn<QString>("label");
    QTest::newRow("text trimmed") << "  buy milk \n" << QStringList() << "buy milk";
    QTest::newRow("text and files")
        << "see these" << QStringList {"a.png", "b.pdf"} << "see these. Attachments: a.png, b.pdf";
    QTest::newRow("only files") << "" << QStringList {"a.png", "b.pdf"} << "a.png, b.pdf";
    QTest::newRow("blank text, one file") << " \n " << QStringList {"scan.jpg"} << "scan.jpg";
    QTest::newRow("nothing") << "" << QStringList() << "";
    QTest::newRow("120 characters stay whole")
        << QString(120, u'x') << QStringList() << QString(120, u'x');
    QTest::newRow("121 characters are cut")
        << QString(121, u'x') << QStringList() << QString(120, u'x') + u'…';
    QTest::newRow("130 characters are cut")
        << QString(130, u'x') << QStringList() << QString(120, u'x') + u'…';
    QTest::newRow("cut after whole characters")
        << QString(119, u'x') + QStringLiteral("👍🏽") + QString(10, u'y') << QStringList()
        << QString(119, u'x') + QStringLiteral("👍🏽…");
    QTest::newRow("cut text with files")
        << QString(125, u'x') << QStringList {"f.txt"}
        << QString(120, u'x') + QStringLiteral("…. Attachments: f.txt");
    // What the row shows, not how it was typed.
    QTest::newRow("struck-through words are not said")
        << "Email ~~Bob~~ Alice" << QStringList() << "Email Alice";
    QTest::newRow("struck through at the ends") << "~~old~~ new ~~gone~~" << QStringList() << "new";
    QTest::newRow("markers and link targets go")
        << "**Call** _Eve_ about [the plan](https://example.org/plan) `now`" << QStringList()
        << "Call Eve about the plan now";
    QTest::newRow("escaped markers are said as typed")
        << "\\~\\~kept\\~\\~ and \\*this\\*" << QStringList() << "~~kept~~ and *this*";
    QTest::newRow("all struck through: said all the same")
        << "~~done with this~~" << QStringList {"a.png"} << "done with this. Attachments: a.png";
    QTest::newRow("the cut counts shown characters") << QStringLiteral("**%1**").arg(
        QString(125, u'x')) << QStringList() << QString(120, u'x') + u'…';
}

void PanelLogicTest::noteLabel()
{
    QFETCH(QString, text);
    QFETCH(QStringList, attachments);
    QFETCH(QString, label);
    QCOMPARE(RowAccessibility::noteLabel(noteWith(text, attachments)), label);
}

void PanelLogicTest::otherLabels()
{
    Note note = noteWith(QStringLiteral("x"));
    QCOMPARE(RowAccessibility::noteValue(note), QStringLiteral("Not done"));
    note.isDone = true;
    QCOMPARE(RowAccessibility::noteValue(note), QStringLiteral("Done"));
    QCOMPARE(RowAccessibility::doneControlLabel(false), QStringLiteral("Mark as done"));
    QCOMPARE(RowAccessibility::doneControlLabel(true), QStringLiteral("Mark as not done"));
    PanelSectionRow section {makeID(), QStringLiteral("Inbox"), false, 3, true};
    QCOMPARE(RowAccessibility::sectionLabel(section), QStringLiteral("Inbox section, 3 remaining"));
    section.remainingCount = 0;
    QCOMPARE(RowAccessibility::sectionLabel(section), QStringLiteral("Inbox section, 0 remaining"));
}

void PanelLogicTest::editing()
{
    PanelTestRig rig(QStringLiteral("S1:a,b,c"));
    Store &store = rig.store();
    PanelState &state = rig.state();
    store.setSelection({idFor("a"), idFor("c")}, idFor("a"));

    NoteRowActions::startEditing(store, idFor("b"));
    QCOMPARE(namesOf(store.selection().values()), QStringLiteral("b"));
    QCOMPARE(nameOf(store.selectionAnchor()), QStringLiteral("b"));
    QCOMPARE(nameOf(store.editingNoteID()), QStringLiteral("b"));

    NoteRowActions::commitEdit(store, state, idFor("b"), QStringLiteral("  bee \n"));
    QCOMPARE(store.note(idFor("b"))->text, QStringLiteral("bee"));
    QVERIFY(!store.editingNoteID());
    QCOMPARE(state.focusTarget(), PanelFocusTarget::List);
    // A commit that arrives after the editing ended saves nothing.
    NoteRowActions::commitEdit(store, state, idFor("b"), QStringLiteral("late"));
    QCOMPARE(store.note(idFor("b"))->text, QStringLiteral("bee"));

    NoteRowActions::startEditing(store, idFor("c"));
    NoteRowActions::cancelEdit(store, state, idFor("c"));
    QCOMPARE(store.note(idFor("c"))->text, QStringLiteral("c"));
    QVERIFY(!store.editingNoteID());
}

void PanelLogicTest::drop_data()
{
    // clang-format off
    QTest::addColumn<QString>("dragging");
    QTest::addColumn<QStringList>("items");
    QTest::addColumn<QString>("section");
    QTest::addColumn<QString>("before");
    QTest::addColumn<int>("outcome");
    QTest::addColumn<QString>("after");
    const int refused = int(PanelDrop::Outcome::Refused);
    const int added = int(PanelDrop::Outcome::AddedNote);
    const int moved = int(PanelDrop::Outcome::MovedNotes);

    QTest::newRow("text from outside on a row") << "" << QStringList {"  hello \n"} << "S2"
                                                << "e" << added << "*S1:a,b,c|S2:d,e,hello";
    QTest::newRow("several texts joined") << "" << QStringList {"one", "two"} << "S1"
                                          << "" << added << "*S1:a,b,c,one\n\ntwo|S2:d,e";
    QTest::newRow("blanks refused") << "" << QStringList {"  ", "\n\t"} << "S1"
                                    << "" << refused << "*S1:a,b,c|S2:d,e";
    QTest::newRow("no section") << "" << QStringList {"text"} << ""
                                << "" << refused << "*S1:a,b,c|S2:d,e";
    // Refused or not, a drop ends the drag (checked after every row).
    QTest::newRow("notes on no section") << "a" << QStringList {"a"} << ""
                                         << "" << refused << "*S1:a,b,c|S2:d,e";
    QTest::newRow("a note before a row of another section") << "a" << QStringList {"a"} << "S2"
                                                            << "e" << moved << "*S1:b,c|S2:d,a,e";
    QTest::newRow("notes on their own header go to its end")
        << "a,b" << QStringList {"a\n\nb"} << "S1" << "" << moved << "*S1:c,a,b|S2:d,e";
    QTest::newRow("notes on a row of the drag") << "a,b" << QStringList() << "S1"
                                                << "b" << moved << "*S1:a,b,c|S2:d,e";
    QTest::newRow("notes just after themselves") << "a,b" << QStringList() << "S1"
                                                 << "c" << moved << "*S1:a,b,c|S2:d,e";
    QTest::newRow("a note up in its section") << "c" << QStringList() << "S1"
                                              << "a" << moved << "*S1:c,a,b|S2:d,e";
    QTest::newRow("notes on a missing section") << "a" << QStringList() << "X9"
                                                << "" << moved << "*S1:a,b,c|S2:d,e";
    QTest::newRow("dragged text from the panel is not added") << "d" << QStringList {"d"} << "S1"
                                                              << "" << moved << "*S1:a,b,c,d|S2:e";
    // clang-format on
}

void PanelLogicTest::drop()
{
    QFETCH(QString, dragging);
    QFETCH(QStringList, items);
    QFETCH(QString, section);
    QFETCH(QString, before);
    QFETCH(int, outcome);
    QFETCH(QString, after);
    PanelTestRig rig(QStringLiteral("S1:a,b,c|S2:d,e"));
    rig.state().setDraggingNoteIDs(idsFor(dragging));
    const auto result = PanelDrop::handleDrop(rig.store(), rig.state(), items,
        section.isEmpty() ? std::nullopt : std::optional<QUuid>(idFor(section)),
        before.isEmpty() ? std::nullopt : std::optional<QUuid>(idFor(before)));
    QCOMPARE(int(result), outcome);
    QCOMPARE(rig.describe(), after);
    QVERIFY(rig.state().draggingNoteIDs().isEmpty());
}

void PanelLogicTest::textOfADrag()
{
    QMimeData text;
    text.setText(QStringLiteral("some words"));
    QCOMPARE(PanelDrop::textItems(text), QStringList {QStringLiteral("some words")});

    QMimeData link;
    link.setUrls({QUrl(QStringLiteral("https://example.org/page"))});
    link.setText(QStringLiteral("https://example.org/page"));
    QCOMPARE(PanelDrop::textItems(link), QStringList {QStringLiteral("https://example.org/page")});
    // Files bring their paths as text; they are still files.
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile(QStringLiteral("/tmp/a.txt"))});
    files.setText(QStringLiteral("/tmp/a.txt"));
    QVERIFY(!PanelDrop::textItems(files));

    QMimeData image;
    image.setData(QStringLiteral("image/png"), QByteArray("\x89PNG"));
    QVERIFY(!PanelDrop::textItems(image));
}

void PanelLogicTest::reorderTarget_data()
{
    // clang-format off
    QTest::addColumn<QString>("frames");
    QTest::addColumn<QString>("order");
    QTest::addColumn<QString>("dragged");
    QTest::addColumn<double>("y");
    QTest::addColumn<QString>("target");
    // Headers 24 high at 0, 30, 60, 90: middles 12, 42, 72, 102.
    const QString four = QStringLiteral("S1@0,S2@30,S3@60,S4@90");
    const QString order = QStringLiteral("S1,S2,S3,S4");
    QTest::newRow("down past one") << four << order << "S1" << 50.0 << "S3";
    QTest::newRow("hardly moved") << four << order << "S1" << 13.0 << "S2";
    QTest::newRow("to the top") << four << order << "S4" << -10.0 << "S1";
    QTest::newRow("on a middle goes below it") << four << order << "S4" << 42.0 << "S3";
    QTest::newRow("past the last") << four << order << "S2" << 200.0 << "";
    QTest::newRow("past the last listed reaches the next section") << "S1@0,S2@30" << "S1,S2,S3"
                                                                   << "S1" << 200.0 << "S3";
    QTest::newRow("which may be the dragged one") << "S1@0,S2@30" << "S1,S2,S3"
                                                  << "S3" << 200.0 << "S3";
    QTest::newRow("no other headers") << "S1@0" << "S1,S2" << "S1" << 50.0 << "";
    QTest::newRow("unsorted frames") << "S3@60,S1@0,S4@90,S2@30" << order << "S4" << 20.0 << "S2";
    // clang-format on
}

void PanelLogicTest::reorderTarget()
{
    QFETCH(QString, frames);
    QFETCH(QString, order);
    QFETCH(QString, dragged);
    QFETCH(double, y);
    QFETCH(QString, target);
    QCOMPARE(nameOf(SectionReorder::targetFor(framesFor(frames), idFor(dragged), y, idsFor(order))),
        target);
}

void PanelLogicTest::reorderMovesTheSection_data()
{
    // clang-format off
    QTest::addColumn<QString>("frames");
    QTest::addColumn<QString>("dragged");
    QTest::addColumn<QList<double>>("translations");
    QTest::addColumn<QString>("after");
    const QString three = QStringLiteral("S1@0,S2@30,S3@60");
    QTest::newRow("down one") << three << "S1" << QList<double> {20, 50} << "S2+:b|S1+:a|S3+:c";
    QTest::newRow("to the end") << three << "S1" << QList<double> {90} << "S2+:b|S3+:c|S1+:a";
    QTest::newRow("up to the top") << three << "S3" << QList<double> {-70} << "S3+:c|S1+:a|S2+:b";
    QTest::newRow("back where it was")
        << three << "S2" << QList<double> {40, 0} << "S1+:a|S2+:b|S3+:c";
    QTest::newRow("without a frame it goes to the end") << "S2@30,S3@60"
        << "S1" << QList<double> {-100} << "S2+:b|S3+:c|S1+:a";
    // clang-format on
}

void PanelLogicTest::reorderMovesTheSection()
{
    QFETCH(QString, frames);
    QFETCH(QString, dragged);
    QFETCH(QList<double>, translations);
    QFETCH(QString, after);
    PanelTestRig rig(QStringLiteral("S1+:a|S2+:b|S3+:c"));
    rig.store().activateSection(makeID()); // no section active: the description shows none
    SectionReorder reorder;
    reorder.setSectionFrames(framesFor(frames));
    for (double translation : translations)
        reorder.changed(rig.store(), idFor(dragged), translation);
    QCOMPARE(nameOf(reorder.sourceID()), dragged);
    reorder.ended(rig.store(), idFor(dragged), translations.last());
    QVERIFY(!reorder.sourceID() && !reorder.startY() && !reorder.targetID());
    QCOMPARE(rig.describe().remove(u'*'), after);
}

void PanelLogicTest::virtualLayoutAgreesWithAPlainSum()
{
    QRandomGenerator random(5);
    VirtualRowLayout layout;
    QCOMPARE(layout.indexAt(10), -1);
    QCOMPARE(layout.totalHeight(), 0);

    std::vector<int> heights(300);
    for (int &height : heights)
        height = 20 + random.bounded(60);
    layout.setHeights(heights);
    for (int step = 0; step < 200; ++step) {
        if (step % 2) {
            const int index = random.bounded(int(heights.size()));
            heights[size_t(index)] = 20 + random.bounded(60);
            layout.setHeight(index, heights[size_t(index)]);
        }
        int top = 0;
        for (size_t i = 0; i < heights.size(); ++i) {
            QCOMPARE(layout.top(int(i)), top);
            top += heights[i];
        }
        QCOMPARE(layout.totalHeight(), top);
        const int y = random.bounded(-50, top + 50);
        int expected = 0;
        for (int sum = 0; expected < int(heights.size()); ++expected) {
            sum += heights[size_t(expected)];
            if (y < sum)
                break;
        }
        QCOMPARE(layout.indexAt(y), std::clamp(expected, 0, int(heights.size()) - 1));
    }
}

VESKO_TEST_MAIN(PanelLogicTest)
#include "tst_panellogic.moc"
