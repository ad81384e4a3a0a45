#include "sysservices/filesearch.h"

#include <utility>

CFileSearch::CFileSearch(const wchar_t* pattern)
    : m_entry(std::make_unique<WIN32_FIND_DATAW>()),
      m_handle(FindFirstFileW(pattern, m_entry.get())),
      m_hasEntry(m_handle != INVALID_HANDLE_VALUE) {}

CFileSearch::CFileSearch(CFileSearch&& other) noexcept
    : m_entry(std::move(other.m_entry)),
      m_handle(std::exchange(other.m_handle, INVALID_HANDLE_VALUE)),
      m_hasEntry(std::exchange(other.m_hasEntry, false)) {}

bool CFileSearch::Next() noexcept {
    m_hasEntry = m_hasEntry && FindNextFileW(m_handle, m_entry.get()) != FALSE;
    return m_hasEntry;
}

void CFileSearch::Close() noexcept {
    if (m_handle != INVALID_HANDLE_VALUE) FindClose(m_handle);
}
