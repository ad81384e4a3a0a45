#include "update/internetfileproc.h"

#include <atomic>
#include <new>

#include "sysservices/trace.h"
#include "update/configversion.h"
#include "update/download.h"
#include "update/filereceiver.h"
#include "update/openprofile.h"
#include "update/rulefilelist.h"
#include "update/sinkreceiver.h"
#include "update/textreceiver.h"

namespace {

using namespace InternetFileResult;

constexpr DownloadOperation kFileOperation = {kFileNotReady, kFileFailed, kFileSizeUnknown,
                                              L"[InternetFileProc] GetFileFromURL success,%d,%s",
                                              L"[InternetFileProc] GetFileFromURL fail,%s,0x%x"};
// The success line is that of the operation above: a trace does not tell the two apart.
constexpr DownloadOperation kBufOperation = {kBufNotReady, kBufFailed, kBufSizeUnknown,
                                             L"[InternetFileProc] GetFileFromURL success,%d,%s",
                                             L"[InternetFileProc] GetFileBufFromURL fail,%s,0x%x"};
constexpr DownloadOperation kStreamOperation = {kStreamNotReady, kStreamFailed, kStreamSizeUnknown,
                                                L"[InternetFileProc] GetStreamFileInfo success,%d,%s",
                                                L"[InternetFileProc] GetStreamFileInfo fail,%s,0x%x"};

// Traces the failure of an operation that ends with an address and a code, and passes the code on.
uint32_t Fail(const wchar_t* format, const wchar_t* url, uint32_t result) noexcept {
    DregsweepTrace(format, url ? url : L"", result);
    return result;
}

// WinINet's own threads go on when all handles are closed: its code must stay when a host unloads the engine, which may
// be the only one that holds it.
void KeepWinInetLoaded() noexcept {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN, L"wininet.dll", &module);
}

}  // namespace

uint32_t CInternetFileProc::Init() noexcept {
    if (m_initialised) return kSuccess;
    KeepWinInetLoaded();
    uint32_t result = OpenRoots();
    // Also when no handle opened: the version is one for the whole process.
    if (!LoadVersion()) result = kInitNoHandle;
    m_initialised = result == kSuccess;
    if (!m_initialised) {
        CloseRoots();
        DregsweepTrace(L"[InternetFileProc] Init fail,0x%x", result);
    }
    return result;
}

uint32_t CInternetFileProc::Uninit() noexcept {
    if (!m_initialised) return kUninitNotReady;
    CloseRoots();
    SetConfigVersion(CurrentConfigVersion());
    m_initialised = false;
    return kSuccess;
}

uint32_t CInternetFileProc::OpenRoots() noexcept {
    uint32_t result = kInitNoHandle;
    int row = 0;
    for (const OpenProfile& profile : OpenProfiles()) {
        CInetHandle& root = m_roots[static_cast<size_t>(row)];
        root = OpenRoot(profile);
        if (root)
            result = kSuccess;
        else
            DregsweepTrace(L"[InternetFileProc] InternetOpen fail,%d,%d", row, GetLastError());
        ++row;
    }
    return result;
}

void CInternetFileProc::CloseRoots() noexcept {
    for (CInetHandle& root : m_roots)
        root = {};
}

// False when there is no memory for the path.
bool CInternetFileProc::LoadVersion() noexcept {
    try {
        m_iniPath = ConfigIniPath();
    } catch (...) {
        return false;
    }
    LoadConfigVersion(m_iniPath);
    return true;
}

uint32_t CInternetFileProc::GetCurConfigVersion(uint32_t* version) noexcept {
    const uint32_t current = CurrentConfigVersion();
    const uint32_t result = m_initialised && version ? kSuccess : kCurVersionNotReady;
    if (result == kSuccess) *version = current;
    DregsweepTrace(L"[InternetFileProc] GetCurConfigVersion version : %d,ret 0x%x", current, result);
    return result;
}

uint32_t CInternetFileProc::SetConfigVersion(uint32_t version) noexcept {
    if (m_initialised) StoreConfigVersion(m_iniPath, version);
    // The code and its line never change, whether or not the version was stored.
    DregsweepTrace(L"[InternetFileProc] SetConfigVersion fail 0x%x,last err : %d", kSetVersionAlways, GetLastError());
    return kSetVersionAlways;
}

uint32_t CInternetFileProc::GetWanConfigVersion(const wchar_t* url, uint32_t* version) noexcept {
    StreamText text;
    const bool ready = m_initialised && url && version;
    const uint32_t result = ready ? GetStreamFileInfo(url, &text) : kWanVersionNotReady;
    if (result == kSuccess) {
        *version = ParseConfigVersion(text);
        return kSuccess;
    }
    DregsweepTrace(L"[InternetFileProc] GetWanConfigVersion fail 0x%x,%s,last err : %d", result, url ? url : L"",
                   GetLastError());
    return result;
}

uint32_t CInternetFileProc::GetFileFromURL(const wchar_t* url, const wchar_t* localPath) noexcept {
    if (!m_initialised || !url || !localPath) return Fail(kFileOperation.failTrace, url, kFileOperation.notReady);
    CFileReceiver receiver(localPath);
    return CDownload(m_roots, url, kFileOperation, receiver).Run();
}

uint32_t CInternetFileProc::GetFileBufFromURL(const wchar_t* url, IInternetDataSink* sink) noexcept {
    if (!m_initialised || !url || !sink) return Fail(kBufOperation.failTrace, url, kBufOperation.notReady);
    CSinkReceiver receiver(sink);
    return CDownload(m_roots, url, kBufOperation, receiver).Run();
}

uint32_t CInternetFileProc::GetStreamFileInfo(const wchar_t* url, StreamText* text) noexcept {
    if (!m_initialised || !url || !text) return Fail(kStreamOperation.failTrace, url, kStreamOperation.notReady);
    CTextReceiver receiver;
    const uint32_t result = CDownload(m_roots, url, kStreamOperation, receiver).Run();
    if (result == kSuccess) (*text)[receiver.Text().copy(*text, kStreamTextCapacity - 1)] = L'\0';
    return result;
}

uint32_t CInternetFileProc::GetFileListFromURL(const wchar_t* listUrl, const wchar_t* destFolder) noexcept {
    uint32_t result = kListNotReady;
    try {
        if (m_initialised && listUrl && destFolder) result = ReplaceRuleFiles(*this, listUrl, destFolder);
    } catch (...) {
        result = kFileFailed;  // out of memory
    }
    return result == kSuccess ? result : Fail(L"[InternetFileProc] GetFileListFromURL fail,%s,0x%x", listUrl, result);
}

namespace {

// Counts its references itself, because the base destroys an object whose count reaches 0.
class CSharedInternetFileProc final : public CInternetFileProc {
public:
    uint32_t AddRef() noexcept override { return m_sharedReferences.fetch_add(1) + 1; }
    uint32_t Release() noexcept override { return m_sharedReferences.fetch_sub(1) - 1; }

private:
    std::atomic<uint32_t> m_sharedReferences{1};
};

CSharedInternetFileProc* g_shared = nullptr;

}  // namespace

IInternetFileProc* SharedInternetFileProc() noexcept {
    if (g_shared) {
        g_shared->AddRef();
        return g_shared;
    }
    g_shared = new (std::nothrow) CSharedInternetFileProc;
    return g_shared;
}
