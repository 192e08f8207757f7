#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# soak.sh MINUTES [VESKO]: a random keyboard session against the real program
# in a private X server (Xvfb + openbox) and session bus, for MINUTES minutes
# (2 by default). Notes are typed into the panel with xdotool, added with
# "vesko add" and captured from xterm's selection with "vesko capture"; the
# panel is searched, hidden and shown. Every text sent is logged. At the end:
# the program still runs, the library file is valid JSON that holds every
# note the session added, and its resident memory grew by less than 10 %
# from the end of the first fifth of the session (five minutes at most) to the end.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
if [ "${1:-}" != "--inside" ]; then
    exec dbus-run-session --config-file="$here/tests/data/dbus-session.conf" -- bash "$here/tests/x-session.sh" bash ${SOAK_TRACE:+-x} "$0" --inside "$@"
fi
shift
minutes=${1:-2}
vesko=${2:-$here/build/app/vesko}
work=$(mktemp -d)
trap 'kill "${pid:-}" "${xterm_pid:-}" 2>/dev/null || true; rm -rf "$work"' EXIT
export XDG_CONFIG_HOME=$work/config XDG_DATA_HOME=$work/data XDG_CACHE_HOME=$work/cache \
    XDG_STATE_HOME=$work/state
log=$work/sent.log
library=$XDG_DATA_HOME/Vesko/Library.json

"$vesko" >"$work/vesko.out" 2>&1 &
pid=$!
sleep 3 # the first start makes its folders and registers on the bus
xterm -geometry 80x10+0+0 -e "sleep 100000" &
xterm_pid=$!

# Waits, within a generous bound, until the program's window has the focus.
focused() {
    local _
    for _ in $(seq 1 100); do
        [ "$(xdotool getactivewindow getwindowpid 2>/dev/null)" = "$pid" ] && return 0
        sleep 0.05
    done
    return 1
}
rss() { awk '/^VmRSS/ { print $2 }' "/proc/$pid/status"; }
word() {
    local letters=abcdefghijklmnopqrstuvwxyz w= i
    for ((i = 0; i < 3 + RANDOM % 8; i++)); do w+=${letters:RANDOM % 26:1}; done
    printf '%s' "$w"
}

end=$((SECONDS + minutes * 60))
warmup=$((SECONDS + (minutes * 60 / 5 < 300 ? minutes * 60 / 5 : 300)))
base=
n=0
while [ "$SECONDS" -lt "$end" ]; do
    kill -0 "$pid" || { echo "soak: vesko ended during the session"; exit 1; }
    n=$((n + 1))
    text="soak $n $(word) $(word)"
    case $((RANDOM % 6)) in
    0 | 1) # typed into the composer of the shown panel
        "$vesko" show
        if focused; then
            xdotool type --delay 5 "$text"
            xdotool key Return
            echo "typed $text" >>"$log"
        else
            echo "unfocused $text" >>"$log"
        fi
        ;;
    2) # added from the command line
        "$vesko" add "$text" >/dev/null
        echo "added $text" >>"$log"
        ;;
    3) # captured from the selection of the terminal
        printf '%s' "$text" | xclip -selection primary
        "$vesko" capture >/dev/null 2>&1 || true
        echo "captured-maybe $text" >>"$log"
        ;;
    4) # searched for, then the search cleared
        "$vesko" show
        focused || true
        xdotool key ctrl+f
        xdotool type --delay 5 "$(word)"
        sleep 0.3
        xdotool key Escape Escape
        echo "searched" >>"$log"
        ;;
    5) # the panel hidden and shown again
        "$vesko" toggle
        sleep 0.2
        "$vesko" toggle
        echo "toggled" >>"$log"
        ;;
    esac
    sleep 0.$((RANDOM % 5))
    if [ -z "$base" ] && [ "$SECONDS" -ge "$warmup" ]; then base=$(rss); fi
done
final=$(rss)
"$vesko" quit || true
for _ in $(seq 1 100); do kill -0 "$pid" 2>/dev/null || break; sleep 0.1; done

missing=0
while read -r how text; do
    [ "$how" = typed ] || [ "$how" = added ] || continue
    grep -qF "\"$text\"" "$library" || { echo "soak: missing note: $text ($how)"; missing=$((missing + 1)); }
done <"$log"
python3 -c 'import json, sys; json.load(open(sys.argv[1]))' "$library" || { echo "soak: the library is not valid JSON"; exit 1; }
actions=$(wc -l <"$log")
notes=$(grep -cE '^(typed|added) ' "$log" || true)
unfocused=$(grep -c '^unfocused ' "$log" || true)
echo "soak: $minutes min, $actions actions, $notes notes sent, $missing missing, $unfocused not typed (no focus); VmRSS ${base} kB after warm-up, ${final} kB at the end"
[ "$missing" -eq 0 ] || exit 1
# Growth is judged over sessions of ten minutes or more: a shorter one (the
# test suite's, also under AddressSanitizer, whose quarantine holds freed
# memory) has no settled baseline to compare with.
if [ "$minutes" -lt 10 ]; then
    echo "soak: memory not judged over a session shorter than 10 minutes"
elif [ -n "$base" ] && [ "$final" -ge $((base * 110 / 100)) ]; then
    echo "soak: resident memory grew by 10 % or more"
    exit 1
fi
