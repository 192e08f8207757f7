#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Refreshes translations/vesko_*.ts from the code: new texts come in
# unfinished, texts gone from the code go. Then translate the unfinished ones
# (linguist, or any editor) and run tests/check-translations.py. The files
# keep no line numbers, so a change elsewhere in the code leaves them alone.
#   scripts/update-translations.sh [LANG...]   e.g. "it" starts vesko_it.ts
set -euo pipefail
cd "$(dirname "$0")/.."
lupdate=$(command -v lupdate || true)
[ -x /usr/lib/qt6/bin/lupdate ] && lupdate=/usr/lib/qt6/bin/lupdate
if [ -z "$lupdate" ]; then
    echo "lupdate not found: run scripts/install-deps.sh" >&2
    exit 1
fi
shopt -s nullglob
ts_files=(translations/vesko_*.ts)
for language in "$@"; do
    [ -e "translations/vesko_$language.ts" ] && continue
    ts_files+=("translations/vesko_$language.ts")
done
"$lupdate" -no-obsolete -locations none -extensions cpp,h src app -ts "${ts_files[@]}"
