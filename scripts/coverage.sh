#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Measures the line coverage of src/ by the test suite: configures a Debug
# build instrumented with gcc's --coverage (benchmarks off), builds it, runs
# every test, then prints gcovr's summary and writes its JSON.
#
#   scripts/coverage.sh [BUILD_DIR] [JSON_OUT]
#
# Defaults: build-cov and BUILD_DIR/coverage.json. Set COVERAGE_JOBS for the
# parallel build and ctest (default 2), CTEST_ARGS for extra ctest arguments
# COVERAGE_SKIP_BUILD=1 to measure an existing build again, and BUILD_LOCK to
# a lock file that the compile (only) must hold on a shared machine.
set -euo pipefail
cd "$(dirname "$0")/.."
src=$PWD
build=${1:-build-cov}
json=${2:-$build/coverage.json}
jobs=${COVERAGE_JOBS:-2}

if [[ ${COVERAGE_SKIP_BUILD:-0} != 1 ]]; then
    launcher=$(command -v ccache || true)
    cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DVESKO_COVERAGE=ON \
        ${launcher:+-DCMAKE_CXX_COMPILER_LAUNCHER=$launcher -DCMAKE_C_COMPILER_LAUNCHER=$launcher} \
        -DVESKO_BUILD_BENCHMARKS=OFF -DVESKO_WERROR=ON
    ${BUILD_LOCK:+flock "$BUILD_LOCK"} cmake --build "$build" --parallel "$jobs"
fi

# Counters of earlier runs would add up with this one's.
find "$build" -name '*.gcda' -delete
ctest --test-dir "$build" --parallel "$jobs" --timeout 1500 ${CTEST_ARGS:-} || echo "coverage.sh: some tests failed" >&2

mkdir -p "$(dirname "$json")"
gcovr --root "$src" --filter "$src/src/" --object-directory "$build" \
    --gcov-ignore-parse-errors -j "$jobs" \
    --json "$json" --json-pretty --print-summary --txt "$build/coverage.txt" \
    "$build" | tail -n 3
