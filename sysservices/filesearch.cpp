#include "sysservices/filesearch.h"

CFileSearch::CFileSearch(const wchar_t* pattern)
    : m_entry(std::make_unique<WIN32_FIND_DATAW>()),
      m_handle(FindFirstFileW(pattern, m_entry.get())) {}
