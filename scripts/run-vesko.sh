#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Builds and starts Vesko on a fresh Debian 12 machine. Arguments are passed on.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/install-deps.sh
cmake -S . -B build-release -G Ninja -DCMAKE_BUILD_TYPE=Release \
    -DVESKO_BUILD_TESTS=OFF -DVESKO_BUILD_BENCHMARKS=OFF
cmake --build build-release --parallel "$(nproc)" --target vesko
exec build-release/app/vesko "$@"
