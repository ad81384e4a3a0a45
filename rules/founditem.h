#pragma once

#include <cstdint>

#include "sysservices/itemidlist.h"
#include "sysservices/text.h"

// One found item of a rule.
struct FoundItem {
    CString path;        // full path of a file, or the display text of a shell item
    uint64_t size = 0;   // bytes
    CItemIdList itemId;  // the shell item's list in its folder; none for files
};
