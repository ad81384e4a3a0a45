#include "host/common/printable.h"

#include "host/common/characterrange.h"

namespace {

// Control characters, and those that change the direction of the text behind them.
constexpr CharacterRange kUnsafe[] = {{0x0000, 0x001F}, {0x007F, 0x009F}, {0x061C, 0x061C},
                                      {0x200E, 0x200F}, {0x202A, 0x202E}, {0x2066, 0x2069}};

std::wstring Escape(wchar_t c) {
    constexpr const wchar_t* kDigits = L"0123456789ABCDEF";
    return {L'<', L'U', L'+', kDigits[c >> 12], kDigits[c >> 8 & 15], kDigits[c >> 4 & 15], kDigits[c & 15], L'>'};
}

}  // namespace

bool IsPrintable(wchar_t c) noexcept {
    return !IsIn(kUnsafe, c);
}

std::wstring Printable(std::wstring_view text) {
    std::wstring printable;
    for (const wchar_t c : text)
        printable += IsPrintable(c) ? std::wstring(1, c) : Escape(c);
    return printable;
}
