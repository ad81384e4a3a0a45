#pragma once

#include <list>
#include <string_view>

#include "sysservices/text.h"

// One folder that a rule leaves out.
struct ExcludePathEntry {
    CString path;             // lower-cased
    bool exactMatch = false;  // compare the end of the folder's full path, not its name
    bool iteration = false;   // leave out the folder's own files only, still scan what is below it
};

// The first entry that matches a folder, or null. `folderPath` is its full path, `lowerName` its own name in lower
// case. Throws when the system refuses to compare.
const ExcludePathEntry* FindExcludePath(const std::list<ExcludePathEntry>& entries, std::wstring_view folderPath,
                                        std::wstring_view lowerName);
