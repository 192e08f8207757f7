#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Installs every Debian package that building, running, testing, benchmarking
# and fuzzing Vesko need. Safe to run again: packages already present are kept.
set -euo pipefail

packages=(
    # toolchain
    build-essential cmake ninja-build pkg-config git
    clang libclang-rt-14-dev clang-format
    # libraries
    qt6-base-dev qt6-base-dev-tools libqt6sql6-sqlite
    # the program's own symbol icons are SVG drawings, rendered by Qt SVG
    qt6-svg-dev
    libsqlite3-dev libsimdjson-dev libbenchmark-dev
    libxcb1-dev libxcb-xinput-dev libxcb-xtest0-dev libxcb-res0-dev libxcb-xkb-dev
    libxkbcommon-dev libxkbcommon-x11-dev
    # spell checking in the text fields, and a dictionary for its tests
    libenchant-2-dev hunspell-en-us
    # a real X session for the platform and interface tests
    xvfb xauth openbox x11-utils xdotool xclip xterm
    # setxkbmap: the tests switch the keyboard layout (key names, the synthetic copy)
    x11-xkb-utils
    # a private session bus (the file manager's D-Bus interface); a system tray;
    # the panel and the Settings window read over AT-SPI as a screen reader does
    dbus dbus-bin dbus-daemon trayer at-spi2-core python3-pyatspi gir1.2-atspi-2.0
    # the global-shortcuts portal's frontend, run by the tests against a
    # backend of their own; its -dev package carries the interface files
    xdg-desktop-portal xdg-desktop-portal-dev
    # capture on Wayland: the client library, the protocol files and Qt's
    # Wayland platform with its private headers (Qt's own wl_display)
    libwayland-dev wayland-protocols qt6-wayland qt6-wayland-dev qt6-base-private-dev
    # a real headless Wayland compositor for the capture tests, with a
    # terminal as the front window, a virtual keyboard and the selections
    sway foot wtype wl-clipboard
    # GNOME's compositor, run headless by the capture tests: no data control,
    # the primary selection only for the client with the focus
    mutter
    # a GTK application whose frame the accessibility bus names as the one in front
    gir1.2-gtk-3.0
    # desktop-file-validate checks the desktop entry in the tests
    desktop-file-utils
    # the Model Context Protocol server is tested with the protocol's own client
    # library (tests/mcp, installed from npm by scripts/install-test-node.sh);
    # npm is added below where no Node.js package brought it along
    nodejs
    # the translations: lupdate and lrelease, their CMake functions, Qt's own
    # translations of its dialogs and key names; the locales the tests run
    # Vesko in (de_DE.UTF-8, fr_FR.UTF-8, generated below)
    qt6-l10n-tools qt6-tools-dev qt6-tools-dev-tools qt6-translations-l10n locales
    # runtime plugins
    qt6-qpa-plugins fonts-dejavu-core
    # the file types of attachments
    shared-mime-info
    # appstreamcli checks the software centre's metadata in the tests; the
    # Debian package (scripts/package.sh): debhelper builds it, lintian checks
    # it; librsvg2-bin's rsvg-convert redraws the PNG icons
    # (scripts/render-icons.sh)
    appstream debhelper lintian librsvg2-bin
)

# A Node.js from another source than Debian carries its own npm, which
# Debian's npm package cannot be installed beside.
if ! command -v npm >/dev/null 2>&1; then
    packages+=(npm)
fi

missing=()
for p in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
        missing+=("$p")
    fi
done

SUDO=""
if [ "$(id -u)" -ne 0 ]; then
    SUDO="sudo"
fi
if [ ${#missing[@]} -gt 0 ]; then
    echo "Installing: ${missing[*]}"
    $SUDO apt-get update -qq
    DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi

# The locales the tests run Vesko in.
generate=false
for locale in de_DE fr_FR; do
    if ! locale -a 2>/dev/null | grep -qx "$locale.utf8"; then
        $SUDO sed -i "s/^# *\($locale.UTF-8 UTF-8\)/\1/" /etc/locale.gen
        grep -qx "$locale.UTF-8 UTF-8" /etc/locale.gen \
            || echo "$locale.UTF-8 UTF-8" | $SUDO tee -a /etc/locale.gen >/dev/null
        generate=true
    fi
done
if $generate; then
    $SUDO locale-gen
fi
