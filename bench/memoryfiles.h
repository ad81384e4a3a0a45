#pragma once

#include <string_view>

#include "bench/stubs.h"

// Files that are in no file system. Until the end of the scope the searches and deletions of the engine, and those of
// the benchmark itself, are answered from memory: folders of a hundred files named by FileName, and deletions that
// succeed and change nothing. One object at a time.
class MemoryFiles {
public:
    // `pattern` is "*" or "*.tmp"; `count` files below kRoot match it.
    MemoryFiles(HMODULE engine, std::wstring_view pattern, size_t count);

    static constexpr const wchar_t* kRoot = L"C:\\bench\\memory\\x0\\p0";

private:
    Stubs m_ofEngine;
    Stubs m_ofBenchmark;
};
