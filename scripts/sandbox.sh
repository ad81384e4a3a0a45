#!/usr/bin/env bash
# sandbox.sh COMMAND...: runs COMMAND with a fresh, private Wine prefix and HOME, then removes both. The cleaner
# deletes files for a living, so nothing of it runs anywhere else. Nested use runs COMMAND in the sandbox around it.
#
#   DSW_SANDBOX_DIR   where the template and the sandboxes live (one file system, about 700 MB once)
#   DSW_SANDBOX_KEEP  non-empty: leave the sandbox in place and say where it is
#
# Inside, C: is the prefix and S: is the folder this was started in; there is no drive to /.
set -euo pipefail

if [ -n "${DSW_SANDBOX:-}" ]; then exec "$@"; fi

command -v wine >/dev/null || { echo "sandbox: wine is not installed; run scripts/setup.sh" >&2; exit 1; }

# With a display, shell confirmations would open and wait for ever.
unset DISPLAY WAYLAND_DISPLAY WINEARCH WINESERVER WINELOADER
# Without a UTF-8 locale Wine cannot create files with non-ASCII names.
export LC_ALL=C.UTF-8
export WINEDEBUG=${WINEDEBUG:--all} WINEDLLOVERRIDES="mscoree=;mshtml="

cache=${DSW_SANDBOX_DIR:-${TMPDIR:-/tmp}/dsw-sandbox-$(id -u)}
template=$cache/$(wine --version 2>/dev/null | tr -cd 'A-Za-z0-9._-')

# A prefix takes seconds and 700 MB to make, so it is made once per Wine version: big/ is hard-linked into every
# sandbox, small/ is copied. Symbolic links would not do: Wine's DeleteFileW deletes the target of one.
make_template() {
    local work link
    work=$(mktemp -d "$cache/new.XXXXXX")
    mkdir "$work/home"
    (
        export HOME=$work/home XDG_DATA_HOME=$work/home/.local/share WINEPREFIX=$work/small
        wine wineboot -i </dev/null >/dev/null 2>&1
        wineserver -k || true
        wineserver -w
    )
    rm -f "$work/small/wineserver"  # names a socket folder; each sandbox makes its own
    # Desktop, Documents and others are links into HOME: make them plain folders.
    find "$work/small/drive_c/users" -type l | while read -r link; do rm "$link"; mkdir "$link"; done
    mkdir "$work/big"
    cp -al "$work/small/drive_c" "$work/big/drive_c"
    find "$work/big" \( -type l -o -type f \( ! -size +16k -o -name '*.ini' \) \) -delete
    find "$work/small/drive_c" -type f -size +16k ! -name '*.ini' -delete
    rm -rf "${work:?}/home"
    mv "$work" "$template"
}

remove_sandbox() {
    # The server first: its socket is keyed by the prefix' inode.
    wineserver -k 2>/dev/null || true
    wineserver -w 2>/dev/null || true
    [ ! -s "$WINEPREFIX/wineserver" ] || rm -rf "/tmp/$(cat "$WINEPREFIX/wineserver")"
    if [ -n "${DSW_SANDBOX_KEEP:-}" ]; then
        echo "sandbox kept: $box" >&2
        return
    fi
    find "$box" -type d ! -perm -700 -exec chmod u+rwx {} \; 2>/dev/null || true
    rm -rf "$box"
}

mkdir -p "$cache"
( flock 9; [ -d "$template" ] || make_template ) 9>"$cache/lock"

box=$(mktemp -d "$cache/box.XXXXXX")
export DSW_SANDBOX=$box WINEPREFIX=$box/prefix HOME=$box/home
# Wine's recycle bin is $XDG_DATA_HOME/Trash, and it takes only files of its own file system.
export XDG_DATA_HOME=$WINEPREFIX/drive_c/xdg XDG_CONFIG_HOME=$HOME/.config XDG_CACHE_HOME=$HOME/.cache
mkdir -p "$HOME"
cp -al "$template/big" "$WINEPREFIX"
cp -a "$template/small/." "$WINEPREFIX/"
mkdir -p "$XDG_DATA_HOME"
rm -f "$WINEPREFIX/dosdevices/z:"
ln -s "$PWD" "$WINEPREFIX/dosdevices/s:"

trap remove_sandbox EXIT
trap 'exit 130' INT
trap 'exit 143' TERM
# Started here, away from COMMAND's output, the server and Wine's system processes do not hold its pipes open.
wineserver -p600
wine cmd /c rem </dev/null >/dev/null 2>&1

status=0
"$@" || status=$?
exit "$status"
