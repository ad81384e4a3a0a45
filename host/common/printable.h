#pragma once

#include <string>
#include <string_view>

// Is the letter shown as it is? Control characters and those that change the direction of text are not.
bool IsPrintable(wchar_t c) noexcept;

// The text with escapes, such as <U+202E>, for what is not printable: a name must neither end the line nor command the
// terminal nor look like another. No file name has "<" or ">".
std::wstring Printable(std::wstring_view text);
