#pragma once

#include <algorithm>
#include <iterator>

// Neighbouring characters, the last one included.
struct CharacterRange {
    wchar_t first;
    wchar_t last;
};

template <size_t N>
bool IsIn(const CharacterRange (&ranges)[N], wchar_t c) noexcept {
    return std::any_of(std::begin(ranges), std::end(ranges),
                       [c](const CharacterRange& range) { return c >= range.first && c <= range.last; });
}
