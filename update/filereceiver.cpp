#include "update/filereceiver.h"

#include "sysservices/trace.h"

bool CFileReceiver::Open(int row, const wchar_t* url) {
    m_file = CHandle(
        CreateFileW(m_path, GENERIC_WRITE, /*share=*/0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!m_file) DregsweepTrace(L"[InternetFileProc] CreateFile fail,%d,%s,%d", row, url, GetLastError());
    return static_cast<bool>(m_file);
}

uint32_t CFileReceiver::Write(std::span<const uint8_t> bytes) {
    DWORD written = 0;
    // Not checked: the download succeeds even where the disk takes less.
    WriteFile(m_file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
    return 0;
}

uint32_t CFileReceiver::Complete() {
    m_complete = true;
    return 0;
}

// Runs only in a row that created the file: a row that failed before leaves an older file alone.
void CFileReceiver::Close() noexcept {
    m_file = CHandle();
    if (!m_complete) DeleteFileW(m_path);
}
