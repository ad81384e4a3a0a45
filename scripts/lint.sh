#!/usr/bin/env bash
# lint.sh [FILE...]: what takes too long for every test run. Builds without precompiled headers, so that a source that
# leans on another's includes fails, and lets clang-tidy look at the files, or at all of the product's.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh clang-tidy
cmake --preset lint
cmake --build --preset lint

if [ $# -eq 0 ]; then
    mapfile -t files < <(git ls-files '*.cpp' | grep -v '^tests/')
    set -- "${files[@]}"
fi
# clang must be told where Debian keeps the cross compiler's standard library.
library=$(dirname "$(x86_64-w64-mingw32-g++-posix -print-libgcc-file-name)")/include/c++
printf '%s\0' "$@" | xargs -0 -n 1 -P "$(nproc)" clang-tidy -quiet -p build/lint --warnings-as-errors='*' \
    --extra-arg=--target=x86_64-w64-mingw32 --extra-arg=-stdlib++-isystem"$library" \
    --extra-arg=-stdlib++-isystem"$library/x86_64-w64-mingw32"
