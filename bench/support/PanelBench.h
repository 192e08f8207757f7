// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the benchmarks of the panel's widgets share: the offscreen
// application, a large library with a busy active project, a Store over it with the program's
// services, the settling of the list after a change, a timer around each interaction, and the
// report of every benchmark as a multiple of one rebuild of the rows.

#pragma once

#include "LibraryGenerator.h"
#include "RatioReporter.h"
#include "TestEnvironment.h"

#include "attachments/AttachmentStore.h"
#include "library/LibraryWriter.h"
#include "panel/list/PanelListView.h"
#include "panel/window/PanelState.h"
#include "search/SearchIndex.h"
#include "shell/Preferences.h"
#include "store/Store.h"

#include <QApplication>
#include <QElapsedTimer>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <initializer_list>
#include <string>
#include <utility>

namespace Vesko::Bench {

//! The application of a benchmark of the panel's widgets: XDG folders of
//! its own, then the offscreen platform at 96 dpi, all before it starts.
class OffscreenApplication
{
public:
    OffscreenApplication(int &argc, char **argv)
        : m_app(argc, argv)
    { }

private:
    struct Platform
    {
        Platform()
        {
            qputenv("QT_QPA_PLATFORM", "offscreen");
            QApplication::setAttribute(Qt::AA_Use96Dpi, true);
        }
    };

    Test::IsolatedEnvironment m_environment;
    Platform m_platform;
    QApplication m_app;
};

//! A generated library of 100 000 notes whose first project, active with its
//! sections open, holds 10 000 taken from the other projects (its own notes
//! go to the second project, so the total stays). \a place puts those notes
//! into the active project's sections.
template<typename Place> Library libraryWithBusyProject(Place place)
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
    place(active, pool);
    active.activeSectionID = active.sections[0].id;
    library.activeProjectID = active.id;
    return library;
}

//! A Store over a library with the services the program gives it, and the
//! panel's state, for the views under measure.
struct PanelStore
{
    explicit PanelStore(Library library)
        : store(std::move(library), {preferences, writer, attachments, searchIndex})
    { }

    Preferences preferences;
    LibraryWriter writer;
    AttachmentStore attachments;
    SearchIndex searchIndex;
    Store store;
    PanelState state;
};

//! Delivers what a change posted: deferred scrolls, layout, the repaint.
inline void settle(PanelListView *list)
{
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
    list->finishScrollAnimation();
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
}

//! Times each run of \a action as the iteration's manual time.
template<typename Action> void measure(benchmark::State &state, Action action)
{
    for (auto _ : state) {
        QElapsedTimer timer;
        timer.start();
        action();
        state.SetIterationTime(double(timer.nsecsElapsed()) / 1e9);
    }
}

using BenchmarkList = std::initializer_list<std::pair<const char *, void (*)(benchmark::State &)>>;

//! Runs \a all (one of them "BM_RebuildRows") on manual time in
//! milliseconds, then prints each beside one rebuild of the rows, names in
//! a column \a nameWidth wide.
inline void runAgainstRebuild(int &argc, char **argv, BenchmarkList all, int nameWidth)
{
    for (const auto &[name, function] : all)
        benchmark::RegisterBenchmark(name, function)
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
    benchmark::Initialize(&argc, argv);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);

    const double rebuild = reporter.times["BM_RebuildRows/manual_time"];
    std::printf("\nwith 10k notes in the active project (100k in the library), "
                "one rebuild of the rows: %.2f ms\n",
        rebuild);
    for (const auto &[name, function] : all) {
        if (std::string(name) == "BM_RebuildRows")
            continue;
        const double time = reporter.times[std::string(name) + "/manual_time"];
        std::printf("%-*s %7.2f ms  %5.2f rebuilds\n", nameWidth, name, time,
            rebuild > 0 ? time / rebuild : 0.0);
    }
}

} // namespace Vesko::Bench
