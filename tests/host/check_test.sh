#!/usr/bin/env bash
# check_test.sh DSW: `dsw check` has nothing to say against the samples and fails for each broken file; it knows the
# attributes of the schema, and its codes are all explained.
set -euo pipefail
dsw=(wine "$1" check)
cd "$(dirname "$(realpath "$0")")/../.."
failures=0

fail() {
    echo "$*"
    failures=$((failures + 1))
}

passes() {
    local output
    output=$("${dsw[@]}" "$@") && grep -q '^0 errors, 0 warnings, 0 notes' <<<"$output" || { echo "$output"; false; }
}

for text in samples/text/*/ResIDText.xml; do
    passes samples/rules.xml samples/SysUpgradeConfig.xml --text "$text" || fail "not clean with $text"
done
passes samples/demo/rules.xml --text samples/demo/ResIDText.xml || fail "the demonstration is not clean"

for broken in tests/samples/broken/rules-*.xml; do
    status=0
    "${dsw[@]}" "$broken" >/dev/null || status=$?
    [ "$status" = 1 ] || fail "status $status: $broken"
done
[ "$("${dsw[@]}" samples/rules.xml --json | grep -c '"findings": \[\]')" = 1 ] || fail "no JSON"

for name in $(sed -n 's/.*<xs:attribute name="\([A-Za-z0-9]*\)".*/\1/p' docs/rule-file.xsd | sort -u); do
    grep -q "{\"$name\", " host/checkschema.cpp || fail "not in host/checkschema.cpp: $name"
done
for code in $(sed -n 's/.*CheckCode k.*{L"\([a-z-]*\)".*/\1/p' host/checkcode.h); do
    grep -q "^| \`$code\` |" docs/rules.md || fail "not in docs/rules.md: $code"
    grep -q "\"$code\"" docs/dsw-check.schema.json || fail "not in docs/dsw-check.schema.json: $code"
done

[ "$failures" = 0 ]
