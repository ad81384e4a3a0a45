#include <windows.h>

#include <gmock/gmock.h>

#include <cstring>

#include "dregsweep/companionservice.h"
#include "dregsweep/redirection.h"
#include "dregsweep/restoreprivilege.h"
#include "sysservices/handle.h"
#include "tests/dregsweep/builtfiles.h"
#include "tests/support/iatpatch.h"
#include "tests/support/tracerecorder.h"

namespace {

using testing::ElementsAre;

// Redirection: what the replaced GetProcAddress answers for the two functions, and what these were given.
bool g_present;
int g_lookups, g_reverts;
void* g_old;
void* g_reverted;
const IatPatch* g_getProcAddress;

BOOL WINAPI FakeDisable(void** saved) {
    *saved = g_old;
    return TRUE;
}

BOOL WINAPI FakeRevert(void* saved) {
    ++g_reverts;
    g_reverted = saved;
    return TRUE;
}

FARPROC WINAPI FindFake(HMODULE module, const char* name) {
    const bool disable = std::strcmp(name, "Wow64DisableWow64FsRedirection") == 0;
    const bool revert = std::strcmp(name, "Wow64RevertWow64FsRedirection") == 0;
    if (!disable && !revert) return g_getProcAddress->original<decltype(&GetProcAddress)>()(module, name);
    ++g_lookups;
    if (!g_present) return nullptr;
    return reinterpret_cast<FARPROC>(disable ? reinterpret_cast<void*>(FakeDisable)
                                             : reinterpret_cast<void*>(FakeRevert));
}

class Redirection : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_patch.ok());
        g_getProcAddress = &m_patch;
    }
    IatPatch m_patch{nullptr, nullptr, "GetProcAddress", reinterpret_cast<void*>(FindFake)};
};

TEST_F(Redirection, IsRevertedOnlyWhenSomethingWasSaved) {
    g_present = true;
    { const CRedirectionOff nothingSaved; }
    EXPECT_EQ(g_reverts, 0);
    g_old = reinterpret_cast<void*>(0x1234567890);
    for (int i = 1; i <= 2; ++i) {
        {
            const CRedirectionOff off;
            EXPECT_EQ(g_reverts, i - 1);
        }
        EXPECT_EQ(g_reverts, i);
    }
    EXPECT_EQ(g_reverted, g_old);
    EXPECT_EQ(g_lookups, 2);  // one for each function
}

TEST_F(Redirection, MissingFunctionsAreLookedUpOnce) {
    for (int i = 0; i < 2; ++i) {
        uint64_t saved = 7;
        EXPECT_FALSE(DisableRedirection(saved));
        EXPECT_EQ(saved, 0u);
        EXPECT_FALSE(RevertRedirection(7));
    }
    EXPECT_EQ(g_lookups, 2);
}

// The functions are there in a 64-bit process, and refuse.
TEST(RedirectionIn64BitProcess, LeavesNothingToRevert) {
    uint64_t saved = 7;
    EXPECT_FALSE(DisableRedirection(saved));
    EXPECT_EQ(saved, 0u);
}

BOOL WINAPI RefuseToken(HANDLE, DWORD, HANDLE*) {
    SetLastError(ERROR_ACCESS_DENIED);
    return FALSE;
}

void RemoveRestorePrivilege() {
    CHandle token;
    ASSERT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES, token.Put()));
    TOKEN_PRIVILEGES privileges = {1, {{{}, SE_PRIVILEGE_REMOVED}}};
    ASSERT_TRUE(LookupPrivilegeValueW(nullptr, L"SeRestorePrivilege", &privileges.Privileges[0].Luid));
    ASSERT_TRUE(AdjustTokenPrivileges(token.get(), FALSE, &privileges, 0, nullptr, nullptr));
}

TEST(RestorePrivilege, TracesOutcomeAndLastError) {
    DWORD before = 0, after = 0;
    GetProcessHandleCount(GetCurrentProcess(), &before);
    EnableRestorePrivilege();
    RemoveRestorePrivilege();
    EnableRestorePrivilege();  // not held, and still a success
    {
        const IatPatch patch(nullptr, nullptr, "OpenProcessToken", reinterpret_cast<void*>(RefuseToken));
        ASSERT_TRUE(patch.ok());
        EnableRestorePrivilege();
    }
    GetProcessHandleCount(GetCurrentProcess(), &after);
    EXPECT_EQ(after, before);
    EXPECT_THAT(TakeTraceLines(),
                ElementsAre(L"[Dregsweep] EnableRestorePrivilege 1,0", L"[Dregsweep] EnableRestorePrivilege 1,1300",
                            L"[Dregsweep] EnableRestorePrivilege 0,5"));
}

int g_closed;
const IatPatch* g_close;

BOOL WINAPI CountClose(SC_HANDLE handle) {
    const BOOL closed = g_close->original<decltype(&CloseServiceHandle)>()(handle);
    g_closed += closed ? 1 : 0;
    return closed;
}

// What StartCompanionService answers; checks how many service handles it closed.
bool Start(int expectedHandles) {
    g_closed = 0;
    const IatPatch close(nullptr, nullptr, "CloseServiceHandle", reinterpret_cast<void*>(CountClose));
    EXPECT_TRUE(close.ok());
    g_close = &close;
    const bool started = StartCompanionService();
    EXPECT_EQ(g_closed, expectedHandles);
    return started;
}

class InstalledService {
public:
    explicit InstalledService(DWORD startType)
        : m_manager(OpenSCManagerW(nullptr, nullptr, SC_MANAGER_ALL_ACCESS)),
          m_service(CreateServiceW(m_manager, L"zolkmsvc", nullptr, SERVICE_ALL_ACCESS, SERVICE_WIN32_OWN_PROCESS,
                                   startType, SERVICE_ERROR_IGNORE, BuiltFile(L"fake_service.exe").c_str(), nullptr,
                                   nullptr, nullptr, nullptr, nullptr)) {}
    ~InstalledService() {
        SERVICE_STATUS status = {};
        ControlService(m_service, SERVICE_CONTROL_STOP, &status);
        for (int i = 0; i < 100 && State() != SERVICE_STOPPED; ++i)
            Sleep(20);
        DeleteService(m_service);
        CloseServiceHandle(m_service);
        CloseServiceHandle(m_manager);
    }
    InstalledService(const InstalledService&) = delete;
    InstalledService& operator=(const InstalledService&) = delete;
    DWORD State() const {
        SERVICE_STATUS status = {};
        QueryServiceStatus(m_service, &status);
        return status.dwCurrentState;
    }

private:
    SC_HANDLE m_manager, m_service;
};

TEST(CompanionService, StartsOrCountsAsStarted) {
    EXPECT_FALSE(Start(1)) << "not installed";
    {
        const InstalledService disabled(SERVICE_DISABLED);
        EXPECT_FALSE(Start(2));
    }
    const InstalledService service(SERVICE_DEMAND_START);
    EXPECT_TRUE(Start(2));
    EXPECT_EQ(service.State(), DWORD{SERVICE_RUNNING});
    EXPECT_TRUE(Start(2)) << "already running";
}

}  // namespace
