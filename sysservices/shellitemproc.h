#pragma once

#include <windows.h>
#include <shlobj.h>

#include <cstdint>

#include "sysservices/itemidlist.h"
#include "sysservices/reference.h"
#include "sysservices/shellfileinfo.h"
#include "sysservices/text.h"

// One folder of the shell namespace. The namespace starts at the desktop and holds real folders, which have a
// file-system path, and virtual ones, such as the recycle bin, which have none. A real folder is walked as files; a
// virtual one item by item, its items that have a path again as files.
//
// The folder's absolute item-ID list is not owned: who creates the object keeps the list alive as long as the object
// and frees it afterwards, also when construction reports a failure:
//
//     CItemIdList list;
//     SHGetSpecialFolderLocation(nullptr, CSIDL_BITBUCKET, list.Put());
//     HRESULT result = E_FAIL;
//     CShellItemProc bin(list.get(), /*wholeItemMode=*/true, result);
//
// Use an object on one thread; COM must be initialised there for as long as the object lives.
//
// Failures are answered as false or passed over, never traced. Memory exhaustion (std::bad_alloc) and whatever a
// callback throws pass through the walks to their caller: nothing leaks, the outstanding folder-done notices are not
// given. Callbacks run on the caller's thread, inside the call; no lock is held. They are never handed to the shell.
class CShellItemProc {
public:
    // Told a folder: `path` without an end in "\" (but a drive that a virtual folder lists is "C:\"), `name` and
    // `findData` (null when not known) borrowed for the call. True walks into it; false leaves it out and the walk goes
    // on. Told once more after the walk of a folder, with an empty name and no find data: the folder-done notice, whose
    // answer is ignored. The question about an item of a folder without a list looks just like the notice.
    using FolderCallback = bool (*)(const wchar_t* path, const wchar_t* name, const WIN32_FIND_DATAW* findData,
                                    void* context);
    // Told a file, or in whole-item mode any item that has a path. `reserved` is 0; `path` and `findData` are borrowed
    // for the call. False stops the walk.
    using FileCallback = bool (*)(uint32_t reserved, const wchar_t* path, const WIN32_FIND_DATAW& findData,
                                  void* context);
    // Told one item of a listing. `info`, its icon handle included, is borrowed for the call. `child` is the item's
    // list relative to the folder: move from it to keep it. What the callback leaves in it, whatever it answers and
    // even when it throws, the listing frees. False stops the listing.
    using ItemCallback = bool (*)(const SHFILEINFOW& info, CItemIdList& child, void* context);

    // Virtual folders inside virtual folders are walked to this depth; what lies deeper is passed over. Extensions may
    // list a folder inside itself, and each level costs stack; a namespace that ends nests a handful of levels.
    static constexpr int kMaxVirtualDepth = 64;

    // `pidl`, the folder's absolute list, is borrowed for the object's life. `wholeItemMode` is set for a folder that
    // was named by its special-folder index: its items are handed out whole, directories too, and it may empty the
    // recycle bin. `result` receives the HRESULT of binding to the folder. Bound or not, the shell information is
    // filled; an object that is not bound is safe to use and finds nothing.
    CShellItemProc(LPCITEMIDLIST pidl, bool wholeItemMode, HRESULT& result) noexcept;
    virtual ~CShellItemProc() = default;
    CShellItemProc(const CShellItemProc&) = delete;
    CShellItemProc& operator=(const CShellItemProc&) = delete;

    // Walks the folder and what lies below. False when a callback stopped it; true also when the folder is not bound,
    // a callback is missing, or the folder itself was declined.
    [[nodiscard]] bool Walk(FileCallback onFile, FolderCallback onFolder, void* context) const;

    // Lists the folder's own items, hidden ones included, without going deeper. Returns the last answer, true when
    // there was none.
    [[nodiscard]] bool ListItems(ItemCallback onItem, void* context) const;

    // Deletes one item of the folder (a list as ListItems hands it out, borrowed) as its context menu would, the
    // shell's own confirmation included. False when the item has no menu or the command fails.
    [[nodiscard]] bool InvokeDelete(LPCITEMIDLIST childPidl) const noexcept;

    // Is this the recycle bin, and made in whole-item mode? Then EmptyRecycleBin acts.
    [[nodiscard]] bool IsRecycleBin() const noexcept;
    // Empties the recycle bins of all drives without confirmation, progress window and sound, if this is the bin. True
    // when it acted, whatever came of it.
    [[nodiscard]] bool EmptyRecycleBin() const noexcept;

    // Walks a folder of the file system, with `recurse` its subfolders too. Subfolders and files come in the order of
    // the directory, each subfolder with everything below it at its place; links to folders are never entered. A folder
    // that cannot be listed, even a missing one, still gets its folder-done notice. Returns the last answer of onFile,
    // true when there was none or a callback is missing. Any depth costs the same stack; paths longer than 260
    // characters need the prefix "\\?\".
    [[nodiscard]] static bool WalkFolder(const CString& path, FileCallback onFile, FolderCallback onFolder,
                                         void* context, bool recurse);

    // The shell's information on the folder, borrowed.
    const SHFILEINFOW& GetInfo() const noexcept { return m_info.Get(); }

private:
    struct Callbacks {
        FileCallback onFile;
        FolderCallback onFolder;
        void* context;
    };
    static bool OfferFolder(const CString& path, const wchar_t* name, const WIN32_FIND_DATAW* findData,
                            const Callbacks& callbacks);
    bool WalkLevel(const Callbacks& callbacks, int depth) const;
    bool WalkItem(LPCITEMIDLIST child, const Callbacks& callbacks, int depth) const;
    bool WalkFileItem(const CString& path, const Callbacks& callbacks) const;
    static bool WalkVirtualItem(LPCITEMIDLIST item, const Callbacks& callbacks, int depth);

    CShellFileInfo m_info;
    CReference<IShellFolder2> m_folder;
    LPCITEMIDLIST m_pidl;
    bool m_wholeItemMode;
};
