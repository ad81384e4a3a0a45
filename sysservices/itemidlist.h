#pragma once

#include <windows.h>
#include <shlobj.h>

#include "sysservices/owner.h"

struct ItemIdListKind {
    using Value = LPITEMIDLIST;
    static void GiveBack(LPITEMIDLIST list) noexcept { CoTaskMemFree(list); }
};

// An item-ID list, the shell's name for one of its items, from the COM task allocator.
//
// A list is a run of items, each a two-byte length (which counts itself) and its bytes, ended by a length of zero. An
// absolute list starts at the desktop; a child list names one item of a folder. Lists that are only looked at are
// passed as plain LPCITEMIDLIST.
class CItemIdList : public COwner<ItemIdListKind> {
public:
    using COwner::COwner;

    // The absolute list of the item `child` of the folder `absolute`; with a null folder a copy of `child`. Throws
    // std::bad_alloc.
    [[nodiscard]] static CItemIdList Combine(LPCITEMIDLIST absolute, LPCITEMIDLIST child);

    // Whether both lists consist of the same bytes; a list that is null equals none. Two lists of one item may differ
    // in bytes, but equal bytes never name two items.
    [[nodiscard]] static bool SameBytes(LPCITEMIDLIST left, LPCITEMIDLIST right) noexcept;
};
