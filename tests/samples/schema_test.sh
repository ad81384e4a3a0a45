#!/usr/bin/env bash
# schema_test.sh: the schemas accept every sample and reject every file of broken/, each of which breaks one thing; the
# keys of the sample rules and the entries of each of their text files are the same.
set -euo pipefail
here=$(dirname "$(realpath "$0")")
root=$here/../..
cd "$here"
failures=0

fail() {
    echo "$*"
    failures=$((failures + 1))
}

validates() { xmllint --noout --nonet --schema "$root/docs/$1.xsd" "$2" >/dev/null 2>&1; }

keys() { xmllint --xpath "$1" "${@:2}" | sed -E 's/.*="([^"]*)".*/\1/' | sort -u; }

for rules in "$root"/samples/*.xml "$root"/samples/demo/rules.xml; do
    validates rule-file "$rules" || fail "rejected: $rules"
done
for text in "$root"/samples/text/*/ResIDText.xml "$root"/samples/demo/ResIDText.xml; do
    validates text-file "$text" || fail "rejected: $text"
done
for broken in broken/rules-*.xml; do
    ! validates rule-file "$broken" || fail "accepted: $broken"
done
for broken in broken/text-*.xml; do
    ! validates text-file "$broken" || fail "accepted: $broken"
done

# The texts serve both rule files, so the upgrade's keys must be among the others.
used=$(keys '//@ResID' "$root/samples/rules.xml")
for text in "$root"/samples/text/*/ResIDText.xml; do
    [ "$(xmllint --xpath '//Dregsweep/*[normalize-space()]' "$text" | sed -E 's/^<([^>]*)>.*/\1/' | sort)" = "$used" ] ||
        fail "its entries are not the keys of rules.xml: $text"
done
[ -z "$(comm -13 <(echo "$used") <(keys '//@ResID' "$root/samples/SysUpgradeConfig.xml"))" ] ||
    fail "SysUpgradeConfig.xml has keys that rules.xml has not"

[ "$failures" = 0 ]
