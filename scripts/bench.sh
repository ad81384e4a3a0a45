#!/usr/bin/env bash
# bench.sh [ROW...] [--quick] [--rounds N] [--json FILE]: set-up, build, and the benchmark, in a sandbox of its own.
# Prints one table; see docs/performance.md. Needs 4 GB of memory for the files, or as much in DSW_SANDBOX_DIR.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh >&2
cmake --preset release >&2
cmake --build --preset release --target dsw_bench >&2

# In memory: a disk would add its own noise, and take minutes to remove a million files.
if [ -z "${DSW_SANDBOX_DIR:-}" ] && [ -w /dev/shm ]; then
    DSW_SANDBOX_DIR=$(mktemp -d /dev/shm/dsw-bench.XXXXXX)
    trap 'rm -rf "$DSW_SANDBOX_DIR"' EXIT
    export DSW_SANDBOX_DIR
fi
scripts/sandbox.sh wine build/release/bin/dsw_bench.exe "$@"
