#pragma once

#include <windows.h>

#include <utility>

// Owns one kernel handle (file, process, token, event) and closes it at the end of its scope, keeping the thread's last
// error. Both null and INVALID_HANDLE_VALUE count as no handle, since some calls fail with one and some with the other;
// do not put the pseudo handle of the current process into it.
class CHandle {
public:
    CHandle() noexcept = default;
    explicit CHandle(HANDLE adopted) noexcept : m_handle(adopted) {}
    CHandle(CHandle&& other) noexcept : m_handle(std::exchange(other.m_handle, nullptr)) {}
    CHandle& operator=(CHandle&& other) noexcept {
        const CHandle old(std::exchange(m_handle, std::exchange(other.m_handle, nullptr)));
        return *this;
    }
    ~CHandle() {
        if (!*this) return;
        const DWORD lastError = GetLastError();
        CloseHandle(m_handle);
        SetLastError(lastError);
    }

    // Closes what it holds and returns the place for an out argument, whose handle it then owns.
    HANDLE* Put() noexcept {
        *this = CHandle();
        return &m_handle;
    }
    HANDLE get() const noexcept { return m_handle; }
    explicit operator bool() const noexcept { return m_handle && m_handle != INVALID_HANDLE_VALUE; }

private:
    HANDLE m_handle = nullptr;
};
