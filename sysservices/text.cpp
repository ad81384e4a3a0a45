#include "sysservices/text.h"

#include <windows.h>

#include <algorithm>
#include <stdexcept>

CString Utf8ToWide(const char* utf8) {
    return utf8 ? Utf8ToWide(std::string_view(utf8)) : CString();
}

CString Utf8ToWide(std::string_view utf8) {
    // Nearly every text is ASCII, which needs no conversion.
    if (std::none_of(utf8.begin(), utf8.end(), [](char c) { return (c & 0x80) != 0; }))
        return {utf8.begin(), utf8.end()};
    const int bytes = static_cast<int>(utf8.size());
    const int length = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), bytes, nullptr, 0);
    // An empty text instead would change what a rule means: its path becomes the whole base folder.
    if (length <= 0) throw std::runtime_error("text cannot be converted");
    CString wide(static_cast<size_t>(length), L'\0');
    if (MultiByteToWideChar(CP_UTF8, 0, utf8.data(), bytes, wide.data(), length) != length)
        throw std::runtime_error("text cannot be converted");
    return wide;
}

std::string WideToUtf8(std::wstring_view wide) {
    const int length = static_cast<int>(wide.size());
    const int bytes = WideCharToMultiByte(CP_UTF8, 0, wide.data(), length, nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<size_t>(bytes), '\0');
    WideCharToMultiByte(CP_UTF8, 0, wide.data(), length, utf8.data(), bytes, nullptr, nullptr);
    return utf8;
}

CString ToLower(std::wstring_view text) {
    CString lower(text.size(), L'\0');
    if (!ToLower(text, lower.data())) throw std::runtime_error("text cannot be lower-cased");
    return lower;
}

bool ToLower(std::wstring_view text, wchar_t* lower) noexcept {
    // Most paths are ASCII; the system's mapping costs many times the folding, and says the same there.
    wchar_t seen = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        seen |= text[i];
        lower[i] = FoldAscii(text[i]);
    }
    if (seen < 0x80) return true;
    const int length = static_cast<int>(text.size());
    // Simple case mapping keeps the length.
    return LCMapStringEx(LOCALE_NAME_INVARIANT, LCMAP_LOWERCASE, text.data(), length, lower, length, nullptr, nullptr,
                         0)
           != 0;
}

std::vector<CString> Split(std::wstring_view text, std::wstring_view separators) {
    std::vector<CString> pieces;
    for (size_t begin = text.find_first_not_of(separators); begin != std::wstring_view::npos;) {
        const size_t end = text.find_first_of(separators, begin);
        pieces.emplace_back(text.substr(begin, end - begin));
        begin = text.find_first_not_of(separators, end);
    }
    return pieces;
}

CString JoinPath(std::wstring_view folder, std::wstring_view name) {
    CString path;
    path.reserve(folder.size() + 1 + name.size());
    return path.append(folder).append(1, L'\\').append(name);
}
