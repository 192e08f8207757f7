#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Builds and runs the benchmarks; each prints its ratios against floors
# measured in the same run. Arguments go to Google Benchmark.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/install-deps.sh
cmake -S . -B build-bench -G Ninja -DCMAKE_BUILD_TYPE=Release -DVESKO_BUILD_TESTS=OFF
cmake --build build-bench --parallel "$(nproc)"
(cd build-bench && ./bench/bench_library --benchmark_min_time=0.5 "$@")
(cd build-bench && ./bench/bench_store --benchmark_min_time=0.5 "$@")
(cd build-bench && ./bench/bench_search --benchmark_min_time=0.5 "$@")
(cd build-bench && ./bench/bench_text --benchmark_min_time=0.5 "$@")
(cd build-bench && ./bench/bench_list --benchmark_min_time=1 "$@")
(cd build-bench && ./bench/bench_keys --benchmark_min_time=1 "$@")
build-bench/bench/library_memory 10000 100000 1000000
(cd build-bench && ./bench/bench_attachments "$@")
# The program and its window, in a private X session.
tests/x-session.sh build-bench/bench/bench_startup "$@"
tests/x-session.sh build-bench/bench/bench_panel "$@"
tests/x-session.sh build-bench/bench/bench_composer "$@"
tests/x-session.sh build-bench/bench/bench_capture "$@"
# The capture's Wayland rows, in a private headless sway.
tests/sway-session.sh build-bench/bench/bench_capture "$@"
