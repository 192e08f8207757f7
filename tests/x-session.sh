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
openbox --sm-disable >/dev/null 2>&1 &
wm=$!
# The window manager is ready once it announces itself on the root window.
for _ in $(seq 1 100); do
    if xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null | grep -q "window id"; then
        break
    fi
    sleep 0.05
done
status=0
"$@" || status=$?
kill "$wm" 2>/dev/null || true
wait "$wm" 2>/dev/null || true
exit "$status"
