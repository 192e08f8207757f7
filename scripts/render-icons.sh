#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# render-icons.sh: draws the application icon data/com.vesko.Vesko.svg at the
# sizes launchers ask for, into data/icons/hicolor/SIZExSIZE/apps. The PNGs
# are kept in the tree so that building and packaging need no SVG renderer;
# run this again (it needs rsvg-convert, from librsvg2-bin) whenever the SVG
# changes, and commit the result.
set -euo pipefail
cd "$(dirname "$0")/.."

if ! command -v rsvg-convert >/dev/null 2>&1; then
    echo "render-icons.sh: rsvg-convert is missing (apt-get install librsvg2-bin)" >&2
    exit 1
fi
for size in 16 22 24 32 48 64 128 256; do
    dir=data/icons/hicolor/${size}x${size}/apps
    mkdir -p "$dir"
    rsvg-convert --width "$size" --height "$size" --keep-aspect-ratio \
        --output "$dir/com.vesko.Vesko.png" data/com.vesko.Vesko.svg
done
