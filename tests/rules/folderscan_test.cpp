#include "rules/folderscan.h"

#include "tests/rules/recordingrule.h"
#include "tests/support/folderlink.h"

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

decltype(&FindNextFileW) g_next;

size_t g_steps = 0;

// What no folder at hand offers: device bits, 20 GB.
BOOL WINAPI DoctoredNext(HANDLE search, WIN32_FIND_DATAW* entry) {
    ++g_steps;
    if (!g_next(search, entry)) return FALSE;
    const CString name = entry->cFileName;
    if (name.starts_with(L"dev")) entry->dwFileAttributes |= FILE_ATTRIBUTE_DEVICE;
    if (name == L"c.txt") entry->nFileSizeHigh = 5;
    return TRUE;
}

class FolderScanTest : public RuleTest {
protected:
    FolderScanTest() {
        for (const wchar_t* name :
             {L"a.log", L"b.tmp", L"c.txt", L"dev.log", LR"(device\v.log)", LR"(.hid\h.log)", LR"(Kéep\k.log)",
              LR"(Kéep\Deep\d.log)", LR"(Sub\s.log)", LR"(Sub\Temp\t.log)", LR"(Sub\Temp\Temp\n.log)"})
            m_folder.Write(name);
        const CString dotted = L"\\\\?\\" + m_folder / L"z.";
        CreateDirectoryW(dotted.c_str(), nullptr);
        CopyFileW((m_folder / L"a.log").c_str(), (dotted + L"\\z.log").c_str(), TRUE);
        g_next = m_nextPatch.original<decltype(&FindNextFileW)>();
    }

private:
    const IatPatch m_nextPatch{nullptr, nullptr, "FindNextFileW", reinterpret_cast<const void*>(&DoctoredNext)};
};

}  // namespace

// The model in tests/faults knows the rest, but no order, no devices and no odd spelling.
TEST_F(FolderScanTest, FindsInOrderWhatTheRuleSays) {
    const TempFolder elsewhere;
    elsewhere.Write(L"l.log");
    ASSERT_TRUE(MakeFolderLink(m_folder / L"link", elsewhere.path()));
    const std::string all = m_files + "Iteration='1' ";
    const CString hid = L".hid\\h.log ", top = L"a.log b.tmp c.txt ", deep = LR"(Kéep\Deep\d.log )";
    const CString keep = deep + LR"(Kéep\k.log )", sub = LR"(Sub\s.log )", temp = LR"(Sub\Temp\t.log )";
    const CString below = LR"(Sub\Temp\Temp\n.log )";
    const std::string bare = "IsFolder='1' Path='" + WideToUtf8(m_folder / L"Sub") + "' ";
    struct Case {
        std::string attributes;
        const char* children;
        CString found;
    } const cases[] = {
        // Everything: one pass; no links, no devices, no name of two characters that ends in a dot.
        {m_files, "", top},
        {all, "", hid + top + keep + sub + temp + below},
        // A pattern: what is below comes first, links included.
        {m_pattern + "Iteration='1'", "", hid + keep + LR"(link\l.log )" + below + temp + sub + L"a.log"},
        {m_pattern + "Iteration='1' SelfExclude='1' ExcludePath='1'", "<ExcludePath Path='li'/>",
         hid + keep + below + temp + sub},
        // Children by their names, whatever the case.
        {all + "ExcludePath='1'", "<excludepath Path='KÉE'/><ExcludePath/><Other Path='sub'/>",
         hid + top + sub + temp + below},
        // Without a base folder no children are read, though the flags are set.
        {bare + "Iteration='1' ExcludePath='1'", "<ExcludePath Path='temp'/>", sub + temp + below},
        // One file, listed under the rule's own path.
        {"FolderEnvDir='DSW_BASE' Path='b.tmp'", "", L"b.tmp"},
        {"FolderEnvDir='DSW_BASE' Path='*.log' Filter='x' Iteration='1'", "", L"*.log"},
        // Loops.
        {m_loop, "<LoopPath TerminalPath='sub'/><LoopPath AddPath='Sub'/>", L""},
        {m_loop + "SelfExclude='1'", "<looppath Path='*'/>", LR"(device\v.log Kéep\k.log Sub\s.log z.\z.log)"},
        {m_loop, "<LoopPath Path='*'/><LoopPath TerminalPath='em'/><LoopPath TerminalPath='x' ExactMatch='1'/>", L""},
    };
    for (const Case& c : cases) {
        RecordingRule rule;
        ASSERT_TRUE(rule.Load(c.attributes, c.children));
        EXPECT_TRUE(rule.Gather());
        EXPECT_THAT(Listed(rule), ElementsAreArray(Split(c.found, L" "))) << c.attributes << c.children;
        EXPECT_TRUE(rule.Gather()) << "again";
        EXPECT_EQ(rule.GetTotalCount() * 2, rule.found.size()) << "each scan adds up from zero";
        const bool hasLarge = c.found.find(L"c.txt") != CString::npos;
        EXPECT_EQ(rule.GetPendingSize(), rule.GetTotalCount() + (hasLarge ? 5ULL << 32 : 0));
    }
}

TEST_F(FolderScanTest, StopsAtEveryFoundItem) {
    const std::string oneFile = "FolderEnvDir='DSW_BASE' Path='a.log' ";
    for (const std::string& attributes : {m_files, m_pattern, m_loop, oneFile}) {
        size_t stopAt = 0;
        for (bool stopped = true; stopped;) {
            RecordingRule rule;
            rule.stopAt = ++stopAt;
            ASSERT_TRUE(rule.Load(attributes + "Iteration='1'", "<LoopPath Path='*'/>"));
            stopped = !rule.Gather();
            EXPECT_EQ(rule.found.size(), stopped ? stopAt : stopAt - 1) << attributes;
            EXPECT_EQ(Listed(rule).size(), rule.found.size()) << attributes;
            EXPECT_EQ(rule.GetTotalCount(), rule.found.size()) << attributes;
        }
    }
}

// The host may have the rule scanned anew, or cleaned, from a notification: the list that this scan fills is gone.
TEST_F(FolderScanTest, EndsAtOnceWhenItsListIsGone) {
    for (const bool cleans : {false, true}) {
        for (const std::string& attributes : {m_files, m_pattern, m_loop}) {
            RecordingRule rule;
            ASSERT_TRUE(rule.Load(attributes + "Iteration='1'", "<LoopPath Path='*'/>"));
            size_t nested = 0;
            rule.onFound = [&] {
                if (std::exchange(nested, rule.found.size()) != 0) return;
                EXPECT_TRUE(cleans ? rule.Clean(0, 0, 0) : rule.Gather());
                nested = rule.found.size();
                g_steps = 0;
            };
            EXPECT_TRUE(rule.Gather());
            EXPECT_TRUE(rule.found.size() == nested && g_steps == 0) << attributes;
        }
    }
}

TEST_F(FolderScanTest, FoldersMayNestAsDeepAsPathsAllow) {
    CString deep = L"\\\\?\\" + m_folder.path();
    SetEnvironmentVariableW(L"DSW_BASE", deep.c_str());
    for (int i = 0; i < 300; ++i)
        EXPECT_TRUE(CreateDirectoryW((deep += L"\\e").c_str(), nullptr));
    EXPECT_TRUE(CopyFileW((m_folder / L"a.log").c_str(), (deep + L"\\y.log").c_str(), TRUE));
    for (const std::string& attributes : {m_files, m_pattern}) {
        RecordingRule rule;
        ASSERT_TRUE(rule.Load(attributes + "Path='e' Iteration='1'"));
        EXPECT_TRUE(rule.Gather());
        EXPECT_THAT(rule.found, ElementsAre(deep + L"\\y.log"));
    }
}
