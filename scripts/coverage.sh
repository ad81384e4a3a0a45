#!/usr/bin/env bash
# coverage.sh [CTEST-ARGUMENT...]: builds with counters, runs the tests and lists, for everything outside host/, the
# lines and branches that ran and the numbers of the lines that no test reaches. Needs gcovr.
set -euo pipefail
cd "$(dirname "$0")/.."

command -v gcovr >/dev/null || { echo "coverage: install gcovr first" >&2; exit 1; }
cmake --preset coverage
cmake --build --preset coverage
find build/coverage -name '*.gcda' -delete
# One by one: the runtime here does not lock its files. A failed test does not spoil the figures.
scripts/sandbox.sh ctest --preset coverage -j1 "$@" || echo "coverage: some tests failed" >&2
gcovr --gcov-executable x86_64-w64-mingw32-gcov --root . --object-directory build/coverage \
    --gcov-ignore-parse-errors \
    --filter '(cleaners|dregsweep|rules|sysservices|tree|update)/' --exclude-throw-branches \
    --json build/coverage/coverage.json
for table in --branches ""; do
    # shellcheck disable=SC2086
    gcovr --add-tracefile build/coverage/coverage.json $table
done
