#pragma once

#include <windows.h>

#include <memory>

struct FileHandleCloser {
    using pointer = HANDLE;
    void operator()(HANDLE handle) const noexcept { CloseHandle(handle); }
};

// Owns an opened file; null when opening failed, and the thread's last error tells why.
using CFileHandle = std::unique_ptr<void, FileHandleCloser>;

// Adopts what CreateFileW returned, whose failure value is not null.
inline CFileHandle AdoptFile(HANDLE handle) noexcept {
    return CFileHandle(handle == INVALID_HANDLE_VALUE ? nullptr : handle);
}
