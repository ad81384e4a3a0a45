#include "host/common/sizetext.h"

std::wstring GroupedNumber(uint64_t number) {
    std::wstring text = std::to_wstring(number);
    for (size_t at = text.size(); at > 3; at -= 3)
        text.insert(at - 3, 1, L',');
    return text;
}

std::wstring ReadableSize(uint64_t bytes) {
    constexpr const wchar_t* kUnits[] = {L" KB", L" MB", L" GB", L" TB", L" PB", L" EB"};
    if (bytes < 1024) return std::to_wstring(bytes) + (bytes == 1 ? L" byte" : L" bytes");
    unsigned unit = 0;
    for (; bytes >= 1024 * 1024; bytes /= 1024)
        ++unit;
    const uint64_t tenths = bytes % 1024 * 10 / 1024;
    return std::to_wstring(bytes / 1024) + L'.' + std::to_wstring(tenths) + kUnits[unit];
}

std::wstring FullSize(uint64_t bytes) {
    if (bytes < 1024) return ReadableSize(bytes);
    return ReadableSize(bytes) + L" (" + GroupedNumber(bytes) + L" bytes)";
}

std::wstring ItemCount(uint64_t items) {
    return GroupedNumber(items) + (items == 1 ? L" item" : L" items");
}
