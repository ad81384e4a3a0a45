#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "sysservices/text.h"

class IInternetFileProc;

// The names that a downloaded list file holds, in order, untrimmed. A file that cannot be read, is empty, or has 20480
// bytes or more gives no names.
std::vector<CString> ReadRuleFileList(const CString& path);

// Whether a name from a list, which is the server's word, stays inside the folder that it is joined to.
bool IsSafeRuleFileName(std::wstring_view name);

// Fetches the list at `listUrl` and the files beside it that it names into `folder`, each under its name with "_bak",
// and only when all have arrived puts them in the place of the old ones. Returns an InternetFileResult. Throws
// std::bad_alloc before anything is replaced.
uint32_t ReplaceRuleFiles(IInternetFileProc& update, const CString& listUrl, const CString& folder);
