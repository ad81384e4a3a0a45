#pragma once

#include <string_view>
#include <vector>

#include "sysservices/text.h"

// The names that a downloaded list file holds, in order, untrimmed. A file that cannot be read, is empty, or has 20480
// bytes or more gives no names.
std::vector<CString> ReadRuleFileList(const CString& path);

// Whether a name from a list, which is the server's word, stays inside the folder that it is joined to.
bool IsSafeRuleFileName(std::wstring_view name);
