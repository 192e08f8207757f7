// SPDX-License-Identifier: GPL-3.0-or-later
//
// The Store's road of one change, each figure beside a floor of the same run:
//   recordUndo at 1k and 100k notes: a snapshot must not grow with the
//     library; counting the notes, one pass over the sections, is measured
//     apart and taken out;
//   one note edited and committed in a 100k-note library whose active project
//     holds 10k notes, until the rows are rebuilt, against copying the 10k
//     row handles into a list.

#include "LibraryGenerator.h"
#include "TestEnvironment.h"

#include "attachments/AttachmentStore.h"
#include "library/LibraryWriter.h"
#include "shell/Preferences.h"
#include "store/Store.h"

#include <QCoreApplication>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>

using namespace Vesko;

namespace {

// A library of \a total notes whose first, active, project holds \a active of them.
Library libraryWithActiveProject(qsizetype total, qsizetype active)
{
    Library library = Test::generateLibrary(total, 42);
    qsizetype inFirst = 0;
    for (const NoteSection &section : library.projects[0].sections)
        inFirst += section.notes.size();
    // Move notes between the first and the second project until the first holds exactly `active`.
    Project &first = library.projects[0];
    Project &second = library.projects[1];
    for (qsizetype s = 0; inFirst > active; s = (s + 1) % first.sections.size()) {
        NoteSection &from = first.sections[s];
        if (from.notes.isEmpty())
            continue;
        second.sections[s % second.sections.size()].notes.append(from.notes.takeLast());
        --inFirst;
    }
    for (qsizetype s = 0; inFirst < active; s = (s + 1) % second.sections.size()) {
        NoteSection &from = second.sections[s];
        if (from.notes.isEmpty())
            continue;
        first.sections[s % first.sections.size()].notes.append(from.notes.takeLast());
        ++inFirst;
    }
    for (NoteSection &section : first.sections)
        section.isCollapsed = false;
    library.activeProjectID = first.id;
    return library;
}

struct Fixture
{
    Fixture()
        : writer(std::make_unique<LibraryWriter>())
    { }
    std::unique_ptr<Preferences> preferences = std::make_unique<Preferences>();
    std::unique_ptr<LibraryWriter> writer;
    std::unique_ptr<AttachmentStore> attachments = std::make_unique<AttachmentStore>();
};

Fixture &fixture()
{
    static Fixture f;
    return f;
}

void BM_CountNotes(benchmark::State &state)
{
    const Library library = Test::generateLibrary(state.range(0), 42);
    for (auto _ : state)
        benchmark::DoNotOptimize(noteCount(library));
}

void BM_RecordUndo(benchmark::State &state)
{
    Store store(Test::generateLibrary(state.range(0), 42), *fixture().preferences,
        *fixture().writer, *fixture().attachments);
    for (auto _ : state)
        store.recordUndo();
}

void BM_RowHandleCopyFloor(benchmark::State &state)
{
    Store store(libraryWithActiveProject(100000, 10000), *fixture().preferences, *fixture().writer,
        *fixture().attachments);
    const QList<PanelRow> &rows = store.rows();
    for (auto _ : state) {
        QList<PanelRow> copy;
        copy.reserve(rows.size());
        for (const PanelRow &row : rows)
            copy.append(row);
        benchmark::DoNotOptimize(copy);
    }
    state.counters["rows"] = double(rows.size());
}

void BM_EditNote(benchmark::State &state)
{
    Store store(libraryWithActiveProject(100000, 10000), *fixture().preferences, *fixture().writer,
        *fixture().attachments);
    const QUuid sectionID = store.activeProject().sections[0].id;
    int counter = 0;
    for (auto _ : state) {
        store.recordUndo();
        Library library = store.library();
        Project &project = library.projects[0];
        for (NoteSection &section : project.sections) {
            if (section.id == sectionID) {
                section.notes[0].text = QString::number(++counter);
                break;
            }
        }
        store.setLibrary(library);
        store.commit();
        benchmark::DoNotOptimize(store.rows().size());
    }
    state.counters["rows"] = double(store.rows().size());
    state.counters["notes"] = double(noteCount(store.library()));
}

BENCHMARK(BM_CountNotes)->Arg(1000)->Arg(100000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_RecordUndo)->Arg(1000)->Arg(100000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_RowHandleCopyFloor)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_EditNote)->Unit(benchmark::kMillisecond);

class RatioReporter : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run> &runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run &run : runs) {
            if (run.run_type == Run::RT_Iteration && !run.error_occurred)
                times[run.benchmark_name()] = run.GetAdjustedRealTime();
        }
    }
    std::map<std::string, double> times;
};

} // namespace

int main(int argc, char *argv[])
{
    Test::IsolatedEnvironment environment;
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);

    auto &t = reporter.times;
    const double snapshotSmall = t["BM_RecordUndo/1000"] - t["BM_CountNotes/1000"];
    const double snapshotLarge = t["BM_RecordUndo/100000"] - t["BM_CountNotes/100000"];
    std::printf("\nrecordUndo without counting, 100k / 1k notes: %.2f\n",
        snapshotSmall > 0 ? snapshotLarge / snapshotSmall : 0.0);
    std::printf("edit to rebuilt rows / copying the row handles: %.2f (edit %.2f ms)\n",
        t["BM_RowHandleCopyFloor"] > 0 ? t["BM_EditNote"] / t["BM_RowHandleCopyFloor"] : 0.0,
        t["BM_EditNote"]);
    benchmark::Shutdown();
    fixture().writer.reset();
    return 0;
}
