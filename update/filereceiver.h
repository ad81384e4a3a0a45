#pragma once

#include "sysservices/handle.h"
#include "update/idownloadreceiver.h"

// Writes a download into a file. A row that fails after it created the file deletes it again.
class CFileReceiver : public IDownloadReceiver {
public:
    // The path is borrowed.
    explicit CFileReceiver(const wchar_t* path) noexcept : m_path(path) {}

    bool Open(int row, const wchar_t* url) override;
    uint32_t Write(std::span<const uint8_t> bytes) override;
    uint32_t Complete() override;
    void Close() noexcept override;

private:
    const wchar_t* m_path;
    CHandle m_file;
    bool m_complete = false;
};
