// SPDX-License-Identifier: GPL-3.0-or-later
//
// Loading and saving the library at 1k, 10k and 100k notes, each beside a
// floor measured in the same run:
//   decoding   against a bare simdjson parse of the same bytes,
//   loading    (read and decode) against reading the bytes and that parse,
//   saving     (encode, back up, write) against writing the same bytes with
//              write, fsync and rename: a save after one note was edited, as
//              the writer makes it (the other notes' bytes come from its last
//              encoding), and a whole save with nothing to reuse.
// QJsonDocument parses the same bytes too, as the alternative reader.
// After the runs a table of ratios is printed; ratios, not times, are what
// compare across machines.

#include "LibraryGenerator.h"

#include "library/LibraryCoding.h"
#include "library/LibraryFile.h"
#include "platform/FileSystem.h"

#include <QCoreApplication>
#include <QDir>
#include <QJsonDocument>
#include <QTemporaryDir>

#include "RatioReporter.h"

#include <benchmark/benchmark.h>
#include <simdjson.h>

#include <cstdio>
#include <map>

using namespace Vesko;

namespace {

struct Fixture
{
    Library library;
    QByteArray document;
    QString folder;
};

QTemporaryDir &scratch()
{
    static QTemporaryDir dir(QDir::currentPath() + QStringLiteral("/vesko-bench-XXXXXX"));
    return dir;
}

const Fixture &fixture(int notes)
{
    static std::map<int, Fixture> fixtures;
    auto it = fixtures.find(notes);
    if (it == fixtures.end()) {
        Fixture f;
        f.library = Test::generateLibrary(notes, 42);
        f.document = encodeLibrary(f.library);
        f.folder = scratch().filePath(QString::number(notes));
        QDir().mkpath(f.folder);
        it = fixtures.emplace(notes, std::move(f)).first;
    }
    return it->second;
}

void setBytes(benchmark::State &state, const Fixture &f)
{
    state.SetBytesProcessed(int64_t(state.iterations()) * f.document.size());
    state.counters["notes"] = double(state.range(0));
}

void BM_ParseFloor(benchmark::State &state)
{
    const Fixture &f = fixture(int(state.range(0)));
    const simdjson::padded_string padded(f.document.constData(), size_t(f.document.size()));
    for (auto _ : state) {
        simdjson::dom::parser parser;
        simdjson::dom::element root;
        if (parser.parse(padded).get(root) != simdjson::SUCCESS)
            state.SkipWithError("parse failed");
        benchmark::DoNotOptimize(root);
    }
    setBytes(state, f);
}

void BM_QJsonParse(benchmark::State &state)
{
    const Fixture &f = fixture(int(state.range(0)));
    for (auto _ : state) {
        QJsonDocument document = QJsonDocument::fromJson(f.document);
        benchmark::DoNotOptimize(document);
    }
    setBytes(state, f);
}

void BM_Decode(benchmark::State &state)
{
    const Fixture &f = fixture(int(state.range(0)));
    for (auto _ : state) {
        std::optional<Library> library = decodeLibrary(f.document);
        if (!library)
            state.SkipWithError("decode failed");
        benchmark::DoNotOptimize(library);
    }
    setBytes(state, f);
}

void BM_ReadAndParseFloor(benchmark::State &state)
{
    const Fixture &f = fixture(int(state.range(0)));
    const QString path = f.folder + QStringLiteral("/Load.json");
    if (!QFileInfo::exists(path))
        (void)writeLibrary(f.library, path);
    for (auto _ : state) {
        simdjson::padded_string bytes;
        if (simdjson::padded_string::load(path.toStdString()).get(bytes) != simdjson::SUCCESS)
            state.SkipWithError("read failed");
        simdjson::dom::parser parser;
        simdjson::dom::element root;
        if (parser.parse(bytes).get(root) != simdjson::SUCCESS)
            state.SkipWithError("parse failed");
        benchmark::DoNotOptimize(root);
    }
    setBytes(state, f);
}

void BM_Load(benchmark::State &state)
{
    const Fixture &f = fixture(int(state.range(0)));
    const QString path = f.folder + QStringLiteral("/Load.json");
    if (!QFileInfo::exists(path))
        (void)writeLibrary(f.library, path);
    for (auto _ : state) {
        Library library = loadLibrary(path);
        benchmark::DoNotOptimize(library);
    }
    setBytes(state, f);
}

void BM_Encode(benchmark::State &state)
{
    const Fixture &f = fixture(int(state.range(0)));
    for (auto _ : state) {
        QByteArray document = encodeLibrary(f.library);
        benchmark::DoNotOptimize(document);
    }
    setBytes(state, f);
}

void BM_WriteFloor(benchmark::State &state)
{
    const Fixture &f = fixture(int(state.range(0)));
    const QString target = f.folder + QStringLiteral("/Floor.json");
    const QString temporary = f.folder + QStringLiteral("/.Floor.json.tmp");
    for (auto _ : state) {
        if (FileSystem::writeNewFile(temporary, f.document)
            || FileSystem::replaceFile(temporary, target))
            state.SkipWithError("write failed");
    }
    setBytes(state, f);
}

void BM_SaveWhole(benchmark::State &state)
{
    const Fixture &f = fixture(int(state.range(0)));
    const QString path = f.folder + QStringLiteral("/Save.json");
    for (auto _ : state) {
        if (writeLibrary(f.library, path))
            state.SkipWithError("write failed");
    }
    setBytes(state, f);
}

// Each save follows an edit of one note, in another section each time.
void BM_Save(benchmark::State &state)
{
    const Fixture &f = fixture(int(state.range(0)));
    const QString path = f.folder + QStringLiteral("/Save.json");
    Library library = f.library;
    EncodedSections encoded;
    if (writeLibrary(library, path, {}, &encoded))
        state.SkipWithError("write failed");
    qsizetype edits = 0;
    for (auto _ : state) {
        state.PauseTiming();
        QList<NoteSection> &sections = library.projects[0].sections;
        NoteSection &section = sections[edits % sections.size()];
        if (!section.notes.isEmpty()) {
            Note &note = section.notes[(edits * 7919) % section.notes.size()];
            note.text.append(u'.');
            note.updatedAt = note.updatedAt.addSecs(1);
        }
        ++edits;
        state.ResumeTiming();
        if (writeLibrary(library, path, {}, &encoded))
            state.SkipWithError("write failed");
    }
    setBytes(state, f);
}

// Prints as usual and keeps each run's time per iteration for the ratios.

// Ratios of one library size.
class LibraryRatioReporter : public Bench::RatioReporter
{
public:
    double ratio(const std::string &name, const std::string &floor, int notes) const
    {
        char suffix[32];
        std::snprintf(suffix, sizeof suffix, "/%d/real_time", notes);
        return Bench::RatioReporter::ratio(name + suffix, floor + suffix);
    }
};

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    // Size after size, so that the writes of a large library, still on their
    // way to the disk, do not slow the figures of a smaller one. A million
    // notes make a document of about 760 MB; QJsonDocument is left out there.
    const std::pair<const char *, void (*)(benchmark::State &)> benchmarks[] = {
        {"BM_ParseFloor", BM_ParseFloor},
        {"BM_QJsonParse", BM_QJsonParse},
        {"BM_Decode", BM_Decode},
        {"BM_ReadAndParseFloor", BM_ReadAndParseFloor},
        {"BM_Load", BM_Load},
        {"BM_Encode", BM_Encode},
        {"BM_WriteFloor", BM_WriteFloor},
        {"BM_SaveWhole", BM_SaveWhole},
        {"BM_Save", BM_Save},
    };
    for (int notes : {1000, 10000, 100000, 1000000}) {
        for (const auto &[name, function] : benchmarks) {
            if (notes == 1000000 && function == BM_QJsonParse)
                continue;
            benchmark::RegisterBenchmark(name, function)
                ->Arg(notes)
                ->Unit(benchmark::kMillisecond)
                ->UseRealTime();
        }
    }
    benchmark::Initialize(&argc, argv);
    LibraryRatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);

    std::printf("\n%-8s %13s %11s %11s %11s %13s %15s\n", "notes", "decode/parse", "load/floor",
        "save/write", "whole/write", "encode/write", "QJson/simdjson");
    for (int notes : {1000, 10000, 100000, 1000000}) {
        std::printf("%-8d %13.2f %11.2f %11.2f %11.2f %13.2f %15.2f\n", notes,
            reporter.ratio("BM_Decode", "BM_ParseFloor", notes),
            reporter.ratio("BM_Load", "BM_ReadAndParseFloor", notes),
            reporter.ratio("BM_Save", "BM_WriteFloor", notes),
            reporter.ratio("BM_SaveWhole", "BM_WriteFloor", notes),
            reporter.ratio("BM_Encode", "BM_WriteFloor", notes),
            reporter.ratio("BM_QJsonParse", "BM_ParseFloor", notes));
    }
    benchmark::Shutdown();
    return 0;
}
