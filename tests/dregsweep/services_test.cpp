// The engine together with what it stands on: unlocking and the shell.

#include "tests/dregsweep/engine.h"
#include "tests/support/iatpatch.h"

namespace {

int g_refusals = 0;
decltype(&FindFirstFileW) g_findFirstFile = nullptr;

HANDLE WINAPI RefuseOnce(const wchar_t* pattern, WIN32_FIND_DATAW* entry) {
    if (!std::wstring_view(pattern).ends_with(L"\\d\\*") || g_refusals++ > 0) return g_findFirstFile(pattern, entry);
    SetLastError(ERROR_ACCESS_DENIED);
    return INVALID_HANDLE_VALUE;
}

struct Services : testing::Test {
    Services() { SetEnvironmentVariableW(L"DSW_BASE", folder.path().c_str()); }
    // With one rule for the folder "d".
    Engine EngineFor(const std::string& attributes, bool upgradeMode = false) const {
        const std::string rule = "<GarbageInfo FolderEnvDir='DSW_BASE' Path='d' IsFolder='1' " + attributes + "/>";
        return NewEngine(folder, CategoryOf(rule), upgradeMode);
    }
    const TempFolder folder;
};

TEST_F(Services, ARefusingFolderIsTriedAgainInUpgradeModeOnly) {
    RecordProperty("leaks", "the privileges' buffers stay");
    folder.Write(L"d\\e\\1.tmp");
    const IatPatch patch("FindFirstFileW", &RefuseOnce);
    g_findFirstFile = patch.original<decltype(&FindFirstFileW)>();
    for (const char* filter : {"*", "*.tmp"}) {
        for (const bool upgrade : {false, true}) {
            g_refusals = 0;
            RecordingHost host;
            EXPECT_TRUE(EngineFor("Iteration='1' Filter='" + std::string(filter) + "'", upgrade)->Gather(&host));
            EXPECT_EQ(host.Of(L'f').size(), upgrade ? 1u : 0u) << filter;
            EXPECT_EQ(g_refusals, upgrade ? 2 : 1) << filter;
        }
    }
}

TEST_F(Services, TheShellBrowserListsDisplayNames) {
    folder.Write(L"d\\one.tmp");
    folder.Write(L"d\\sub\\two.tmp");
    const Engine engine = EngineFor("UseShellBrowse='1'");
    RecordingHost host(folder.path());
    EXPECT_TRUE(engine->Gather(&host));
    EXPECT_THAT(host.Of(L'f'), testing::UnorderedElementsAre(L"found one.tmp 0 G", L"found sub 0 G"));
    // The verb cannot delete anything on a system without a display: the answer is passed on, nothing is lost.
    EXPECT_TRUE(engine->Clean(&host));
    EXPECT_EQ(host.Of(L'e').size(), 2u);
    EXPECT_TRUE(folder.Has(L"d\\sub\\two.tmp"));
}

}  // namespace
