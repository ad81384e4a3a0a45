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
    Enter(walk, withFiles);
    while (walk.Next()) {
        if (!walk.IsAtEntry())
            Leave(walk);
        else if (!VisitEntry(walk))
            return false;
    }
    return true;
}

void CFolderScan::Enter(CFolderWalk& walk, bool withFiles) {
    // Counts as scanned: the rest of the walk goes on.
    if (!m_client.IsAllowed(walk.Path().Text(), withFiles)) return;
    if (m_everything || m_target.recurse) {
        const bool alsoFiles = m_everything && withFiles;
        walk.Enter(ListFolder(walk), alsoFiles ? CFolderWalk::Entries::All : CFolderWalk::Entries::Folders);
        m_passes.push_back({.entersFolders = true, .filesFollow = withFiles && !m_everything});
    } else if (withFiles) {
        CollectFiles(walk);
    }
}

// Tried twice at most, the second time when the folder may be unlocked.
CFileSearch CFolderScan::ListFolder(CFolderWalk& walk) {
    CFileSearch search = walk.Search(L"*");
    if (search || !m_client.MayUnlock()) return search;
    UnlockPath(walk.Path().Exact());
    return walk.Search(L"*");
}

// Unlocks nothing: without Iteration a patterned rule finds nothing in a folder that refuses.
void CFolderScan::CollectFiles(CFolderWalk& walk) {
    walk.Enter(walk.Search(m_target.pattern));
    m_passes.push_back({.entersFolders = false, .filesFollow = false});
}

void CFolderScan::Leave(CFolderWalk& walk) {
    const Pass pass = m_passes.back();
    m_passes.pop_back();
    if (pass.filesFollow) CollectFiles(walk);
}

bool CFolderScan::VisitEntry(CFolderWalk& walk) {
    const DWORD attributes = walk.Entry().dwFileAttributes;
    // A patterned rule follows links, even out of its folder. With "*" they are passed over, links to files too.
    if (m_everything && (attributes & FILE_ATTRIBUTE_REPARSE_POINT)) return true;
    if (!(attributes & kFolderOrDevice)) return CollectFile(walk);
    if (!m_passes.back().entersFolders) return true;
    const Descent descent = ChooseDescent(walk);
    // An exclusion with Iteration keeps the files of one folder; those below are collected again.
    if (descent != Descent::Skip) Enter(walk, descent == Descent::WithFiles);
    return true;
}

CFolderScan::Descent CFolderScan::ChooseDescent(CFolderWalk& walk) const {
    const WIN32_FIND_DATAW& entry = walk.Entry();
    if (entry.dwFileAttributes & kDevice) return Descent::Skip;
    if (IsDotName(entry.cFileName) || !m_target.recurse) return Descent::Skip;
    if (m_target.excludedPaths.empty()) return Descent::WithFiles;
    const ExcludePathEntry* exclusion =
        FindExcludePath(m_target.excludedPaths, walk.Path().Text(), ToLower(entry.cFileName));
    if (!exclusion) return Descent::WithFiles;
    return exclusion->iteration ? Descent::WithoutFiles : Descent::Skip;
}

bool CFolderScan::CollectFile(CFolderWalk& walk) {
    const bool isExcluded = !m_target.excludedNames.empty() && m_target.excludedNames.contains(walk.Name());
    return isExcluded || m_client.Found(walk.Path(), EntrySize(walk.Entry()));
}
