#pragma once

#include <cstdint>
#include <string_view>

#include "sysservices/text.h"

class TiXmlElement;

// Attributes of one element. Names are ASCII; text is UTF-8 in the document and UTF-16 here.

// True when the attribute is there, also when it is empty; `out` stays as it is when it is not there.
bool ReadText(const TiXmlElement& element, const char* name, CString& out);

// The number at the start of the attribute ("12", " -3x"), or `defaultValue` when there is no attribute or no number.
// A number that does not fit becomes the largest or smallest one.
[[nodiscard]] int32_t ReadInteger(const TiXmlElement& element, const char* name, int32_t defaultValue);

// Sets the attribute, replacing one of that name.
void WriteText(TiXmlElement& element, const char* name, std::wstring_view value);
