# Cross compiler for 64-bit Windows. The posix-threads variant is named in full: the plain name may point to the
# win32-threads one, which lacks std::mutex and std::thread and cannot compile GoogleTest.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(toolchain_prefix x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${toolchain_prefix}-gcc-posix)
set(CMAKE_CXX_COMPILER ${toolchain_prefix}-g++-posix)
set(CMAKE_RC_COMPILER ${toolchain_prefix}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${toolchain_prefix})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Whatever CMake or CTest runs, runs inside a throw-away prefix.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../scripts/sandbox.sh;wine)
