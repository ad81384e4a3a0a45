#!/usr/bin/env bash
# setup.sh [PACKAGE...]: installs what is missing to build and test, and the packages named, and unpacks TinyXML into
# build/deps/. Safe to run again.
set -euo pipefail
cd "$(dirname "$0")/.."

packages=(wine wine64 g++-mingw-w64-x86-64-posix cmake ninja-build ccache googletest dpkg-dev patch libcli11-dev
    nlohmann-json3-dev bsdutils libxml2-utils clang-format shellcheck "$@")
deps=build/deps

as_root() {
    if [ "$(id -u)" = 0 ]; then "$@"; else sudo "$@"; fi
}

install_packages() {
    local missing=() package
    for package in "${packages[@]}"; do
        dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    echo "installing: ${missing[*]}"
    as_root apt-get update -q
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends "${missing[@]}"
}

# download_tinyxml DEST: downloads TinyXML's source package with the machine's own package entries turned into source
# entries in the private folder $private, so that the machine's package lists stay untouched.
download_tinyxml() {
    local dest=$1 file
    mkdir -p "$private/parts" "$private/lists/partial" "$private/cache/archives/partial"
    for file in /etc/apt/sources.list /etc/apt/sources.list.d/*.list; do
        [ -f "$file" ] || continue
        sed -nE 's/^[[:space:]]*deb([[:space:]])/deb-src\1/p' "$file" >"$private/parts/$(basename "$file" .list)-src.list"
    done
    for file in /etc/apt/sources.list.d/*.sources; do
        [ -f "$file" ] || continue
        sed -E 's/^([Tt]ypes:).*/\1 deb-src/' "$file" >"$private/parts/$(basename "$file" .sources)-src.sources"
    done
    local options=(-o Dir::Etc::SourceList=/dev/null -o "Dir::Etc::SourceParts=$private/parts"
        -o "Dir::State::Lists=$private/lists" -o "Dir::Cache=$private/cache" -o APT::Get::List-Cleanup=0
        -o APT::Sandbox::User=root -o Acquire::Languages=none
        -o Acquire::IndexTargets::deb-src::Contents-deb::DefaultEnabled=false)
    apt-get -q "${options[@]}" update
    (cd "$dest" && apt-get -q "${options[@]}" source --download-only tinyxml)
}

# unpack_tinyxml WORK: unpacks the downloaded package into WORK/src.
unpack_tinyxml() {
    local work=$1 patch
    dpkg-source --skip-patches -x "$work"/tinyxml_*.dsc "$work/src"
    # All of Debian's patches, the security fixes among them, but the one that forces its STL mode: without it the DLL
    # is spared the iostreams.
    for patch in $(grep -v '^enforce-use-stl' "$work/src/debian/patches/series"); do
        patch -d "$work/src" -p1 -s <"$work/src/debian/patches/$patch"
    done
}

fetch_tinyxml() {
    [ ! -f "$deps/tinyxml/tinyxml.h" ] || return 0
    mkdir -p "$deps"
    work=$(mktemp -d "$deps/tinyxml.XXXXXX")
    private=$(mktemp -d)
    trap 'rm -rf "$work" "$private"' EXIT
    # A shell of its own, not a condition: inside one, errexit would not end at the first command that fails.
    set +e
    (set -e; download_tinyxml "$work"; unpack_tinyxml "$work") >"$deps/tinyxml.log" 2>&1
    local status=$?
    set -e
    if [ $status -ne 0 ]; then
        cat "$deps/tinyxml.log" >&2
        echo "setup: cannot fetch TinyXML's source package" >&2
        return 1
    fi
    mv "$work/src" "$deps/tinyxml"
}

install_packages
fetch_tinyxml
