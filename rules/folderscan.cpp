#include "rules/folderscan.h"

#include "rules/garbageinfo.h"
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

CFolderScan::CFolderScan(CGarbageInfo& rule)
    : m_rule(rule),
      m_generation(rule.Generation()),
      m_everything(rule.Filter == L"*") {}

bool CFolderScan::ScanFolder(const CString& folder, bool withFiles) {
    m_path = folder;
    if (!Enter(withFiles)) return false;
    while (!m_open.empty()) {
        m_path.resize(m_open.back().pathLength);
        const bool goOn = m_open.back().search ? VisitEntry() : Leave();
        if (!goOn) return false;
    }
    return true;
}

bool CFolderScan::Enter(bool withFiles) {
    // A folder that is not allowed is skipped and counts as scanned, on purpose.
    if (!m_rule.QueryPathAllowed(m_path, withFiles)) return true;
    if (!m_everything && !m_rule.Iteration) return !withFiles || CollectFiles();
    CFileSearch search = OpenSearch();
    m_open.push_back({std::move(search), m_path.size(), withFiles});
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
        folder.search.Next();
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

CFileSearch CFolderScan::SearchFolder() {
    const size_t folderLength = m_path.size();
    AppendName(L"*");
    CFileSearch search(m_path.c_str());
    m_path.resize(folderLength);
    return search;
}

// Tried twice at most, the second time when the folder may be unlocked.
CFileSearch CFolderScan::OpenSearch() {
    CFileSearch search = SearchFolder();
    if (search || !m_rule.QueryUpgradeMode()) return search;
    UnlockPath(m_path);
    return SearchFolder();
}

CFolderScan::Descent CFolderScan::ChooseDescent(const WIN32_FIND_DATAW& entry) {
    if (entry.dwFileAttributes & kDevice) return Descent::Skip;
    if (IsDotName(entry.cFileName) || !m_rule.Iteration) return Descent::Skip;
    AppendName(entry.cFileName);
    bool onlyOwnFiles = false;
    if (!m_rule.IsExcludedPath(m_path, entry.cFileName, onlyOwnFiles)) return Descent::WithFiles;
    return onlyOwnFiles ? Descent::WithoutFiles : Descent::Skip;
}

// A folder that cannot be listed here is not tried again, on purpose.
bool CFolderScan::CollectFiles() {
    const size_t folderLength = m_path.size();
    AppendName(m_rule.Filter.c_str());
    CFileSearch search(m_path.c_str());
    for (; search; search.Next()) {
        m_path.resize(folderLength);
        if (search.Entry().dwFileAttributes & kFolderOrDevice) continue;
        if (!CollectFile(search.Entry())) return false;
    }
    m_path.resize(folderLength);
    return true;
}

bool CFolderScan::CollectFile(const WIN32_FIND_DATAW& entry) {
    if (m_rule.IsExcludedName(entry.cFileName)) return true;
    AppendName(entry.cFileName);
    return m_rule.RecordFound(m_path, EntrySize(entry), m_generation);
}
