// SPDX-License-Identifier: GPL-3.0-or-later
//
// The Store's road of one change, each figure beside a floor of the same run:
//   recordUndo at 1k and 100k notes: a snapshot must not grow with the
//     library; counting the notes, one pass over the sections, is measured
//     apart and taken out;
//   one note edited and committed in a 100k-note library whose active project
//     holds 10k notes, until the rows are rebuilt, against copying the 10k
//     row handles into a list;
//   setDone of 20k selected notes, toggleDone of 20k selected notes that are
//     all done (every one of them must be looked at), undo with 20k notes
//     selected and one key press that moves the selection, in a 100k-note
//     library whose active project holds 25k notes, against one rebuild of
//     that project's rows;
//   at 10k, 100k and 1M notes of the generator's library (about half of them
//     in the active project): an edit through updateNote and a step of the
//     selection, on the main thread, against copying the row handles.

#include "LibraryGenerator.h"
#include "TestEnvironment.h"

#include "attachments/AttachmentStore.h"
#include "library/LibraryRepair.h"
#include "library/LibraryWriter.h"
#include "shell/Preferences.h"
#include "store/Store.h"

#include <QCoreApplication>

#include "RatioReporter.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>

using namespace Vesko;

namespace {

// A library of \a total notes whose first, active, project holds \a active of them.
Library libraryWithActiveProject(qsizetype total, qsizetype active)
{
    return Test::generateLibraryWithActiveProject(total, active, 42);
}

struct Fixture
{
    Fixture()
        : writer(std::make_unique<LibraryWriter>())
    { }
    std::unique_ptr<Preferences> preferences = std::make_unique<Preferences>();
    std::unique_ptr<LibraryWriter> writer;
    std::unique_ptr<AttachmentStore> attachments = std::make_unique<AttachmentStore>();
    std::unique_ptr<SearchIndex> searchIndex = std::make_unique<SearchIndex>();
    //! The large selection's library has an index of its own: switching one
    //! index between two libraries of 100k notes rewrites most of it each time.
    std::unique_ptr<SearchIndex> largeSelectionIndex = std::make_unique<SearchIndex>(
        Test::IsolatedEnvironment::current().cacheHome() + QStringLiteral("/large.sqlite"));
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
    Store store(Test::generateLibrary(state.range(0), 42),
        {*fixture().preferences, *fixture().writer, *fixture().attachments,
            *fixture().searchIndex});
    for (auto _ : state)
        store.recordUndo();
}

void BM_RowHandleCopyFloor(benchmark::State &state)
{
    Store store(libraryWithActiveProject(100000, 10000),
        {*fixture().preferences, *fixture().writer, *fixture().attachments,
            *fixture().searchIndex});
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
    Store store(libraryWithActiveProject(100000, 10000),
        {*fixture().preferences, *fixture().writer, *fixture().attachments,
            *fixture().searchIndex});
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

void BM_RebuildRows(benchmark::State &state)
{
    Store store(libraryWithActiveProject(100000, 10000),
        {*fixture().preferences, *fixture().writer, *fixture().attachments,
            *fixture().searchIndex});
    for (auto _ : state)
        benchmark::DoNotOptimize(
            derivePanelRows(Vesko::activeProject(store.library()), {}, std::nullopt));
    state.counters["rows"] = double(store.rows().size());
}

// Runs one operation per iteration on the same starting library, which is
// put back, untimed, before each run.
template<typename Operation>
void runOperation(benchmark::State &state, Operation operation,
    const Library &original = libraryWithActiveProject(100000, 10000), SearchIndex *index = nullptr)
{
    Store store(original,
        {*fixture().preferences, *fixture().writer, *fixture().attachments,
            index ? *index : *fixture().searchIndex});
    for (auto _ : state) {
        state.PauseTiming();
        store.setLibrary(original);
        store.rebuildRows();
        const QList<Note> visible = store.visibleNotes();
        state.ResumeTiming();
        operation(store, visible);
    }
}

QList<QUuid> firstIDs(const QList<Note> &notes, qsizetype count, qsizetype step = 1)
{
    QList<QUuid> ids;
    for (qsizetype i = 0; i < notes.size() && ids.size() < count; i += step)
        ids.append(notes.at(i).id);
    return ids;
}

void BM_MergeTwo(benchmark::State &state)
{
    runOperation(state, [](Store &store, const QList<Note> &visible) {
        store.mergeNotes(firstIDs(visible, 2, 500));
    });
}

void BM_MoveHundred(benchmark::State &state)
{
    runOperation(state, [](Store &store, const QList<Note> &visible) {
        store.moveNotesToSection(
            firstIDs(visible, 100, 7), store.activeProject().sections.last().id);
    });
}

void BM_DeleteThousand(benchmark::State &state)
{
    runOperation(state, [](Store &store, const QList<Note> &visible) {
        const QList<QUuid> ids = firstIDs(visible, 1000, 3);
        store.deleteNotes(QSet<QUuid>(ids.cbegin(), ids.cend()));
    });
}

void BM_SplitFiftyParagraphs(benchmark::State &state)
{
    Library library = libraryWithActiveProject(100000, 10000);
    Note &note = library.projects[0].sections[0].notes[0];
    QStringList paragraphs;
    for (int i = 0; i < 50; ++i)
        paragraphs.append(QStringLiteral("Paragraph %1: %2").arg(i).arg(note.text.left(80)));
    note.text = paragraphs.join(QStringLiteral("\n\n"));
    const QUuid id = note.id;
    runOperation(
        state, [id](Store &store, const QList<Note> &) { store.splitNote(id); }, library);
}

void BM_RepairVersion2(benchmark::State &state)
{
    Library original = libraryWithActiveProject(100000, 10000);
    original.version = 2;
    for (auto _ : state) {
        Library library = original;
        benchmark::DoNotOptimize(repairLibrary(library));
    }
}

// The large selection: 20k of the 25k notes of the active project, in a
// library of 100k.
const Library &largeSelectionLibrary()
{
    static const Library library = libraryWithActiveProject(100000, 25000);
    return library;
}

QList<QUuid> largeSelection(const Store &store)
{
    return firstIDs(store.visibleNotes(), 20000);
}

void BM_RebuildRowsLargeProject(benchmark::State &state)
{
    Store store(largeSelectionLibrary(),
        {*fixture().preferences, *fixture().writer, *fixture().attachments,
            *fixture().largeSelectionIndex});
    // The rows derived whole, as every change derived them before they were patched.
    for (auto _ : state)
        benchmark::DoNotOptimize(
            derivePanelRows(Vesko::activeProject(store.library()), {}, std::nullopt));
    state.counters["rows"] = double(store.rows().size());
}

void BM_SetDoneLargeSelection(benchmark::State &state)
{
    runOperation(
        state,
        [](Store &store, const QList<Note> &visible) {
            store.setDone(firstIDs(visible, 20000), true);
        },
        largeSelectionLibrary(), fixture().largeSelectionIndex.get());
}

// The same library with every note of the active project done.
const Library &largeDoneLibrary()
{
    static const Library library = [] {
        Library done = largeSelectionLibrary();
        for (NoteSection &section : done.projects[0].sections) {
            for (Note &note : section.notes) {
                note.isDone = true;
                note.completedAt = note.updatedAt;
            }
        }
        return done;
    }();
    return library;
}

void BM_ToggleDoneLargeSelection(benchmark::State &state)
{
    runOperation(
        state,
        [](Store &store, const QList<Note> &visible) {
            store.toggleDone(firstIDs(visible, 20000));
        },
        largeDoneLibrary(), fixture().largeSelectionIndex.get());
}

void BM_UndoWithLargeSelection(benchmark::State &state)
{
    Store store(largeSelectionLibrary(),
        {*fixture().preferences, *fixture().writer, *fixture().attachments,
            *fixture().largeSelectionIndex});
    const QList<QUuid> ids = largeSelection(store);
    const QSet<QUuid> selection(ids.cbegin(), ids.cend());
    for (auto _ : state) {
        state.PauseTiming();
        store.setLibrary(largeSelectionLibrary());
        store.rebuildRows();
        store.setSelection(selection, ids.first());
        store.deleteNotes({ids.last()}); // one step to undo
        store.setSelection(selection, ids.first());
        state.ResumeTiming();
        store.undo();
    }
    state.counters["selected"] = double(store.selection().size());
}

void BM_MoveSelectionLargeProject(benchmark::State &state)
{
    Store store(largeSelectionLibrary(),
        {*fixture().preferences, *fixture().writer, *fixture().attachments,
            *fixture().largeSelectionIndex});
    const QList<QUuid> ids = largeSelection(store);
    store.setSelection({ids.at(10000)}, ids.at(10000));
    int step = 1;
    for (auto _ : state) {
        store.moveSelection(step, false);
        step = -step;
    }
}

BENCHMARK(BM_RebuildRows)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RebuildRowsLargeProject)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SetDoneLargeSelection)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ToggleDoneLargeSelection)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_UndoWithLargeSelection)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MoveSelectionLargeProject)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MergeTwo)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MoveHundred)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DeleteThousand)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SplitFiftyParagraphs)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RepairVersion2)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CountNotes)->Arg(1000)->Arg(100000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_RecordUndo)->Arg(1000)->Arg(100000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_RowHandleCopyFloor)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_EditNote)->Unit(benchmark::kMillisecond);

std::map<qsizetype, std::unique_ptr<Store>> &scaleStores()
{
    static std::map<qsizetype, std::unique_ptr<Store>> stores;
    return stores;
}

// The Store over the generator's library of each size, made once.
Store &scaleStore(qsizetype notes)
{
    std::unique_ptr<Store> &store = scaleStores()[notes];
    if (!store) {
        store = std::make_unique<Store>(Test::generateLibrary(notes, 42),
            Store::Services {*fixture().preferences, *fixture().writer, *fixture().attachments,
                *fixture().searchIndex});
    }
    return *store;
}

void BM_ScaleRowHandleCopy(benchmark::State &state)
{
    const QList<PanelRow> &rows = scaleStore(state.range(0)).rows();
    for (auto _ : state) {
        QList<PanelRow> copy;
        copy.reserve(rows.size());
        for (const PanelRow &row : rows)
            copy.append(row);
        benchmark::DoNotOptimize(copy);
    }
    state.counters["rows"] = double(rows.size());
}

// An edit of a note in the middle of the active project, committed.
void BM_ScaleUpdateNote(benchmark::State &state)
{
    Store &store = scaleStore(state.range(0));
    const QList<Note> visible = store.visibleNotes();
    const QUuid id = visible.at(visible.size() / 2).id;
    int counter = 0;
    for (auto _ : state)
        store.updateNote(id, QStringLiteral("edited %1").arg(++counter));
    state.counters["rows"] = double(store.rows().size());
}

// A key press that moves the selection one note down, then up again.
void BM_ScaleSelectionStep(benchmark::State &state)
{
    Store &store = scaleStore(state.range(0));
    const QList<Note> visible = store.visibleNotes();
    store.select(visible.at(visible.size() / 2).id, false, false);
    int step = 1;
    for (auto _ : state) {
        store.moveSelection(step, false);
        step = -step;
    }
}

#define SCALE_SIZES Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond)
BENCHMARK(BM_ScaleRowHandleCopy)->SCALE_SIZES;
BENCHMARK(BM_ScaleUpdateNote)->SCALE_SIZES;
BENCHMARK(BM_ScaleSelectionStep)->SCALE_SIZES;

} // namespace

int main(int argc, char *argv[])
{
    Test::IsolatedEnvironment environment;
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    Bench::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);

    auto &t = reporter.times;
    const double snapshotSmall = t["BM_RecordUndo/1000"] - t["BM_CountNotes/1000"];
    const double snapshotLarge = t["BM_RecordUndo/100000"] - t["BM_CountNotes/100000"];
    std::printf("\nrecordUndo without counting, 100k / 1k notes: %.2f\n",
        snapshotSmall > 0 ? snapshotLarge / snapshotSmall : 0.0);
    std::printf("edit to rebuilt rows / copying the row handles: %.2f (edit %.2f ms)\n",
        t["BM_RowHandleCopyFloor"] > 0 ? t["BM_EditNote"] / t["BM_RowHandleCopyFloor"] : 0.0,
        t["BM_EditNote"]);
    const double rebuild = t["BM_RebuildRows"];
    for (const char *name : {"BM_MergeTwo", "BM_MoveHundred", "BM_DeleteThousand",
             "BM_SplitFiftyParagraphs", "BM_RepairVersion2"}) {
        std::printf("%-26s %7.2f ms  %5.2f rebuilds\n", name, t[name],
            rebuild > 0 ? t[name] / rebuild : 0.0);
    }
    const double largeRebuild = t["BM_RebuildRowsLargeProject"];
    std::printf("\n100k notes, 25k in the active project (one rebuild %.2f ms):\n", largeRebuild);
    for (const char *name : {"BM_SetDoneLargeSelection", "BM_ToggleDoneLargeSelection",
             "BM_UndoWithLargeSelection", "BM_MoveSelectionLargeProject"}) {
        std::printf("%-30s %8.2f ms  %6.2f rebuilds\n", name, t[name],
            largeRebuild > 0 ? t[name] / largeRebuild : 0.0);
    }
    std::printf("\nthe generator's library, against copying the active project's row handles:\n");
    for (const char *notes : {"10000", "100000", "1000000"}) {
        const std::string suffix = std::string("/") + notes;
        const double floor = t["BM_ScaleRowHandleCopy" + suffix];
        std::printf("%8s notes: row handles %7.2f ms, edit %7.2f ms (%6.2f), selection step "
                    "%7.3f ms (%6.3f)\n",
            notes, floor, t["BM_ScaleUpdateNote" + suffix],
            floor > 0 ? t["BM_ScaleUpdateNote" + suffix] / floor : 0.0,
            t["BM_ScaleSelectionStep" + suffix],
            floor > 0 ? t["BM_ScaleSelectionStep" + suffix] / floor : 0.0);
    }
    benchmark::Shutdown();
    scaleStores().clear();
    fixture().writer.reset();
    fixture().attachments.reset();
    fixture().searchIndex.reset();
    fixture().largeSelectionIndex.reset();
    return 0;
}
