#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# check-completion.sh FILE: the bash completion of vesko offers the commands,
# each command's own options, and nothing for an option's value.
set -euo pipefail
source "$1"
complete_words() {
    COMP_WORDS=("$@")
    COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
    COMPREPLY=()
    _vesko
    echo "${COMPREPLY[*]:-}"
}
check() {
    local expected=$1; shift
    local actual
    actual=$(complete_words "$@")
    if [ "$actual" != "$expected" ]; then
        echo "vesko ${*:2}: expected \"$expected\", got \"$actual\"" >&2
        exit 1
    fi
}
check "quick-add quit" vesko qu
check "capture copy-list" vesko c
check "show shift shift-press search" vesko s
check "list" vesko --version li
check "--section --project --help" vesko add milk --
check "--project" vesko list --all --pro
check "" vesko add --section ""
check "--json" vesko search fox --j
check "--help" vesko toggle --
echo "completion: all checks passed"
