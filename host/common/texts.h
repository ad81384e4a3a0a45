#pragma once

#include <windows.h>

#include <cstdint>
#include <initializer_list>
#include <string>

#include "host/common/textid.h"

// What our hosts say to people, from the table in texts.rc.

// The text with that id, its placeholders filled: %1 by the first value, up to %9.
std::wstring Text(unsigned id, std::initializer_list<std::wstring> values = {});

// The language of the texts from now on, such as MAKELANGID(LANG_GERMAN, SUBLANG_GERMAN). Where the table has nothing
// in it, and until the first call, the table's first language counts. Any thread.
void SetTextLanguage(LANGID language) noexcept;
