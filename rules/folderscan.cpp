#include "rules/folderscan.h"

#include "sysservices/fileaccess.h"

namespace {

constexpr DWORD kDevice = FILE_ATTRIBUTE_DEVICE;
constexpr DWORD kFolderOrDevice = FILE_ATTRIBUTE_DIRECTORY | kDevice;

// Takes every two-character name that ends in a dot for "..": a folder "a." is not scanned.
bool IsDotName(const wchar_t* name) noexcept {
    return name[0] != L'\0' && name[1] == L'.' && name[2] == L'\0';
}

}  // namespace

CFolderScan::CFolderScan(const FolderScanTarget& target, IFolderScanClient& client)
    : m_target(target),
      m_client(client),
      m_everything(target.pattern == L"*") {}

bool CFolderScan::ScanFolder(const CFoundPath& folder, bool withFiles) {
    CFolderWalk walk(folder);
    if (!Enter(walk, withFiles)) return false;
    while (walk.Next()) {
        const bool goOn = walk.IsAtEntry() ? VisitEntry(walk) : Leave(walk.Path());
        if (!goOn) return false;
    }
    return true;
}

bool CFolderScan::Enter(CFolderWalk& walk, bool withFiles) {
    // Counts as scanned: the rest of the walk goes on.
    if (!m_client.IsAllowed(walk.Path().Text(), withFiles)) return true;
    if (!m_everything && !m_target.recurse) return !withFiles || CollectFiles(walk.Path());
    walk.Enter(OpenSearch(walk));
    m_withFiles.push_back(withFiles);
    return true;
}

// Tried twice at most, the second time when the folder may be unlocked.
CFileSearch CFolderScan::OpenSearch(CFolderWalk& walk) {
    CFileSearch search = walk.Search(L"*");
    if (search || !m_client.MayUnlock()) return search;
    UnlockPath(walk.Path().Exact());
    return walk.Search(L"*");
}

bool CFolderScan::VisitEntry(CFolderWalk& walk) {
    const DWORD attributes = walk.Entry().dwFileAttributes;
    // A patterned rule follows links, even out of its folder. With "*" they are passed over, links to files too.
    if (m_everything && (attributes & FILE_ATTRIBUTE_REPARSE_POINT)) return true;
    if (!(attributes & kFolderOrDevice)) return !m_everything || !m_withFiles.back() || CollectFile(walk);
    const Descent descent = ChooseDescent(walk);
    // An exclusion with Iteration keeps the files of one folder; those below are collected again.
    return descent == Descent::Skip || Enter(walk, descent == Descent::WithFiles);
}

CFolderScan::Descent CFolderScan::ChooseDescent(const CFolderWalk& walk) const {
    const WIN32_FIND_DATAW& entry = walk.Entry();
    if (entry.dwFileAttributes & kDevice) return Descent::Skip;
    if (IsDotName(entry.cFileName) || !m_target.recurse) return Descent::Skip;
    if (m_target.excludedPaths.empty()) return Descent::WithFiles;
    const ExcludePathEntry* exclusion =
        FindExcludePath(m_target.excludedPaths, walk.Path().Text(), ToLower(entry.cFileName));
    if (!exclusion) return Descent::WithFiles;
    return exclusion->iteration ? Descent::WithoutFiles : Descent::Skip;
}

bool CFolderScan::Leave(const CFoundPath& folder) {
    const bool withFiles = m_withFiles.back();
    m_withFiles.pop_back();
    return m_everything || !withFiles || CollectFiles(folder);
}

// Unlocks nothing: without Iteration a patterned rule finds nothing in a folder that refuses.
bool CFolderScan::CollectFiles(const CFoundPath& folder) {
    CFolderWalk files(folder);
    for (files.Enter(files.Search(m_target.pattern)); files.Next() && files.IsAtEntry();) {
        if (files.Entry().dwFileAttributes & kFolderOrDevice) continue;
        if (!CollectFile(files)) return false;
    }
    return true;
}

bool CFolderScan::CollectFile(const CFolderWalk& walk) {
    const WIN32_FIND_DATAW& entry = walk.Entry();
    const bool isExcluded =
        !m_target.excludedNames.empty() && m_target.excludedNames.contains(std::wstring_view(entry.cFileName));
    return isExcluded || m_client.Found(walk.Path(), EntrySize(entry));
}
