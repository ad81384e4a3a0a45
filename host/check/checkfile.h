#pragma once

#include <tinyxml.h>

#include "host/check/checkfinding.h"

// Reads an XML file as the engine does, deep nesting refused, and tells why when that fails. False then; otherwise the
// document has a root element.
[[nodiscard]] bool LoadCheckedFile(const std::wstring& path, TiXmlDocument& document, CCheckFindings& findings);
