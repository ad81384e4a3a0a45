#pragma once

#include <string>
#include <string_view>
#include <vector>

// Text helpers shared by all layers. Text is UTF-16 in memory and UTF-8 in files.

using CString = std::wstring;

// Converts UTF-8 (code page 65001) to UTF-16. Bytes that are no UTF-8 become U+FFFD. Null gives an empty text.
// Throws when the system refuses.
CString Utf8ToWide(const char* utf8);
CString Utf8ToWide(std::string_view utf8);

// Converts UTF-16 to UTF-8 (code page 65001). A lone surrogate becomes U+FFFD.
std::string WideToUtf8(std::wstring_view wide);

// Lower-cases every letter as the system compares file names, whatever the user's locale. Throws when
// the system refuses.
CString ToLower(std::wstring_view text);
// The same into `lower`, which has room for text.size() characters and is not terminated; false when
// the system refuses.
bool ToLower(std::wstring_view text, wchar_t* lower) noexcept;

// Lower-cases A to Z only.
constexpr wchar_t FoldAscii(wchar_t c) noexcept {
    return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c - L'A' + L'a') : c;
}

// Splits a text at any of `separators`. A run of separators counts as one, those at the ends are ignored; the pieces
// are not trimmed.
std::vector<CString> Split(std::wstring_view text, std::wstring_view separators);

// folder + "\" + name. A folder that ends in "\" yields a doubled separator, which the file functions accept.
CString JoinPath(std::wstring_view folder, std::wstring_view name);
