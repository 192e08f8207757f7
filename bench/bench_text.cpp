// SPDX-License-Identifier: GPL-3.0-or-later
//
// The inline Markdown parse on realistic and pathological notes of 100 KB and
// 1 MB, beside a plain copy of the same characters; the growth from 100 KB to
// 1 MB shows whether the parse stays linear (10 for a linear cost). And the
// Markdown export of a 100k-note library beside encoding it as JSON.

#include "LibraryGenerator.h"
#include "RatioReporter.h"

#include "library/LibraryCoding.h"
#include "store/MarkdownText.h"
#include "store/NoteText.h"

#include <QCoreApplication>

#include <benchmark/benchmark.h>

#include <cstdio>

using namespace Vesko;

namespace {

const char *const kinds[] = {"prose", "stars", "brackets", "backticks", "links", "nested"};

QString makeInput(int kind, qsizetype size)
{
    QString unit;
    switch (kind) {
    case 0:
        unit = QStringLiteral("Some *emphasis*, **strong** text, `code`, a [link](https://x.org "
                              "\"t\") and ~~old~~.\n");
        break;
    case 1:
        unit = QStringLiteral("*");
        break;
    case 2:
        unit = QStringLiteral("[");
        break;
    case 3:
        unit = QStringLiteral("`a``");
        break;
    case 4:
        unit = QStringLiteral("[a](b");
        break;
    default:
        // Links closing above a deep stack of brackets that they deactivate.
        unit = QStringLiteral("[a](b)");
    }
    QString text;
    text.reserve(size + unit.size());
    if (kind == 5)
        text.fill(u'[', size / 2);
    while (text.size() < size)
        text += unit;
    text.truncate(size);
    return text;
}

void BM_Parse(benchmark::State &state)
{
    const QString input = makeInput(int(state.range(0)), state.range(1));
    for (auto _ : state)
        benchmark::DoNotOptimize(markdownAttributedString(input));
}

void BM_CopyFloor(benchmark::State &state)
{
    const QString input = makeInput(int(state.range(0)), state.range(1));
    for (auto _ : state) {
        QString copy(input.constData(), input.size());
        benchmark::DoNotOptimize(copy);
    }
}

void BM_Export(benchmark::State &state)
{
    const Library library = Test::generateLibrary(100000, 42);
    for (auto _ : state)
        benchmark::DoNotOptimize(markdownExportText(library));
}

void BM_EncodeFloor(benchmark::State &state)
{
    const Library library = Test::generateLibrary(100000, 42);
    for (auto _ : state)
        benchmark::DoNotOptimize(encodeLibrary(library));
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    for (int kind = 0; kind < int(std::size(kinds)); ++kind) {
        for (qsizetype size : {100'000, 1'000'000, 2'000'000}) {
            benchmark::RegisterBenchmark("BM_Parse", BM_Parse)
                ->Args({kind, size})
                ->Unit(benchmark::kMillisecond);
            benchmark::RegisterBenchmark("BM_CopyFloor", BM_CopyFloor)
                ->Args({kind, size})
                ->Unit(benchmark::kMillisecond);
        }
    }
    benchmark::RegisterBenchmark("BM_Export", BM_Export)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("BM_EncodeFloor", BM_EncodeFloor)->Unit(benchmark::kMillisecond);

    benchmark::Initialize(&argc, argv);
    Bench::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);

    std::printf("\n%-10s %12s %12s %14s %14s %12s\n", "input", "100 KB ms", "1 MB ms",
        "1 MB / copy", "1 MB / 100 KB", "2 MB / 1 MB");
    for (int kind = 0; kind < int(std::size(kinds)); ++kind) {
        char small[64], large[64], copy[64], double_[64];
        std::snprintf(double_, sizeof double_, "BM_Parse/%d/2000000", kind);
        std::snprintf(small, sizeof small, "BM_Parse/%d/100000", kind);
        std::snprintf(large, sizeof large, "BM_Parse/%d/1000000", kind);
        std::snprintf(copy, sizeof copy, "BM_CopyFloor/%d/1000000", kind);
        std::printf("%-10s %12.3f %12.3f %14.1f %14.2f %12.2f\n", kinds[kind],
            reporter.times[small], reporter.times[large], reporter.ratio(large, copy),
            reporter.ratio(large, small), reporter.ratio(double_, large));
    }
    std::printf("\nexport of 100k notes / JSON encoding: %.2f (export %.1f ms)\n",
        reporter.ratio("BM_Export", "BM_EncodeFloor"), reporter.times["BM_Export"]);
    benchmark::Shutdown();
    return 0;
}
