#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# x-session.sh COMMAND...: runs COMMAND in a private X server (Xvfb, 1280×800)
# with the openbox window manager, and returns its exit status.
set -euo pipefail
if [ "${1:-}" != "--inside" ]; then
    exec xvfb-run -a -s "-screen 0 1280x800x24 -nolisten tcp" "$0" --inside "$@"
fi
shift
# The session is this X server, whatever the desktop around it runs.
unset WAYLAND_DISPLAY
export XDG_SESSION_TYPE=x11
# The window manager is ready once it announces itself on the root window.
# When X sessions start side by side, openbox sometimes fails to open the
# display at its first try and ends: it is started again.
wm=
for _ in 1 2 3 4 5; do
    openbox --sm-disable >/dev/null 2>&1 &
    wm=$!
    ready=
    for _ in $(seq 1 100); do
        if xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null | grep -q "window id"; then
            ready=1
            break
        fi
        kill -0 "$wm" 2>/dev/null || break
        sleep 0.05
    done
    [ -n "$ready" ] && break
    kill "$wm" 2>/dev/null || true
    wait "$wm" 2>/dev/null || true
    sleep 0.2
done
status=0
"$@" || status=$?
kill "$wm" 2>/dev/null || true
wait "$wm" 2>/dev/null || true
exit "$status"
