#!/usr/bin/env bash
# package_test.sh BUILD: the ZIP of the build in folder BUILD holds what a host needs: each public header compiles alone,
# and the example builds and runs with nothing else.
set -euo pipefail
build=$(realpath "$1")
root=$(cd "$(dirname "$0")/.." && pwd)
work=$(mktemp -d "$build/package.XXXXXX")  # where the sandbox's drive reaches
trap 'rm -rf "$work"' EXIT

cpack --config "$build/CPackConfig.cmake" -B "$work" >"$work/cpack.log" || { cat "$work/cpack.log"; exit 1; }
(cd "$work" && cmake -E tar xf dregsweep-*-win64.zip)
package=$(echo "$work"/dregsweep-*-win64)

find "$package/include/dregsweep" -name '*.h' -print | while read -r header; do
    x86_64-w64-mingw32-g++-posix -std=c++20 -Wall -Wextra -Wpedantic -Werror -fsyntax-only -DUNICODE -D_UNICODE \
        -I "$package/include/dregsweep" -x c++ -include "$header" /dev/null
done

# The first host loads the DLL at run time, the second links its import library.
cp -r "$package/share/dregsweep/examples/minimal_host" "$work/loading"
mkdir "$work/linking"
cat >"$work/linking/CMakeLists.txt" <<'END'
cmake_minimum_required(VERSION 3.25)
project(linking_host LANGUAGES CXX)
find_package(Dregsweep REQUIRED)
add_executable(linking_host main.cpp)
target_link_libraries(linking_host PRIVATE Dregsweep::Dregsweep)
target_link_options(linking_host PRIVATE -static)
END
cat >"$work/linking/main.cpp" <<'END'
#include "dregsweep/idregsweep.h"
extern "C" IDregsweep* GetImp();
int main() {
    IDregsweep* engine = GetImp();
    return engine ? static_cast<int>(engine->Release()) : 1;
}
END
for host in loading linking; do
    cmake -S "$work/$host" -B "$work/$host/build" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$root/cmake/mingw-w64.cmake" \
        -DDregsweep_DIR="$package/lib/cmake/Dregsweep" >"$work/$host.log" 2>&1 &&
        cmake --build "$work/$host/build" >>"$work/$host.log" 2>&1 || { cat "$work/$host.log"; exit 1; }
    cp "$work/$host/build/"*.exe "$package/bin"
done


cd "$package/share/dregsweep/samples"
"$root/scripts/sandbox.sh" wine "$package/bin/linking_host.exe"
"$root/scripts/sandbox.sh" wine "$package/bin/minimal_host.exe" demo/rules.xml demo/ResIDText.xml <<<n | grep -q '^found '
"$root/scripts/sandbox.sh" wine "$package/bin/dsw.exe" list --rules rules.xml --text text/de/ResIDText.xml | grep -qF '[x]'
