#pragma once

#include <string>

#include "sysservices/text.h"
#include "update/idownloadreceiver.h"

// Gathers a download of at most 400 bytes of UTF-8 as text.
class CTextReceiver : public IDownloadReceiver {
public:
    uint32_t OnSize(uint32_t size) override;
    bool Open(int row, const wchar_t* url) override;
    uint32_t Write(std::span<const uint8_t> bytes) override;
    uint32_t Complete() override;

    // Filled once the download is complete; never longer than 400 characters.
    const CString& Text() const noexcept { return m_text; }

private:
    std::string m_bytes;
    CString m_text;
};
