#include "update/internetfileproc.h"

#include <algorithm>
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
// The success line names the other operation, on purpose.
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

CString CopyPath(const CString& folder, const CString& name) {
    return JoinPath(folder, name) + L"_bak";
}

// The old file is gone when its copy cannot take the name; nothing is restored, on purpose.
uint32_t ReplaceFile(const CString& folder, const CString& name) {
    const CString target = JoinPath(folder, name);
    DeleteFileW(target.c_str());
    if (MoveFileW(CopyPath(folder, name).c_str(), target.c_str())) return kSuccess;
    DregsweepTrace(L"[InternetFileProc] Rename file in GetFileListFromURL fail,%s,%d", name.c_str(), GetLastError());
    return kListRenameFailed;
}

uint32_t ReplaceFiles(const CString& folder, const std::vector<CString>& names) {
    for (const CString& name : names) {
        if (const uint32_t result = ReplaceFile(folder, name)) return result;
    }
    return kSuccess;
}

// Never deletes a copy, on purpose: it is entered after a failure only, and goes on only while there is none.
void RemoveCopies(const CString& folder, const std::vector<CString>& names, uint32_t result) {
    for (auto name = names.begin(); name != names.end() && result == kSuccess; ++name)
        DeleteFileW(CopyPath(folder, *name).c_str());
}

}  // namespace

uint32_t CInternetFileProc::Init() noexcept {
    if (m_initialised) return kSuccess;
    uint32_t result = OpenRoots();
    // Whether or not a handle opened, on purpose.
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
    // Writes the version back every time, on purpose, changed or not.
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
        root.reset();
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
    // The code and its line never change, on purpose, whether or not the version was stored.
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
        if (m_initialised && listUrl && destFolder) result = ReplaceFileList(listUrl, destFolder);
    } catch (...) {
        result = kFileFailed;  // out of memory
    }
    return result == kSuccess ? result : Fail(L"[InternetFileProc] GetFileListFromURL fail,%s,0x%x", listUrl, result);
}

uint32_t CInternetFileProc::ReplaceFileList(const CString& listUrl, const CString& folder) {
    const size_t slash = listUrl.rfind(L'/');
    // The code of the uninitialised object, on purpose.
    if (slash == CString::npos) return kListNotReady;
    const CString baseUrl = listUrl.substr(0, slash + 1);
    const CString listPath = JoinPath(folder, listUrl.substr(slash + 1));
    if (const uint32_t result = GetFileFromURL(listUrl.c_str(), listPath.c_str())) return result;

    const Names names = ReadRuleFileList(listPath);
    uint32_t result = DownloadCopies(baseUrl, folder, names);
    if (result == kSuccess) result = ReplaceFiles(folder, names);
    if (result != kSuccess) RemoveCopies(folder, names, result);
    return result;
}

uint32_t CInternetFileProc::DownloadCopies(const CString& baseUrl, const CString& folder, const Names& names) {
    for (const CString& name : names) {
        if (const uint32_t result = DownloadCopy(baseUrl, folder, name)) return result;
    }
    return kSuccess;
}

uint32_t CInternetFileProc::DownloadCopy(const CString& baseUrl, const CString& folder, const CString& name) {
    const CString url = baseUrl + name;
    // The server chose the name: one that leaves the folder is neither asked for nor written.
    if (!IsSafeRuleFileName(name)) return Fail(kFileOperation.failTrace, url.c_str(), kFileFailed);
    return GetFileFromURL(url.c_str(), CopyPath(folder, name).c_str());
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
