#!/usr/bin/env bash
# terminal_test.sh DSW: runs dsw.exe on a pseudo-terminal. Progress is shown there and never falls; Ctrl-C at the
# question ends it as stopped by the user, with nothing deleted, and so does a second one in a scan without end.
set -euo pipefail

dsw=$1
work=$(mktemp -d "$DSW_SANDBOX/terminal.XXXXXX")
junk=$WINEPREFIX/drive_c/$(basename "$work")
DSW_TEST="C:\\$(basename "$work")"
export DSW_TEST TERM=xterm
mkdir "$junk"
echo junk >"$junk/file"
cat >"$junk/rules.xml" <<'XML'
<R><AppCategoryInfo Name="One" SelState="2"><AppInfo Name="App">
  <GarbageCatagory Name="A"><GarbageInfo FolderEnvDir="DSW_TEST" Path="file"/></GarbageCatagory>
  <GarbageCatagory Name="B"><GarbageInfo FolderEnvDir="DSW_TEST" Path="none"/></GarbageCatagory>
  <GarbageCatagory Name="C"><GarbageInfo FolderEnvDir="DSW_TEST" Path="none"/></GarbageCatagory>
  <GarbageCatagory Name="Endless" SelState="0">
    <GarbageInfo FolderEnvDir="DSW_TEST" Path="loop" IsFolder="1" Iteration="1" Filter="*.none"/>
  </GarbageCatagory>
</AppInfo></AppCategoryInfo></R>
XML
# Patterned rules follow links.
mkdir "$junk/loop"
ln -s . "$junk/loop/a"
ln -s . "$junk/loop/b"

# ends_by_keys STATUS SHOWN KEYS ARGUMENT...: dsw ends with that status when KEYS are pressed as SHOWN is on the screen.
ends_by_keys() {
    local shown=$2 keys=$3 key terminal status=0
    rm -f "$work"/*
    mkfifo "$work/keys"
    script -qefc "wine '$dsw' ${*:4} --rules '$DSW_TEST\\rules.xml'" "$work/screen" <"$work/keys" >/dev/null &
    terminal=$!
    exec 3>"$work/keys"
    until grep -q "$shown" "$work/screen" 2>/dev/null; do
        kill -0 "$terminal" || break
        sleep 0.05
    done
    for key in $keys; do
        printf %b "$key" >&3
        sleep 0.5
    done
    wait "$terminal" || status=$?
    cat -v "$work/screen"
    [ "$status" = "$1" ] || { echo "status $status"; exit 1; }
}

ends_by_keys 3 y/N '\003' clean
percents=$(grep -aoE '[0-9]+%' "$work/screen" | tr -d %)
echo "progress" $percents
[ -f "$junk/file" ]
for text in ' One' 'App: ' '1 item, 5 bytes  App' '\[###*\.\.*\]'; do grep -aq "$text" "$work/screen"; done
grep -a 'dsw: nothing was deleted' "$work/screen" | grep -qv y/N
sort -nc <<<"$percents"
[ "$(sort -u <<<"$percents" | wc -l)" -ge 3 ]

ends_by_keys 3 '0%' '\003 \003' gather --only '*/Endless'
! grep -a 'dsw: stopped' "$work/screen"

ends_by_keys 0 y/N 'y\r' clean --items
[ ! -f "$junk/file" ] && [ -f "$junk/rules.xml" ]
