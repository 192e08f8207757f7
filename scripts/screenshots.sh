#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Takes the screenshots of the panel in docs/screenshots/: Vesko runs on a
# demo library in a private X server, once in the light and once in the dark
# appearance, and the panel's part of the screen is saved as PNG. The
# attachment views are drawn by tests/helpers/attachment_gallery. A note
# window with its preview and the tray's menu (in trayer, an XEmbed tray)
# come from the same demo library.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${VESKO_SCREENSHOT_BUILD:-build-tests}

if [ "${1:-}" != "--inside" ]; then
    bash scripts/install-deps.sh
    cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DVESKO_BUILD_BENCHMARKS=OFF >/dev/null
    cmake --build "$build" --target vesko screen_grab attachment_gallery
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
        XDG_RUNTIME_DIR=$root/runtime QT_QPA_PLATFORM=xcb "$build"/app/vesko &
    pid=$!
    xdotool search --sync --onlyvisible --name '^Vesko$' >/dev/null
    sleep 1
    xdotool type --delay 10 'Draft a note'
    sleep 0.3
    # The panel sits at the right edge: 340 × 560 at (916, 120) on 1280 × 800.
    "$build"/tests/screen_grab "$out/panel-$appearance.png" 896 100 380 600
    kill -TERM "$pid"
    wait "$pid" || true
    rm -rf "$root"
    echo "wrote $out/panel-$appearance.png"
done
for appearance in light dark; do
    "$build"/tests/attachment_gallery "$out/attachments-$appearance.png" "$appearance"
    echo "wrote $out/attachments-$appearance.png"
done

# A note window with its preview and an attachment, then the tray's menu.
for appearance in light dark; do
    root=$(mktemp -d)
    mkdir -p "$root"/{data/Vesko,config/Vesko,cache,runtime}
    chmod 700 "$root/runtime"
    cp "$out/demo-library.json" "$root/data/Vesko/Library.json"
    printf '[General]\nappearance=%s\n' "$appearance" >"$root/config/Vesko/Vesko.conf"
    trayer --edge top --align right --widthtype pixel --width 100 --heighttype pixel \
        --height 24 >/dev/null 2>&1 &
    tray=$!
    sleep 0.5
    XDG_DATA_HOME=$root/data XDG_CONFIG_HOME=$root/config XDG_CACHE_HOME=$root/cache \
        XDG_RUNTIME_DIR=$root/runtime QT_QPA_PLATFORM=xcb "$build"/app/vesko &
    pid=$!
    xdotool search --sync --onlyvisible --name '^Vesko$' >/dev/null
    sleep 1
    # The second row's menu: Copy, Copy as List, Mark as Done, Edit, Edit in New Window.
    xdotool mousemove 1086 275 click 3
    sleep 0.4
    xdotool key Down Down Down Down Down Return
    sleep 0.6
    window=$(xdotool getactivewindow)
    xdotool key ctrl+End
    xdotool type --delay 5 ' before *Friday*'
    xdotool key Return
    xdotool type --delay 5 '# Steps: ~~rename~~ **check** the [docs](https://example.org)'
    # The bar at the foot of the 460 × 380 window: Mark as Done, Add
    # Attachment, Preview, Copy.
    eval "$(xdotool getwindowgeometry --shell "$window")"
    xdotool mousemove $((X + 200)) $((Y + 339)) click 1
    sleep 0.8
    xdotool type --delay 5 "$PWD/$out/panel-$appearance.png"
    xdotool key Return
    sleep 0.8
    xdotool mousemove $((X + 323)) $((Y + 339)) click 1
    sleep 1
    "$build"/tests/screen_grab "$out/note-window-$appearance.png" $((X - 10)) $((Y - 40)) \
        $((WIDTH + 20)) $((HEIGHT + 50))
    echo "wrote $out/note-window-$appearance.png"
    if [ "$appearance" = light ]; then
        xdotool mousemove 1268 12 click 3
        sleep 0.8
        "$build"/tests/screen_grab "$out/tray-menu.png" 880 0 400 300
        echo "wrote $out/tray-menu.png"
        xdotool key Escape
    fi
    kill -TERM "$pid"
    wait "$pid" || true
    kill "$tray" || true
    wait "$tray" 2>/dev/null || true
    rm -rf "$root"
done
