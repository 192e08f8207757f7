#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Builds the libFuzzer targets with clang, AddressSanitizer and
# UndefinedBehaviorSanitizer, and runs each one for the given number of
# seconds (60 by default), starting from its seed corpus. Fails on any finding.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-60}

bash scripts/install-deps.sh
CC=clang CXX=clang++ cmake -S . -B build-fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DVESKO_BUILD_FUZZERS=ON -DVESKO_BUILD_TESTS=OFF -DVESKO_BUILD_BENCHMARKS=OFF -DVESKO_BUILD_APP=OFF
cmake --build build-fuzz --parallel "$(nproc)"

for entry in library_decoder:library markdown_parser:markdown; do
    target=${entry%%:*}
    seeds=fuzz/corpus/${entry##*:}
    corpus=$(mktemp -d)
    echo "== Fuzzing ${target} for ${seconds} s"
    log=$(mktemp)
    status=0
    "build-fuzz/fuzz/${target}_fuzzer" -max_total_time="$seconds" -max_len=65536 -timeout=10 \
        -print_final_stats=1 "$corpus" "$seeds" >"$log" 2>&1 || status=$?
    tail -n 40 "$log"
    rm -rf "$corpus" "$log"
    if [ "$status" -ne 0 ]; then
        echo "The fuzzer ${target} found a problem (exit status ${status})."
        exit "$status"
    fi
done
