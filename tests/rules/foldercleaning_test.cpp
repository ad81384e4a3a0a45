#include "tests/rules/recordingrule.h"
#include "tests/support/fakeshell.h"

namespace {

using testing::ElementsAre;

HRESULT WINAPI FakeLocation(HWND, int index, LPITEMIDLIST* list) {
    *list = MakeFakeList(index == CSIDL_BITBUCKET ? "bin" : "folder");
    return S_OK;
}

const wchar_t* g_hostFile;
DWORD WINAPI HostFile(HMODULE, wchar_t* buffer, DWORD size) {
    wcsncpy(buffer, g_hostFile, size);
    return static_cast<DWORD>(wcslen(g_hostFile));
}

}  // namespace

TEST_F(RuleTest, HostFolderStaysListedAndUnreported) {
    const CString hostFile = m_folder / L"APP\\host.exe";
    g_hostFile = hostFile.c_str();
    const IatPatch patch(nullptr, nullptr, "GetModuleFileNameW", reinterpret_cast<const void*>(&HostFile));
    ASSERT_TRUE(patch.ok());
    for (const wchar_t* name : {L"a", L"App\\b", L"App2\\c", L"Other\\App\\d"})
        m_folder.Write(name);
    RecordingRule rule;
    // The process-wide list goes with any engine that ends, also in the middle of the clean.
    rule.onEmptied = [] { CAppInfoManager::ReleaseInstance(); };
    EXPECT_TRUE(rule.Load(m_files + "Iteration='1'") && rule.Gather() && rule.Clean(0, 0, 0));
    EXPECT_THAT(rule.emptied, ElementsAre(L"+a", L"+d"));
    EXPECT_THAT(Listed(rule), ElementsAre(L"App\\b", L"App2\\c"));  // a part of the path, not a folder of it
    EXPECT_TRUE(m_folder.Has(L"App\\b") && m_folder.Has(L"App2\\c") && !m_folder.Has(L"a"));
}

// Of the folders without a path only the bin is emptied: any other is reported once, as left alone, and forgotten.
TEST_F(RuleTest, ShellFolderThatIsNotTheBinIsLeftAloneWithItsTotals) {
    const IatPatch patch("SHGetSpecialFolderLocation", &FakeLocation);
    FakeShell shell;
    FakeFolder folder;
    shell.desktop.folders["folder"] = &folder;
    folder.items = {"one", "two"};
    shell.paths = {{"one", m_folder.Write(L"one", "123")}, {"two", m_folder.Write(L"two", "12345")}};
    RecordingRule rule;
    EXPECT_TRUE(rule.Load("FolderIndex='17'") && rule.Gather());
    EXPECT_EQ(Listed(rule).size(), 2u);
    EXPECT_TRUE(rule.Clean(0, 0, 0));
    EXPECT_THAT(rule.emptied, ElementsAre(L"-"));
    EXPECT_TRUE(Listed(rule).empty() && rule.GetTotalCount() == 2 && rule.GetPendingSize() == 8);
    EXPECT_TRUE(m_folder.Has(L"one") && m_folder.Has(L"two"));
}

// Windows takes "a." for "a" and "..", "/" and doubled separators for what they mean, but a search returns names as
// they are. What a rule says is read as Windows reads it; what a search returned is deleted, and never its neighbour.
TEST_F(RuleTest, DeletesTheFoundFileAndNotTheOneThatWindowsTakesItFor) {
    const auto literal = [&](const CString& name) { return L"\\\\?\\" + m_folder / name; };
    const CString folders = L"dir|dir.|dir\\sub.|dir\\sub|dir\\sub.\\in|dir\\sub\\in|lo |lo|lo \\in|lo\\in";
    const CString files =
        L"y.log|trail|trail.|trail |dir\\a|dir\\b.|dir.\\a|dir\\sub.\\s|dir\\sub\\s|dir\\sub.\\in\\s|"
        L"dir\\sub\\in\\s|lo \\in\\x.log|lo\\in\\x.log|lo \\y.log|lo\\y.log";
    const std::string base = "FolderEnvDir='DSW_BASE' ", folder = base + "IsFolder='1' ";
    const std::string loop = folder + "LoopPath='1' Filter='*.log. ' ";
    const struct {
        std::string attributes;
        const char* children;
        CString gone;
    } cases[] = {
        {folder + "Filter='trail?'", "", L"trail.|trail "},
        {base + "Path='trail '", "", L"trail"},
        {base + "Path='dir./a. '", "", L"dir\\a"},
        {folder + "Path='dir.'", "", L"dir\\a|dir\\b."},
        {folder + "Path='lo/..//dir' Filter='b?'", "", L"dir\\b."},
        {folder + "Path='dir' Filter='s' Iteration='1' ExcludePath='1'", "<ExcludePath Path='\\sub' ExactMatch='1'/>",
         L"dir\\sub.\\s|dir\\sub.\\in\\s"},
        {folder + "Path='dir' Iteration='1' ExcludePath='1'", "<ExcludePath Path='\\sub.' ExactMatch='1'/>",
         L"dir\\a|dir\\b.|dir\\sub\\s|dir\\sub\\in\\s"},
        {"Path='dir' IsFolder='1' Filter='b?'", "", L"dir\\b."},  // of the current folder
        {loop, "<LoopPath Path='lo?' AddPath='no/.././/in'/>", L"lo \\in\\x.log"},
        {loop, "<LoopPath Path='lo?' AddPath='..\\lo/'/>", L"lo\\y.log"},
        {folder + "LoopPath='1'", "<LoopPath Path='lo?' AddPath='./in/'/>", L"lo \\in\\x.log"},
        // Found in the folder above, listed and deleted below each folder.
        {folder + "Filter='..\\y.log' Iteration='1' ExcludePath='1'",
         "<ExcludePath Path='dir'/><ExcludePath Path='in'/>", L"lo \\y.log|lo\\y.log"},
        {loop, "<LoopPath Path='lo?'/><LoopPath Path='*'/>", L"lo \\in\\x.log"},
        {folder + "LoopPath='1' Path='dir/.'", "<LoopPath Path='sub?'/><LoopPath TerminalPath='in'/>",
         L"dir\\sub.\\in\\s"},
    };
    for (const CString& name : Split(folders, L"|"))
        CreateDirectoryW(literal(name).c_str(), nullptr);
    ASSERT_TRUE(SetCurrentDirectoryW(m_folder.path().c_str()));
    for (const auto& c : cases) {
        for (const CString& name : Split(files, L"|"))
            CloseHandle(CreateFileW(literal(name).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
        RecordingRule rule;
        EXPECT_TRUE(rule.Load(c.attributes, c.children) && rule.Gather() && rule.Clean(0, 0, 0));
        std::vector<CString> gone = Split(files, L"|");
        std::erase_if(gone,
                      [&](auto& name) { return GetFileAttributesW(literal(name).c_str()) != INVALID_FILE_ATTRIBUTES; });
        EXPECT_THAT(gone, testing::UnorderedElementsAreArray(Split(c.gone, L"|"))) << c.attributes << c.children;
        EXPECT_EQ(rule.GetTotalCount(), 0u) << "all that was found is gone";
    }
    SetCurrentDirectoryW(L"C:\\");
}
