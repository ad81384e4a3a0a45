#pragma once

#include "sysservices/xmlattribute.h"
#include "tree/ownedtext.h"

// The text attributes of the records.

// True when the attribute is there, also when it is empty; `out` stays as it is when it is not there.
inline bool ReadText(const TiXmlElement& element, const char* name, COwnedText& out) {
    CString text;
    if (!ReadText(element, name, text)) return false;
    out = text;
    return true;
}

// Writes nothing when there is no text. The text is the current one: a localised name is saved as such.
inline void WriteTextIfAny(TiXmlElement& element, const char* name, const COwnedText& value) {
    const std::wstring_view text = value.c_str();
    if (!text.empty()) WriteText(element, name, text);
}
