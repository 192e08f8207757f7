#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# mutter-session.sh COMMAND...: runs COMMAND inside a private headless mutter
# (GNOME's compositor: no data control, the primary selection only for the
# client with the keyboard focus) on a private session bus, and returns its
# exit status. As in sway-session.sh, run as root the session and COMMAND
# run as the unprivileged user vesko-test, in a private (0700) runtime
# folder; WAYLAND_DISPLAY is an absolute path and VESKO_MUTTER=1 says which
# compositor this is. Where mutter (or dbus-run-session) is missing or
# cannot start, the script says why and fails without running COMMAND.
set -euo pipefail

if [ "$(id -u)" -eq 0 ]; then
    exec "$(dirname "$0")/as-test-user.sh" "$0" "$@"
fi

# A session bus of the session's own: mutter and Vesko both own names on it.
if [ "${1:-}" != "--bus" ]; then
    if command -v dbus-run-session >/dev/null 2>&1; then
        exec dbus-run-session -- "$0" --bus "$@"
    fi
    echo "mutter-session.sh: no session bus to test on: dbus-run-session is not installed" \
        "(scripts/install-deps.sh installs it)" >&2
    exit 1
fi
shift

unset DISPLAY WAYLAND_DISPLAY SWAYSOCK
export XDG_SESSION_TYPE=wayland XDG_CURRENT_DESKTOP=GNOME
runtime=$(mktemp -d "${TMPDIR:-/tmp}/vesko-mutter.XXXXXX")
chmod 0700 "$runtime"
export HOME="$runtime/home" XDG_RUNTIME_DIR="$runtime"
mkdir -p "$HOME"

mutter_pid=
cleanup() {
    if [ -n "$mutter_pid" ]; then
        kill "$mutter_pid" 2>/dev/null || true
        wait "$mutter_pid" 2>/dev/null || true
    fi
    rm -rf "$runtime"
}
trap cleanup EXIT

reason=
if ! command -v mutter >/dev/null 2>&1; then
    reason="mutter is not installed (scripts/install-deps.sh installs it)"
else
    mutter --headless --wayland --no-x11 --virtual-monitor 1280x720 \
        --wayland-display=vesko-wayland >"$runtime/mutter.log" 2>&1 &
    mutter_pid=$!
    for _ in $(seq 1 1200); do
        [ -S "$runtime/vesko-wayland" ] && break
        kill -0 "$mutter_pid" 2>/dev/null || break
        sleep 0.05
    done
    if [ -S "$runtime/vesko-wayland" ]; then
        export WAYLAND_DISPLAY="$runtime/vesko-wayland" VESKO_MUTTER=1
    else
        reason="mutter did not start: $(tail -n 3 "$runtime/mutter.log" | tr '\n' ' ')"
        kill "$mutter_pid" 2>/dev/null || true
        wait "$mutter_pid" 2>/dev/null || true
        mutter_pid=
    fi
fi
if [ -n "$reason" ]; then
    echo "mutter-session.sh: no GNOME session to test in: $reason" >&2
    exit 1
fi
status=0
"$@" || status=$?
exit "$status"
