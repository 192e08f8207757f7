#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Takes the screenshots of the panel in docs/screenshots/: Vesko runs on a
# demo library in a private X server, once in the light and once in the dark
# appearance, and the panel's part of the screen is saved as PNG. The
# attachment views are drawn by tests/helpers/attachment_gallery.
set -euo pipefail
cd "$(dirname "$0")/.."

if [ "${1:-}" != "--inside" ]; then
    bash scripts/install-deps.sh
    cmake -S . -B build-tests -G Ninja -DCMAKE_BUILD_TYPE=Debug -DVESKO_BUILD_BENCHMARKS=OFF >/dev/null
    cmake --build build-tests --target vesko screen_grab attachment_gallery
    exec tests/x-session.sh "$0" --inside
fi

out=docs/screenshots
for appearance in light dark; do
    root=$(mktemp -d)
    mkdir -p "$root"/{data/Vesko,config/Vesko,cache,runtime}
    chmod 700 "$root/runtime"
    cp "$out/demo-library.json" "$root/data/Vesko/Library.json"
    printf '[General]\nappearance=%s\n' "$appearance" >"$root/config/Vesko/Vesko.conf"
    XDG_DATA_HOME=$root/data XDG_CONFIG_HOME=$root/config XDG_CACHE_HOME=$root/cache \
        XDG_RUNTIME_DIR=$root/runtime QT_QPA_PLATFORM=xcb build-tests/app/vesko &
    pid=$!
    xdotool search --sync --onlyvisible --name '^Vesko$' >/dev/null
    sleep 1
    xdotool type --delay 10 'Draft a note'
    sleep 0.3
    # The panel sits at the right edge: 340 × 560 at (916, 120) on 1280 × 800.
    build-tests/tests/screen_grab "$out/panel-$appearance.png" 896 100 380 600
    kill -TERM "$pid"
    wait "$pid" || true
    rm -rf "$root"
    echo "wrote $out/panel-$appearance.png"
done
for appearance in light dark; do
    build-tests/tests/attachment_gallery "$out/attachments-$appearance.png" "$appearance"
    echo "wrote $out/attachments-$appearance.png"
done
