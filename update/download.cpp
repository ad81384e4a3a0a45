#include "update/download.h"

#include <algorithm>

#include "sysservices/trace.h"

namespace {

constexpr DWORD kChunkLimit = 10240;
constexpr DWORD kUnknownSize = 0xFFFFFFFF;
// From the server, never from the cache.
constexpr DWORD kRequestFlags = INTERNET_FLAG_RELOAD | INTERNET_FLAG_RAW_DATA | INTERNET_FLAG_TRANSFER_BINARY;

// The low half of a code that the caller's sink asked for.
constexpr uint32_t kKindStopped = 5;

// Closes the receiver before the request is closed, also when memory runs out on the way.
class CReceiverCloser {
public:
    explicit CReceiverCloser(IDownloadReceiver& receiver) noexcept : m_receiver(receiver) {}
    ~CReceiverCloser() { m_receiver.Close(); }
    CReceiverCloser(const CReceiverCloser&) = delete;
    CReceiverCloser& operator=(const CReceiverCloser&) = delete;

private:
    IDownloadReceiver& m_receiver;
};

// Fixed for the whole transfer by what is available at its start. When that is nothing, the limit makes the first read
// decide.
DWORD ChunkSize(DWORD available) noexcept {
    return available == 0 ? kChunkLimit : std::min(available, kChunkLimit);
}

}  // namespace

uint32_t CDownload::Run() noexcept {
    // A row that failed may have set a code; the last one set is the result, whatever failed after it.
    for (int row = 0; row < std::ssize(m_roots) && !IsOver(); ++row) {
        if (!m_roots[static_cast<size_t>(row)]) continue;
        try {
            TryRow(row);
        } catch (...) {
            // Out of memory fails the row as anything else does.
        }
    }
    if (m_result != 0) DregsweepTrace(m_operation.failTrace, m_url, m_result);
    return m_result;
}

// A sink that cancels or refuses ends all rows; every other failure lets the next one try.
bool CDownload::IsOver() const noexcept {
    return m_result == 0 || (m_result & 0xFFFF) == kKindStopped;
}

void CDownload::TryRow(int row) {
    const CInetHandle request = OpenRequest(row);
    if (!request || !LearnSize(request.get())) return;
    InternetSetFilePointer(request.get(), 0, nullptr, FILE_BEGIN, 0);
    if (!QueryAvailable(row, request.get())) return;
    if (!m_receiver.Open(row, m_url)) return;
    const CReceiverCloser closer(m_receiver);
    m_chunk.resize(ChunkSize(m_available));
    Transfer(row, request.get());
}

// No status code is looked at: the body of an error page counts as the resource.
CInetHandle CDownload::OpenRequest(int row) const noexcept {
    CInetHandle request(InternetOpenUrlW(m_roots[static_cast<size_t>(row)].get(), m_url, nullptr, 0, kRequestFlags, 0));
    if (!request) DregsweepTrace(L"[InternetFileProc] InternetOpenUrl fail,%d,%s,%d", row, m_url, GetLastError());
    return request;
}

// The size only goes to the receiver; it neither bounds nor ends the transfer, and a file ignores it.
bool CDownload::LearnSize(HINTERNET request) {
    const DWORD size = InternetSetFilePointer(request, 0, nullptr, FILE_END, 0);
    DregsweepTrace(L"[InternetFileProc] InternetSetFilePointer ret 0x%x,%s,%d", size, m_url, GetLastError());
    if (size == kUnknownSize) return Passes(m_operation.sizeUnknown);
    return Passes(m_receiver.OnSize(size));
}

bool CDownload::QueryAvailable(int row, HINTERNET request) noexcept {
    if (!InternetQueryDataAvailable(request, &m_available, 0, 0)) {
        DregsweepTrace(L"[InternetFileProc] InternetQueryDataAvailable fail,%d,%s,%d", row, m_url, GetLastError());
        return false;
    }
    DregsweepTrace(L"[InternetFileProc] InternetQueryDataAvailable success,%d,%s,%d", row, m_url, m_available);
    return true;
}

void CDownload::Transfer(int row, HINTERNET request) {
    do {
        if (!Passes(m_receiver.BeforeRead()) || !ReadChunk(row, request)) return;
        if (m_read != 0 && !Passes(m_receiver.Write({m_chunk.data(), m_read}))) return;
    } while (m_read == m_chunk.size());
    // Any short read is the end of the resource, even where more was announced.
    DregsweepTrace(m_operation.successTrace, row, m_url);
    m_result = m_receiver.Complete();
}

bool CDownload::ReadChunk(int row, HINTERNET request) {
    if (InternetReadFile(request, m_chunk.data(), static_cast<DWORD>(m_chunk.size()), &m_read)) return true;
    DregsweepTrace(L"[InternetFileProc] InternetReadFile fail,%d,%s,%d", row, m_url, GetLastError());
    return false;
}

bool CDownload::Passes(uint32_t code) noexcept {
    if (code != 0) m_result = code;
    return code == 0;
}
