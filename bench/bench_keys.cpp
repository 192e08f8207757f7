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

#include "LibraryGenerator.h"
#include "RatioReporter.h"
#include "TestEnvironment.h"

#include "attachments/AttachmentStore.h"
#include "library/LibraryWriter.h"
#include "panel/PanelListView.h"
#include "panel/PanelRootView.h"
#include "panel/PanelState.h"
#include "search/SearchIndex.h"
#include "shell/Preferences.h"
#include "store/Store.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QSignalBlocker>
#include <QTest>

#include <benchmark/benchmark.h>

#include <cstdio>

using namespace Vesko;

namespace {

//! 100 000 notes; the active project holds 10 000 over at least nine sections.
Library benchLibrary()
{
    Library library = Test::generateLibrary(100000, 42);
    QList<Note> pool;
    for (qsizetype p = 1; p < library.projects.size() && pool.size() < 10000; ++p) {
        for (NoteSection &section : library.projects[p].sections) {
            while (!section.notes.isEmpty() && pool.size() < 10000)
                pool.append(section.notes.takeLast());
        }
    }
    Project &active = library.projects[0];
    for (NoteSection &section : active.sections) {
        library.projects[1].sections[0].notes.append(section.notes);
        section.notes.clear();
        section.isCollapsed = false;
    }
    while (active.sections.size() < 9) {
        NoteSection extra;
        extra.id = QUuid::createUuid();
        extra.title = QStringLiteral("Extra %1").arg(active.sections.size());
        extra.createdAt = QDateTime::currentDateTimeUtc();
        active.sections.append(extra);
    }
    for (qsizetype i = 0; i < pool.size(); ++i)
        active.sections[i % active.sections.size()].notes.append(pool.at(i));
    active.activeSectionID = active.sections[0].id;
    library.activeProjectID = active.id;
    return library;
}

struct Bench
{
    Bench()
        : store(benchLibrary(), {preferences, writer, attachments, searchIndex})
        , root(store, state, preferences)
    {
        root.resize(340, 560);
        root.show();
        QApplication::setActiveWindow(&root);
        root.setFocusTarget(PanelFocusTarget::List);
        settle();
    }

    void settle()
    {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
        root.list()->finishScrollAnimation();
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
    }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
        settle();
    }

    Preferences preferences;
    LibraryWriter writer;
    AttachmentStore attachments;
    SearchIndex searchIndex;
    Store store;
    PanelState state;
    PanelRootView root;
};

Bench &bench()
{
    static Bench *b = new Bench;
    return *b;
}

template<typename Action> void measure(benchmark::State &state, Action action)
{
    for (auto _ : state) {
        QElapsedTimer timer;
        timer.start();
        action();
        state.SetIterationTime(double(timer.nsecsElapsed()) / 1e9);
    }
}

void BM_RebuildRows(benchmark::State &state)
{
    Bench &b = bench();
    const QSignalBlocker quiet(&b.store);
    measure(state, [&] { b.store.rebuildRows(); });
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
    Test::IsolatedEnvironment environment;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication::setAttribute(Qt::AA_Use96Dpi, true);
    QApplication app(argc, argv);
    bench();
    const std::pair<const char *, void (*)(benchmark::State &)> all[] = {
        {"BM_RebuildRows", BM_RebuildRows},
        {"BM_Arrow", BM_Arrow},
        {"BM_ShiftArrow", BM_ShiftArrow},
        {"BM_EndHome", BM_EndHome},
        {"BM_SectionJump", BM_SectionJump},
        {"BM_ShortcutSheet", BM_ShortcutSheet},
    };
    for (const auto &[name, function] : all)
        benchmark::RegisterBenchmark(name, function)
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
    benchmark::Initialize(&argc, argv);
    Vesko::Bench::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);

    const double rebuild = reporter.times["BM_RebuildRows/manual_time"];
    std::printf("\nwith 10k notes in the active project (100k in the library), "
                "one rebuild of the rows: %.2f ms\n",
        rebuild);
    for (const auto &[name, function] : all) {
        if (std::string(name) == "BM_RebuildRows")
            continue;
        const double time = reporter.times[std::string(name) + "/manual_time"];
        std::printf(
            "%-20s %7.2f ms  %5.2f rebuilds\n", name, time, rebuild > 0 ? time / rebuild : 0.0);
    }
    benchmark::Shutdown();
    return 0;
}
