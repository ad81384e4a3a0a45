#include "host/common/sizetext.h"

#include "host/common/texts.h"

namespace {

std::wstring Counted(uint64_t number, unsigned one, unsigned many) {
    return Text(number == 1 ? one : many, {GroupedNumber(number)});
}

std::wstring ByteCount(uint64_t bytes) {
    return Counted(bytes, IDS_BYTES_ONE, IDS_BYTES_MANY);
}

}  // namespace

std::wstring GroupedNumber(uint64_t number) {
    const std::wstring separator = Text(IDS_DIGIT_GROUPS);
    std::wstring text = std::to_wstring(number);
    for (size_t at = text.size(); at > 3; at -= 3)
        text.insert(at - 3, separator);
    return text;
}

std::wstring ReadableSize(uint64_t bytes) {
    if (bytes < 1024) return ByteCount(bytes);
    unsigned unit = IDS_KILOBYTES;
    for (; bytes >= 1024 * 1024; bytes /= 1024)
        ++unit;
    const uint64_t tenths = bytes % 1024 * 10 / 1024;
    return Text(unit, {std::to_wstring(bytes / 1024) + Text(IDS_DECIMAL_POINT) + std::to_wstring(tenths)});
}

std::wstring FullSize(uint64_t bytes) {
    if (bytes < 1024) return ReadableSize(bytes);
    return Text(IDS_FULL_SIZE, {ReadableSize(bytes), ByteCount(bytes)});
}

std::wstring ItemCount(uint64_t items) {
    return Counted(items, IDS_ITEMS_ONE, IDS_ITEMS_MANY);
}
