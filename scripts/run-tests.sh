#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Runs the whole test suite on a fresh Debian 12 machine: installs what is
# needed, builds with warnings as errors and runs every test, then builds
# again with AddressSanitizer and UndefinedBehaviorSanitizer and runs every
# test once more.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/install-deps.sh
bash scripts/install-test-node.sh

jobs=$(nproc)
run_suite() {
    local dir=$1; shift
    cmake -S . -B "$dir" -G Ninja -DVESKO_WERROR=ON "$@"
    cmake --build "$dir" --parallel "$jobs"
    ctest --test-dir "$dir" --output-on-failure --parallel "$jobs"
}

echo "== Tests"
run_suite build-tests -DCMAKE_BUILD_TYPE=Debug
echo "== Tests with AddressSanitizer and UndefinedBehaviorSanitizer"
ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
    LSAN_OPTIONS=suppressions=$PWD/tests/lsan.supp \
    run_suite build-asan -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVESKO_SANITIZE=ON -DVESKO_BUILD_BENCHMARKS=OFF
