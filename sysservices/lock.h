#pragma once

#include <windows.h>

#include <mutex>

// A recursive lock that works with the standard guards. A critical section lets the owning thread enter again, which
// hosts rely on when a notification calls back into the engine.
class CLock {
public:
    // Without debug information, which would be an allocation for each of thousands of rules.
    CLock() noexcept { InitializeCriticalSectionEx(&m_section, 0, CRITICAL_SECTION_NO_DEBUG_INFO); }
    ~CLock() { DeleteCriticalSection(&m_section); }
    CLock(const CLock&) = delete;
    CLock& operator=(const CLock&) = delete;

    // The names that std::lock_guard and std::unique_lock expect.
    void lock() noexcept { EnterCriticalSection(&m_section); }
    void unlock() noexcept { LeaveCriticalSection(&m_section); }

private:
    CRITICAL_SECTION m_section;
};

using CLockGuard = std::lock_guard<CLock>;
