#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Takes the screenshots of the panel in docs/screenshots/: Vesko runs on a
# demo library in a private X server with a session bus, once in the light
# and once in the dark appearance. The panel, each of its menus and a prompt
# are opened with real clicks where the accessibility tree (read over AT-SPI,
# tests/helpers/atspi_reader.py) says the controls are, and saved as PNG.
# The attachment views are drawn by tests/helpers/attachment_gallery.
set -euo pipefail
cd "$(dirname "$0")/.."

build=${VESKO_BUILD:-build-tests}
if [ "${1:-}" != "--inside" ]; then
    bash scripts/install-deps.sh
    if [ -z "${VESKO_BUILD:-}" ]; then
        cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DVESKO_BUILD_BENCHMARKS=OFF >/dev/null
        cmake --build "$build" --target vesko screen_grab attachment_gallery
    fi
    export VESKO_BUILD=$build
    exec tests/x-session.sh dbus-run-session -- "$0" --inside
fi

out=docs/screenshots
reader="/usr/bin/python3 tests/helpers/atspi_reader.py"
# The panel sits at the right edge: 340 × 560 at (916, 120) on 1280 × 800.
panel_area="896 100 380 600"
# Menus open beside it, to its left.
menu_area="560 100 720 640"

where() { # ROLE PATTERN: the centre of the first showing object, retried
    for _ in $(seq 1 50); do
        if point=$($reader where Vesko "$1" "$2" 2>/dev/null); then
            echo "$point"
            return 0
        fi
        sleep 0.2
    done
    echo "not found: $1 $2" >&2
    return 1
}
in_menu() { # PATTERN: the centre of the entry of the open popup menu
    # A popup is read as a screen reader reads it: through the focus of its entry.
    $reader popup Vesko Down | /usr/bin/python3 -c '
import json, re, sys
menu = json.load(sys.stdin)
for entry in menu.get("children", []):
    if re.search(sys.argv[1], entry["name"]):
        x, y, w, h = entry["extents"]
        print(x + w // 2, y + h // 2)
        break
' "$1"
}
click_at() { # X Y [BUTTON]
    xdotool mousemove "$1" "$2"
    sleep 0.15
    xdotool click "${3:-1}"
    sleep 0.5
}
grab() { # NAME AREA...
    "$build"/tests/screen_grab "$out/$1" "${@:2}"
    echo "wrote $out/$1"
}

for appearance in light dark; do
    root=$(mktemp -d)
    mkdir -p "$root"/{data/Vesko,config/Vesko,cache,runtime}
    chmod 700 "$root/runtime"
    cp "$out/demo-library.json" "$root/data/Vesko/Library.json"
    printf '[General]\nappearance=%s\n' "$appearance" >"$root/config/Vesko/Vesko.conf"
    XDG_DATA_HOME=$root/data XDG_CONFIG_HOME=$root/config XDG_CACHE_HOME=$root/cache \
        XDG_RUNTIME_DIR=$root/runtime QT_QPA_PLATFORM=xcb QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1 \
        "$build"/app/vesko &
    pid=$!
    xdotool search --sync --onlyvisible --name '^Vesko$' >/dev/null
    sleep 1
    xdotool type --delay 10 'Draft a note'
    sleep 0.3
    grab "panel-$appearance.png" $panel_area
    xdotool key Escape
    sleep 0.2

    # "More options"
    click_at $(where "push button" '^More options$')
    grab "menu-overflow-$appearance.png" $menu_area
    xdotool key Escape
    sleep 0.3

    # The note menu and its "Move to" submenu.
    click_at $(where "list item" 'backup rotation') 3
    grab "menu-note-$appearance.png" $menu_area
    read -r x y < <(in_menu '^Move to$')
    xdotool mousemove "$x" "$y"
    sleep 0.8
    grab "menu-move-$appearance.png" $menu_area
    xdotool key Escape Escape
    sleep 0.3

    # The section menu of a header.
    click_at $(where "push button" 'section, ') 3
    grab "menu-section-$appearance.png" $menu_area
    xdotool key Escape
    sleep 0.3

    # The "New Section" prompt.
    click_at $(where "push button" '^More options$')
    click_at $(in_menu '^New Section')
    sleep 0.4
    xdotool type --delay 10 'Errands'
    sleep 0.3
    grab "prompt-$appearance.png" $panel_area
    xdotool key Escape

    kill -TERM "$pid"
    wait "$pid" || true
    rm -rf "$root"
done
for appearance in light dark; do
    "$build"/tests/attachment_gallery "$out/attachments-$appearance.png" "$appearance"
    echo "wrote $out/attachments-$appearance.png"
done
