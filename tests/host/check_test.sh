#!/usr/bin/env bash
# check_test.sh DSW: `dsw check` has nothing to say against the samples and fails for each broken file; it knows the
# attributes of the schema, and its codes are all explained.
set -euo pipefail
dsw=(wine "$1" check)
cd "$(dirname "$(realpath "$0")")/../.."

fail() { echo "$*"; exit 1; }
passes() {
    local output
    output=$("${dsw[@]}" "$@") && grep -q '^0 errors, 0 warnings, 0 notes' <<<"$output" || fail "$output"
}

for text in samples/text/*/ResIDText.xml; do
    passes samples/rules.xml samples/SysUpgradeConfig.xml --text "$text"
done
passes samples/demo/rules.xml --text samples/demo/ResIDText.xml
for broken in tests/samples/broken/rules-*.xml; do
    output=$("${dsw[@]}" "$broken" --json) && status=0 || status=$?
    [ "$status" = 1 ] && grep -q '"errors": [1-9]' <<<"$output" && grep -q ': error: .*\]' <("${dsw[@]}" "$broken") ||
        fail "status $status: $broken"
done
for name in $(sed -n 's/.*<xs:attribute name="\([A-Za-z0-9]*\)".*/\1/p' docs/rule-file.xsd | sort -u); do
    grep -q "{\"$name\", " host/check/schema.cpp || fail "not in host/check/schema.cpp: $name"
done
for code in $(sed -n 's/.*FindingCode k.*{L"\([a-z-]*\)".*/\1/p' host/check/finding.h); do
    grep -q "^| \`$code\` |" docs/rules.md || fail "not in docs/rules.md: $code"
    grep -q "\"$code\"" docs/dsw-check.schema.json || fail "not in docs/dsw-check.schema.json: $code"
done
