#pragma once

#include <cstdint>

#include "sysservices/text.h"

// One found item of a rule.
struct FoundItem {
    CString path;
    uint64_t size = 0;  // bytes
};
