#!/usr/bin/env bash
# test.sh [PRESET]: set-up, build and all tests, from a clean checkout. PRESET is release (default) or debug.
set -euo pipefail
cd "$(dirname "$0")/.."
preset=${1:-release}

scripts/check-includes.sh
scripts/setup.sh
cmake --preset "$preset"
cmake --build --preset "$preset"
scripts/sandbox.sh ctest --preset "$preset" -j"$(nproc)"
