#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Builds the libFuzzer targets with clang, AddressSanitizer and
# UndefinedBehaviorSanitizer, and runs each one in turn from its seeds in
# fuzz/corpus/NAME. Fails on any finding, leaving the input that found it in
# build-fuzz/findings/NAME.
#
#   fuzz.sh [SECONDS] [NAME=SECONDS...] [--keep-corpus]
#
# SECONDS (60 by default) is each target's time; NAME=SECONDS runs only the
# targets named, each for its own time (NAME as in fuzz/corpus, or short:
# mcp, search, repair, command). The inputs a run finds interesting grow a
# corpus in build-fuzz/corpus/NAME, kept between runs; --keep-corpus merges
# the new ones into fuzz/corpus/NAME (libFuzzer's -merge=1), to be committed.
# Without it the tree is left as it was. Builds take /work/build.lock when
# that file exists, so that builds on a shared machine run one at a time.
set -euo pipefail
cd "$(dirname "$0")/.."

targets=(library_decoder markdown_parser library_repair command_line mcp_server search_index)
seconds=60
keep=false
declare -A chosen=()
for argument in "$@"; do
    case "$argument" in
    --keep-corpus) keep=true ;;
    *=*)
        name=${argument%%=*}
        case "$name" in
        mcp) name=mcp_server ;; search) name=search_index ;; repair) name=library_repair ;;
        command) name=command_line ;; decoder) name=library_decoder ;; markdown) name=markdown_parser ;;
        esac
        if [[ ! " ${targets[*]} " =~ " ${name} " ]]; then
            echo "fuzz.sh: no target “${name}”; there are: ${targets[*]}" >&2
            exit 2
        fi
        chosen[$name]=${argument#*=}
        ;;
    *[!0-9]* | '')
        echo "usage: fuzz.sh [SECONDS] [NAME=SECONDS...] [--keep-corpus]" >&2
        exit 2
        ;;
    *) seconds=$argument ;;
    esac
done

if [ "${VESKO_FUZZ_SKIP_DEPS:-}" != 1 ]; then
    bash scripts/install-deps.sh
fi
lock=()
if [ -e /work/build.lock ]; then
    lock=(flock /work/build.lock)
fi
CC=clang CXX=clang++ cmake -S . -B build-fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DVESKO_BUILD_FUZZERS=ON -DVESKO_BUILD_TESTS=OFF -DVESKO_BUILD_BENCHMARKS=OFF \
    -DVESKO_BUILD_APP=OFF >/dev/null
"${lock[@]}" cmake --build build-fuzz --parallel "$(nproc)" \
    --target "${targets[@]/%/_fuzzer}"

for target in "${targets[@]}"; do
    if [ ${#chosen[@]} -gt 0 ]; then
        [ -n "${chosen[$target]:-}" ] || continue
        duration=${chosen[$target]}
    else
        duration=$seconds
    fi
    seeds=fuzz/corpus/${target}
    corpus=build-fuzz/corpus/${target}
    findings=build-fuzz/findings/${target}
    mkdir -p "$corpus" "$findings"
    echo "== Fuzzing ${target} for ${duration} s"
    log=build-fuzz/${target}.log
    status=0
    "build-fuzz/fuzz/${target}_fuzzer" -max_total_time="$duration" -max_len=65536 -timeout=30 \
        -rss_limit_mb=4096 -print_final_stats=1 -artifact_prefix="${findings}/" \
        "$corpus" "$seeds" >"$log" 2>&1 || status=$?
    grep -E '^(stat::number_of_executed_units|stat::new_units_added|#[0-9]+ +DONE)' "$log" || true
    if [ "$status" -ne 0 ]; then
        tail -n 60 "$log"
        echo "The fuzzer ${target} found a problem (exit status ${status}); the input is in ${findings}."
        exit "$status"
    fi
    if $keep; then
        "build-fuzz/fuzz/${target}_fuzzer" -merge=1 -max_len=65536 -timeout=30 "$seeds" "$corpus" \
            >>"$log" 2>&1
        echo "   corpus fuzz/corpus/${target}: $(ls "$seeds" | wc -l) inputs"
    fi
done
