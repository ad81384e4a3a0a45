#pragma once

#include <string>
#include <string_view>

// The columns that a text takes on a terminal, its unprintable letters escaped: East Asian letters take two, combining
// marks none.
size_t Columns(std::wstring_view text) noexcept;

// The text with blanks behind or before it, up to `columns`; a longer text stays as it is.
std::wstring PadRight(std::wstring_view text, size_t columns);
std::wstring PadLeft(std::wstring_view text, size_t columns);

// As much of the beginning as takes no more than `columns`; never half a surrogate pair.
std::wstring_view Shorten(std::wstring_view text, size_t columns) noexcept;
