#!/usr/bin/env bash
# demo.sh: set-up, build, and one real job in a throw-away Windows prefix. Seeds junk and its neighbours, lets dsw.exe
# list, gather and clean, then compares what is left with what must be left. The last line is "demo: passed", or the
# exit status is not 0 and the differences stand above.
set -euo pipefail
cd "$(dirname "$0")/.."

bin=build/release/bin
dsw=(wine "$bin/dsw.exe")
rules=(--rules samples/demo/rules.xml --text samples/demo/ResIDText.xml)
failures=0

headline() { printf '\n== %s\n' "$*"; }

fail() {
    echo "DIFFERENCE: $*"
    failures=$((failures + 1))
}

# same WHAT EXPECTED ACTUAL: two files of sorted lines.
same() {
    if diff "$2" "$3" >"$work/diff"; then
        echo "as expected: $1 ($(wc -l <"$2") lines)"
    else
        fail "$1 (< expected, > found)"
        sed 's/^/    /' "$work/diff"
    fi
}

# The Unix folder of a Windows environment variable's folder.
folder_of() {
    local path
    path=$(wine cmd /c "echo %$1%" </dev/null | tr -d '\r')
    path=${path#C:}
    echo "$drive${path//\\//}"
}

# junk|stay|keep FILE BYTES: seeds a file that must vanish, that is found but cannot be deleted, or that no rule names.
seed() {
    mkdir -p "$(dirname "$2")"
    printf '%*s' "$3" '' >"$2"
    echo "${2#"$drive"/}" >>"$work/$1"
    if [ "$1" != keep ]; then echo "$3" >>"$work/$1.sizes"; fi
}

seed_temp() {
    local i j k folder
    for i in $(seq 1 10); do
        for j in a b c; do
            for k in $(seq 1 12); do seed junk "$temp/Dregs/session $i/$j/~$k.tmp" $((i * 100 + k)); done
        done
    done
    seed junk "$temp/Dregs/Übergröße – 临时文件 – временный.tmp" 4096
    seed junk "$temp/Dregs/Кэш/日本語/ünïcödé.dat" 123456
    seed junk "$temp/Dregs/$(printf 'long%.0s' $(seq 1 50)).tmp" 777
    folder=$temp/Dregs/deep
    for i in $(seq 1 12); do folder="$folder/a folder with a rather long name $i"; done
    seed junk "$folder/at the end of a path of more than 260 characters.tmp" 260
    seed junk "$temp/Dregs/empty.tmp" 0
    seed keep "$temp/Dregs/notes.keep" 10
    seed keep "$temp/Dregs/Open project/draft.tmp" 20
    seed keep "$temp/Dregs/Open project/deeper/draft.tmp" 20
    seed keep "$temp/Dregs2/neighbour.tmp" 30
    seed stay "$temp/Dregs/held open.tmp" 3000
    seed stay "$temp/Dregs/read only.tmp" 500
    chmod a-w "$temp/Dregs/read only.tmp"
}

seed_programs() {
    local i profile
    for i in $(seq 1 25); do seed junk "$local_data/DemoTool/Logs/2024/day $i.log" $((i * 1000)); done
    seed keep "$local_data/DemoTool/Logs/current.log" 40
    seed keep "$local_data/DemoTool/Logs/readme.txt" 50
    seed junk "$local_data/DemoEditor/crash.dmp" 2000000
    seed keep "$local_data/DemoEditor/settings.xml" 60
    for profile in Default 'Profil Zwölf' 客户; do
        for i in 1 2 3 4 5; do seed junk "$roaming/DemoEditor/Profiles/$profile/Cache/data/block $i" 65536; done
        seed keep "$roaming/DemoEditor/Profiles/$profile/bookmarks.json" 70
    done
    seed keep "$local_data/OldSuite/absent and not selected.dat" 80
    seed keep "$profile_root/Downloads/not selected.iso" 90
}

seed_registry() {
    cat >"$drive/seed.reg" <<'REG'
Windows Registry Editor Version 5.00

[HKEY_CURRENT_USER\Software\DemoEditor]
"License"="stays"

[HKEY_CURRENT_USER\Software\DemoEditor\Recent files]
@="C:\\secret.txt"
"File1"="C:\\one.txt"
"File2"="C:\\two.txt"

[HKEY_CURRENT_USER\Software\DemoEditor\Recent files\Pinned]
"File1"="stays"

[HKEY_CURRENT_USER\Software\DemoEditor\Session]
"Open"=dword:00000001

[HKEY_CURRENT_USER\Software\DemoEditor\Windows\Main\Search]
"LastText"="needle"
"LASTFOLDER"="C:\\"
"MatchCase"=dword:00000001

[HKEY_CURRENT_USER\Software\DemoEditor\Windows\Tools]
"LastText"="stays"
REG
    wine reg import 'C:\seed.reg' </dev/null >/dev/null
}

registry_values() { wine reg query 'HKCU\Software\DemoEditor' /s </dev/null | tr -d '\r' | grep . | sort; }

expected_registry() {
    sort <<'REG'
HKEY_CURRENT_USER\Software\DemoEditor
    License    REG_SZ    stays
HKEY_CURRENT_USER\Software\DemoEditor\Recent files
HKEY_CURRENT_USER\Software\DemoEditor\Recent files\Pinned
    File1    REG_SZ    stays
HKEY_CURRENT_USER\Software\DemoEditor\Windows
HKEY_CURRENT_USER\Software\DemoEditor\Windows\Main
HKEY_CURRENT_USER\Software\DemoEditor\Windows\Main\Search
    MatchCase    REG_DWORD    0x1
HKEY_CURRENT_USER\Software\DemoEditor\Windows\Tools
    LastText    REG_SZ    stays
REG
}

# Holds the file open until the descriptor ${HOLDER[1]} is closed.
hold_open() {
    coproc HOLDER { wine "$bin/holdfile.exe" "$1"; }
    holder=$HOLDER_PID
    read -r answer <&"${HOLDER[0]}" || answer=
    [ "${answer%$'\r'}" = held ] || fail "cannot hold a file open"
}

run_dsw() {
    local status=0
    headline "dsw $*"
    "${dsw[@]}" "$@" "${rules[@]}" </dev/null >"$work/output" || status=$?
    # Single items are for the comparison; the screen gets the summary.
    grep -vE '^    (found|deleted) ' "$work/output" || true
    [ "$status" = 0 ] || fail "dsw $1 returned $status"
}

# The Windows paths of the items that the last dsw named with the given words, as paths below the drive.
named_items() { sed -nE "s/^    ($1)  C:(.*)  [0-9]+\$/\2/p" "$work/output" | tr '\\' / | sed 's,^/,,' | sort; }

snapshot() {
    find "$drive" -type f -printf '%P\n' | sort >"$work/files.$1"
    find "$drive" -type d -printf '%P\n' | sort >"$work/folders.$1"
    while read -r file; do sha256sum <"$drive/$file" || true; done < <(sort "$work/keep" "$work/stay") >"$work/sums.$1"
}

check_gathered() {
    headline "compared with what was seeded"
    named_items found >"$work/found"
    sort "$work/junk" "$work/stay" >"$work/expected"
    same "items found" "$work/expected" "$work/found"
}

check_cleaned() {
    local bytes
    headline "compared with what must be left"
    named_items deleted >"$work/deleted"
    sort "$work/junk" >"$work/expected"
    same "items reported as deleted" "$work/expected" "$work/deleted"
    comm -23 "$work/files.before" "$work/files.after" >"$work/vanished"
    same "files that vanished, on the whole drive" "$work/expected" "$work/vanished"
    named_items 'in use|refused' >"$work/refused"
    sort "$work/stay" >"$work/expected"
    same "items reported as not deleted" "$work/expected" "$work/refused"
    same "folders, on the whole drive" "$work/folders.before" "$work/folders.after"
    same "contents of the files that stay" "$work/sums.before" "$work/sums.after"
    expected_registry >"$work/expected"
    registry_values >"$work/registry"
    same "registry" "$work/expected" "$work/registry"
    bytes=$(awk '{ sum += $1 } END { print sum }' "$work/junk.sizes")
    if tr -d , <"$work/output" | grep -q "^Freed .*($bytes bytes) in $(wc -l <"$work/junk") items"; then
        echo "as expected: $bytes bytes freed"
    else
        fail "dsw clean must tell of $bytes bytes freed"
    fi
}

run_job() {
    work=$DSW_SANDBOX/demo
    drive=$WINEPREFIX/drive_c
    mkdir -p "$work"
    temp=$(folder_of TEMP) local_data=$(folder_of LOCALAPPDATA)
    roaming=$(folder_of APPDATA) profile_root=$(folder_of USERPROFILE)

    headline "seeding a throw-away prefix"
    seed_temp
    seed_programs
    seed_registry
    echo "$(wc -l <"$work/junk") files of junk, $(wc -l <"$work/stay") that cannot be deleted, $(wc -l <"$work/keep") to keep"
    hold_open "$(winepath -w "$temp/Dregs/held open.tmp" | tr -d '\r')"
    snapshot before

    run_dsw list
    run_dsw gather --items
    check_gathered
    run_dsw clean --yes --items
    snapshot after
    check_cleaned
    held=${HOLDER[1]}
    exec {held}>&-
    wait "$holder" || true

    echo
    if [ "$failures" -gt 0 ]; then
        echo "demo: $failures differences"
        return 1
    fi
    echo "demo: passed"
}

if [ "${1:-}" = --in-sandbox ]; then
    run_job
    exit
fi
scripts/setup.sh
cmake --preset release
cmake --build --preset release --target dsw holdfile
exec scripts/sandbox.sh scripts/demo.sh --in-sandbox
