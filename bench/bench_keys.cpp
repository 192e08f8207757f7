// SPDX-License-Identifier: GPL-3.0-or-later
//
// The panel's keys with 10 000 notes in the active project of a 100 000-note
// library, on the real panel (offscreen): each key press goes through the
// panel's key handler to the repainted list, against one rebuild of the rows
// by the Store in the same run. A frame at 60 Hz is 16.7 ms.
//
//   arrow          Down or Up: one step of the selection, revealed, repainted
//   shift arrow    the selection extended by one note
//   end / home     the last note selected and revealed from the first, and back
//   section jump   Ctrl+1 and Ctrl+9 in turn: far-apart sections activated and
//                  scrolled to
//   sheet          Ctrl+/ and Escape: the shortcut sheet opened and closed

#include "PanelBench.h"

#include "panel/window/PanelRootView.h"

#include <QApplication>
#include <QSignalBlocker>
#include <QTest>

#include <benchmark/benchmark.h>

using namespace Vesko;
using Vesko::Bench::measure;

namespace {

//! The active project's 10 000 notes over at least nine sections, in turn.
Library benchLibrary()
{
    return Vesko::Bench::libraryWithBusyProject([](Project &active, const QList<Note> &pool) {
        while (active.sections.size() < 9) {
            NoteSection extra;
            extra.id = QUuid::createUuid();
            extra.title = QStringLiteral("Extra %1").arg(active.sections.size());
            extra.createdAt = QDateTime::currentDateTimeUtc();
            active.sections.append(extra);
        }
        for (qsizetype i = 0; i < pool.size(); ++i)
            active.sections[i % active.sections.size()].notes.append(pool.at(i));
    });
}

struct Bench : Vesko::Bench::PanelStore
{
    Bench()
        : PanelStore(benchLibrary())
        , root(store, state, preferences)
    {
        root.resize(340, 560);
        root.show();
        QApplication::setActiveWindow(&root);
        root.setFocusTarget(PanelFocusTarget::List);
        settle();
    }

    void settle() { Vesko::Bench::settle(root.list()); }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
        settle();
    }

    PanelRootView root;
};

Bench &bench()
{
    static Bench *b = new Bench;
    return *b;
}

void BM_RebuildRows(benchmark::State &state)
{
    Bench &b = bench();
    const QSignalBlocker quiet(&b.store);
    measure(state, [&] {
        benchmark::DoNotOptimize(
            derivePanelRows(Vesko::activeProject(b.store.library()), {}, std::nullopt));
    });
}

void selectNote(Bench &b, qsizetype index)
{
    const QUuid id = b.store.visibleNotes().at(index).id;
    b.store.setSelection({id}, id);
    b.root.setFocusTarget(PanelFocusTarget::List);
    b.settle();
}

void BM_Arrow(benchmark::State &state)
{
    Bench &b = bench();
    selectNote(b, 2000);
    int i = 0;
    measure(state, [&] { b.press((i++ % 2) ? Qt::Key_Up : Qt::Key_Down); });
}

void BM_ShiftArrow(benchmark::State &state)
{
    Bench &b = bench();
    selectNote(b, 2000);
    int i = 0;
    measure(state, [&] { b.press((i++ % 2) ? Qt::Key_Up : Qt::Key_Down, Qt::ShiftModifier); });
}

void BM_EndHome(benchmark::State &state)
{
    Bench &b = bench();
    selectNote(b, 0);
    int i = 0;
    measure(state, [&] { b.press((i++ % 2) ? Qt::Key_Home : Qt::Key_End); });
}

void BM_SectionJump(benchmark::State &state)
{
    Bench &b = bench();
    selectNote(b, 0);
    int i = 0;
    measure(state, [&] { b.press((i++ % 2) ? Qt::Key_1 : Qt::Key_9, Qt::ControlModifier); });
}

void BM_ShortcutSheet(benchmark::State &state)
{
    Bench &b = bench();
    selectNote(b, 0);
    measure(state, [&] {
        b.press(Qt::Key_Slash, Qt::ControlModifier);
        b.press(Qt::Key_Escape);
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
            {"BM_Arrow", BM_Arrow},
            {"BM_ShiftArrow", BM_ShiftArrow},
            {"BM_EndHome", BM_EndHome},
            {"BM_SectionJump", BM_SectionJump},
            {"BM_ShortcutSheet", BM_ShortcutSheet},
        },
        20);
    benchmark::Shutdown();
    return 0;
}
