#include <windows.h>

#include <gmock/gmock.h>
#include <process.h>

#include <thread>

#include "dregsweep/companionservice.h"
#include "dregsweep/idregsweep.h"
#include "dregsweep/redirection.h"
#include "dregsweep/restoreprivilege.h"
#include "tests/dregsweep/builtfiles.h"
#include "tests/dregsweep/fakecompanion.h"
#include "tests/support/iatpatch.h"
#include "tests/support/smalljob.h"
#include "tests/support/tracerecorder.h"

namespace {

int g_lookups, g_reverts;
void* g_saved;

BOOL WINAPI Disable(void** saved) {
    *saved = g_saved;
    return TRUE;
}

BOOL WINAPI Revert(void* saved) {
    g_reverts += saved == g_saved ? 1 : 100;
    return TRUE;
}

FARPROC WINAPI FindFake(HMODULE, const char* name) {
    ++g_lookups;
    const bool disable = std::string_view(name) == "Wow64DisableWow64FsRedirection";
    return reinterpret_cast<FARPROC>(disable ? reinterpret_cast<void*>(Disable) : reinterpret_cast<void*>(Revert));
}

TEST(Redirection, IsRevertedOnlyWhenSomethingWasSaved) {
    const IatPatch patch("GetProcAddress", FindFake);
    for (const int reverts : {0, 1, 2}) {
        g_saved = reinterpret_cast<void*>(reverts * 0x1234567890);
        { const CRedirectionOff off; }
        EXPECT_EQ(g_reverts, reverts);
    }
    EXPECT_EQ(g_lookups, 2) << "one for each function";
}

DWORD g_error;

BOOL WINAPI Answer() {
    SetLastError(g_error);
    return g_error != ERROR_ACCESS_DENIED;
}

TEST(RestorePrivilege, TracesOutcomeAndLastError) {
    for (const auto& [replaced, error] :
         {std::pair("", 0UL), {"AdjustTokenPrivileges", 1300}, {"OpenProcessToken", 5}}) {
        const IatPatch patch(replaced, Answer);
        g_error = error;
        EnableRestorePrivilege();
    }
    const std::wstring line = L"[Dregsweep] EnableRestorePrivilege ";
    EXPECT_THAT(TakeTraceLines(), testing::ElementsAre(line + L"1,0", line + L"1,1300", line + L"0,5"));
}

int g_closed;

BOOL WINAPI CountClose(SC_HANDLE) {
    ++g_closed;
    return TRUE;
}

// What StartCompanionService answers, and how many service handles it closed.
std::pair<bool, int> Start() {
    const IatPatch close("CloseServiceHandle", CountClose);
    g_closed = 0;
    const bool started = StartCompanionService();
    return {started, g_closed};
}

TEST(CompanionService, StartsOrCountsAsStarted) {
    EXPECT_EQ(Start(), std::pair(false, 1)) << "not installed";
    const SC_HANDLE manager = OpenSCManagerW(nullptr, nullptr, SC_MANAGER_ALL_ACCESS);
    const SC_HANDLE service = CreateServiceW(
        manager, L"zolkmsvc", nullptr, SERVICE_ALL_ACCESS, SERVICE_WIN32_OWN_PROCESS, SERVICE_DISABLED,
        SERVICE_ERROR_IGNORE, BuiltFile(L"environment_child.exe").c_str(), nullptr, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(Start(), std::pair(false, 2)) << "disabled";
    ChangeServiceConfigW(service, SERVICE_NO_CHANGE, SERVICE_DEMAND_START, SERVICE_NO_CHANGE, nullptr, nullptr, nullptr,
                         nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(Start(), std::pair(true, 2));
    EXPECT_EQ(Start(), std::pair(true, 2)) << "already running";
    SERVICE_STATUS status = {};
    EXPECT_TRUE(ControlService(service, SERVICE_CONTROL_STOP, &status));
    DeleteService(service);
}

void SetCrashDebugger(const std::wstring& command) {
    RegSetKeyValueW(HKEY_LOCAL_MACHINE, L"Software\\Microsoft\\Windows NT\\CurrentVersion\\AeDebug", L"Debugger",
                    REG_SZ, command.c_str(), static_cast<DWORD>((command.size() + 1) * sizeof(wchar_t)));
}

TEST(CrashDump, StandsBesideTheExecutableOfTheProcess) {
    const TempFolder folder;
    const std::wstring library = CopyBuilt(L"Dregsweep.dll", folder / L"Dregsweep.dll");
    // What the system does with an exception that the filter leaves to it.
    SetCrashDebugger(L"cmd /c mkdir \"" + folder / L"debugged" + L"\"");
    for (const bool nameTaken : {false, true}) {
        const TempFolder host;
        if (nameTaken) host.MakeFolder(L"dsw.dmp");
        const std::wstring executable = CopyBuilt(L"environment_child.exe", host / L"host.exe");
        const intptr_t exitCode = _wspawnl(_P_WAIT, executable.c_str(), L"host", library.c_str(), nullptr);
        EXPECT_EQ(static_cast<DWORD>(exitCode), 0xE0445357);
        EXPECT_EQ(folder.Has(L"debugged"), nameTaken);
        EXPECT_TRUE(nameTaken || ReadFileBytes(host / L"dsw.dmp").starts_with("MDMP"));
    }
    SetCrashDebugger(L"winedbg --auto %ld %ld");
}

LONG WINAPI ForeignFilter(EXCEPTION_POINTERS*) {
    return EXCEPTION_CONTINUE_SEARCH;
}

TEST(CrashDump, UnloadTakesBackOnlyItsOwnFilter) {
    FreeLibrary(LoadLibraryW(L"Dregsweep.dll"));
    EXPECT_EQ(SetUnhandledExceptionFilter(nullptr), nullptr);
    const HMODULE library = LoadLibraryW(L"Dregsweep.dll");
    EXPECT_TRUE(SetUnhandledExceptionFilter(ForeignFilter));
    ASSERT_TRUE(FreeLibrary(library));
    EXPECT_EQ(SetUnhandledExceptionFilter(nullptr), &ForeignFilter);
}

// The delivered module with an engine of its own, in a folder for companions.
struct Module {
    uint64_t Init() {
        const auto config = folder.Write(L"rules.xml", R"(<R><AppCategoryInfo Name="a" CatagoryType="0" SelState="2"/>
            <AppCategoryInfo Name="b" CatagoryType="1" SelState="2"/>
            <AppCategoryInfo Name="c" CatagoryType="2" SelState="1"/>
            <AppCategoryInfo Name="d" CatagoryType="2" SelState="0"/></R>)");
        return engine->Init(config.c_str(), L"", nullptr);
    }
    FakeCompanionRecord& Record(const std::wstring& library) {
        return *ExportOf<FakeCompanionRecord*>(GetModuleHandleW((folder / library).c_str()), "g_record");
    }
    const TempFolder folder;
    CReference<IDregsweep> engine{ExportOf<DregsweepFactory>(
        LoadLibraryW(CopyBuilt(L"Dregsweep.dll", folder / L"Dregsweep.dll").c_str()), "GetImp")()};
};

TEST(Companion, UsageEventsReachTheLibraryBesideTheModule) {
    for (const CString names : {L"", L"kxaide64.dll", L"kxaide.dll", L"kxaide64.dll|kxaide.dll"}) {
        Module module;
        const auto libraries = Split(names, L"|");  // the first is used
        for (const CString& name : libraries)
            CopyBuilt(L"fake_companion.dll", module.folder / name);
        EXPECT_EQ(module.Init(), 0u);
        for (int round = 0; round < 3; ++round)
            EXPECT_TRUE(module.engine->Gather(nullptr) && module.engine->Clean(nullptr));
        if (libraries.empty()) continue;
        const FakeCompanionRecord& record = module.Record(libraries.front());
        EXPECT_THAT(record.events, testing::ElementsAre(0x11003, 0x11004, 0x11003, 0x11004, 0, 0, 0, 0));
        EXPECT_EQ(record.factoryCalls, 3u);
        EXPECT_FALSE(libraries.size() > 1 && GetModuleHandleW((module.folder / libraries[1]).c_str()));
    }
}

TEST(Companion, StartUpCodeComesThroughAndRunsAreTold) {
    Module module;
    EXPECT_EQ(module.Init(), 0u) << "there is no companion";
    module.engine->Uninit();
    CopyBuilt(L"fake_companion.dll", module.folder / L"Tallyhost.dll");
    ASSERT_TRUE(SetCurrentDirectoryW(module.folder.path().c_str()));
    EXPECT_EQ(module.Init(), kStartCode);
    EXPECT_EQ(module.Init(), 0u);
    FakeCompanionRecord& record = module.Record(L"Tallyhost.dll");
    EXPECT_TRUE(record.alive == 1 && record.runs == 0);
    EXPECT_TRUE(module.engine->Gather(nullptr) && module.engine->Clean(nullptr));
    EXPECT_EQ(record.runs, 2u);
    // Released outside the lock that another thread's run waits for; what it throws ends in the engine.
    static IDregsweep* const engine = module.engine.get();
    record.onLastRelease = [] { std::thread([] { EXPECT_TRUE(engine->Gather(nullptr)); }).join(); };
    module.engine->Uninit();
    EXPECT_EQ(record.alive, 0u);
    SetCurrentDirectoryW(L"C:\\");
}

TEST(Dll, ExportsTheFactoriesOnly) {
    const HMODULE module = LoadLibraryW(L"Dregsweep.dll");
    WORD ordinal = 0;
    for (const char* name :
         {"EndFunc", "GetImp", "GetInetFileProcImp", "GetPrivacyProcImp", "GetSysUpgradeClearImp", "StartFunc"})
        EXPECT_EQ(GetProcAddress(module, name), GetProcAddress(module, MAKEINTRESOURCEA(++ordinal))) << name;
    EXPECT_TRUE(GetProcAddress(module, MAKEINTRESOURCEA(ordinal)));
    EXPECT_FALSE(GetProcAddress(module, MAKEINTRESOURCEA(ordinal + 1)));
    EXPECT_EQ(GetProcAddress(module, "GetImp"), GetProcAddress(module, "GetPrivacyProcImp"));
    EXPECT_FALSE(ExportOf<bool (*)()>(module, "StartFunc")()) << "not installed";
    EXPECT_TRUE(ExportOf<bool (*)()>(module, "EndFunc")());
    EXPECT_TRUE(FindResourceW(module, MAKEINTRESOURCEW(VS_VERSION_INFO), RT_VERSION));
}

std::wstring g_executable;
DWORD WINAPI TellExecutable(HMODULE, wchar_t* buffer, DWORD size) {
    return static_cast<DWORD>(g_executable.copy(buffer, size));
}

TEST(Dll, TakesTheUpgradeFilesFromBesideTheExecutable) {
    constexpr size_t kNoEngine = 100;
    const TempFolder folder;
    const HMODULE module = LoadLibraryW(L"Dregsweep.dll");
    const IatPatch patch(module, nullptr, "GetModuleFileNameW", reinterpret_cast<const void*>(&TellExecutable));
    ASSERT_TRUE(patch.ok());
    g_executable = folder / L"host.exe";
    const auto count = [&](const char* categories) {
        if (*categories) folder.Write(L"SysUpgradeConfig.xml", categories);
        const CReference engine(ExportOf<DregsweepFactory>(module, "GetSysUpgradeClearImp")());
        return engine ? ChildrenOf(*engine).size() : kNoEngine;
    };
    EXPECT_EQ(count(""), 0u);
    EXPECT_EQ(count("<R><AppCategoryInfo Name='a'/><AppCategoryInfo Name='b'/></R>"), 2u);
    EXPECT_EQ(count("<R><AppCategoryInfo Name='a'/><AppCategoryInfo/></R>"), kNoEngine);
    std::wstring().swap(g_executable);
}

}  // namespace
