#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Takes the screenshots of the panel in docs/screenshots/: Vesko runs on a
# demo library in a private X server, once in the light and once in the dark
# appearance, and the panel's part of the screen is saved as PNG. The
# attachment views are drawn by tests/helpers/attachment_gallery; the Settings
# window is opened from the tray menu, each tab in both appearances; the
# list's own shots (Markdown notes, an expanded note with attachments, a
# search) are drawn offscreen by tests/helpers/list_screenshots.
set -euo pipefail
cd "$(dirname "$0")/.."

if [ "${1:-}" != "--inside" ]; then
    bash scripts/install-deps.sh
    cmake -S . -B build-tests -G Ninja -DCMAKE_BUILD_TYPE=Debug -DVESKO_BUILD_BENCHMARKS=OFF >/dev/null
    cmake --build build-tests --target vesko screen_grab attachment_gallery list_screenshots
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

# The Settings window, each tab in both appearances: opened from the tray
# menu (trayer holds the tray), tabs switched with Ctrl+Tab.
tray_pid=""
for appearance in light dark; do
    root=$(mktemp -d)
    mkdir -p "$root"/{data/Vesko,config/Vesko,cache,runtime}
    chmod 700 "$root/runtime"
    cp "$out/demo-library.json" "$root/data/Vesko/Library.json"
    printf '[General]\nappearance=%s\n' "$appearance" >"$root/config/Vesko/Vesko.conf"
    if [ -z "$tray_pid" ]; then
        trayer --edge top --align right --widthtype request --height 24 --transparent false &
        tray_pid=$!
        sleep 1
    fi
    XDG_DATA_HOME=$root/data XDG_CONFIG_HOME=$root/config XDG_CACHE_HOME=$root/cache \
        XDG_RUNTIME_DIR=$root/runtime QT_QPA_PLATFORM=xcb build-tests/app/vesko &
    pid=$!
    xdotool search --sync --onlyvisible --name '^Vesko$' >/dev/null
    sleep 1
    # Vesko's icon is the small window of class vesko inside the tray.
    for w in $(xdotool search --class '^vesko$'); do
        eval "$(xdotool getwindowgeometry --shell "$w")"
        if [ "$WIDTH" -gt 1 ] && [ "$WIDTH" -le 32 ]; then
            xdotool mousemove $((X + WIDTH / 2)) $((Y + HEIGHT / 2)) click 3
            break
        fi
    done
    sleep 0.5
    xdotool key Up Up Return
    window=$(xdotool search --sync --onlyvisible --name '^Vesko Settings$' | head -1)
    xdotool windowmove --sync "$window" 60 60
    xdotool mousemove 1000 700
    sleep 0.5
    X=$(xwininfo -id "$window" | awk '/Absolute upper-left X/ {print $4}')
    Y=$(xwininfo -id "$window" | awk '/Absolute upper-left Y/ {print $4}')
    WIDTH=$(xwininfo -id "$window" | awk '/Width:/ {print $2}')
    HEIGHT=$(xwininfo -id "$window" | awk '/Height:/ {print $2}')
    for tab in general capture storage about; do
        build-tests/tests/screen_grab "$out/settings-$tab-$appearance.png" "$X" "$Y" "$WIDTH" "$HEIGHT"
        echo "wrote $out/settings-$tab-$appearance.png"
        xdotool key ctrl+Tab
        sleep 0.4
    done
    kill -TERM "$pid"
    wait "$pid" || true
    rm -rf "$root"
done
kill "$tray_pid" 2>/dev/null || true

# The Capture tab where capture cannot work: a Wayland session's launch opens it.
root=$(mktemp -d)
mkdir -p "$root"/{data/Vesko,config/Vesko,cache,runtime}
chmod 700 "$root/runtime"
printf '[General]\nappearance=light\n' >"$root/config/Vesko/Vesko.conf"
WAYLAND_DISPLAY=wayland-0 XDG_DATA_HOME=$root/data XDG_CONFIG_HOME=$root/config \
    XDG_CACHE_HOME=$root/cache XDG_RUNTIME_DIR=$root/runtime QT_QPA_PLATFORM=xcb \
    build-tests/app/vesko &
pid=$!
window=$(xdotool search --sync --onlyvisible --name '^Vesko Settings$' | head -1)
xdotool windowmove --sync "$window" 60 60
sleep 1
X=$(xwininfo -id "$window" | awk '/Absolute upper-left X/ {print $4}')
Y=$(xwininfo -id "$window" | awk '/Absolute upper-left Y/ {print $4}')
WIDTH=$(xwininfo -id "$window" | awk '/Width:/ {print $2}')
HEIGHT=$(xwininfo -id "$window" | awk '/Height:/ {print $2}')
build-tests/tests/screen_grab "$out/settings-capture-unavailable.png" "$X" "$Y" "$WIDTH" "$HEIGHT"
echo "wrote $out/settings-capture-unavailable.png"
kill -TERM "$pid"
wait "$pid" || true
rm -rf "$root"
for appearance in light dark; do
    build-tests/tests/attachment_gallery "$out/attachments-$appearance.png" "$appearance"
    echo "wrote $out/attachments-$appearance.png"
done

# The line at the panel's foot while the library cannot be saved: its folder's
# place is taken by a file.
root=$(mktemp -d)
mkdir -p "$root"/{data,config/Vesko,cache,state,runtime}
chmod 700 "$root/runtime"
touch "$root/blocked"
printf '[General]\nappearance=light\nlibraryPath=%s\n' "$root/blocked/Library.json" \
    >"$root/config/Vesko/Vesko.conf"
XDG_DATA_HOME=$root/data XDG_CONFIG_HOME=$root/config XDG_CACHE_HOME=$root/cache \
    XDG_STATE_HOME=$root/state XDG_RUNTIME_DIR=$root/runtime QT_QPA_PLATFORM=xcb \
    build-tests/app/vesko &
pid=$!
xdotool search --sync --onlyvisible --name '^Vesko$' >/dev/null
sleep 1
xdotool type --delay 10 'A note that cannot be saved yet'
xdotool key Return
sleep 1.5
build-tests/tests/screen_grab "$out/panel-not-saved.png" 896 100 380 600
kill -TERM "$pid"
wait "$pid" || true
rm -rf "$root"
echo "wrote $out/panel-not-saved.png"
build-tests/tests/list_screenshots "$out/list-demo-library.json" "$out"
