#include "sysservices/shellitemproc.h"

#include <gmock/gmock.h>

#include <algorithm>

#include "tests/support/fakeshell.h"
#include "tests/support/folderlink.h"
#include "tests/support/tempfolder.h"

namespace {

// What a walk tells, in one text with "/" for "\" and "~" for `base`: "?path:name" a folder with its find data,
// "!path:name" one without (the question about a listed folder, and the folder-done notice), "path=size" a file, and
// "stopped" when the walk answers false. The event `refused` is answered with false.
struct Recorder {
    std::wstring base = L"?", refused = L"", told = L"";

    bool Add(std::wstring event) {
        for (size_t at = 0; (at = event.find(base)) != std::wstring::npos;)
            event.replace(at, base.size(), L"~");
        std::ranges::replace(event, L'\\', L'/');
        told += event + L" ";
        return event != refused;
    }
    static bool OnFolder(const wchar_t* path, const wchar_t* name, const WIN32_FIND_DATAW* findData, void* self) {
        return static_cast<Recorder*>(self)->Add((findData ? L"?" : L"!") + std::wstring(path) + L":" + name);
    }
    static bool OnFile(uint32_t reserved, const wchar_t* path, const WIN32_FIND_DATAW& findData, void* self) {
        return static_cast<Recorder*>(self)->Add(path + (L"=" + std::to_wstring(findData.nFileSizeLow + reserved)));
    }
    std::wstring Told(bool walked) const { return walked ? told : told + L"stopped"; }
    std::wstring Walk(const CShellItemProc& item) { return Told(item.Walk(OnFile, OnFolder, this)); }
};

struct RealNamespace : testing::Test {
    RealNamespace() { CoInitialize(nullptr); }
    ~RealNamespace() override { CoUninitialize(); }
    static CItemIdList Special(int csidl) {
        CItemIdList list;
        SHGetSpecialFolderLocation(nullptr, csidl, list.Put());
        return list;
    }
    HRESULT result = E_PENDING;
};

// The desktop holds "root", a virtual folder. The files are "dir\in" and "file".
struct FakeNamespace : RealNamespace {
    FakeNamespace() {
        shell.desktop.folders["root"] = &root;
        folder.Write(L"dir\\in", "12");
        folder.Write(L"file", "1");
    }
    ~FakeNamespace() override {
        list = CItemIdList();
        EXPECT_TRUE(root.Balanced() && shell.desktop.Balanced() && shell.liveIcons == 0 && shell.liveBlocks == 0);
    }
    std::wstring Walk(LPCITEMIDLIST item, bool wholeItemMode, const wchar_t* refused = L"") {
        return Recorder{folder.path(), refused}.Walk(CShellItemProc(item, wholeItemMode, result));
    }
    const TempFolder folder;
    FakeFolder root;
    FakeShell shell;
    CItemIdList list{MakeFakeList("root")};
};

}  // namespace

TEST(FolderWalk, TellsFoldersFilesAndDoneNoticesInOrder) {
    const TempFolder folder, outside;
    for (const wchar_t* file : {L"a\\b\\f", L"a\\g", L"h"})
        folder.Write(file, "22");
    folder.MakeFolder(L"..c");
    ASSERT_TRUE(MakeFolderLink(folder / L"link", outside.path())) << "which must not be entered";
    const struct {
        const wchar_t *path, *refused, *told;
        bool recurse = true;
    } rows[] = {
        {L"", L"", L"?~/..c:..c !~/..c: ?~/a:a ?~/a/b:b ~/a/b/f=2 !~/a/b: ~/a/g=2 !~/a: ~/h=2 !~: "},
        {L"", L"", L"~/h=2 !~: ", false},
        {L"", L"?~/a:a", L"?~/..c:..c !~/..c: ?~/a:a ~/h=2 !~: "},
        {L"", L"~/a/b/f=2", L"?~/..c:..c !~/..c: ?~/a:a ?~/a/b:b ~/a/b/f=2 !~/a/b: !~/a: !~: stopped"},
        {L"\\none", L"!~/none:", L"!~/none: "},
    };
    for (const auto& row : rows) {
        Recorder recorder{folder.path(), row.refused};
        const bool walked = CShellItemProc::WalkFolder(folder.path() + row.path, Recorder::OnFile, Recorder::OnFolder,
                                                       &recorder, row.recurse);
        EXPECT_EQ(recorder.Told(walked), row.told);
    }
}

TEST_F(RealNamespace, OnlyTheRecycleBinIsEmptied) {
    SHEmptyRecycleBinW(nullptr, nullptr, SHERB_NOCONFIRMATION | SHERB_NOPROGRESSUI | SHERB_NOSOUND);
    const TempFolder folder;
    std::wstring doomed = folder.Write(L"one.tmp", "123") + L'\0' + folder.Write(L"two.tmp", "12345") + L'\0';
    constexpr FILEOP_FLAGS kSilently = FOF_ALLOWUNDO | FOF_NOCONFIRMATION | FOF_SILENT | FOF_NOERRORUI;
    SHFILEOPSTRUCTW recycle = {nullptr, FO_DELETE, doomed.c_str(), nullptr, kSilently, FALSE, nullptr, nullptr};
    ASSERT_EQ(SHFileOperationW(&recycle), 0);
    // Here the bin's items have bare names for paths.
    ASSERT_TRUE(SetCurrentDirectoryW(L"C:\\xdg\\Trash\\files"));
    const CItemIdList binList = Special(CSIDL_BITBUCKET), computerList = Special(CSIDL_DRIVES);
    const CShellItemProc bin(binList.get(), true, result), parsedBin(binList.get(), false, result),
        computer(computerList.get(), true, result);
    EXPECT_THAT(Recorder().Walk(bin), testing::AnyOf(L"one.tmp=3 two.tmp=5 ", L"two.tmp=5 one.tmp=3 "));
    EXPECT_FALSE(parsedBin.EmptyRecycleBin() || computer.EmptyRecycleBin()
                 || CShellItemProc(nullptr, true, result).EmptyRecycleBin());
    EXPECT_NE(GetFileAttributesW(L"one.tmp"), INVALID_FILE_ATTRIBUTES);
    EXPECT_TRUE(bin.EmptyRecycleBin());
    EXPECT_EQ(GetFileAttributesW(L"one.tmp"), INVALID_FILE_ATTRIBUTES);

    // Drives have a path but no directory entry, and what has no path has no files either.
    EXPECT_EQ(Recorder().Walk(computer), L"");
    EXPECT_FALSE(computer.ListItems(
        [](const SHFILEINFOW& info, CItemIdList&, void*) { return !wcsstr(info.szDisplayName, L"(C:)"); }, nullptr));
    SetCurrentDirectoryW(L"C:\\");
}

TEST_F(FakeNamespace, ItemsOfAVirtualFolderByKindAndMode) {
    FakeFolder inner;
    inner.items = {"dir", "file"};
    shell.desktop.folders["inner"] = &inner;
    root.items = {"gone", "dir", "unbound", "file", "inner"};
    shell.paths = {{"dir", folder / L"dir"}, {"file", folder / L"file"}, {"gone", folder / L"gone"}};
    const std::wstring dir = L"?~/dir:dir ~/dir/in=2 !~/dir: ";
    EXPECT_EQ(Walk(list.get(), false), dir + dir);
    EXPECT_EQ(root.listings, std::vector<SHCONTF>{0xE0});
    EXPECT_THAT(shell.infoFlags, testing::Each(0x4F08u));
    // A virtual child is not in whole-item mode, whatever its parent.
    EXPECT_EQ(Walk(list.get(), true), L"~/dir=0 ~/file=1 " + dir);
    EXPECT_EQ(Walk(list.get(), true, L"~/dir=0"), L"~/dir=0 stopped");
    EXPECT_EQ(Walk(list.get(), false, L"~/dir/in=2"), dir + L"stopped");
    EXPECT_TRUE(inner.Balanced());

    root.listings.clear();
    root.items = {"root"};
    EXPECT_EQ(Walk(list.get(), false), L"");
    EXPECT_EQ(root.listings.size(), CShellItemProc::kMaxVirtualDepth) << "a folder that lists itself";
}

TEST_F(FakeNamespace, FolderWithPathIsNotEnumeratedAndWithoutListAsksForSubfolders) {
    shell.paths = {{"root", folder / L"dir\\"}, {"dir", folder / L"dir\\"}};
    root.items = {"dir"};
    EXPECT_EQ(Walk(list.get(), true), L"!~/dir:~/dir ~/dir/in=2 !~/dir: ");
    EXPECT_EQ(Walk(list.get(), true, L"!~/dir:~/dir"), L"!~/dir:~/dir ");
    EXPECT_TRUE(root.listings.empty());
    shell.desktop.folders[""] = &root;
    EXPECT_EQ(Walk(nullptr, true), L"!~/dir/: ~/dir//in=2 !~/dir/: ");
    EXPECT_EQ(root.listings, std::vector<SHCONTF>{0xA0});
    shell.desktop.folders.clear();
    EXPECT_EQ(Walk(list.get(), true), L"") << "not bound";
    EXPECT_EQ(result, E_FAIL);
}

TEST_F(FakeNamespace, ListedItemBelongsToWhoMovesItAndIsDeletedByItsOwnMenu) {
    std::vector<CItemIdList> kept;
    root.items = {"doomed", "leave", "doomed", "stop", "doomed"};
    const auto onItem = [](const SHFILEINFOW& info, CItemIdList& child, void* context) {
        const std::wstring name = info.szDisplayName;
        if (name == L"doomed") static_cast<std::vector<CItemIdList>*>(context)->push_back(std::move(child));
        return name != L"stop";
    };
    const CShellItemProc item(list.get(), false, result);
    EXPECT_FALSE(item.ListItems(onItem, &kept));
    EXPECT_EQ(shell.liveBlocks, 3) << "the folder's own list and the two kept";

    for (const HRESULT answer : {S_OK, S_FALSE, E_FAIL, E_ABORT}) {
        root.menu.answer = answer;
        EXPECT_EQ(item.InvokeDelete(kept.front().get()), SUCCEEDED(answer)) << answer;
    }
    root.menuAnswer = E_FAIL;
    EXPECT_FALSE(item.InvokeDelete(kept.front().get()));
    EXPECT_EQ(root.menu.calls, 4);
    EXPECT_EQ(root.menuItem + root.menu.verb, "doomedDelete");
    const CMINVOKECOMMANDINFO& command = root.menu.command;
    EXPECT_TRUE(command.cbSize == sizeof command && command.fMask == 0);
    EXPECT_TRUE(command.hwnd == GetDesktopWindow() && command.nShow == 1);
}
