#pragma once

#include <windows.h>
#include <shlobj.h>

#include <utility>

// Owns an item-ID list, the shell's name for one of its items, and frees it with CoTaskMemFree at the end of its scope.
//
// A list is a run of items, each a two-byte length (which counts itself) and its bytes, ended by a length of zero. An
// absolute list starts at the desktop; a child list names one item of a folder. Lists that are only looked at are
// passed as plain LPCITEMIDLIST.
class CItemIdList {
public:
    CItemIdList() noexcept = default;
    // Adopts a list that came from the COM task allocator; null makes an empty owner.
    explicit CItemIdList(LPITEMIDLIST adopted) noexcept : m_list(adopted) {}
    CItemIdList(CItemIdList&& other) noexcept : m_list(std::exchange(other.m_list, nullptr)) {}
    CItemIdList& operator=(CItemIdList&& other) noexcept;
    ~CItemIdList() {
        if (m_list) CoTaskMemFree(m_list);  // spares the call for the many that are empty
    }

    // The absolute list of the item `child` of the folder `absolute`; with a null folder a copy of `child`. Throws
    // std::bad_alloc.
    [[nodiscard]] static CItemIdList Combine(LPCITEMIDLIST absolute, LPCITEMIDLIST child);

    // Whether both lists consist of the same bytes; a list that is null equals none. Two lists of one item may differ
    // in bytes, but equal bytes never name two items.
    [[nodiscard]] static bool SameBytes(LPCITEMIDLIST left, LPCITEMIDLIST right) noexcept;

    // Frees what it holds and returns the place for an out argument, whose list it then owns.
    LPITEMIDLIST* Put() noexcept;
    LPCITEMIDLIST get() const noexcept { return m_list; }
    explicit operator bool() const noexcept { return m_list != nullptr; }

private:
    LPITEMIDLIST m_list = nullptr;
};
