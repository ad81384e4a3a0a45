#include "tests/rules/recordingrule.h"
#include "tests/support/fakeshell.h"
#include "tests/support/recordingexplanation.h"

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

class Explanation : public RuleTest {
protected:
    static std::vector<std::wstring> Explained(CGarbageInfo& rule) {
        RecordingExplanation details;
        EXPECT_TRUE(rule.Explain(&details));
        return details.lines;
    }
};

HRESULT WINAPI FakeLocation(HWND, int index, LPITEMIDLIST* list) {
    *list = MakeFakeList(index == CSIDL_BITBUCKET ? "bin" : "folder");
    return S_OK;
}

HRESULT WINAPI QueryBin(const wchar_t* root, SHQUERYRBINFO* bin) {
    bin->i64NumItems = root ? 0 : 3;
    return bin->cbSize == sizeof *bin ? S_OK : E_INVALIDARG;
}

}  // namespace

TEST_F(Explanation, TellsWhatARuleLooksAt) {
    const CString base = m_folder.path();
    const struct {
        std::string attributes;
        const char* children;
        std::vector<CString> lines;
    } cases[] = {
        {"FolderEnvDir='DSW_BASE' Path='x*' EmptyProc='NT_ClearHistory'",
         "",
         {L"scope 2 0 " + base + L"\\x*|", L"action 1 |NT_ClearHistory"}},
        {"Path='' EmptyProc='unknown'", "", {}},
        {m_files + "Iteration='1' SelfExclude='1' ExcludeFilter='.b|.a' ExcludePath='1'",
         "<ExcludePath Path='K' Iteration='1'/><ExcludePath Path='\\L' ExactMatch='1'/>",
         {L"scope 1 3 " + base + L"|*", L"scope 9 0 .a|", L"scope 9 0 .b|", L"scope 10 0 k|", L"scope 10 5 \\l|"}},
        {m_loop + "Filter='*.tmp' SelfExclude='1'",
         "<LoopPath Path='A*' AddPath='b'/><LoopPath TerminalPath='E' ExactMatch='1'/>",
         {L"scope 1 0 " + base + L"|*.tmp", L"scope 7 0 A*|b", L"scope 8 4 e|"}},
        {m_loop, "<LoopPath TerminalPath='E'/>", {}},
        {"Registry='1' RootKey='HKUR' KeyPath='K' Filter='f' Iteration='1' Value='A|b'",
         "",
         {L"scope 5 1 HKU\\K|f", L"scope 6 0 a|", L"scope 6 0 b|"}},
        {"Registry='1' RootKey='HKLM' KeyPath='none' DelKey='1' Iteration='1' Filter='f' Value='v'",
         "",
         {L"scope 5 8 HKLM\\none|"}},
        {"Registry='1' KeyPath='K'", "", {}},
    };
    for (const auto& test : cases) {
        RecordingRule rule;
        EXPECT_TRUE(rule.Load(test.attributes, test.children)) << test.attributes;
        EXPECT_THAT(Explained(rule), ElementsAreArray(test.lines)) << test.attributes;
    }
}

// The registry of rules that clean it: registryrule_test.cpp.
TEST_F(Explanation, TellsWhatAShellFolderWouldLose) {
    const IatPatch location("SHGetSpecialFolderLocation", &FakeLocation), query("SHQueryRecycleBinW", &QueryBin);
    FakeShell shell;
    FakeFolder folder;
    shell.desktop.folders = {{"folder", &folder}, {"bin", &folder}};
    folder.items = {"one", "two"};
    shell.paths = {{"one", m_folder.Write(L"one")}};
    RecordingRule bin, other;
    EXPECT_TRUE(bin.Load("FolderIndex='10'") && other.Load("FolderIndex='17'") && other.Gather());
    EXPECT_THAT(Explained(bin), ElementsAre(L"scope 4 0 bin|", L"action 5 | 3"));
    EXPECT_THAT(Explained(other), ElementsAre(L"scope 4 0 folder|", L"action 6 folder| 1"));
    EXPECT_TRUE(other.Clean(0, 0, 0));
    EXPECT_THAT(Explained(other), ElementsAre(L"scope 4 0 folder|", L"action 6 folder|"));
}

TEST_F(Explanation, EndsWithItsVisitorAndItsRule) {
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
