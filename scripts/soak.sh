#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# soak.sh MINUTES [VESKO]: a random keyboard session against the real program
# in a private X server (Xvfb + openbox) and session bus, for MINUTES minutes
# (2 by default). Notes are typed into the panel with xdotool, added with
# "vesko add" and captured from xterm's selection with "vesko capture"; the
# panel is searched, hidden and shown; the last note of the list is deleted,
# or the last two merged, from the keyboard. After the warm-up (the first
# fifth of the session, five minutes at most) a note is removed whenever the
# list holds more notes than it did then, so the library keeps its size and
# memory that grows is the program's, not the notes'. Every note sent and
# removed is logged. At the end: the program still runs, the library file is
# valid JSON that holds exactly the notes the session left (captures aside,
# which may or may not land), and resident memory grew by less than 10 % from
# the end of the warm-up to the end.
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
# The terminal takes the focus as it appears: the session starts after that,
# so that its first keys do not go to the terminal.
for _ in $(seq 1 200); do
    xdotool search --onlyvisible --pid "$xterm_pid" >/dev/null 2>&1 && break
    sleep 0.05
done

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
# The active project's notes as "vesko list" prints them, a text a line.
texts() { "$vesko" list | cut -f4-; }
# Removes the last note of the list (delete), or merges the last two (merge),
# from the keyboard, and checks that exactly that happened.
remove() {
    local how=$1 before after expected attempt _
    before=$(texts)
    if [ "$how" = merge ] && [ "$(printf '%s\n' "$before" | grep -c .)" -lt 2 ]; then how=delete; fi
    [ -n "$before" ] || return 0
    if [ "$how" = delete ]; then
        expected=$(printf '%s\n' "$before" | sed '$d')
    else
        expected=$(printf '%s\n' "$before" | sed '$d' | sed '$d')
        expected+="${expected:+$'\n'}$(printf '%s\n' "$before" | tail -n 2 | paste -sd '\t' | sed 's/\t/\\n\\n/')"
    fi
    # Keys that arrive before the list has the keyboard do nothing; then the
    # list stays as it was and the keys are sent again, up to three times. A
    # list still unchanged, or changed otherwise, is a fault.
    after=$before
    for attempt in 1 2 3; do
        "$vesko" show
        if ! focused; then
            echo "unfocused-$how" >>"$log"
            return 0
        fi
        xdotool key Escape # from the empty composer to the list
        sleep 0.1
        xdotool key ctrl+Down
        sleep 0.1
        if [ "$how" = delete ]; then
            xdotool key ctrl+BackSpace
        else
            xdotool key shift+Up
            sleep 0.1
            xdotool key ctrl+shift+m
        fi
        for _ in $(seq 1 40); do
            after=$(texts)
            [ "$after" != "$before" ] && break 2
            sleep 0.05
        done
    done
    if [ "$after" = "$before" ]; then
        echo "soak: three tries to $how from the keyboard changed nothing"
        exit 1
    fi
    if [ "$after" != "$expected" ]; then
        echo "soak: the $how of the last notes left another list"
        diff <(printf '%s\n' "$expected") <(printf '%s\n' "$after") || true
        exit 1
    fi
    if [ "$how" = delete ]; then
        echo "deleted $(printf '%s\n' "$before" | tail -n 1)" >>"$log"
    else
        echo "merged $(printf '%s\n' "$before" | tail -n 2 | paste -sd '\t')" >>"$log"
    fi
}
word() {
    local letters=abcdefghijklmnopqrstuvwxyz w= i
    for ((i = 0; i < 3 + RANDOM % 8; i++)); do w+=${letters:RANDOM % 26:1}; done
    printf '%s' "$w"
}

end=$((SECONDS + minutes * 60))
warmup=$((SECONDS + (minutes * 60 / 5 < 300 ? minutes * 60 / 5 : 300)))
base=
kept=
n=0
while [ "$SECONDS" -lt "$end" ]; do
    kill -0 "$pid" || { echo "soak: vesko ended during the session"; exit 1; }
    n=$((n + 1))
    text="soak $n $(word) $(word)"
    action=$((RANDOM % 8))
    # After the warm-up the library keeps the size it had then.
    if [ -n "$kept" ] && [ "$(texts | wc -l)" -gt "$kept" ]; then
        action=$((6 + RANDOM % 2))
    fi
    case $action in
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
    6) remove delete ;;
    7) remove merge ;;
    esac
    sleep 0.$((RANDOM % 5))
    if [ -z "$base" ] && [ "$SECONDS" -ge "$warmup" ]; then
        base=$(rss)
        kept=$(texts | wc -l)
    fi
done
final=$(rss)
left=$(texts | wc -l)
"$vesko" quit || true
for _ in $(seq 1 100); do kill -0 "$pid" 2>/dev/null || break; sleep 0.1; done

# The library must hold what the log says the session left: every note typed
# or added and not removed, each merge's text, and nothing else but captures.
python3 - "$library" "$log" <<'EOF' || exit 1
import collections, json, sys
try:
    library = json.load(open(sys.argv[1]))
except ValueError as error:
    print(f"soak: the library is not valid JSON: {error}")
    sys.exit(1)
held = collections.Counter(note["text"] for project in library["projects"]
                           for section in project["sections"] for note in section["notes"])
expected, captures = collections.Counter(), collections.Counter()
def take(text):
    for pool in (expected, captures):
        if pool[text] > 0:
            pool[text] -= 1
            return
    print(f"soak: the session removed a note it never sent: {text}")
    sys.exit(1)
for line in open(sys.argv[2]):
    how, _, rest = line.rstrip("\n").partition(" ")
    if how in ("typed", "added"):
        expected[rest] += 1
    elif how == "captured-maybe":
        captures[rest] += 1
    elif how == "deleted":
        take(rest.replace("\\n", "\n"))
    elif how == "merged":
        first, last = (t.replace("\\n", "\n") for t in rest.split("\t"))
        take(first)
        take(last)
        expected[first + "\n\n" + last] += 1
missing = expected - held
extra = held - expected - captures
for text in missing.elements():
    print(f"soak: missing note: {text!r}")
for text in extra.elements():
    print(f"soak: note the session never left: {text!r}")
sys.exit(1 if missing or extra else 0)
EOF
actions=$(wc -l <"$log")
notes=$(grep -cE '^(typed|added) ' "$log" || true)
removed=$(grep -cE '^(deleted|merged) ' "$log" || true)
unfocused=$(grep -c '^unfocused ' "$log" || true)
unfocusedRemovals=$(grep -c '^unfocused-' "$log" || true)
echo "soak: $minutes min, $actions actions, $notes notes sent, $removed deleted or merged ($unfocusedRemovals tries found the panel without the focus), none missing, $unfocused not typed (no focus); ${kept:-?} notes in the list after warm-up, $left at the end; VmRSS ${base} kB after warm-up, ${final} kB at the end"
# Growth is judged over sessions of ten minutes or more: a shorter one (the
# test suite's, also under AddressSanitizer, whose quarantine holds freed
# memory) has no settled baseline to compare with.
if [ "$minutes" -lt 10 ]; then
    echo "soak: memory not judged over a session shorter than 10 minutes"
elif [ -n "$base" ] && [ "$final" -ge $((base * 110 / 100)) ]; then
    echo "soak: resident memory grew by 10 % or more"
    exit 1
fi
