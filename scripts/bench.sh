#!/usr/bin/env bash
# bench.sh [ROW...] [--quick] [--rounds N] [--json FILE]: set-up, build, and the benchmark, in a sandbox of its own. Prints
# one table; see docs/performance.md.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
cmake --preset release >&2
cmake --build --preset release --target dsw_bench >&2
exec scripts/sandbox.sh wine build/release/bin/dsw_bench.exe "$@"
