#include "sysservices/xmlattribute.h"

#include <tinyxml.h>

bool ReadText(const TiXmlElement& element, const char* name, CString& out) {
    const char* value = element.Attribute(name);
    if (!value) return false;
    out = Utf8ToWide(value);
    return true;
}

int32_t ReadInteger(const TiXmlElement& element, const char* name, int32_t defaultValue) {
    const char* text = element.Attribute(name);
    if (!text) return defaultValue;
    // Nearly every number is one digit; the library would scan it with a format.
    if (text[0] >= '0' && text[0] <= '9' && text[1] == '\0') return text[0] - '0';
    int value = defaultValue;
    element.QueryIntAttribute(name, &value);
    return value;
}

void WriteText(TiXmlElement& element, const char* name, std::wstring_view value) {
    element.SetAttribute(name, WideToUtf8(value).c_str());
}
