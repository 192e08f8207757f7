#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# sway-session.sh COMMAND...: runs COMMAND inside a private headless sway
# session and returns its exit status. sway refuses to run as root: run as
# root, the session and COMMAND run as the unprivileged user vesko-test
# (created when missing). The session's runtime folder is private (0700);
# WAYLAND_DISPLAY and SWAYSOCK are absolute paths, so that programs with a
# runtime folder of their own still reach it. Where sway is missing or
# cannot start, the script says why and fails without running COMMAND: the
# tests that need it would otherwise pass without testing anything.
set -euo pipefail

if [ "$(id -u)" -eq 0 ]; then
    exec "$(dirname "$0")/as-test-user.sh" "$0" "$@"
fi

unset DISPLAY WAYLAND_DISPLAY SWAYSOCK
export XDG_SESSION_TYPE=wayland
runtime=$(mktemp -d "${TMPDIR:-/tmp}/vesko-sway.XXXXXX")
chmod 0700 "$runtime"
export HOME="$runtime/home"
mkdir -p "$HOME"
config="$runtime/config"
# No bar, no idle, no default bindings: the tests add the bindings they use.
printf 'output * bg #336699 solid_color\nfocus_follows_mouse no\n' >"$config"

sway_pid=
cleanup() {
    if [ -n "$sway_pid" ]; then
        kill "$sway_pid" 2>/dev/null || true
        wait "$sway_pid" 2>/dev/null || true
    fi
    rm -rf "$runtime"
}
trap cleanup EXIT

reason=
if ! command -v sway >/dev/null 2>&1; then
    reason="sway is not installed (scripts/install-deps.sh installs it)"
else
    XDG_RUNTIME_DIR="$runtime" WLR_BACKENDS=headless WLR_LIBINPUT_NO_DEVICES=1 \
        WLR_RENDERER=pixman sway -c "$config" >"$runtime/sway.log" 2>&1 &
    sway_pid=$!
    socket=
    for _ in $(seq 1 1200); do
        socket=$(find "$runtime" -maxdepth 1 -name 'wayland-*' -type s | head -n 1)
        ipc=$(find "$runtime" -maxdepth 1 -name 'sway-ipc.*.sock' -type s | head -n 1)
        [ -n "$socket" ] && [ -n "$ipc" ] && break
        kill -0 "$sway_pid" 2>/dev/null || break
        sleep 0.05
    done
    if [ -n "$socket" ] && [ -n "$ipc" ]; then
        export WAYLAND_DISPLAY="$socket" SWAYSOCK="$ipc"
        answered=
        for _ in $(seq 1 1200); do
            swaymsg -t get_outputs >/dev/null 2>&1 && answered=1 && break
            sleep 0.05
        done
        [ -n "$answered" ] || reason="sway does not answer on $ipc: $(tail -n 3 "$runtime/sway.log" | tr '\n' ' ')"
    else
        reason="sway did not start: $(tail -n 3 "$runtime/sway.log" | tr '\n' ' ')"
        kill "$sway_pid" 2>/dev/null || true
        wait "$sway_pid" 2>/dev/null || true
        sway_pid=
    fi
fi
if [ -n "$reason" ]; then
    echo "sway-session.sh: no Wayland session to test in: $reason" >&2
    exit 1
fi
export XDG_RUNTIME_DIR="$runtime"
status=0
"$@" || status=$?
exit "$status"
