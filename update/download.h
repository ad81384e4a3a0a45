#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "update/idownloadreceiver.h"
#include "update/inethandle.h"

// What tells the three download operations apart, besides their receivers.
struct DownloadOperation {
    uint32_t notReady;            // code: not initialised, or an argument is missing
    uint32_t failed;              // code: no row delivered the resource
    uint32_t sizeUnknown;         // code: the size query failed
    const wchar_t* successTrace;  // format for row and address
    const wchar_t* failTrace;     // format for address and result
};

// Fetches one resource: tries the rows in order until one delivers it whole.
class CDownload {
public:
    // `roots` are the root handles by row, null where a row is not to be tried. Everything is borrowed.
    CDownload(std::span<const CInetHandle> roots, const wchar_t* url, const DownloadOperation& operation,
              IDownloadReceiver& receiver) noexcept
        : m_roots(roots),
          m_url(url),
          m_operation(operation),
          m_receiver(receiver),
          m_result(operation.failed) {}

    // The last code that was set: 0 when the resource arrived.
    uint32_t Run() noexcept;

private:
    bool IsOver() const noexcept;
    void TryRow(int row);
    CInetHandle OpenRequest(int row) const noexcept;
    bool LearnSize(HINTERNET request);
    bool QueryAvailable(int row, HINTERNET request) noexcept;
    void Transfer(int row, HINTERNET request);
    bool ReadChunk(int row, HINTERNET request);
    // True when the row may go on; otherwise the code becomes the result.
    bool Passes(uint32_t code) noexcept;

    std::span<const CInetHandle> m_roots;
    const wchar_t* m_url;
    const DownloadOperation& m_operation;
    IDownloadReceiver& m_receiver;
    uint32_t m_result;
    // What WinINet writes into. An asynchronous request may do so until it is closed, so these outlive every request.
    DWORD m_available = 0;
    DWORD m_read = 0;
    std::vector<uint8_t> m_chunk;
};
