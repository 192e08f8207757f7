// SPDX-License-Identifier: GPL-3.0-or-later
//
// Search latency and index synchronisation, each beside a floor of the same run.
//
// Queries, from the call to the matches (without the debounce), over an
// active project of 10k notes (in a library of 20k), 100k (of 200k) and 1M
// (the whole of a 1M library), for every class of query: selective, common,
// one character, no match, other scripts, wildcards. Each is timed three
// ways: through the index wherever it can serve, by the scan of the copy in
// memory, and as chosen per query. The floor is one bare case-insensitive
// pass over the project's text held in memory as UTF-8: every byte folded
// and compared with the query's first byte.
//
// Also: a search asked for while the first indexing of a launch runs,
// against that indexing; and the synchronisations (full, after one edit,
// after deleting and restoring 1000 notes).

#include "LibraryGenerator.h"
#include "TestEnvironment.h"

#include "search/ProjectCorpus.h"
#include "search/SearchIndex.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include "RatioReporter.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>

using namespace Vesko;

namespace {

const qsizetype sizes[] = {10000, 100000, 1000000};

// A library whose active (first) project holds \a notes notes, a few of them
// with a rare word, a percentage or a snake_case name.
Library libraryWithProjectOf(qsizetype notes)
{
    Library library;
    if (notes < 1000000) {
        library = Test::generateLibraryWithActiveProject(notes * 2, notes, 7);
    } else {
        // The whole library in the active project: the most a query can face.
        library = Test::generateLibrary(notes, 7);
        Project &first = library.projects[0];
        for (qsizetype p = 1; p < library.projects.size(); ++p) {
            for (NoteSection &section : library.projects[p].sections) {
                NoteSection &into = first.sections[p % first.sections.size()];
                into.notes.append(section.notes);
                section.notes.clear();
            }
        }
    }
    Project &project = library.projects[0];
    for (int i = 0; i < 5; ++i)
        project.sections[0].notes[i * 7].text += QStringLiteral(" quokka-%1").arg(i);
    for (int i = 0; i < 20; ++i) {
        NoteSection &section = project.sections[i % project.sections.size()];
        section.notes[(i * 31) % section.notes.size()].text
            += QStringLiteral(" 100% done, see snake_case");
    }
    return library;
}

struct Case
{
    const char *query;
    const char *kind;
};
const Case cases[] = {{"quokka", "selective"}, {"quokka-3", "selective"}, {"the", "common"},
    {"build", "common"}, {"e", "one char"}, {"zzyzx", "no match"}, {"привет", "Cyrillic"},
    {"メモ 東京", "CJK"}, {"100%", "wildcard"}, {"snake_case", "wildcard"}};

const char *const planNames[] = {"chosen", "index", "scan"};

const Library &libraryOf(qsizetype notes)
{
    static std::map<qsizetype, Library> libraries;
    auto it = libraries.find(notes);
    if (it == libraries.end())
        it = libraries.emplace(notes, libraryWithProjectOf(notes)).first;
    return it->second;
}

struct Fixture
{
    Library library;
    QByteArray text; // the project's text as UTF-8, for the floor
    std::unique_ptr<SearchIndex> index;
};

QTemporaryDir &scratch()
{
    static QTemporaryDir dir;
    return dir;
}

Fixture &fixtureOf(qsizetype notes)
{
    static std::map<qsizetype, std::unique_ptr<Fixture>> fixtures;
    auto &fixture = fixtures[notes];
    if (!fixture) {
        fixture = std::make_unique<Fixture>();
        fixture->library = libraryOf(notes);
        for (const NoteSection &section : fixture->library.projects[0].sections) {
            fixture->text += section.title.toUtf8();
            for (const Note &note : section.notes) {
                fixture->text += note.text.toUtf8();
                for (const NoteAttachment &attachment : note.attachments)
                    fixture->text += attachment.fileName.toUtf8();
            }
        }
        fixture->index = std::make_unique<SearchIndex>(
            scratch().filePath(QStringLiteral("search-%1.sqlite").arg(notes)));
        fixture->index->synchronizeAndWait(fixture->library, 1);
        // The copy in memory is made before the first search is timed.
        fixture->index->searchAndWait(
            QStringLiteral("warm"), fixture->library.projects[0], fixture->library, 1);
    }
    return *fixture;
}

// One pass over the text that folds the case of every byte and compares it
// with the first byte of the query.
void BM_Floor(benchmark::State &state)
{
    const Fixture &fixture = fixtureOf(state.range(0));
    const QByteArray query = QByteArray(cases[state.range(1)].query);
    const unsigned char first = static_cast<unsigned char>(query.at(0)) | 0x20;
    const auto *bytes = reinterpret_cast<const unsigned char *>(fixture.text.constData());
    const qsizetype size = fixture.text.size();
    for (auto _ : state) {
        qsizetype count = 0;
        // Blocks of 255 bytes keep a byte-wide count, which vectorises.
        for (qsizetype i = 0; i < size;) {
            const qsizetype end = std::min(size, i + 255);
            unsigned char block = 0;
            for (; i < end; ++i)
                block += (bytes[i] | 0x20) == first;
            count += block;
        }
        benchmark::DoNotOptimize(count);
    }
    state.counters["MB"] = double(size) / 1e6;
}

void BM_Search(benchmark::State &state)
{
    Fixture &fixture = fixtureOf(state.range(0));
    const QString query = QString::fromUtf8(cases[state.range(1)].query);
    fixture.index->setPlan(SearchIndex::Plan(state.range(2)));
    const Project &project = fixture.library.projects[0];
    qsizetype found = 0;
    for (auto _ : state)
        found = fixture.index->searchAndWait(query, project, fixture.library, 1).noteIDs.size();
    state.counters["found"] = double(found);
    fixture.index->setPlan(SearchIndex::Plan::Chosen);
}

// The lower-cased copy of a project, made whole and after one edit.
void BM_CorpusBuild(benchmark::State &state)
{
    const Project &project = libraryOf(state.range(0)).projects[0];
    for (auto _ : state)
        benchmark::DoNotOptimize(ProjectCorpus::make(project, nullptr));
}

void BM_CorpusAfterEdit(benchmark::State &state)
{
    const Project &project = libraryOf(state.range(0)).projects[0];
    const auto previous = ProjectCorpus::make(project, nullptr);
    Project edited = project;
    edited.sections[0].notes[0].text = QStringLiteral("edited");
    for (auto _ : state)
        benchmark::DoNotOptimize(ProjectCorpus::make(edited, previous.get()));
}

// A search asked for right after launch, while the first indexing runs.
void BM_SearchWhileIndexing(benchmark::State &state)
{
    const Library &library = libraryOf(state.range(0));
    quint64 run = 0;
    for (auto _ : state) {
        state.PauseTiming();
        auto index = std::make_unique<SearchIndex>(
            scratch().filePath(QStringLiteral("launch-%1.sqlite").arg(run++)));
        state.ResumeTiming();
        index->synchronize(library, 1);
        benchmark::DoNotOptimize(
            index->searchAndWait(QStringLiteral("build"), library.projects[0], library, 1));
        state.PauseTiming();
        index.reset(); // waits for the indexing
        state.ResumeTiming();
    }
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
    for (qsizetype notes : sizes) {
        for (int c = 0; c < int(std::size(cases)); ++c) {
            benchmark::RegisterBenchmark("BM_Floor", BM_Floor)
                ->Args({notes, c})
                ->Unit(benchmark::kMillisecond);
            for (int plan = 0; plan < 3; ++plan) {
                benchmark::RegisterBenchmark("BM_Search", BM_Search)
                    ->Args({notes, c, plan})
                    ->Unit(benchmark::kMillisecond);
            }
        }
    }
    for (qsizetype notes : sizes) {
        benchmark::RegisterBenchmark("BM_CorpusBuild", BM_CorpusBuild)
            ->Arg(notes)
            ->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark("BM_CorpusAfterEdit", BM_CorpusAfterEdit)
            ->Arg(notes)
            ->Unit(benchmark::kMillisecond);
    }
    benchmark::RegisterBenchmark("BM_SearchWhileIndexing", BM_SearchWhileIndexing)
        ->Arg(100000)
        ->Unit(benchmark::kMillisecond)
        ->Iterations(2);
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
    auto time = [&](const char *format, auto... args) {
        char name[96];
        std::snprintf(name, sizeof name, format, args...);
        const auto it = t.find(name);
        return it == t.end() ? 0.0 : it->second;
    };
    std::printf("\n%-8s %-10s %-11s %8s %9s %9s %9s %8s %8s\n", "notes", "kind", "query",
        "floor ms", "index ms", "scan ms", "chosen ms", "chosen/", "index/");
    std::printf("%-8s %-10s %-11s %8s %9s %9s %9s %8s %8s\n", "", "", "", "", "", "", "",
        "floor", "scan");
    for (qsizetype notes : sizes) {
        for (int c = 0; c < int(std::size(cases)); ++c) {
            const double floor = time("BM_Floor/%lld/%d", qlonglong(notes), c);
            if (floor <= 0)
                continue;
            double plan[3];
            for (int p = 0; p < 3; ++p)
                plan[p] = time("BM_Search/%lld/%d/%d", qlonglong(notes), c, p);
            std::printf("%-8lld %-10s %-11s %8.2f %9.2f %9.2f %9.2f %8.2f %8.2f\n",
                qlonglong(notes), cases[c].kind, cases[c].query, floor, plan[1], plan[2], plan[0],
                plan[0] / floor, plan[2] > 0 ? plan[1] / plan[2] : 0.0);
        }
    }
    std::printf("\n%-8s %12s %16s %10s\n", "notes", "copy made ms", "after an edit ms", "floor ms");
    for (qsizetype notes : sizes) {
        std::printf("%-8lld %12.2f %16.2f %10.2f\n", qlonglong(notes),
            time("BM_CorpusBuild/%lld", qlonglong(notes)),
            time("BM_CorpusAfterEdit/%lld", qlonglong(notes)),
            time("BM_Floor/%lld/0", qlonglong(notes)));
    }
    const double full = t["BM_FullSync/200000/iterations:3"];
    const double incremental = t["BM_IncrementalSync/200000"];
    const double whileIndexing = t["BM_SearchWhileIndexing/100000/iterations:2"];
    std::printf("\nsearch for \"build\" asked for at launch, 100k notes: %.1f ms, %.3f of the "
                "full indexing of their 200k library\n",
        whileIndexing, full > 0 ? whileIndexing / full : 0.0);
    std::printf("full sync 20k notes %.1f ms, 200k notes %.1f ms; incremental after one edit at "
                "200k %.1f ms: %.3f of full\n",
        t["BM_FullSync/20000/iterations:3"], full, incremental,
        full > 0 ? incremental / full : 0.0);
    const double deleteAndRestore = t["BM_DeleteAndRestoreSync/200000/iterations:3"];
    std::printf("1000 notes deleted and added back at 200k: %.1f ms, %.3f of full\n",
        deleteAndRestore, full > 0 ? deleteAndRestore / full : 0.0);
    benchmark::Shutdown();
    return 0;
}
