#include "rules/garbageinfo.h"

#include "tests/rules/recordingrule.h"
#include "tests/support/fakeshell.h"
#include "tests/support/recordingexplanation.h"

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

std::vector<std::wstring> Explained(CGarbageInfo& rule) {
    RecordingExplanation details;
    EXPECT_TRUE(rule.Explain(&details));
    return details.lines;
}

void ExpectLines(const std::string& attributes, const char* children, const std::vector<CString>& lines) {
    RecordingRule rule;
    EXPECT_TRUE(rule.Load(attributes, children)) << attributes;
    EXPECT_THAT(Explained(rule), ElementsAreArray(lines)) << attributes;
}

HRESULT WINAPI FakeLocation(HWND, int index, LPITEMIDLIST* list) {
    *list = MakeFakeList(index == CSIDL_BITBUCKET ? "bin" : "folder");
    return S_OK;
}

HRESULT WINAPI QueryBin(const wchar_t* root, SHQUERYRBINFO* bin) {
    bin->i64NumItems = root ? 0 : 3;
    return bin->cbSize == sizeof *bin ? S_OK : E_INVALIDARG;
}

}  // namespace

TEST_F(Rules, ReadWhatTheyLookAt) {
    const CString base = m_folder.path();
    ExpectLines("FolderEnvDir='DSW_BASE' Path='x*' EmptyProc='NT_ClearHistory'", "",
                {L"scope 2 0 " + base + L"\\x*|", L"action 1 |NT_ClearHistory"});
    ExpectLines("Path='' EmptyProc='unknown'", "", {});
    ExpectLines(
        m_files + "Iteration='1' SelfExclude='1' ExcludeFilter='.b|.a' ExcludePath='1'",
        "<ExcludePath Path='K' Iteration='1'/><ExcludePath Path='\\L' ExactMatch='1'/>",
        {L"scope 1 3 " + base + L"|*", L"scope 9 0 .a|", L"scope 9 0 .b|", L"scope 10 0 k|", L"scope 10 5 \\l|"});
    ExpectLines(m_loop + "Filter='*.tmp' SelfExclude='1'",
                "<LoopPath Path='A*' AddPath='b'/><LoopPath TerminalPath='E' ExactMatch='1'/>",
                {L"scope 1 0 " + base + L"|*.tmp", L"scope 7 0 A*|b", L"scope 8 4 e|"});
    ExpectLines(m_loop, "<LoopPath TerminalPath='E'/>", {});
    ExpectLines(
        "Registry='1' RootKey='HKUR' Path='x' KeyPath='K' Filter='f' Iteration='1' IsFolder='1' FolderIndex='5' "
        "FolderEnvDir='E' LoopPath='1' UseShellBrowse='1' Value='A|b'",
        "", {L"scope 5 1 HKU\\K|f", L"scope 6 0 a|", L"scope 6 0 b|"});
    ExpectLines("Registry='1' RootKey='HKLM' KeyPath='none' DelKey='1' Iteration='1' Filter='f' Value='v'", "",
                {L"scope 5 8 HKLM\\none|"});
    ExpectLines("Registry='1' KeyPath='K'", "", {});
}

// Some flags are set by 1 alone, some by every number but 0.
TEST_F(Rules, ReadNumbersAndLocations) {
    const CString longest(259, L'x');
    const std::pair<const wchar_t*, CString> variables[] = {
        {L"DSW_SLASH", L"C:\\base\\"}, {L"DSW_LONGEST", longest}, {L"DSW_TOOLONG", longest + L"x"}};
    for (const auto& [name, value] : variables)
        SetEnvironmentVariableW(name, value.c_str());
    const std::pair<const char*, CString> rows[] = {
        {"Path='ä' IsFolder='1' Iteration='1' LoopPath='0' UseShellBrowse='1'", L"1 1 ä|*"},
        {"Path='x' IsFolder='-2' Iteration='-2' LoopPath='2' UseShellBrowse='2' Filter=''", L"1 0 x|"},
        {"Path='x' Registry='t' GetByReg='u' IsFolder='a' Iteration='' FolderIndex='q'", L"2 0 x|"},
        {"Path='x' IsFolder='4294967296' Iteration='1x' SelfExclude='0x1'", L"1 1 x|*"},
        {"Path='x' GetByReg='2'", L"1 0 x|*"},  // stands in for a missing "IsFolder"
        {"FolderEnvDir='DSW_BASE' Path='' IsFolder='1' UseShellBrowse='2'", L"3 0 " + m_folder.path() + L"|"},
        {"FolderEnvDir='DSW_BASE' Path='' IsFolder='1' UseShellBrowse='z'", L"1 0 " + m_folder.path() + L"|*"},
        {"FolderEnvDir='DSW_SLASH' Path='Temp'", L"2 0 C:\\base\\Temp|"},
        {"FolderEnvDir='DSW_BASE' Path=''", L"2 0 " + m_folder.path() + L"|"},
        {"FolderEnvDir='DSW_LONGEST' Path='Temp'", L"2 0 " + longest + L"\\Temp|"},
        {"FolderEnvDir='DSW_SLASH' FolderIndex='38' Path='Temp'", L"2 0 C:\\Program Files\\Temp|"},
    };
    for (const auto& [attributes, line] : rows)
        ExpectLines(attributes, "", {L"scope " + line});
    ExpectLines("Path='x' GetByReg='1' FolderX86EnvDir='DSW_BASE'", "", {});
    for (const char* attributes : {"", "FolderEnvDir='DSW_TOOLONG' Path='Temp'", "FolderEnvDir='DSW_NO' Path='Temp'"})
        EXPECT_FALSE(RecordingRule().Load(attributes)) << attributes;
}

// Of the folders without a path only the bin is emptied: any other is reported once, as left alone, and forgotten.
TEST_F(Rules, LeaveAShellFolderThatIsNotTheBinAloneAndSaySo) {
    const IatPatch location("SHGetSpecialFolderLocation", &FakeLocation), query("SHQueryRecycleBinW", &QueryBin);
    FakeShell shell;
    FakeFolder folder;
    shell.desktop.folders = {{"folder", &folder}, {"bin", &folder}};
    folder.items = {"one", "two"};
    shell.paths = {{"one", m_folder.Write(L"one", "123")}, {"two", m_folder.Write(L"two", "12345")}};
    RecordingRule bin, other;
    EXPECT_TRUE(bin.Load("FolderIndex='10'") && other.Load("FolderIndex='17'") && other.Gather());
    EXPECT_THAT(Explained(bin), ElementsAre(L"scope 4 0 bin|", L"action 5 | 3"));
    EXPECT_THAT(Explained(other), ElementsAre(L"scope 4 0 folder|", L"action 6 folder| 2"));
    EXPECT_EQ(Listed(other).size(), 2u);
    EXPECT_TRUE(other.Clean(0, 0, 0));
    EXPECT_THAT(other.emptied, ElementsAre(L"-"));
    EXPECT_TRUE(Listed(other).empty() && other.GetTotalCount() == 2 && other.GetPendingSize() == 8);
    EXPECT_TRUE(m_folder.Has(L"one") && m_folder.Has(L"two"));
    EXPECT_THAT(Explained(other), ElementsAre(L"scope 4 0 folder|", L"action 6 folder|"));
}

TEST_F(Rules, EndTheirExplanationWithTheVisitorAndThemselves) {
    RecordingRule rule;
    EXPECT_TRUE(rule.Load(m_loop + "EmptyProc='NT_ClearHistory'", "<LoopPath Path='a'/><LoopPath Path='b'/>"));
    for (size_t stopAt = 1; stopAt <= 5; ++stopAt) {
        RecordingExplanation details;
        details.stopAt = stopAt;
        EXPECT_EQ(rule.Explain(&details), stopAt == 5);
        EXPECT_EQ(details.lines.size(), std::min<size_t>(stopAt, 4));
    }
    EXPECT_FALSE(rule.Explain(nullptr));
    rule.ReleaseContent();
    EXPECT_THAT(Explained(rule), ElementsAre());
}
