#!/usr/bin/env bash
# test.sh [PRESET...]: set-up, format and includes, build and all tests, from a clean checkout. PRESET is release or debug;
# without one, both.
# Ends with a line that counts the tests of all presets.
set -euo pipefail
cd "$(dirname "$0")/.."
[ $# -gt 0 ] || set -- release debug

scripts/setup.sh
scripts/check-includes.sh
git ls-files '*.cpp' '*.h' | xargs clang-format --dry-run -Werror
git ls-files '*.sh' .ci/run | xargs shellcheck --severity=warning

status=0 passed=0 failed=0
for preset in "$@"; do
    cmake --preset "$preset"
    cmake --build --preset "$preset"
    results=build/$preset/tests.xml
    rm -f "$results"
    scripts/sandbox.sh ctest --preset "$preset" -j"$(nproc)" --output-junit "$PWD/$results" || status=1
    passed=$((passed + $(grep -c '<testcase .*status="run"' "$results" || true)))
    failed=$((failed + $(grep -c '<testcase .*status="fail"' "$results" || true)))
done
echo "$passed passed, $failed failed ($*)"
exit $status
