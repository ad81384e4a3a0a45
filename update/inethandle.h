#pragma once

#include <windows.h>

#include <wininet.h>

#include <memory>

// Closes an internet handle and keeps the thread's last error, which callers still want to trace.
struct InetHandleCloser {
    using pointer = HINTERNET;
    void operator()(HINTERNET handle) const noexcept {
        const DWORD error = GetLastError();
        InternetCloseHandle(handle);
        SetLastError(error);
    }
};

// Owns a root or a request handle of WinINet; null when opening failed.
using CInetHandle = std::unique_ptr<void, InetHandleCloser>;
