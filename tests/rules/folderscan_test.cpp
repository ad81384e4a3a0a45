#include "rules/folderscan.h"

#include "tests/rules/recordingrule.h"
#include "tests/support/folderlink.h"

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using namespace std::string_literals;

decltype(&FindNextFileW) g_next;
size_t g_steps = 0;

// No folder at hand holds a device.
BOOL WINAPI DoctoredNext(HANDLE search, WIN32_FIND_DATAW* entry) {
    ++g_steps;
    if (!g_next(search, entry)) return FALSE;
    if (CString(entry->cFileName).starts_with(L"dev")) entry->dwFileAttributes |= FILE_ATTRIBUTE_DEVICE;
    return TRUE;
}

class FolderScan : public Rules {
protected:
    FolderScan() {
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
    const IatPatch m_nextPatch{"FindNextFileW", &DoctoredNext};
};

}  // namespace

// The model in tests/faults knows the rest, but no order, no devices and no odd spelling.
TEST_F(FolderScan, FindsInOrderWhatTheRuleSays) {
    const TempFolder elsewhere;
    elsewhere.Write(L"l.log");
    ASSERT_TRUE(MakeFolderLink(m_folder / L"link", elsewhere.path()));
    const CString sub = LR"(Sub\s.log Sub\Temp\t.log Sub\Temp\Temp\n.log)", keep = LR"(Kéep\Deep\d.log Kéep\k.log )";
    const struct {
        std::string attributes;
        const char* children;
        CString found;
    } cases[] = {
        // Everything: one pass; no links, no devices, no name of two characters that ends in a dot.
        {m_files + "Iteration='1'", "", L".hid\\h.log a.log b.tmp c.txt " + keep + sub},
        // A pattern: what is below comes first, links included.
        {m_pattern + "Iteration='1'", "",
         L".hid\\h.log " + keep + LR"(link\l.log Sub\Temp\Temp\n.log Sub\Temp\t.log Sub\s.log a.log)"},
        // Children by their names, whatever the case.
        {m_files + "Iteration='1' ExcludePath='1'", "<excludepath Path='KÉE'/><ExcludePath/><Other Path='sub'/>",
         L".hid\\h.log a.log b.tmp c.txt " + sub},
        // Without a base folder no children are read, though the flags are set.
        {"IsFolder='1' Path='" + WideToUtf8(m_folder / L"Sub") + "' Iteration='1' ExcludePath='1'",
         "<ExcludePath Path='temp'/>", sub},
        // Loops.
        {m_loop, "<LoopPath TerminalPath='sub'/><LoopPath AddPath='Sub'/>", L""},
        {m_loop + "SelfExclude='1'", "<looppath Path='*'/>", LR"(device\v.log Kéep\k.log Sub\s.log z.\z.log)"},
        {m_loop, "<LoopPath Path='*'/><LoopPath TerminalPath='em'/><LoopPath TerminalPath='x' ExactMatch='1'/>", L""},
    };
    for (const auto& test : cases) {
        RecordingRule rule;
        EXPECT_TRUE(rule.Load(test.attributes, test.children) && rule.Gather());
        EXPECT_THAT(Listed(rule), ElementsAreArray(Split(test.found, L" "))) << test.attributes << test.children;
        EXPECT_TRUE(rule.Gather() && rule.GetTotalCount() == Listed(rule).size()) << "each scan adds up from zero";
    }
}

TEST_F(FolderScan, StopsAtEveryFoundItem) {
    for (const std::string& attributes : {m_files, m_pattern, m_loop, "FolderEnvDir='DSW_BASE' Path='a.log' "s}) {
        size_t stopAt = 0;
        for (bool stopped = true; stopped;) {
            RecordingRule rule;
            rule.stopAt = ++stopAt;
            ASSERT_TRUE(rule.Load(attributes + "Iteration='1'", "<LoopPath Path='*'/>"));
            stopped = !rule.Gather();
            EXPECT_EQ(rule.found.size(), stopped ? stopAt : stopAt - 1) << attributes;
            EXPECT_TRUE(Listed(rule).size() == rule.found.size() && rule.GetTotalCount() == rule.found.size());
        }
    }
}

// The host may have the rule scanned anew, or cleaned, from a notification: the list that this scan fills is gone.
TEST_F(FolderScan, EndsAtOnceWhenItsListIsGone) {
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

TEST_F(FolderScan, FindsAsDeepAsPathsMayNest) {
    CString deep = L"\\\\?\\" + m_folder.path();
    SetEnvironmentVariableW(L"DSW_BASE", deep.c_str());
    for (int i = 0; i < 300; ++i)
        EXPECT_TRUE(CreateDirectoryW((deep += L"\\e").c_str(), nullptr));
    EXPECT_TRUE(CopyFileW((m_folder / L"a.log").c_str(), (deep + L"\\y.log").c_str(), TRUE));
    for (const std::string& attributes : {m_files, m_pattern}) {
        RecordingRule rule;
        EXPECT_TRUE(rule.Load(attributes + "Path='e' Iteration='1'") && rule.Gather());
        EXPECT_THAT(rule.found, ElementsAre(deep + L"\\y.log"));
    }
}
