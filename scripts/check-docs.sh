#!/usr/bin/env bash
# check-docs.sh: fails when docs/hosting.md does not show examples/minimal_host/main.cpp as it stands, or when a document
# names a file of the repository that is not there.
set -euo pipefail
cd "$(dirname "$0")/.."

sed -n '/^```cpp$/,/^```$/p' docs/hosting.md | sed '1d;$d' | diff - examples/minimal_host/main.cpp

missing=$(
    grep -oHE '`(bench|cleaners|cmake|docs|dregsweep|examples|host|rules|samples|scripts|sysservices|tests|tree|update)/[A-Za-z0-9_./-]+\.(h|cpp|md|xml|sh|cmake|txt|def|rc)`' \
        -- *.md docs/*.md | while IFS=: read -r document file; do
        file=${file//\`/}
        [ -e "$file" ] || echo "$document names $file"
    done
)
[ -z "$missing" ] || { echo "files that are not there:"; echo "$missing"; exit 1; }
