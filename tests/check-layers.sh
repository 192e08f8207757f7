#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# check-layers.sh SRC: the include rules between the source folders.
# - src/platform (interfaces and implementations alike) serves the rest of
#   the program and includes none of it;
# - the headless folders (library, store, search, capture) and the
#   interfaces at the top of src/platform reach the desktop only through
#   those interfaces, never through src/platform/qt or src/platform/x11.
# Prints each include that breaks a rule; fails when there is one.
set -euo pipefail
src=${1:?usage: check-layers.sh SRC}
status=0

report() {
    echo "$1"
    status=1
}

while IFS= read -r line; do
    report "platform includes the program: $line"
done < <(grep -rnE '#include "(library|store|search|capture|attachments|panel|shell)/' \
    "$src/platform" || true)

headless=("$src/library" "$src/store" "$src/search" "$src/capture")
while IFS= read -r line; do
    report "headless code includes an implementation: $line"
done < <(grep -rnE '#include "platform/(qt|x11)/' "${headless[@]}" \
    "$src"/platform/*.h "$src"/platform/*.cpp || true)

exit "$status"
