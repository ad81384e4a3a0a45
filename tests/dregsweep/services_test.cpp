// The engine together with what it stands on: unlocking, the shell, the upgrade files.

#include <windows.h>
#include <sddl.h>
#include <shellapi.h>

#include "sysservices/privilegecontext.h"
#include "tests/dregsweep/builtfiles.h"
#include "tests/dregsweep/engine.h"
#include "tests/support/iatpatch.h"

namespace {

// One category of `type`, selected, with one garbage category "G" that holds `rules`.
std::string Category(const std::string& rules, const char* type = "3", const char* selected = "2") {
    return std::string("<AppCategoryInfo Name='C' CatagoryType='") + type + "' SelState='" + selected
           + "'><AppInfo Name='A'><GarbageCatagory Name='G'>" + rules
           + "</GarbageCatagory></AppInfo></AppCategoryInfo>";
}

Engine EngineFor(const TempFolder& folder, const std::string& categories, bool upgradeMode = false, uint64_t code = 0) {
    SetEnvironmentVariableW(L"DSW_BASE", folder.path().c_str());
    Engine engine(new CDregsweep(upgradeMode));
    const std::wstring rules = folder.Write(L"rules.xml", "<R>" + categories + "</R>");
    EXPECT_EQ(engine->Init(rules.c_str(), L"", nullptr), code);
    return engine;
}

Lines RunAndKeep(const Engine& engine, bool clean, const std::wstring& root, const wchar_t* kind) {
    RecordingHost host(root);
    EXPECT_TRUE(clean ? engine->Clean(&host) : engine->Gather(&host));
    std::erase_if(host.lines, [&](const std::wstring& line) { return !line.starts_with(kind); });
    return host.lines;
}

struct Services : testing::Test {
    // Enabling keeps its buffers until the module goes: no leak of the test that comes first.
    static void SetUpTestSuite() { EnablePrivileges(RestoreContext()); }
    void TearDown() override { TakeTraceLines(); }
    const TempFolder folder;
};

// ---- what refuses

void RestrictTo(const std::wstring& path, const wchar_t* sddl) {
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    ASSERT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorW(sddl, SDDL_REVISION_1, &descriptor, nullptr));
    EXPECT_TRUE(SetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, descriptor));
    LocalFree(descriptor);
}

int g_refusals = 0;
decltype(&FindFirstFileW) g_findFirstFile = nullptr;

HANDLE WINAPI RefuseOnce(const wchar_t* pattern, WIN32_FIND_DATAW* entry) {
    if (!std::wstring_view(pattern).ends_with(L"\\d\\*") || g_refusals++ > 0) return g_findFirstFile(pattern, entry);
    SetLastError(ERROR_ACCESS_DENIED);
    return INVALID_HANDLE_VALUE;
}

TEST_F(Services, ARefusingFolderIsTriedAgainInUpgradeModeOnly) {
    folder.Write(L"d\\e\\1.tmp");
    const IatPatch patch(nullptr, nullptr, "FindFirstFileW", reinterpret_cast<void*>(&RefuseOnce));
    ASSERT_TRUE(patch.ok());
    g_findFirstFile = patch.original<decltype(&FindFirstFileW)>();
    for (const char* filter : {"*", "*.tmp"}) {
        for (const bool upgrade : {false, true}) {
            g_refusals = 0;
            const Engine engine = EngineFor(folder,
                                            Category("<GarbageInfo FolderEnvDir='DSW_BASE' Path='d' IsFolder='1' "
                                                     "Iteration='1' Filter='"
                                                     + std::string(filter) + "'/>"),
                                            upgrade);
            EXPECT_EQ(RunAndKeep(engine, false, folder.path(), L"found").size(), upgrade ? 1u : 0u) << filter;
            EXPECT_EQ(g_refusals, upgrade ? 2 : 1) << filter;
        }
    }
}

// ---- the shell

TEST_F(Services, TheShellBrowserListsDisplayNames) {
    folder.Write(L"d\\one.tmp");
    folder.Write(L"d\\sub\\two.tmp");
    const Engine engine =
        EngineFor(folder, Category("<GarbageInfo FolderEnvDir='DSW_BASE' Path='d' IsFolder='1' UseShellBrowse='1'/>"));
    const Lines found = RunAndKeep(engine, false, folder.path(), L"found");
    EXPECT_THAT(found, testing::UnorderedElementsAre(L"found one.tmp 0 G", L"found sub 0 G"));
    // The verb cannot delete anything on a system without a display: the answer is passed on, nothing is lost.
    EXPECT_EQ(RunAndKeep(engine, true, folder.path(), L"emptied").size(), 2u);
    EXPECT_TRUE(folder.Has(L"d\\sub\\two.tmp"));
}

// ---- nothing is left behind

struct Resources {
    DWORD gdi = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
    DWORD user = GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS);
    DWORD handles = [] {
        DWORD count = 0;
        GetProcessHandleCount(GetCurrentProcess(), &count);
        return count;
    }();
    long long allocations = alloc_guard::Live();
    bool operator==(const Resources&) const = default;
};

TEST_F(Services, FiftyRoundsLeaveWhatFiveLeft) {
    const std::string rules = Category(
        "<GarbageInfo FolderIndex='10'/><GarbageInfo FolderIndex='17'/>"
        "<GarbageInfo FolderEnvDir='DSW_BASE' Path='d' IsFolder='1' UseShellBrowse='1'/>"
        "<GarbageInfo FolderEnvDir='DSW_BASE' Path='e' IsFolder='1' EmptyProc='NT_ClearHistory'/>"
        "<GarbageInfo Registry='1' RootKey='HKCU' KeyPath='Software\\DswNone'/>",
        "0");
    folder.Write(L"d\\stays.tmp");
    const auto round = [&](int number) {
        RestrictTo(folder.Write(L"e\\stubborn.tmp"), L"D:(A;;FR;;;WD)");
        const Engine engine = EngineFor(folder, rules, /*upgradeMode=*/number % 2 == 0);
        engine->Gather(nullptr);
        engine->Clean(nullptr);
        if (number % 3 == 0) engine->Uninit();
        TakeTraceLines();
    };
    int number = 0;
    while (number < 6)
        round(number++);
    const Resources early;
    while (number < 50)
        round(number++);
    const Resources late;
    EXPECT_EQ(late.gdi, early.gdi);
    EXPECT_EQ(late.user, early.user);
    EXPECT_EQ(late.handles, early.handles);
    EXPECT_EQ(late.allocations, early.allocations);
}

// ---- the upgrade engine, seen from a host in a folder of its own

constexpr DWORD kNoEngine = 100;

// Runs in the child process: how many categories the upgrade engine has.
TEST(UpgradeHost, DISABLED_CountsCategories) {
    const HMODULE module = LoadLibraryW(L"Dregsweep.dll");
    const CReference engine(ExportOf<DregsweepFactory>(module, "GetSysUpgradeClearImp")());
    ExitProcess(engine ? static_cast<DWORD>(ChildrenOf(*engine).size()) : kNoEngine);
}

TEST(UpgradeHost, TakesItsFilesFromBesideTheExecutable) {
    const TempFolder folder;
    const std::wstring host = CopyBuilt(L"services_tests.exe", folder / L"host.exe");
    ASSERT_FALSE(CopyBuilt(L"Dregsweep.dll", folder / L"Dregsweep.dll").empty() || host.empty());
    const auto count = [&] {
        std::wstring command = L"host.exe --gtest_also_run_disabled_tests --gtest_filter=UpgradeHost.DISABLED_*";
        STARTUPINFOW startup = {};
        startup.cb = sizeof startup;
        PROCESS_INFORMATION child = {};
        EXPECT_TRUE(CreateProcessW(host.c_str(), command.data(), nullptr, nullptr, FALSE, 0, nullptr, L"C:\\", &startup,
                                   &child));
        WaitForSingleObject(child.hProcess, 60000);
        DWORD code = 0;
        GetExitCodeProcess(child.hProcess, &code);
        CloseHandle(child.hThread);
        CloseHandle(child.hProcess);
        return code;
    };
    EXPECT_EQ(count(), 0u);
    folder.Write(L"SysUpgradeConfig.xml", "<R>" + Category("") + Category("") + "</R>");
    folder.Write(L"ResIDText.xml", "<R><Dregsweep/></R>");
    EXPECT_EQ(count(), 2u);
    folder.Write(L"SysUpgradeConfig.xml", "<R>" + Category("") + "<AppCategoryInfo/></R>");
    EXPECT_EQ(count(), kNoEngine);
}

}  // namespace
