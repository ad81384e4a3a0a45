#include "cleaners/urlcachewalk.h"

#include <new>

bool CUrlCacheWalk::Fetch() noexcept {
    m_hasEntry = false;
    for (;;) {
        DWORD size = m_capacity;
        if (Request(size)) return m_hasEntry = true;
        if (GetLastError() != ERROR_INSUFFICIENT_BUFFER) return false;
        // "Too small" for no more than there is would come back for ever.
        if (size <= m_capacity || !Grow(size)) return false;
    }
}

// Asks for the first entry, or for the next one once there is a walk. A request refused as too small may be repeated.
// `size` receives the bytes needed.
bool CUrlCacheWalk::Request(DWORD& size) noexcept {
    if (m_walk) return FindNextUrlCacheEntryW(m_walk.get(), EntryBuffer(), &size);
    m_walk = COwner<WalkKind>(FindFirstUrlCacheEntryW(nullptr, EntryBuffer(), &size));
    return static_cast<bool>(m_walk);
}

bool CUrlCacheWalk::Grow(DWORD capacity) noexcept {
    m_buffer.reset();  // nothing in it is needed, and the two need not fit together
    m_buffer.reset(new (std::nothrow) unsigned char[capacity]);
    m_capacity = m_buffer ? capacity : 0;
    return m_buffer != nullptr;
}
