#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Takes the screenshots of the panel in docs/screenshots/: Vesko runs on a
# demo library in a private X server with a session bus, once in the light
# and once in the dark appearance. The panel, each of its menus and a prompt
# are opened with real clicks where the accessibility tree (read over AT-SPI,
# tests/helpers/atspi_reader.py) says the controls are, and saved as PNG.
# The attachment views are drawn by tools/screenshots/attachment_gallery; the
# Settings window is opened from the tray menu, each tab in both appearances;
# the list's own shots (Markdown notes, an expanded note with attachments, a
# search) are drawn offscreen by tools/screenshots/list_screenshots, the shortcut
# sheet and the switchers by tools/screenshots/keys_screenshots.
# A note window with its preview and the tray's menu (in trayer, an XEmbed
# tray) come from the same demo library, and a toast from a copied note.
set -euo pipefail
cd "$(dirname "$0")/.."

build=${VESKO_BUILD:-build-tests}
if [ "${1:-}" != "--inside" ]; then
    bash scripts/install-deps.sh
    if [ -z "${VESKO_BUILD:-}" ]; then
        cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DVESKO_BUILD_BENCHMARKS=OFF >/dev/null
        cmake --build "$build" --target vesko screen_grab attachment_gallery list_screenshots keys_screenshots
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

    # A toast: Ctrl+C on a selected note says "Copied" beside the pointer.
    read -r x y <<<"$(where "list item" 'backup rotation')"
    click_at "$x" "$y"
    xdotool key ctrl+c
    sleep 0.4
    grab "toast-$appearance.png" $((x + 4)) $((y + 4)) 150 60
    sleep 1.5

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
        XDG_RUNTIME_DIR=$root/runtime QT_QPA_PLATFORM=xcb "$build"/app/vesko &
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
        "$build"/tests/screen_grab "$out/settings-$tab-$appearance.png" "$X" "$Y" "$WIDTH" "$HEIGHT"
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
    "$build"/app/vesko &
pid=$!
window=$(xdotool search --sync --onlyvisible --name '^Vesko Settings$' | head -1)
xdotool windowmove --sync "$window" 60 60
sleep 1
X=$(xwininfo -id "$window" | awk '/Absolute upper-left X/ {print $4}')
Y=$(xwininfo -id "$window" | awk '/Absolute upper-left Y/ {print $4}')
WIDTH=$(xwininfo -id "$window" | awk '/Width:/ {print $2}')
HEIGHT=$(xwininfo -id "$window" | awk '/Height:/ {print $2}')
"$build"/tests/screen_grab "$out/settings-capture-unavailable.png" "$X" "$Y" "$WIDTH" "$HEIGHT"
echo "wrote $out/settings-capture-unavailable.png"
kill -TERM "$pid"
wait "$pid" || true
rm -rf "$root"
for appearance in light dark; do
    "$build"/tools/screenshots/attachment_gallery "$out/attachments-$appearance.png" "$appearance"
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
    "$build"/app/vesko &
pid=$!
xdotool search --sync --onlyvisible --name '^Vesko$' >/dev/null
sleep 1
xdotool type --delay 10 'A note that cannot be saved yet'
xdotool key Return
sleep 1.5
"$build"/tests/screen_grab "$out/panel-not-saved.png" 896 100 380 600
kill -TERM "$pid"
wait "$pid" || true
rm -rf "$root"
echo "wrote $out/panel-not-saved.png"

# The line at the panel's foot after the library file could not be read: the
# demo library lies in the backups, the file itself lost its last brace.
for appearance in light dark; do
    root=$(mktemp -d)
    mkdir -p "$root"/{data/Vesko/"Library Backups",config/Vesko,cache,state,runtime}
    chmod 700 "$root/runtime"
    cp "$out/list-demo-library.json" "$root/data/Vesko/Library Backups/Library-2026-03-14T09-26-53Z-1F3A9C.json"
    head -c -2 "$out/list-demo-library.json" >"$root/data/Vesko/Library.json"
    printf '[General]\nappearance=%s\n' "$appearance" >"$root/config/Vesko/Vesko.conf"
    XDG_DATA_HOME=$root/data XDG_CONFIG_HOME=$root/config XDG_CACHE_HOME=$root/cache \
        XDG_STATE_HOME=$root/state XDG_RUNTIME_DIR=$root/runtime QT_QPA_PLATFORM=xcb \
        "$build"/app/vesko &
    pid=$!
    xdotool search --sync --onlyvisible --name '^Vesko$' >/dev/null
    sleep 1.5
    "$build"/tests/screen_grab "$out/panel-unreadable-$appearance.png" 896 100 380 600
    kill -TERM "$pid"
    wait "$pid" || true
    rm -rf "$root"
    echo "wrote $out/panel-unreadable-$appearance.png"
done
"$build"/tools/screenshots/list_screenshots "$out/list-demo-library.json" "$out"
"$build"/tools/screenshots/keys_screenshots "$out/list-demo-library.json" "$out"
