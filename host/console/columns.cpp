#include "host/console/columns.h"

#include "host/common/characterrange.h"
#include "host/common/printable.h"

namespace {

constexpr CharacterRange kCombining[] = {{0x0300, 0x036F}, {0x200B, 0x200F}, {0x20D0, 0x20FF}, {0xFE00, 0xFE0F}};
constexpr CharacterRange kWide[] = {{0x1100, 0x115F}, {0x2E80, 0xA4CF}, {0xAC00, 0xD7A3}, {0xF900, 0xFAFF},
                                    {0xFE30, 0xFE6F}, {0xFF00, 0xFF60}, {0xFFE0, 0xFFE6}};

// Each half of a surrogate pair counts one: nearly all of what lies there is two columns wide.
size_t ColumnsOf(wchar_t c) noexcept {
    constexpr size_t kEscape = 8;
    if (!IsPrintable(c)) return kEscape;
    if (IsIn(kCombining, c)) return 0;
    return IsIn(kWide, c) ? 2 : 1;
}

bool IsLowSurrogate(wchar_t c) noexcept {
    return c >= 0xDC00 && c <= 0xDFFF;
}

std::wstring Blanks(std::wstring_view text, size_t columns) {
    const size_t taken = Columns(text);
    return std::wstring(taken < columns ? columns - taken : 0, L' ');
}

}  // namespace

size_t Columns(std::wstring_view text) noexcept {
    size_t columns = 0;
    for (const wchar_t c : text)
        columns += ColumnsOf(c);
    return columns;
}

std::wstring PadRight(std::wstring_view text, size_t columns) {
    return std::wstring(text) + Blanks(text, columns);
}

std::wstring PadLeft(std::wstring_view text, size_t columns) {
    return Blanks(text, columns).append(text);
}

std::wstring_view Shorten(std::wstring_view text, size_t columns) noexcept {
    size_t taken = 0;
    size_t length = 0;
    while (length < text.size() && taken + ColumnsOf(text[length]) <= columns)
        taken += ColumnsOf(text[length++]);
    if (length > 0 && length < text.size() && IsLowSurrogate(text[length])) --length;
    return text.substr(0, length);
}
