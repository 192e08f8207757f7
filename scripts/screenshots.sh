#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Takes the screenshots of the panel in docs/screenshots/: Vesko runs on a
# demo library in a private X server, once in the light and once in the dark
# appearance, and the panel's part of the screen is saved as PNG. The
# attachment views are drawn by tests/helpers/attachment_gallery; the Settings
# window is opened from the tray menu, each tab in both appearances. A note
# window with its preview and the tray's menu (in trayer, an XEmbed tray)
# come from the same demo library.
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
        XDG_RUNTIME_DIR=$root/runtime QT_QPA_PLATFORM=xcb build-tests/app/vesko &
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
    build-tests/tests/screen_grab "$out/note-window-$appearance.png" $((X - 10)) $((Y - 40)) \
        $((WIDTH + 20)) $((HEIGHT + 50))
    echo "wrote $out/note-window-$appearance.png"
    if [ "$appearance" = light ]; then
        xdotool mousemove 1268 12 click 3
        sleep 0.8
        build-tests/tests/screen_grab "$out/tray-menu.png" 880 0 400 300
        echo "wrote $out/tray-menu.png"
        xdotool key Escape
    fi
    kill -TERM "$pid"
    wait "$pid" || true
    kill "$tray" || true
    wait "$tray" 2>/dev/null || true
    rm -rf "$root"
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
