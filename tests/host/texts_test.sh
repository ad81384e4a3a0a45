#!/usr/bin/env bash
# texts_test.sh: each id of a text has a number of its own, and a text in the table: one without says nothing.
set -euo pipefail
cd "$(dirname "$(realpath "$0")")/../../host/common"

defines=$(sed -n 's/^#define \(IDS_[A-Z_]*\) \([0-9]*\).*/\2 \1/p' textid.h)
twice=$(cut -d' ' -f1 <<<"$defines" | sort | uniq -d)
[ -z "$twice" ] || { echo "given twice: $twice"; exit 1; }
diff <(cut -d' ' -f2 <<<"$defines" | sort) <(sed -n 's/^    \(IDS_[A-Z_]*\) ".*"$/\1/p' texts.rc | sort)
