#pragma once

#include <cstdint>
#include <memory>

#include "sysservices/owner.h"

struct FindKind {
    using Value = HANDLE;
    static bool IsNone(HANDLE search) noexcept { return search == INVALID_HANDLE_VALUE; }
    static void GiveBack(HANDLE search) noexcept { FindClose(search); }
};

// One FindFirstFileW/FindNextFileW enumeration, closed when it goes out of scope. The find data live on the heap, so
// that thousands of open searches (one per level of a deep folder tree) cost no stack.
//
//     for (CFileSearch search(pattern); search; search.Next()) Use(search.Entry());
class CFileSearch {
public:
    // Starts the search for `pattern`; test the object for whether anything was found. The thread's last error tells
    // why not.
    explicit CFileSearch(const wchar_t* pattern) : m_handle(FindFirstFileW(pattern, m_entry.get())) {}

    // True while Entry() holds an entry.
    explicit operator bool() const noexcept { return m_handle && m_hasEntry; }
    // Moves to the next entry; false at the end, and after any error.
    bool Next() noexcept {
        m_hasEntry = *this && FindNextFileW(m_handle.get(), m_entry.get());
        return m_hasEntry;
    }
    const WIN32_FIND_DATAW& Entry() const noexcept { return *m_entry; }

private:
    std::unique_ptr<WIN32_FIND_DATAW> m_entry = std::make_unique<WIN32_FIND_DATAW>();
    COwner<FindKind> m_handle;
    bool m_hasEntry = true;
};

// The size in bytes that a directory entry carries.
inline uint64_t EntrySize(const WIN32_FIND_DATAW& entry) noexcept {
    return (static_cast<uint64_t>(entry.nFileSizeHigh) << 32) + entry.nFileSizeLow;
}
