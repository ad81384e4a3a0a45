#pragma once

#include <cstdint>
#include <span>

// What a download does with the resource. The operations run in this order for every row that is tried; one that
// returns a code fails the row with it, and a code of the kind "stopped" ends the download.
class IDownloadReceiver {
public:
    virtual ~IDownloadReceiver() = default;
    // Told the announced size in bytes.
    virtual uint32_t OnSize(uint32_t /*size*/) { return 0; }
    // The first bytes are at hand; false, traced with the row and the address, fails the row without a code.
    virtual bool Open(int /*row*/, const wchar_t* /*url*/) { return true; }
    virtual uint32_t BeforeRead() { return 0; }
    virtual uint32_t Write(std::span<const uint8_t> bytes) = 0;
    // The resource is complete. What this returns is the result of the download.
    virtual uint32_t Complete() = 0;
    // The row ends, however it went; follows every Open that returned true.
    virtual void Close() noexcept {}
};
