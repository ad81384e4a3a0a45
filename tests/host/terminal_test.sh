#!/usr/bin/env bash
# terminal_test.sh DSW: runs dsw.exe on a pseudo-terminal. Progress is shown there and never falls; Ctrl-C at the
# question ends it as stopped by the user, with nothing deleted.
set -euo pipefail

work=$(mktemp -d "$DSW_SANDBOX/terminal.XXXXXX")
junk=$WINEPREFIX/drive_c/$(basename "$work")
export DSW_TEST="C:\\$(basename "$work")" TERM=xterm
mkdir "$junk"
echo junk >"$junk/file"
cat >"$junk/rules.xml" <<'XML'
<R><AppCategoryInfo Name="One" SelState="2"><AppInfo Name="App">
  <GarbageCatagory Name="A"><GarbageInfo FolderEnvDir="DSW_TEST" Path="file"/></GarbageCatagory>
  <GarbageCatagory Name="B"><GarbageInfo FolderEnvDir="DSW_TEST" Path="none"/></GarbageCatagory>
  <GarbageCatagory Name="C"><GarbageInfo FolderEnvDir="DSW_TEST" Path="none"/></GarbageCatagory>
</AppInfo></AppCategoryInfo></R>
XML

mkfifo "$work/keys"
script -qefc "wine '$1' clean --rules '$DSW_TEST\\rules.xml'" "$work/screen" <"$work/keys" >/dev/null &
terminal=$!
exec 3>"$work/keys"
until grep -q 'y/N' "$work/screen" 2>/dev/null; do
    kill -0 "$terminal" || break
    sleep 0.05
done
printf '\003' >&3
status=0
wait "$terminal" || status=$?

percents=$(grep -aoE '[0-9]+%' "$work/screen" | tr -d %)
echo "status $status, progress" $percents
[ "$status" = 3 ]
[ -f "$junk/file" ]
sort -nc <<<"$percents"
[ "$(sort -u <<<"$percents" | wc -l)" -ge 3 ]
