#include "update/internetfileproc.h"

#include <atomic>
#include <new>
#include <vector>

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

// A file that a list names. The paths are made before the first download, so that replacing needs no memory: once an
// old file is deleted, its copy is moved.
struct RuleFile {
    CString name;
    CString path;
    CString copyPath;
};

std::vector<RuleFile> ReadRuleFiles(const CString& listPath, const CString& folder) {
    std::vector<RuleFile> files;
    for (const CString& name : ReadRuleFileList(listPath)) {
        const CString path = JoinPath(folder, name);
        files.push_back({name, path, path + L"_bak"});
    }
    return files;
}

uint32_t DownloadCopy(IInternetFileProc& update, const CString& baseUrl, const RuleFile& file) {
    const CString url = baseUrl + file.name;
    // The server chose the name: one that leaves the folder is neither asked for nor written.
    if (!IsSafeRuleFileName(file.name)) return Fail(kFileOperation.failTrace, url.c_str(), kFileFailed);
    return update.GetFileFromURL(url.c_str(), file.copyPath.c_str());
}

uint32_t DownloadCopies(IInternetFileProc& update, const CString& baseUrl, const std::vector<RuleFile>& files) {
    for (const RuleFile& file : files) {
        if (const uint32_t result = DownloadCopy(update, baseUrl, file)) return result;
    }
    return kSuccess;
}

// The old file is gone when its copy cannot take the name; nothing is restored, on purpose. A name that is listed twice
// loses its file this way, on purpose: the second time there is no copy left to move.
uint32_t ReplaceFile(const RuleFile& file) noexcept {
    DeleteFileW(file.path.c_str());
    if (MoveFileW(file.copyPath.c_str(), file.path.c_str())) return kSuccess;
    DregsweepTrace(L"[InternetFileProc] Rename file in GetFileListFromURL fail,%s,%d", file.name.c_str(),
                   GetLastError());
    return kListRenameFailed;
}

uint32_t ReplaceFiles(const std::vector<RuleFile>& files) noexcept {
    for (const RuleFile& file : files) {
        if (const uint32_t result = ReplaceFile(file)) return result;
    }
    return kSuccess;
}

// Never deletes a copy, on purpose: it is entered after a failure only, and goes on only while there is none.
void RemoveCopies(const std::vector<RuleFile>& files, uint32_t result) noexcept {
    for (auto file = files.begin(); file != files.end() && result == kSuccess; ++file)
        DeleteFileW(file->copyPath.c_str());
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

    const std::vector<RuleFile> files = ReadRuleFiles(listPath, folder);
    uint32_t result = DownloadCopies(*this, baseUrl, files);
    if (result == kSuccess) result = ReplaceFiles(files);
    if (result != kSuccess) RemoveCopies(files, result);
    return result;
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
