#pragma once

#include <windows.h>
#include <wininet.h>

#include <memory>

#include "sysservices/owner.h"

// One enumeration of the whole WinINet URL cache of the current user, closed when it goes out of scope. Its buffer
// grows to the largest entry met and never shrinks. Deleting the entry at hand is allowed.
//
//     for (CUrlCacheWalk walk; walk; walk.Next()) Use(walk.Entry());
class CUrlCacheWalk {
public:
    // Fetches the first entry; nothing is found either when memory is short.
    CUrlCacheWalk() noexcept { Grow(kFirstCapacity) && Fetch(); }
    CUrlCacheWalk(const CUrlCacheWalk&) = delete;
    CUrlCacheWalk& operator=(const CUrlCacheWalk&) = delete;

    // True while Entry() holds an entry.
    explicit operator bool() const noexcept { return m_hasEntry; }
    // Moves to the next entry; false at the end, and after any error.
    bool Next() noexcept { return Fetch(); }
    // Valid until Next.
    const INTERNET_CACHE_ENTRY_INFOW& Entry() const noexcept { return *EntryBuffer(); }

private:
    static constexpr DWORD kFirstCapacity = 4096;

    struct WalkKind {
        using Value = HANDLE;
        static void GiveBack(HANDLE walk) noexcept { FindCloseUrlCache(walk); }
    };

    INTERNET_CACHE_ENTRY_INFOW* EntryBuffer() const noexcept {
        return reinterpret_cast<INTERNET_CACHE_ENTRY_INFOW*>(m_buffer.get());
    }
    bool Fetch() noexcept;
    bool Request(DWORD& size) noexcept;
    bool Grow(DWORD capacity) noexcept;

    std::unique_ptr<unsigned char[]> m_buffer;
    DWORD m_capacity = 0;  // bytes
    COwner<WalkKind> m_walk;
    bool m_hasEntry = false;
};
