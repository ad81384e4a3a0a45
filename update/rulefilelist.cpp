#include "update/rulefilelist.h"

#include <algorithm>
#include <string>

#include "sysservices/handle.h"
#include "sysservices/trace.h"
#include "update/iinternetfileproc.h"

namespace {

using namespace InternetFileResult;

constexpr LONGLONG kListSizeLimit = 20480;

// The whole file, or nothing: whatever goes wrong gives an empty list, which replaces nothing and is no failure.
std::string ReadListBytes(const CString& path) {
    const CHandle file(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                   FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) return {};
    LARGE_INTEGER size = {};
    if (!GetFileSizeEx(file.get(), &size) || size.QuadPart < 1 || size.QuadPart >= kListSizeLimit) return {};
    std::string bytes(static_cast<size_t>(size.QuadPart), '\0');
    DWORD read = 0;
    const bool whole = ReadFile(file.get(), bytes.data(), size.LowPart, &read, nullptr) && read == size.LowPart;
    return whole ? bytes : std::string();
}

// Components like ".. " and "..." are refused with it, as a precaution.
bool IsParentComponent(std::wstring_view component) {
    return component.starts_with(L"..") && component.find_first_not_of(L". ") == std::wstring_view::npos;
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
    if (!IsSafeRuleFileName(file.name)) {
        DregsweepTrace(L"[InternetFileProc] GetFileFromURL fail,%s,0x%x", url.c_str(), kFileFailed);
        return kFileFailed;
    }
    return update.GetFileFromURL(url.c_str(), file.copyPath.c_str());
}

uint32_t DownloadCopies(IInternetFileProc& update, const CString& baseUrl, const std::vector<RuleFile>& files) {
    for (const RuleFile& file : files) {
        if (const uint32_t result = DownloadCopy(update, baseUrl, file)) return result;
    }
    return kSuccess;
}

// The old file is gone when its copy cannot take the name; nothing is restored. A name that is listed twice loses its
// file this way: the second time there is no copy left to move.
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

// Never deletes a copy: it is entered after a failure only, and goes on only while there is none. So after a failure
// every copy that was downloaded stays in the folder.
void RemoveCopies(const std::vector<RuleFile>& files, uint32_t result) noexcept {
    for (auto file = files.begin(); file != files.end() && result == kSuccess; ++file)
        DeleteFileW(file->copyPath.c_str());
}

}  // namespace

std::vector<CString> ReadRuleFileList(const CString& path) {
    // A zero byte ends the text.
    const CString text = Utf8ToWide(ReadListBytes(path).c_str());
    const bool marked = !text.empty() && (text[0] == 0xFEFF || text[0] == 0xFFFE);
    // The pieces keep their blanks: they are part of the name.
    return Split(std::wstring_view(text).substr(marked ? 1 : 0), L"\r\n");
}

bool IsSafeRuleFileName(std::wstring_view name) {
    if (name.empty() || name[0] == L'\\' || name[0] == L'/') return false;
    if (name.find(L':') != std::wstring_view::npos) return false;
    return std::ranges::none_of(Split(name, L"\\/"), IsParentComponent);
}

uint32_t ReplaceRuleFiles(IInternetFileProc& update, const CString& listUrl, const CString& folder) {
    const size_t slash = listUrl.rfind(L'/');
    // The code of the uninitialised object: hosts cannot tell the two apart.
    if (slash == CString::npos) return kListNotReady;
    const CString baseUrl = listUrl.substr(0, slash + 1);
    const CString listPath = JoinPath(folder, listUrl.substr(slash + 1));
    if (const uint32_t result = update.GetFileFromURL(listUrl.c_str(), listPath.c_str())) return result;

    const std::vector<RuleFile> files = ReadRuleFiles(listPath, folder);
    uint32_t result = DownloadCopies(update, baseUrl, files);
    if (result == kSuccess) result = ReplaceFiles(files);
    if (result != kSuccess) RemoveCopies(files, result);
    return result;
}
