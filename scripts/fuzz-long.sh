#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Runs every fuzz target for an hour (or the given seconds), one after the
# other; not part of CI. Add --keep-corpus to merge what they find into fuzz/corpus.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-3600}
shift || true
exec nice bash scripts/fuzz.sh "$seconds" "$@"
