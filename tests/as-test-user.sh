#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# as-test-user.sh COMMAND...: runs COMMAND as the unprivileged user
# vesko-test (created when missing) when called as root, else as it is.
# Compositors refuse to run as root; a clean environment is kept but for
# what the test run itself sets.
set -euo pipefail
if [ "$(id -u)" -ne 0 ]; then
    exec "$@"
fi
user=vesko-test
if ! id "$user" >/dev/null 2>&1; then
    useradd --system --user-group --home-dir /nonexistent --shell /usr/sbin/nologin "$user"
fi
keep=(PATH="$PATH" LANG="${LANG:-C.UTF-8}" HOME=/tmp)
for name in ASAN_OPTIONS UBSAN_OPTIONS LSAN_OPTIONS QT_LOGGING_RULES TMPDIR; do
    [ -n "${!name:-}" ] && keep+=("$name=${!name}")
done
exec setpriv --reuid="$user" --regid="$user" --init-groups --reset-env env "${keep[@]}" "$@"
