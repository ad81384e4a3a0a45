#include "sysservices/shellitemproc.h"

#include <gmock/gmock.h>

#include <stdexcept>
#include <tuple>

#include "tests/support/allocguard.h"
#include "tests/support/fakeshell.h"
#include "tests/support/folderlink.h"
#include "tests/support/tempfolder.h"

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAre;

namespace {

// What a walk told: "? path|name" a folder with its find data, "! path|name" one without (the question about a listed
// folder and the folder-done notice), "path size" a file. Paths below `base` begin with "~".
struct Recorder {
    std::wstring base{};
    std::wstring declined{};
    size_t fileLimit = ~size_t{0};  // the file that is answered with false, counted from 1
    std::vector<std::wstring> told{};
    size_t files = 0;

    std::wstring Short(std::wstring path) const {
        if (!base.empty() && path.starts_with(base)) path.replace(0, base.size(), L"~");
        return path;
    }
    static bool OnFolder(const wchar_t* path, const wchar_t* name, const WIN32_FIND_DATAW* findData, void* context) {
        auto& self = *static_cast<Recorder*>(context);
        self.told.push_back((findData ? L"? " : L"! ") + self.Short(path) + L"|" + self.Short(name));
        return self.told.back() != self.declined;
    }
    static bool OnFile(uint32_t reserved, const wchar_t* path, const WIN32_FIND_DATAW& findData, void* context) {
        auto& self = *static_cast<Recorder*>(context);
        self.told.push_back(self.Short(path) + L" " + std::to_wstring(findData.nFileSizeLow + reserved));
        return ++self.files < self.fileLimit;
    }
    bool Walk(const CShellItemProc& item) { return item.Walk(&OnFile, &OnFolder, this); }
    bool WalkFolder(const std::wstring& path, bool recurse = true) {
        return CShellItemProc::WalkFolder(path, &OnFile, &OnFolder, this, recurse);
    }
};

class ComTest : public testing::Test {
protected:
    ComTest() { CoInitialize(nullptr); }
    ~ComTest() override { CoUninitialize(); }
    HRESULT result = E_PENDING;
};

class RealNamespace : public ComTest {
protected:
    static CItemIdList Special(int csidl) {
        CItemIdList list;
        SHGetSpecialFolderLocation(nullptr, csidl, list.Put());
        return list;
    }
};

// The desktop holds "root", a virtual folder.
class FakeNamespace : public ComTest {
protected:
    FakeNamespace() { shell.desktop.folders["root"] = &root; }
    ~FakeNamespace() override {
        list = CItemIdList();
        EXPECT_TRUE(shell.ok());
        EXPECT_TRUE(root.Balanced());
        EXPECT_TRUE(shell.desktop.Balanced());
        EXPECT_EQ(shell.liveIcons, 0);
        EXPECT_EQ(shell.liveBlocks, 0);
    }
    FakeFolder root;
    FakeShell shell;
    CItemIdList list{MakeFakeList("root")};
};

class FolderWalk : public testing::Test {
protected:
    TempFolder folder;
    Recorder recorder{folder.path()};
};

}  // namespace

TEST_F(FolderWalk, TellsFoldersFilesAndDoneNoticesInOrder) {
    folder.Write(L"a\\b\\f", "12345");
    folder.Write(L"a\\g", "1");
    folder.Write(L"h", "22");
    folder.MakeFolder(L"..c");
    EXPECT_TRUE(recorder.WalkFolder(folder.path()));
    EXPECT_THAT(recorder.told, ElementsAre(L"? ~\\..c|..c", L"! ~\\..c|", L"? ~\\a|a", L"? ~\\a\\b|b", L"~\\a\\b\\f 5",
                                           L"! ~\\a\\b|", L"~\\a\\g 1", L"! ~\\a|", L"~\\h 2", L"! ~|"));

    Recorder flat{folder.path()};
    EXPECT_TRUE(flat.WalkFolder(folder.path(), /*recurse=*/false));
    EXPECT_THAT(flat.told, ElementsAre(L"~\\h 2", L"! ~|"));

    Recorder declining{folder.path(), L"? ~\\a|a"};
    EXPECT_TRUE(declining.WalkFolder(folder.path()));
    EXPECT_THAT(declining.told, ElementsAre(L"? ~\\..c|..c", L"! ~\\..c|", L"? ~\\a|a", L"~\\h 2", L"! ~|"));
}

TEST_F(FolderWalk, FalseStopsAndClosesEveryOpenFolder) {
    folder.Write(L"a\\b\\f1");
    folder.Write(L"a\\b\\f2");
    folder.Write(L"a\\g");
    recorder.fileLimit = 1;
    EXPECT_FALSE(recorder.WalkFolder(folder.path()));
    EXPECT_THAT(recorder.told,
                ElementsAre(L"? ~\\a|a", L"? ~\\a\\b|b", L"~\\a\\b\\f1 1", L"! ~\\a\\b|", L"! ~\\a|", L"! ~|"));
}

TEST_F(FolderWalk, MissingFolderGetsItsDoneNotice) {
    recorder.declined = L"! ~\\none|";
    EXPECT_TRUE(recorder.WalkFolder(folder / L"none"));
    EXPECT_THAT(recorder.told, ElementsAre(L"! ~\\none|"));
}

TEST_F(FolderWalk, LinkedFolderIsNotEntered) {
    const TempFolder outside;
    outside.Write(L"keep");
    folder.MakeFolder(L"real");
    if (!MakeFolderLink(folder / L"link", outside.path())) GTEST_SKIP() << "no folder link could be made";
    ASSERT_TRUE(folder.Has(L"link\\keep"));
    EXPECT_TRUE(recorder.WalkFolder(folder.path()));
    EXPECT_THAT(recorder.told, ElementsAre(L"? ~\\real|real", L"! ~\\real|", L"! ~|"));
}

namespace {

// Every folder holds just a folder "d", down to paths of 32,000 characters.
int g_openSearches = 0;

HANDLE WINAPI FindDeep(const wchar_t* pattern, WIN32_FIND_DATAW* entry) {
    if (wcslen(pattern) > 32000) return INVALID_HANDLE_VALUE;
    *entry = {};
    entry->dwFileAttributes = FILE_ATTRIBUTE_DIRECTORY;
    lstrcpyW(entry->cFileName, L"d");
    ++g_openSearches;
    return &g_openSearches;
}
BOOL WINAPI FindNoMore(HANDLE, WIN32_FIND_DATAW*) {
    return FALSE;
}
BOOL WINAPI CloseDeep(HANDLE) {
    --g_openSearches;
    return TRUE;
}

}  // namespace

TEST(DeepFolderWalk, SurvivesPathsOf32000CharactersAndLackOfMemory) {
    const IatPatch first(nullptr, nullptr, "FindFirstFileW", reinterpret_cast<void*>(&FindDeep));
    const IatPatch next(nullptr, nullptr, "FindNextFileW", reinterpret_cast<void*>(&FindNoMore));
    const IatPatch close(nullptr, nullptr, "FindClose", reinterpret_cast<void*>(&CloseDeep));
    ASSERT_TRUE(first.ok() && next.ok() && close.ok());
    int asked = 0;
    const auto onFolder = [](const wchar_t*, const wchar_t*, const WIN32_FIND_DATAW* data, void* context) {
        *static_cast<int*>(context) += data ? 1 : -1;
        return true;
    };
    const CString start = L"C:";
    EXPECT_TRUE(CShellItemProc::WalkFolder(start, &Recorder::OnFile, onFolder, &asked, true));
    EXPECT_EQ(asked, -1);  // each folder's notice, and the start's
    EXPECT_EQ(g_openSearches, 0);

    alloc_guard::FailAfter(500);
    EXPECT_THROW(std::ignore = CShellItemProc::WalkFolder(start, &Recorder::OnFile, onFolder, &asked, true),
                 std::bad_alloc);
    alloc_guard::FailAfter(-1);
    EXPECT_EQ(g_openSearches, 0);
}

TEST_F(RealNamespace, SpecialFolderWithPathIsWalkedAsFiles) {
    const CItemIdList list = Special(CSIDL_TEMPLATES);
    wchar_t path[MAX_PATH] = {};
    ASSERT_EQ(SHGetFolderPathW(nullptr, CSIDL_TEMPLATES, nullptr, 0, path), S_OK);
    const std::wstring file = std::wstring(path) + L"\\dsw.txt";
    ASSERT_TRUE(CopyFileW(L"C:\\windows\\win.ini", file.c_str(), FALSE));

    const CShellItemProc item(list.get(), true, result);
    EXPECT_EQ(result, S_OK);
    EXPECT_STREQ(item.GetInfo().szDisplayName, wcsrchr(path, L'\\') + 1);
    Recorder recorder{path};
    EXPECT_TRUE(recorder.Walk(item));
    ASSERT_THAT(recorder.told, SizeIs(3));
    EXPECT_EQ(recorder.told.front(), L"! ~|~");
    EXPECT_THAT(recorder.told[1], testing::StartsWith(L"~\\dsw.txt "));
    EXPECT_EQ(recorder.told.back(), L"! ~|");
    DeleteFileW(file.c_str());
}

namespace {

int g_infoQueries = 0;
const IatPatch* g_getInfo = nullptr;
const IatPatch* g_endIcon = nullptr;
int g_icons = 0;

DWORD_PTR WINAPI CountedInfo(const wchar_t* item, DWORD attributes, SHFILEINFOW* info, UINT size, UINT flags) {
    const DWORD_PTR answer = g_getInfo->original<decltype(&SHGetFileInfoW)>()(item, attributes, info, size, flags);
    ++g_infoQueries;
    if (info->hIcon) ++g_icons;
    return answer;
}
BOOL WINAPI CountedEnd(HICON icon) {
    const BOOL ended = g_endIcon->original<decltype(&DestroyIcon)>()(icon);
    if (ended) --g_icons;
    return ended;
}

}  // namespace

TEST_F(RealNamespace, VirtualFoldersAreWalkedAndEveryIconDestroyed) {
    const IatPatch getInfo(nullptr, nullptr, "SHGetFileInfoW", reinterpret_cast<void*>(&CountedInfo));
    const IatPatch endIcon(nullptr, nullptr, "DestroyIcon", reinterpret_cast<void*>(&CountedEnd));
    ASSERT_TRUE(getInfo.ok() && endIcon.ok());
    g_getInfo = &getInfo;
    g_endIcon = &endIcon;
    {
        const CItemIdList computer = Special(CSIDL_DRIVES);
        const CShellItemProc item(computer.get(), true, result);
        EXPECT_EQ(result, S_OK);
        EXPECT_EQ(g_icons, 1);
        Recorder recorder;
        EXPECT_TRUE(recorder.Walk(item));
        // Drives have a path but no directory entry, and what has no path has no files either.
        EXPECT_THAT(recorder.told, IsEmpty());
        EXPECT_GE(g_infoQueries, 3) << "the control panel and its items were not visited";

        std::vector<std::wstring> names;
        EXPECT_TRUE(item.ListItems(
            [](const SHFILEINFOW& info, CItemIdList&, void* context) {
                EXPECT_NE(info.hIcon, nullptr);
                static_cast<std::vector<std::wstring>*>(context)->push_back(info.szDisplayName);
                return true;
            },
            &names));
        EXPECT_THAT(names, testing::Contains(testing::HasSubstr(L"(C:)")));
    }
    EXPECT_EQ(g_icons, 0);
}

TEST_F(RealNamespace, RecycleBinIsHandedOutWholeAndEmptiedByItsOwnObjectOnly) {
    SHEmptyRecycleBinW(nullptr, nullptr, SHERB_NOCONFIRMATION | SHERB_NOPROGRESSUI | SHERB_NOSOUND);
    const TempFolder folder;
    std::wstring doomed = folder.Write(L"one.tmp", "123") + L'\0' + folder.Write(L"two.tmp", "12345") + L'\0';
    SHFILEOPSTRUCTW recycle = {};
    recycle.wFunc = FO_DELETE;
    recycle.pFrom = doomed.c_str();
    recycle.fFlags = FOF_ALLOWUNDO | FOF_NOCONFIRMATION | FOF_SILENT | FOF_NOERRORUI;
    ASSERT_EQ(SHFileOperationW(&recycle), 0);
    const auto recycled = [] {
        SHQUERYRBINFO info = {sizeof info, 0, 0};
        SHQueryRecycleBinW(nullptr, &info);
        return info.i64NumItems;
    };
    ASSERT_EQ(recycled(), 2);
    // Here the bin's items have bare names for paths.
    ASSERT_TRUE(SetCurrentDirectoryW(L"C:\\xdg\\Trash\\files"));

    const CItemIdList binList = Special(CSIDL_BITBUCKET);
    const CItemIdList computerList = Special(CSIDL_DRIVES);
    const CShellItemProc bin(binList.get(), true, result);
    Recorder whole;
    EXPECT_TRUE(whole.Walk(bin));
    EXPECT_THAT(whole.told, UnorderedElementsAre(L"one.tmp 3", L"two.tmp 5"));
    Recorder stopping;
    stopping.fileLimit = 1;
    EXPECT_FALSE(stopping.Walk(bin));
    EXPECT_THAT(stopping.told, SizeIs(1));

    const CShellItemProc parsedBin(binList.get(), false, result);
    Recorder apart;
    EXPECT_TRUE(apart.Walk(parsedBin));
    EXPECT_THAT(apart.told, IsEmpty());
    EXPECT_FALSE(parsedBin.EmptyRecycleBin());
    EXPECT_FALSE(CShellItemProc(computerList.get(), true, result).EmptyRecycleBin());
    EXPECT_FALSE(CShellItemProc(nullptr, true, result).EmptyRecycleBin());
    EXPECT_EQ(recycled(), 2);

    EXPECT_TRUE(bin.EmptyRecycleBin());
    EXPECT_EQ(recycled(), 0);
    SetCurrentDirectoryW(L"C:\\");
}

TEST_F(FakeNamespace, ItemsOfAVirtualFolderByKindAndMode) {
    const TempFolder folder;
    folder.Write(L"dir\\in", "12");
    folder.Write(L"file", "1");
    FakeFolder inner;
    inner.items = {"dir", "file"};
    shell.desktop.folders["inner"] = &inner;
    root.items = {"gone", "dir", "unbound", "file", "inner"};
    shell.paths = {{"dir", folder / L"dir"}, {"file", folder / L"file"}, {"gone", folder / L"gone"}};

    Recorder parsed{folder.path()};
    EXPECT_TRUE(parsed.Walk(CShellItemProc(list.get(), false, result)));
    EXPECT_THAT(parsed.told, ElementsAre(L"? ~\\dir|dir", L"~\\dir\\in 2", L"! ~\\dir|", L"? ~\\dir|dir",
                                         L"~\\dir\\in 2", L"! ~\\dir|"));
    EXPECT_THAT(root.listings, ElementsAre(0xE0u));
    EXPECT_THAT(shell.infoFlags, Each(0x4F08u));

    // A virtual child is not in whole-item mode, whatever its parent.
    Recorder whole{folder.path()};
    EXPECT_TRUE(whole.Walk(CShellItemProc(list.get(), true, result)));
    EXPECT_THAT(whole.told, ElementsAre(L"~\\dir 0", L"~\\file 1", L"? ~\\dir|dir", L"~\\dir\\in 2", L"! ~\\dir|"));

    Recorder stopping{folder.path()};
    stopping.fileLimit = 1;
    EXPECT_FALSE(stopping.Walk(CShellItemProc(list.get(), false, result)));
    EXPECT_THAT(stopping.told, ElementsAre(L"? ~\\dir|dir", L"~\\dir\\in 2", L"! ~\\dir|"));
    EXPECT_TRUE(inner.Balanced());
}

TEST_F(FakeNamespace, FolderWithPathIsNotEnumeratedAndWithoutListAsksForSubfolders) {
    const TempFolder folder;
    folder.Write(L"dir\\in", "12");
    shell.paths = {{"root", folder / L"dir\\"}, {"dir", folder / L"dir\\"}};
    root.items = {"dir"};
    Recorder real{folder.path()};
    EXPECT_TRUE(real.Walk(CShellItemProc(list.get(), true, result)));
    EXPECT_THAT(real.told, ElementsAre(L"! ~\\dir|~\\dir", L"~\\dir\\in 2", L"! ~\\dir|"));
    Recorder declining{folder.path(), L"! ~\\dir|~\\dir"};
    EXPECT_TRUE(declining.Walk(CShellItemProc(list.get(), true, result)));
    EXPECT_THAT(declining.told, SizeIs(1));
    EXPECT_THAT(root.listings, IsEmpty());

    shell.desktop.folders[""] = &root;
    Recorder listless{folder.path()};
    EXPECT_TRUE(listless.Walk(CShellItemProc(nullptr, true, result)));
    EXPECT_THAT(listless.told, ElementsAre(L"! ~\\dir\\|", L"~\\dir\\\\in 2", L"! ~\\dir\\|"));
    EXPECT_THAT(root.listings, ElementsAre(0xA0u));
}

TEST_F(FakeNamespace, UnboundFolderReportsWhyAndFindsNothing) {
    shell.paths["root"] = L"C:\\windows";
    shell.paths["other"] = L"C:\\windows";
    Recorder recorder;
    const CItemIdList other(MakeFakeList("other"));
    {
        const CShellItemProc item(other.get(), true, result);
        EXPECT_EQ(result, E_FAIL);
        EXPECT_STREQ(item.GetInfo().szDisplayName, L"other");
        EXPECT_TRUE(recorder.Walk(item));
        EXPECT_FALSE(item.InvokeDelete(other.get()));
        EXPECT_TRUE(item.ListItems([](const SHFILEINFOW&, CItemIdList&, void*) { return false; }, nullptr));
    }
    shell.desktopAnswer = E_OUTOFMEMORY;
    EXPECT_TRUE(recorder.Walk(CShellItemProc(list.get(), true, result)));
    EXPECT_EQ(result, E_OUTOFMEMORY);
    EXPECT_THAT(recorder.told, IsEmpty());
}

TEST_F(FakeNamespace, FolderThatListsItselfEndsTheWalk) {
    root.items = {"root"};
    Recorder recorder;
    EXPECT_TRUE(recorder.Walk(CShellItemProc(list.get(), false, result)));
    EXPECT_THAT(root.listings, SizeIs(CShellItemProc::kMaxVirtualDepth));
}

TEST_F(FakeNamespace, ListedItemBelongsToWhoMovesIt) {
    struct Listing {
        std::vector<CItemIdList> kept;
        std::vector<std::wstring> seen;
    };
    root.items = {"keep", "leave", "keep", "stop", "never"};
    const auto onItem = [](const SHFILEINFOW& info, CItemIdList& child, void* context) {
        auto& listing = *static_cast<Listing*>(context);
        const std::wstring name = info.szDisplayName;
        listing.seen.push_back(name);
        if (name == L"keep") listing.kept.push_back(std::move(child));
        if (name == L"throw") throw std::runtime_error("thrown by a callback");
        return name != L"stop";
    };
    const CShellItemProc item(list.get(), false, result);
    Listing listing;
    EXPECT_FALSE(item.ListItems(onItem, &listing));
    EXPECT_THAT(listing.seen, ElementsAre(L"keep", L"leave", L"keep", L"stop"));
    EXPECT_THAT(root.listings, ElementsAre(0xE0u));
    EXPECT_EQ(shell.liveBlocks, 3) << "the folder's own list and the two kept";

    root.items = {"keep", "throw"};
    EXPECT_THROW(std::ignore = item.ListItems(onItem, &listing), std::runtime_error);
}

TEST_F(FakeNamespace, DeleteVerbGoesToTheItemsOwnMenu) {
    const CShellItemProc item(list.get(), false, result);
    const CItemIdList child(MakeFakeList("doomed"));
    for (const HRESULT answer : {S_OK, S_FALSE, E_FAIL, E_ABORT}) {
        root.menu.answer = answer;
        EXPECT_EQ(item.InvokeDelete(child.get()), answer == S_OK || answer == S_FALSE) << answer;
    }
    EXPECT_EQ(root.menu.calls, 4);
    EXPECT_EQ(root.menuItem, "doomed");
    EXPECT_EQ(root.menu.verb, "Delete");
    EXPECT_EQ(root.menu.command.cbSize, sizeof(CMINVOKECOMMANDINFO));
    EXPECT_EQ(root.menu.command.fMask, 0u);
    EXPECT_EQ(root.menu.command.hwnd, GetDesktopWindow());
    EXPECT_EQ(root.menu.command.nShow, 1);
    root.menuAnswer = E_FAIL;
    EXPECT_FALSE(item.InvokeDelete(child.get()));
    EXPECT_EQ(root.menu.calls, 4);
}
