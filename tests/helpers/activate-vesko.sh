#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# What the test session bus runs to start com.vesko.Vesko: the program named
# in VESKO_TEST_ACTIVATION, which a test sets in the bus's activation
# environment together with its private folders. Without it, nothing starts,
# so that the bus never runs Vesko on the user's own files.
[ -n "${VESKO_TEST_ACTIVATION:-}" ] || exit 1
exec "$VESKO_TEST_ACTIVATION" --background
