#include "sysservices/shellitemproc.h"

#include "sysservices/folderwalk.h"

namespace {

constexpr SHCONTF kSubfolders = SHCONTF_FOLDERS | SHCONTF_INCLUDEHIDDEN;
constexpr SHCONTF kAllItems = kSubfolders | SHCONTF_NONFOLDERS;

// Some drivers list their devices as entries; like folders they are no files.
bool IsFolder(const WIN32_FIND_DATAW& entry) noexcept {
    return (entry.dwFileAttributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE)) != 0;
}

// Links are never entered: a junction would lead a walk out of its folder or round in a circle.
bool MayEnter(const WIN32_FIND_DATAW& entry) noexcept {
    return IsFolder(entry) && !(entry.dwFileAttributes & (FILE_ATTRIBUTE_REPARSE_POINT | FILE_ATTRIBUTE_DEVICE));
}

// Empty when the item has no file-system path. A path that is empty counts as none: walked, it would be the root of
// the current drive.
CString FileSystemPath(LPCITEMIDLIST item) {
    wchar_t path[MAX_PATH] = {};
    return item && SHGetPathFromIDListW(item, path) ? path : CString();
}

// Hands each item's child list to `visit`; returns its last answer, true when there was none. False stops.
template <class Visit>
bool ForEachItem(const CReference<IShellFolder2>& folder, SHCONTF flags, Visit visit) {
    CReference<IEnumIDList> items;
    folder->EnumObjects(nullptr, flags, items.Put());
    bool goOn = true;
    // A folder without items may succeed and hand out no enumerator.
    while (goOn && items) {
        CItemIdList child;
        ULONG fetched = 0;
        if (items->Next(1, child.Put(), &fetched) != S_OK || !child) break;
        goOn = visit(child);
    }
    return goOn;
}

}  // namespace

CShellItemProc::CShellItemProc(LPCITEMIDLIST pidl, bool wholeItemMode, HRESULT& result) noexcept
    : m_pidl(pidl),
      m_wholeItemMode(wholeItemMode) {
    CReference<IShellFolder> desktop;
    result = SHGetDesktopFolder(desktop.Put());
    if (SUCCEEDED(result)) result = desktop->BindToObject(pidl, nullptr, IID_IShellFolder2, m_folder.PutVoid());
    m_info.Load(pidl);
}

bool CShellItemProc::Walk(FileCallback onFile, FolderCallback onFolder, void* context) const {
    return WalkLevel({onFile, onFolder, context}, 1);
}

bool CShellItemProc::ListItems(ItemCallback onItem, void* context) const {
    if (!m_folder || !onItem) return true;
    return ForEachItem(m_folder, kAllItems, [&](CItemIdList& child) {
        const CItemIdList item = CItemIdList::Combine(m_pidl, child.get());
        return onItem(CShellFileInfo(item.get()).Get(), child, context);
    });
}

bool CShellItemProc::InvokeDelete(LPCITEMIDLIST childPidl) const noexcept {
    if (!m_folder || !childPidl) return false;
    CReference<IContextMenu> menu;
    m_folder->GetUIObjectOf(nullptr, 1, &childPidl, IID_IContextMenu, nullptr, menu.PutVoid());
    if (!menu) return false;

    // Without CMIC_MASK_FLAG_NO_UI the shell may ask the user; the run waits for the answer.
    CMINVOKECOMMANDINFO command = {};
    command.cbSize = sizeof command;
    command.hwnd = GetDesktopWindow();
    command.lpVerb = "Delete";
    command.nShow = SW_SHOWNORMAL;
    return SUCCEEDED(menu->InvokeCommand(&command));
}

bool CShellItemProc::IsRecycleBin() const noexcept {
    if (!m_wholeItemMode) return false;
    // Compared by bytes: the shell's own comparison may go by name, and a rule on another virtual folder must not empty
    // every bin of the machine. Lists of special folders are the same bytes each time.
    CItemIdList bin;
    if (FAILED(SHGetSpecialFolderLocation(nullptr, CSIDL_BITBUCKET, bin.Put()))) return false;
    return CItemIdList::SameBytes(m_pidl, bin.get());
}

bool CShellItemProc::EmptyRecycleBin() const noexcept {
    if (!IsRecycleBin()) return false;
    // Without a root the bins of all drives. The result does not tell: the call fails on bins that are empty already.
    constexpr DWORD kSilently = SHERB_NOCONFIRMATION | SHERB_NOPROGRESSUI | SHERB_NOSOUND;
    (void)SHEmptyRecycleBinW(nullptr, /*root=*/nullptr, kSilently);
    return true;
}

bool CShellItemProc::WalkFolder(const CString& path, FileCallback onFile, FolderCallback onFolder, void* context,
                                bool recurse) {
    if (!onFile || !onFolder) return true;
    CFolderWalk walk{CFoundPath(path)};
    bool goOn = true;
    // Stopped, only the outstanding folders are left.
    for (walk.Enter(); goOn ? walk.Next() : walk.Leave();) {
        const wchar_t* const at = walk.Path().Text().c_str();
        if (!walk.IsAtEntry())
            onFolder(at, L"", nullptr, context);  // the notice that the folder is done
        else if (!IsFolder(walk.Entry()))
            goOn = onFile(0, at, walk.Entry(), context);
        else if (recurse && MayEnter(walk.Entry()) && onFolder(at, walk.Entry().cFileName, &walk.Entry(), context))
            walk.Enter();
    }
    return goOn;
}

bool CShellItemProc::OfferFolder(const CString& path, const wchar_t* name, const WIN32_FIND_DATAW* findData,
                                 const Callbacks& callbacks) {
    if (!callbacks.onFolder(path.c_str(), name, findData, callbacks.context)) return true;
    return WalkFolder(path, callbacks.onFile, callbacks.onFolder, callbacks.context, /*recurse=*/true);
}

bool CShellItemProc::WalkLevel(const Callbacks& callbacks, int depth) const {
    if (!m_folder || !callbacks.onFile || !callbacks.onFolder) return true;

    CString path = FileSystemPath(m_pidl);
    if (!path.empty()) {
        if (path.back() == L'\\') path.pop_back();
        return OfferFolder(path, path.c_str(), nullptr, callbacks);
    }
    return ForEachItem(m_folder, m_pidl ? kAllItems : kSubfolders,
                       [&](const CItemIdList& child) { return WalkItem(child.get(), callbacks, depth); });
}

bool CShellItemProc::WalkItem(LPCITEMIDLIST child, const Callbacks& callbacks, int depth) const {
    const CItemIdList item = CItemIdList::Combine(m_pidl, child);
    const CString path = FileSystemPath(item.get());
    if (path.empty()) return WalkVirtualItem(item.get(), callbacks, depth);
    // Without a list of its own the folder was asked for subfolders only.
    if (!m_pidl) return OfferFolder(path, L"", nullptr, callbacks);
    return WalkFileItem(path, callbacks);
}

bool CShellItemProc::WalkFileItem(const CString& path, const Callbacks& callbacks) const {
    const CFileSearch search(path.c_str());
    // What cannot be read is skipped; drives too, since no search finds the root of one.
    if (!search) return true;
    const WIN32_FIND_DATAW& entry = search.Entry();
    // Directories and links too, each as one item.
    if (m_wholeItemMode) return callbacks.onFile(0, path.c_str(), entry, callbacks.context);
    if (MayEnter(entry)) return OfferFolder(path, entry.cFileName, &entry, callbacks);
    // Plain files of a virtual folder are passed over.
    return true;
}

bool CShellItemProc::WalkVirtualItem(LPCITEMIDLIST item, const Callbacks& callbacks, int depth) {
    if (depth == kMaxVirtualDepth) return true;
    HRESULT bound = E_FAIL;
    const CShellItemProc child(item, /*wholeItemMode=*/false, bound);
    return child.WalkLevel(callbacks, depth + 1);
}
