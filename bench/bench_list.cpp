// SPDX-License-Identifier: GPL-3.0-or-later
//
// The panel's list with 10 000 notes in the active project of a 100 000-note
// library, on its real widgets (offscreen): each interaction from the input
// to the repainted list, against one rebuild of the rows by the Store in the
// same run. A frame at 60 Hz is 16.7 ms.
//
//   rebuild with list   the rows rebuilt and taken in by the list
//   click               a click selecting a row, to its repaint
//   double click        a double click, to the inline editor holding the keyboard
//   collapse / expand   a click on the header of a 5 000-note section, to the
//                       repainted list
//   arrow               one step of the selection with the reveal that follows
//                       it, to the repaint at the revealed place
//   last note           the last note selected and revealed from the top
//   section jump        a jump between two sections far apart
//   scroll              a page of scrolling

#include "PanelBench.h"
#include "SilentAttachmentActions.h"

#include "panel/list/NoteRowView.h"
#include "panel/list/SectionHeaderView.h"
#include "panel/text/NativeInlineTextField.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QTest>
#include <QTextEdit>

#include <benchmark/benchmark.h>

#include <cstdio>

using namespace Vesko;
using Vesko::Bench::measure;

namespace {

//! The active project's 10 000 notes: a section of 5 000, then the rest over
//! the project's other sections.
Library benchLibrary()
{
    return Vesko::Bench::libraryWithBusyProject([](Project &active, const QList<Note> &pool) {
        active.sections[0].notes = pool.mid(0, 5000);
        const qsizetype others = active.sections.size() - 1;
        for (qsizetype i = 5000; i < pool.size(); ++i)
            active.sections[1 + (i % others)].notes.append(pool.at(i));
    });
}

struct Bench : Vesko::Bench::PanelStore
{
    Bench()
        : PanelStore(benchLibrary())
        , attachmentActions(store, attachments)
        , list(new PanelListView(store, state, &window))
    {
        list->setAttachmentActions(attachmentActions.actions, attachmentActions.thumbnails);
        window.resize(340, 560);
        list->setGeometry(0, 0, 340, 560);
        window.show();
        settle();
    }

    void settle() { Vesko::Bench::settle(list); }

    QList<NoteRowView *> visibleRows() const
    {
        QList<NoteRowView *> rows;
        for (const PanelRow &row : store.rows()) {
            if (row.isNote()) {
                if (NoteRowView *view = list->noteRowView(row.id());
                    view && list->clearArea().contains(view->geometry().center()))
                    rows.append(view);
            }
            if (rows.size() == 4)
                break;
        }
        return rows;
    }

    Test::SilentAttachmentActions attachmentActions;
    QWidget window;
    PanelListView *list;
};

Bench &bench()
{
    static Bench *b = new Bench;
    return *b;
}

//! Counts the paint events of note rows.
class PaintCounter : public QObject
{
public:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Paint && qobject_cast<NoteRowView *>(watched))
            ++paints;
        return false;
    }
    int paints = 0;
};

int clickRepaints = 0;
int clicks = 0;

void BM_RebuildRows(benchmark::State &state)
{
    // The Store's work alone: nobody hears of the new rows.
    Bench &b = bench();
    const QSignalBlocker quiet(&b.store);
    measure(state, [&] {
        benchmark::DoNotOptimize(
            derivePanelRows(Vesko::activeProject(b.store.library()), {}, std::nullopt));
    });
}

void BM_RebuildRowsWithList(benchmark::State &state)
{
    // An edit of a note in the middle of the project, committed, and the
    // list taking the rows it replaced: heights, places, repaint.
    Bench &b = bench();
    const QList<Note> notes = b.store.visibleNotes();
    const QUuid id = notes.at(notes.size() / 2).id;
    int counter = 0;
    measure(state, [&] {
        b.store.updateNote(id, QStringLiteral("edited %1").arg(++counter));
        b.settle();
    });
}

void BM_ClickToRepaint(benchmark::State &state)
{
    Bench &b = bench();
    b.list->scrollToRow(b.store.rows().at(0).id(), ScrollAnchor::Top, false);
    b.settle();
    const QList<NoteRowView *> rows = b.visibleRows();
    PaintCounter counter;
    qApp->installEventFilter(&counter);
    int i = 0;
    measure(state, [&] {
        NoteRowView *row = rows.at(i++ % 2);
        QTest::mouseClick(row, Qt::LeftButton, {}, QPoint(row->width() / 2, row->height() / 2));
        b.settle();
    });
    qApp->removeEventFilter(&counter);
    clickRepaints += counter.paints;
    clicks += i;
}

void BM_DoubleClickToEditor(benchmark::State &state)
{
    Bench &b = bench();
    const QList<NoteRowView *> rows = b.visibleRows();
    int i = 0;
    for (auto _ : state) {
        NoteRowView *row = rows.at(i++ % 2);
        QElapsedTimer timer;
        timer.start();
        QTest::mouseDClick(row, Qt::LeftButton, {}, QPoint(row->width() / 2, row->height() / 2));
        b.settle();
        const bool ready = row->editor() && row->editor()->editor()->hasFocus();
        state.SetIterationTime(double(timer.nsecsElapsed()) / 1e9);
        if (!ready) {
            state.SkipWithError("the editor did not take the keyboard");
            break;
        }
        QTest::keyClick(row->editor()->editor(), Qt::Key_Escape);
        b.settle();
    }
}

void BM_CollapseExpandBigSection(benchmark::State &state)
{
    Bench &b = bench();
    const QUuid section = b.store.activeProject().sections.at(0).id;
    b.list->scrollToRow(section, ScrollAnchor::Top, false);
    b.settle();
    measure(state, [&] {
        SectionHeaderView *header = b.list->sectionHeaderView(section);
        QTest::mouseClick(header, Qt::LeftButton, {}, QPoint(40, header->height() / 2));
        b.settle();
    });
    if (b.store.section(section)->isCollapsed) {
        b.store.toggleSectionCollapsed(section);
        b.store.commit();
        b.settle();
    }
}

void BM_ArrowWithReveal(benchmark::State &state)
{
    Bench &b = bench();
    const QUuid first = b.store.visibleNotes().at(2000).id;
    b.store.setSelection({first}, first);
    b.settle();
    b.list->setFocus();
    int i = 0;
    measure(state, [&] {
        // Down and up in turn, so the run stays in one place of the list.
        QTest::keyClick(b.list, (i++ % 2) ? Qt::Key_Up : Qt::Key_Down);
        b.settle();
    });
}

void BM_MoveSelectionInStore(benchmark::State &state)
{
    // The Store's part of an arrow: the step over the visible notes, unheard.
    Bench &b = bench();
    const QSignalBlocker quiet(&b.store);
    int i = 0;
    measure(state, [&] { b.store.moveSelection((i++ % 2) ? -1 : 1, false); });
}

void BM_LastNoteRevealed(benchmark::State &state)
{
    Bench &b = bench();
    const QList<Note> notes = b.store.visibleNotes();
    int i = 0;
    measure(state, [&] {
        const QUuid id = (i++ % 2) ? notes.first().id : notes.last().id;
        b.store.setSelection({id}, id);
        b.settle();
    });
}

void BM_SectionJump(benchmark::State &state)
{
    Bench &b = bench();
    const QList<NoteSection> sections = b.store.activeProject().sections;
    int i = 0;
    measure(state, [&] {
        const QUuid id = sections.at((i++ % 2) ? 0 : sections.size() - 1).id;
        b.store.activateSection(id);
        b.state.setSectionJumpRequest(id);
        b.settle();
    });
}

void BM_ScrollPage(benchmark::State &state)
{
    Bench &b = bench();
    b.list->scrollToRow(b.store.rows().at(0).id(), ScrollAnchor::Top, false);
    b.settle();
    QScrollBar *bar = b.list->verticalScrollBar();
    measure(state, [&] {
        bar->setValue(bar->value() + bar->pageStep());
        b.settle();
    });
}

} // namespace

int main(int argc, char *argv[])
{
    Vesko::Bench::OffscreenApplication app(argc, argv);
    bench();
    Vesko::Bench::runAgainstRebuild(argc, argv,
        {
            {"BM_RebuildRows", BM_RebuildRows},
            {"BM_RebuildRowsWithList", BM_RebuildRowsWithList},
            {"BM_ClickToRepaint", BM_ClickToRepaint},
            {"BM_DoubleClickToEditor", BM_DoubleClickToEditor},
            {"BM_CollapseExpandBigSection", BM_CollapseExpandBigSection},
            {"BM_ArrowWithReveal", BM_ArrowWithReveal},
            {"BM_MoveSelectionInStore", BM_MoveSelectionInStore},
            {"BM_LastNoteRevealed", BM_LastNoteRevealed},
            {"BM_SectionJump", BM_SectionJump},
            {"BM_ScrollPage", BM_ScrollPage},
        },
        28);
    std::printf("row widgets made: %d; rows repainted per click: %.1f\n",
        bench().list->rowWidgetCount(), clicks > 0 ? double(clickRepaints) / clicks : 0.0);
    benchmark::Shutdown();
    return 0;
}
