#include "rules/folderscan.h"

#include "sysservices/fileaccess.h"

namespace {

constexpr DWORD kDevice = FILE_ATTRIBUTE_DEVICE;
constexpr DWORD kFolderOrDevice = FILE_ATTRIBUTE_DIRECTORY | kDevice;

// Besides "." and ".." this passes over every two-character name that ends in a dot, on purpose.
bool IsDotName(const wchar_t* name) noexcept {
    if (name[0] == L'.' && name[1] == L'\0') return true;
    return name[0] != L'\0' && name[1] == L'.' && name[2] == L'\0';
}

}  // namespace

CFolderScan::CFolderScan(const FolderScanTarget& target, IFolderScanClient& client)
    : m_target(target),
      m_client(client),
      m_everything(target.pattern == L"*"),
      m_path(CString()) {}

bool CFolderScan::ScanFolder(const CFoundPath& folder, bool withFiles) {
    m_path = folder;
    if (!Enter(withFiles)) return false;
    while (!m_open.empty()) {
        m_path.Return(m_open.back().place);
        const bool goOn = m_open.back().search ? VisitEntry() : Leave();
        if (!goOn) return false;
    }
    return true;
}

bool CFolderScan::Enter(bool withFiles) {
    // A folder that is not allowed is skipped and counts as scanned, on purpose.
    if (!m_client.IsAllowed(m_path.Text(), withFiles)) return true;
    if (!m_everything && !m_target.recurse) return !withFiles || CollectFiles();
    CFileSearch search = OpenSearch();
    m_open.push_back({std::move(search), m_path.Here(), withFiles});
    return true;
}

bool CFolderScan::VisitEntry() {
    OpenFolder& folder = m_open.back();
    const WIN32_FIND_DATAW& entry = folder.search.Entry();
    // Links are followed by patterned rules, but not in the pass over everything; this asymmetry is on purpose.
    if (m_everything && (entry.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT)) {
        folder.search.Next();
        return true;
    }
    if (!(entry.dwFileAttributes & kFolderOrDevice)) {
        const bool goOn = !m_everything || !folder.withFiles || CollectFile(entry);
        if (goOn) folder.search.Next();
        return goOn;
    }
    const Descent descent = ChooseDescent(entry);
    folder.search.Next();
    // With their files also below a folder whose own files are left out, on purpose.
    return descent == Descent::Skip || Enter(descent == Descent::WithFiles);
}

bool CFolderScan::Leave() {
    const bool withFiles = m_open.back().withFiles;
    m_open.pop_back();
    return m_everything || !withFiles || CollectFiles();
}

CFileSearch CFolderScan::Search(std::wstring_view pattern) {
    const CFoundPath::Place folder = m_path.Here();
    m_path.AppendWritten(pattern);
    CFileSearch search(m_path.Exact().c_str());
    m_path.Return(folder);
    return search;
}

// Tried twice at most, the second time when the folder may be unlocked.
CFileSearch CFolderScan::OpenSearch() {
    CFileSearch search = Search(L"*");
    if (search || !m_client.MayUnlock()) return search;
    UnlockPath(m_path.Exact());
    return Search(L"*");
}

CFolderScan::Descent CFolderScan::ChooseDescent(const WIN32_FIND_DATAW& entry) {
    if (entry.dwFileAttributes & kDevice) return Descent::Skip;
    if (IsDotName(entry.cFileName) || !m_target.recurse) return Descent::Skip;
    m_path.AppendReturned(entry.cFileName);
    if (m_target.excludedPaths.empty()) return Descent::WithFiles;
    const ExcludePathEntry* exclusion =
        FindExcludePath(m_target.excludedPaths, m_path.Text(), ToLower(entry.cFileName));
    if (!exclusion) return Descent::WithFiles;
    return exclusion->iteration ? Descent::WithoutFiles : Descent::Skip;
}

// A folder that cannot be listed here is not tried again, on purpose.
bool CFolderScan::CollectFiles() {
    const CFoundPath::Place folder = m_path.Here();
    for (CFileSearch search = Search(m_target.pattern); search; search.Next()) {
        if (search.Entry().dwFileAttributes & kFolderOrDevice) continue;
        if (!CollectFile(search.Entry())) return false;
        m_path.Return(folder);
    }
    return true;
}

bool CFolderScan::CollectFile(const WIN32_FIND_DATAW& entry) {
    if (!m_target.excludedNames.empty() && m_target.excludedNames.contains(std::wstring_view(entry.cFileName)))
        return true;
    m_path.AppendReturned(entry.cFileName);
    return m_client.Found(m_path, EntrySize(entry));
}
