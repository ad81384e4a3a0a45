#include "sysservices/itemidlist.h"

#include <cstring>
#include <new>

namespace {

constexpr size_t kTerminatorBytes = sizeof(USHORT);

size_t BytesWithoutTerminator(LPCITEMIDLIST list) noexcept {
    return list ? ILGetSize(list) - kTerminatorBytes : 0;
}

}  // namespace

CItemIdList CItemIdList::Combine(LPCITEMIDLIST absolute, LPCITEMIDLIST child) {
    const size_t folderBytes = BytesWithoutTerminator(absolute);
    const size_t childBytes = BytesWithoutTerminator(child);
    CItemIdList combined(static_cast<LPITEMIDLIST>(CoTaskMemAlloc(folderBytes + childBytes + kTerminatorBytes)));
    if (!combined) throw std::bad_alloc();

    auto* bytes = reinterpret_cast<BYTE*>(combined.get());
    if (folderBytes) std::memcpy(bytes, absolute, folderBytes);
    if (childBytes) std::memcpy(bytes + folderBytes, child, childBytes);
    std::memset(bytes + folderBytes + childBytes, 0, kTerminatorBytes);
    return combined;
}

bool CItemIdList::SameBytes(LPCITEMIDLIST left, LPCITEMIDLIST right) noexcept {
    if (!left || !right) return false;
    const size_t bytes = ILGetSize(left);
    return bytes == ILGetSize(right) && std::memcmp(left, right, bytes) == 0;
}
