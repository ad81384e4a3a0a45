#pragma once

#include <string>

#include "host/common/amount.h"
#include "host/common/itemstate.h"

// What became of an item.
struct ItemResult {
    std::wstring path;  // empty: all that the rule had found, such as the content of a recycle bin
    Amount amount;
    ItemState state;
};
