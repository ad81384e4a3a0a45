#!/usr/bin/env bash
# check-includes.sh: fails when an include runs upwards. Interfaces (i*.h) and the per-level templates belong to the
# bottom layer, whatever folder they live in. Each room of host/ may include more of the engine where that stands.
set -euo pipefail
cd "$(dirname "$0")/.."

bottom='^(rules/(ieuobject|garbagevolume|igarbageinfo)\.h'
bottom+='|tree/(iappcatagory|iappgarbageinfo|igarbagecatagory|itextselector|inforecords|ownedtext)\.h'
bottom+='|tree/(gather|volume|loadresid|walkchildren|residtext)[a-z]*\.h'
bottom+='|dregsweep/(idregsweep|idregsweepcallback)\.h|update/(iinternetfileproc|iinternetdatasink)\.h)$'
read_as_the_engine_does='^(rules/(containment|rootkeyname|ruleelement)|cleaners/emptyprocname)\.h$'

check() {  # check FOLDER ALLOWED-FOLDERS...: FOLDER may include itself, the allowed folders and the bottom layer
    local folder=$1 allowed file target
    shift
    allowed="^($(IFS='|'; echo "$folder${*:+|$*}"))/"
    git grep -HoE '^#include "[^"]+"' -- "$folder/*.h" "$folder/*.cpp" | while IFS=: read -r file target; do
        target=${target#'#include "'}
        target=${target%'"'}
        [[ $target =~ $allowed || $target =~ $bottom ]] || echo "$file includes $target"
    done
}

upward=$(
    check sysservices
    check rules sysservices cleaners
    check cleaners sysservices
    check update sysservices
    check tree sysservices rules cleaners
    check dregsweep sysservices rules tree cleaners update
    check host/common sysservices
    bottom+="|$read_as_the_engine_does" check host/check host/common sysservices
    bottom+='|^update/rulefilelist\.h$' check host/console host/check host/common sysservices
)
[ -z "$upward" ] || { echo "includes that run upwards:"; echo "$upward"; exit 1; }
