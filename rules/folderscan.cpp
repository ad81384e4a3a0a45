#include "rules/folderscan.h"

#include <utility>

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
    m_passes.clear();
    CFolderWalk walk(folder);
    EnterIfAllowed(walk, withFiles);
    while (walk.Next()) {
        if (!walk.IsAtEntry())
            EndPass(walk);
        else if (!VisitEntry(walk))
            return false;
    }
    return true;
}

void CFolderScan::EnterIfAllowed(CFolderWalk& walk, bool withFiles) {
    // Counts as scanned: the rest of the walk goes on.
    if (!m_client.IsAllowed(walk.Path().Text(), withFiles)) return;
    if (m_everything) return Begin(walk, ListFolder(walk), withFiles ? Pass::Everything : Pass::Folders);
    if (m_target.recurse) return Begin(walk, ListFolder(walk), withFiles ? Pass::FoldersThenFiles : Pass::Folders);
    // Unlocks nothing: without Iteration a patterned rule finds nothing in a folder that refuses.
    if (withFiles) Begin(walk, walk.Search(m_target.pattern), Pass::Files);
}

void CFolderScan::Begin(CFolderWalk& walk, CFileSearch search, Pass pass) {
    const bool withFiles = pass == Pass::Everything || pass == Pass::Files;
    walk.Enter(std::move(search), withFiles ? CFolderWalk::Entries::All : CFolderWalk::Entries::Folders);
    m_passes.push_back(pass);
}

// Tried twice at most, the second time when the folder may be unlocked.
CFileSearch CFolderScan::ListFolder(const CFolderWalk& walk) {
    CFileSearch search = walk.Search(L"*");
    if (search || !m_client.MayUnlock()) return search;
    UnlockPath(walk.Path().Exact());
    return walk.Search(L"*");
}

void CFolderScan::EndPass(CFolderWalk& walk) {
    const Pass pass = m_passes.back();
    m_passes.pop_back();
    if (pass == Pass::FoldersThenFiles) Begin(walk, walk.Search(m_target.pattern), Pass::Files);
}

bool CFolderScan::VisitEntry(CFolderWalk& walk) {
    const DWORD attributes = walk.Entry().dwFileAttributes;
    // A patterned rule follows links, even out of its folder. With "*" they are passed over, links to files too.
    if (m_everything && (attributes & FILE_ATTRIBUTE_REPARSE_POINT)) return true;
    if (!(attributes & kFolderOrDevice)) return CollectFile(walk);
    if (m_passes.back() == Pass::Files) return true;
    const Descent descent = ChooseDescent(walk);
    // An exclusion with Iteration keeps the files of one folder; those below are collected again.
    if (descent != Descent::Skip) EnterIfAllowed(walk, descent == Descent::WithFiles);
    return true;
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

bool CFolderScan::CollectFile(const CFolderWalk& walk) {
    const bool isExcluded = !m_target.excludedNames.empty() && m_target.excludedNames.contains(walk.Name());
    return isExcluded || m_client.Found(walk.Path(), EntrySize(walk.Entry()));
}
