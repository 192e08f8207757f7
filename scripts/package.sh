#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# package.sh OUT_DIR: builds Vesko's Debian packages (vesko and vesko-dbgsym)
# from debian/ into OUT_DIR, on Debian 12, installing what the build needs
# (with sudo when not run as root), then checks them: lintian with no error
# and no warning, appstreamcli and desktop-file-validate on the installed
# metadata, the package's files against the list below, the same files from
# `cmake --install`, and `vesko --version` from the package.
#
# The version is CMake's project version; the script stops before building
# when debian/changelog, the metadata's newest release or the manual page
# name another. VESKO_BUILD_LOCK=FILE holds FILE locked (flock) while the
# compiler runs, for machines where builds take turns.
set -euo pipefail
cd "$(dirname "$0")/.."
source_dir=$PWD

if [ $# -ne 1 ]; then
    echo "usage: scripts/package.sh OUT_DIR" >&2
    exit 2
fi
mkdir -p "$1"
out_dir=$(cd "$1" && pwd)
started=$SECONDS

fail() {
    echo "package.sh: $*" >&2
    exit 1
}

# --- One version -----------------------------------------------------------
version=$(sed -n 's/^project(Vesko VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
[ -n "$version" ] || fail "no project(Vesko VERSION ...) in CMakeLists.txt"
changelog_version=$(sed -n '1s/^vesko (\([^)]*\)).*/\1/p' debian/changelog)
release_version=$(sed -n 's/.*<release version="\([^"]*\)".*/\1/p' data/com.vesko.Vesko.metainfo.xml | head -n1)
manual_version=$(sed -n 's/^\.TH VESKO 1 [^ ]* "Vesko \([^"]*\)".*/\1/p' data/vesko.1)
for pair in "debian/changelog:$changelog_version" \
        "data/com.vesko.Vesko.metainfo.xml:$release_version" "data/vesko.1:$manual_version"; do
    [ "${pair#*:}" = "$version" ] \
        || fail "${pair%%:*} names version '${pair#*:}', CMakeLists.txt $version"
done

# --- What the build and the checks need ------------------------------------
SUDO=""
if [ "$(id -u)" -ne 0 ]; then
    SUDO="sudo"
fi
tools=(dpkg-dev debhelper lintian appstream desktop-file-utils cmake)
missing=()
for p in "${tools[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ] || ! dpkg-checkbuilddeps >/dev/null 2>&1; then
    $SUDO apt-get update -qq
    DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends \
        "${tools[@]}"
    # The Build-Depends of debian/control.
    DEBIAN_FRONTEND=noninteractive $SUDO apt-get build-dep -y -qq --no-install-recommends "$source_dir"
fi

# --- Build, from a copy of the tree's files --------------------------------
# The copy lives in build-package/ (ignored by git), at the same place each
# time so that a compiler cache finds its earlier work.
work=$source_dir/build-package
rm -rf "$work"
copy=$work/vesko-$version
mkdir -p "$copy"
if git rev-parse --is-inside-work-tree >/dev/null 2>&1; then
    git ls-files -z --cached --others --exclude-standard \
        | while IFS= read -r -d '' f; do [ -e "$f" ] && printf '%s\0' "$f"; done \
        | tar --null -T - -cf - | tar -xf - -C "$copy"
else
    tar --exclude='./build*' --exclude=./.cache --exclude=./node_modules -cf - . | tar -xf - -C "$copy"
fi

if command -v ccache >/dev/null 2>&1; then
    export VESKO_COMPILER_LAUNCHER=ccache
fi
build=(dpkg-buildpackage -b -us -uc "-j$(nproc)")
(
    cd "$copy"
    if [ -n "${VESKO_BUILD_LOCK:-}" ]; then
        flock "$VESKO_BUILD_LOCK" "${build[@]}"
    else
        "${build[@]}"
    fi
)
built_at=$SECONDS
arch=$(dpkg-architecture -qDEB_HOST_ARCH)
changes=vesko_${version}_${arch}.changes
deb=vesko_${version}_${arch}.deb
dbgsym=vesko-dbgsym_${version}_${arch}.deb
for f in "$changes" "$deb" "$dbgsym" "vesko_${version}_${arch}.buildinfo"; do
    [ -f "$work/$f" ] || fail "the build made no $f"
    mv -f "$work/$f" "$out_dir/"
done

# --- Checks ----------------------------------------------------------------
echo "== lintian"
lintian --fail-on error,warning --display-info "$out_dir/$changes" \
    || fail "lintian reports errors or warnings"

root=$work/root
dpkg-deb -x "$out_dir/$deb" "$root"

echo "== appstreamcli"
metainfo_report=$(appstreamcli validate --no-net --no-color "$root/usr/share/metainfo/com.vesko.Vesko.metainfo.xml") \
    || { echo "$metainfo_report"; fail "appstreamcli rejects the metadata"; }
echo "$metainfo_report"
if grep -q '^[EWI]: ' <<<"$metainfo_report"; then
    fail "appstreamcli has remarks on the metadata"
fi

echo "== desktop-file-validate"
desktop_report=$(desktop-file-validate "$root/usr/share/applications/com.vesko.Vesko.desktop" 2>&1) || true
[ -z "$desktop_report" ] || { echo "$desktop_report"; fail "desktop-file-validate objects"; }

echo "== contents"
expected=(
    usr/bin/vesko
    usr/share/applications/com.vesko.Vesko.desktop
    usr/share/bash-completion/completions/vesko
    usr/share/dbus-1/services/com.vesko.Vesko.service
    usr/share/icons/hicolor/scalable/apps/com.vesko.Vesko.svg
    usr/share/man/man1/vesko.1.gz
    usr/share/metainfo/com.vesko.Vesko.metainfo.xml
)
for size in 16 22 24 32 48 64 128 256; do
    expected+=("usr/share/icons/hicolor/${size}x${size}/apps/com.vesko.Vesko.png")
done
# One compiled catalogue for each translation in translations/.
for ts in translations/vesko_*.ts; do
    [ -e "$ts" ] || continue
    ts=${ts##*/}
    expected+=("usr/share/vesko/translations/${ts%.ts}.qm")
done
installed_list() { # the files and links under $1, relative, sorted
    (cd "$1" && find . \( -type f -o -type l \) -printf '%P\n' | LC_ALL=C sort)
}
package_list=$(installed_list "$root")
expected_list=$(printf '%s\n' "${expected[@]}" usr/share/doc/vesko/changelog.gz \
    usr/share/doc/vesko/copyright | LC_ALL=C sort)
if [ "$package_list" != "$expected_list" ]; then
    diff <(echo "$expected_list") <(echo "$package_list") || true
    fail "the package's files differ from the expected list (< expected, > in the package)"
fi
dbgsym_list=$(dpkg-deb -c "$out_dir/$dbgsym")
grep -Eq '\./usr/lib/debug/\.build-id/[0-9a-f]{2}/[0-9a-f]+\.debug$' <<<"$dbgsym_list" \
    || fail "$dbgsym holds no debugging symbols"

echo "== cmake --install"
prefix=$work/prefix
cmake --install "$copy"/obj-* --prefix "$prefix/usr" >/dev/null
install_list=$(installed_list "$prefix")
if [ "$install_list" != "$(grep -v '^usr/share/doc/' <<<"$package_list")" ]; then
    diff <(grep -v '^usr/share/doc/' <<<"$package_list") <(echo "$install_list") || true
    fail "cmake --install puts other files than the package (< package, > cmake --install)"
fi

echo "== vesko --version"
printed=$("$root/usr/bin/vesko" --version)
[[ "$printed" == *"$version"* ]] || fail "vesko --version prints '$printed', not $version"

echo "package.sh: $deb and $dbgsym in $out_dir pass the checks;" \
    "build $((built_at - started)) s, all $((SECONDS - started)) s"
