#include "host/common/itemstate.h"

#include <windows.h>

#include "host/common/texts.h"
#include "sysservices/handle.h"

namespace {

// The error that stands in the way of deleting the file, or 0. Deletes nothing.
DWORD DeleteError(const wchar_t* path) noexcept {
    const CHandle file(CreateFileW(path, DELETE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                   OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
    return file ? ERROR_SUCCESS : GetLastError();
}

}  // namespace

std::wstring StateText(ItemState state) {
    return Text(IDS_STATE_FOUND + static_cast<unsigned>(state));
}

ItemState WhyNotDeleted(const std::wstring& path) noexcept {
    // What the shell lists may go by a name that is no path, and of a path that the system refuses or takes for another
    // it does not tell whether the file is there.
    const bool isPlain =
        path.find(L'\\') != path.npos && path.size() < MAX_PATH && path.back() != L'.' && path.back() != L' ';
    if (!isPlain) return ItemState::Refused;
    switch (DeleteError(path.c_str())) {
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
            return ItemState::Gone;
        case ERROR_SHARING_VIOLATION:
        case ERROR_LOCK_VIOLATION:
            return ItemState::InUse;
        default:
            return ItemState::Refused;
    }
}
