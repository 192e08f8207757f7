// SPDX-License-Identifier: GPL-3.0-or-later
//
// Search latency and index synchronisation, each beside a floor of the same run:
//   a search through the index (from the call to the matches, without the
//     debounce) over a project of 10k or 100k notes, for selective queries of
//     3 to 8 characters and for common ones, against scanProject of the same
//     project and query;
//   an incremental synchronisation after one edited note at 100k notes,
//     against the full synchronisation of the same library;
//   the synchronisations after deleting 1000 notes and adding them back, at
//     200k notes, against the same full synchronisation.

#include "LibraryGenerator.h"
#include "TestEnvironment.h"

#include "search/SearchIndex.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include "RatioReporter.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>

using namespace Vesko;

namespace {

// A library whose first project holds \a notes notes, with a rare word in a few.
Library libraryWithProjectOf(qsizetype notes)
{
    Library library = Test::generateLibrary(notes * 2, 7);
    Project &project = library.projects[0];
    // Move everything beyond `notes` out of the first project.
    qsizetype count = 0;
    for (NoteSection &section : project.sections) {
        for (qsizetype i = 0; i < section.notes.size();) {
            if (count < notes) {
                ++count;
                ++i;
            } else {
                library.projects[1].sections[0].notes.append(section.notes.takeAt(i));
            }
        }
    }
    for (int i = 0; i < 5; ++i)
        project.sections[0].notes[i * 7].text += QStringLiteral(" quokka-%1").arg(i);
    return library;
}

struct Case
{
    const char *query;
    const char *kind;
};
const Case cases[] = {{"quokka", "selective"}, {"qkk", "selective"}, {"quokka-3", "selective"},
    {"the", "common"}, {"build", "common"}};

std::map<qsizetype, Library> &libraries()
{
    static std::map<qsizetype, Library> map;
    return map;
}

const Library &libraryOf(qsizetype notes)
{
    auto it = libraries().find(notes);
    if (it == libraries().end())
        it = libraries().emplace(notes, libraryWithProjectOf(notes)).first;
    return it->second;
}

QTemporaryDir &scratch()
{
    static QTemporaryDir dir;
    return dir;
}

void BM_IndexSearch(benchmark::State &state)
{
    const Library &library = libraryOf(state.range(0));
    const QString query = QString::fromLatin1(cases[state.range(1)].query);
    SearchIndex index(scratch().filePath(QStringLiteral("search-%1.sqlite").arg(state.range(0))));
    index.synchronizeAndWait(library, 1);
    qsizetype found = 0;
    for (auto _ : state)
        found = index.searchAndWait(query, library.projects[0], library, 1).noteIDs.size();
    state.counters["found"] = double(found);
}

void BM_ScanProject(benchmark::State &state)
{
    const Library &library = libraryOf(state.range(0));
    const QString query = QString::fromLatin1(cases[state.range(1)].query);
    for (auto _ : state)
        benchmark::DoNotOptimize(SearchIndex::scanProject(query, library.projects[0]));
}

void BM_FullSync(benchmark::State &state)
{
    const Library &library = libraryOf(state.range(0) / 2);
    quint64 run = 0;
    for (auto _ : state) {
        state.PauseTiming();
        auto index = std::make_unique<SearchIndex>(
            scratch().filePath(QStringLiteral("full-%1.sqlite").arg(run++)));
        state.ResumeTiming();
        index->synchronizeAndWait(library, 1);
        state.PauseTiming();
        index.reset();
        state.ResumeTiming();
    }
}

void BM_IncrementalSync(benchmark::State &state)
{
    Library library = libraryOf(state.range(0) / 2);
    SearchIndex index(scratch().filePath(QStringLiteral("incremental.sqlite")));
    quint64 revision = 1;
    index.synchronizeAndWait(library, revision);
    for (auto _ : state) {
        state.PauseTiming();
        library.projects[0].sections[0].notes[0].text = QStringLiteral("edited %1").arg(revision);
        state.ResumeTiming();
        index.synchronizeAndWait(library, ++revision);
    }
}

void BM_DeleteAndRestoreSync(benchmark::State &state)
{
    const Library full = libraryOf(state.range(0) / 2);
    Library shrunk = full;
    qsizetype toRemove = 1000;
    for (NoteSection &section : shrunk.projects[0].sections) {
        const qsizetype count = std::min(toRemove, section.notes.size());
        section.notes.remove(0, count);
        toRemove -= count;
    }
    SearchIndex index(scratch().filePath(QStringLiteral("delete.sqlite")));
    quint64 revision = 1;
    index.synchronizeAndWait(full, revision);
    for (auto _ : state) {
        index.synchronizeAndWait(shrunk, ++revision);
        index.synchronizeAndWait(full, ++revision);
    }
}

} // namespace

int main(int argc, char *argv[])
{
    Test::IsolatedEnvironment environment;
    QCoreApplication app(argc, argv);
    for (qsizetype notes : {10000, 100000}) {
        for (int c = 0; c < int(std::size(cases)); ++c) {
            benchmark::RegisterBenchmark("BM_IndexSearch", BM_IndexSearch)
                ->Args({notes, c})
                ->Unit(benchmark::kMillisecond);
            benchmark::RegisterBenchmark("BM_ScanProject", BM_ScanProject)
                ->Args({notes, c})
                ->Unit(benchmark::kMillisecond);
        }
    }
    // Library sizes in notes overall: the first project holds half.
    benchmark::RegisterBenchmark("BM_FullSync", BM_FullSync)
        ->Arg(20000)
        ->Arg(200000)
        ->Unit(benchmark::kMillisecond)
        ->Iterations(3);
    benchmark::RegisterBenchmark("BM_IncrementalSync", BM_IncrementalSync)
        ->Arg(200000)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("BM_DeleteAndRestoreSync", BM_DeleteAndRestoreSync)
        ->Arg(200000)
        ->Unit(benchmark::kMillisecond)
        ->Iterations(3);

    benchmark::Initialize(&argc, argv);
    Bench::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);

    auto &t = reporter.times;
    std::printf("\n%-8s %-10s %-10s %12s %12s %14s\n", "notes", "kind", "query", "index ms",
        "scan ms", "scan / index");
    for (qsizetype notes : {10000, 100000}) {
        for (int c = 0; c < int(std::size(cases)); ++c) {
            char indexName[64];
            char scanName[64];
            std::snprintf(
                indexName, sizeof indexName, "BM_IndexSearch/%lld/%d", qlonglong(notes), c);
            std::snprintf(scanName, sizeof scanName, "BM_ScanProject/%lld/%d", qlonglong(notes), c);
            const double index = t[indexName];
            const double scan = t[scanName];
            std::printf("%-8lld %-10s %-10s %12.3f %12.3f %14.1f\n", qlonglong(notes),
                cases[c].kind, cases[c].query, index, scan, index > 0 ? scan / index : 0.0);
        }
    }
    const double full = t["BM_FullSync/200000/iterations:3"];
    const double incremental = t["BM_IncrementalSync/200000"];
    std::printf("\nfull sync 20k notes %.1f ms, 200k notes %.1f ms; incremental after one edit at "
                "200k %.1f ms: %.3f of full\n",
        t["BM_FullSync/20000/iterations:3"], full, incremental,
        full > 0 ? incremental / full : 0.0);
    const double deleteAndRestore = t["BM_DeleteAndRestoreSync/200000/iterations:3"];
    std::printf("1000 notes deleted and added back at 200k: %.1f ms, %.3f of full\n",
        deleteAndRestore, full > 0 ? deleteAndRestore / full : 0.0);
    benchmark::Shutdown();
    return 0;
}
