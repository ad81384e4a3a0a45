#include "tests/rules/recordingrule.h"

namespace {

using testing::ElementsAre;

const wchar_t* g_hostFile;
DWORD WINAPI HostFile(HMODULE, wchar_t* buffer, DWORD size) {
    wcsncpy(buffer, g_hostFile, size);
    return static_cast<DWORD>(wcslen(g_hostFile));
}

}  // namespace

// The model in tests/faults knows which files are the host's.
TEST_F(Rules, KnowTheHostsFilesToTheEnd) {
    const CString hostFile = m_folder / L"App\\host.exe";
    g_hostFile = hostFile.c_str();
    const IatPatch patch("GetModuleFileNameW", &HostFile);
    for (const wchar_t* name : {L"a", L"App\\b"})
        m_folder.Write(name);
    RecordingRule rule;
    // The process-wide list goes with any engine that ends, also in the middle of the clean.
    rule.onEmptied = [] { CAppInfoManager::ReleaseInstance(); };
    EXPECT_TRUE(rule.Load(m_files + "Iteration='1'") && rule.Gather() && rule.Clean(0, 0, 0));
    EXPECT_THAT(rule.emptied, ElementsAre(L"+a"));
    EXPECT_THAT(Listed(rule), ElementsAre(L"App\\b"));
}

// Windows takes "a." for "a" and "..", "/" and doubled separators for what they mean, but a search returns names as
// they are. What a rule says is read as Windows reads it; what a search returned is deleted, and never its neighbour.
TEST_F(Rules, DeleteTheFoundFileAndNotTheOneThatWindowsTakesItFor) {
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
