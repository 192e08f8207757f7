// SPDX-License-Identifier: GPL-3.0-or-later
//
// Prints Google Benchmark's usual table and keeps each run's real time per
// iteration by benchmark name, so that a program can print ratios against
// floors measured in the same run.

#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>

namespace Vesko::Bench {

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

    //! The time of \a name over that of \a floor; 0 when either is missing.
    double ratio(const std::string &name, const std::string &floor) const
    {
        const auto a = times.find(name);
        const auto b = times.find(floor);
        if (a == times.end() || b == times.end() || b->second <= 0)
            return 0;
        return a->second / b->second;
    }

    std::map<std::string, double> times;
};

} // namespace Vesko::Bench
