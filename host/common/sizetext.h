#pragma once

#include <cstdint>
#include <string>

// A number with its thousands apart: 1,234,567.
std::wstring GroupedNumber(uint64_t number);
// A size to read at a glance, in units of 1024 with one decimal, rounded down: 3.1 MB. Below 1 KB it is exact.
std::wstring ReadableSize(uint64_t bytes);
// A size to read and to count with: 3.1 MB (3,250,585 bytes).
std::wstring FullSize(uint64_t bytes);
// 1 item, 2 items
std::wstring ItemCount(uint64_t items);
