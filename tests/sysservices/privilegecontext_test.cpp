#include "sysservices/privilegecontext.h"

#include <gtest/gtest.h>

#include "sysservices/fileaccess.h"
#include "tests/support/allocguard.h"
#include "tests/support/iatpatch.h"

namespace {

bool IsEnabled(const wchar_t* name) {
    HANDLE token = nullptr;
    EXPECT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token));
    PRIVILEGE_SET set = {1, PRIVILEGE_SET_ALL_NECESSARY, {}};
    EXPECT_TRUE(LookupPrivilegeValueW(nullptr, name, &set.Privilege[0].Luid));
    BOOL enabled = FALSE;
    EXPECT_TRUE(PrivilegeCheck(token, &set, &enabled));
    CloseHandle(token);
    return enabled;
}

BOOL WINAPI Refuse() {
    return FALSE;
}

// A token without privileges: the first calls are taken but assign nothing, later ones are refused.
int g_callsTaken;
BOOL WINAPI AssignNothing() {
    SetLastError(ERROR_NOT_ALL_ASSIGNED);
    return g_callsTaken-- > 0;
}

}  // namespace

TEST(PrivilegeContext, EnablesThePrivilegesOfItsMode) {
    ASSERT_FALSE(IsEnabled(SE_BACKUP_NAME) || IsEnabled(SE_RESTORE_NAME) || IsEnabled(SE_TAKE_OWNERSHIP_NAME));
    PrivilegeContext backup(true);
    EXPECT_TRUE(EnablePrivileges(backup));
    EXPECT_TRUE(IsEnabled(SE_BACKUP_NAME));
    EXPECT_FALSE(IsEnabled(SE_RESTORE_NAME) || IsEnabled(SE_TAKE_OWNERSHIP_NAME));
    EXPECT_FALSE(backup.administrators);

    PrivilegeContext restore(false);
    EXPECT_TRUE(EnablePrivileges(restore));
    EXPECT_TRUE(IsEnabled(SE_RESTORE_NAME) && IsEnabled(SE_TAKE_OWNERSHIP_NAME));
    EXPECT_TRUE(IsWellKnownSid(restore.administrators.get(), WinBuiltinAdministratorsSid));

    const IatPatch refuse(nullptr, nullptr, "AdjustTokenPrivileges", reinterpret_cast<const void*>(&Refuse));
    EXPECT_TRUE(EnablePrivileges(restore)) << "a ready context has nothing to ask for";
}

TEST(PrivilegeContext, StaysUntouchedWhenRefused) {
    PrivilegeContext context(false);
    for (const char* function : {"LookupPrivilegeValueW", "OpenProcessToken", "AdjustTokenPrivileges"}) {
        const IatPatch refuse(nullptr, nullptr, function, reinterpret_cast<const void*>(&Refuse));
        ASSERT_TRUE(refuse.ok());
        EXPECT_FALSE(EnablePrivileges(context)) << function;
    }
    alloc_guard::FailAfter(3);  // one buffer too few
    EXPECT_FALSE(EnablePrivileges(context));
    alloc_guard::FailAfter(-1);
    EXPECT_FALSE(context.ready || context.administrators || context.scratch[0]);
    EXPECT_TRUE(EnablePrivileges(context));
}

TEST(PrivilegeContext, CountsCallsRatherThanAssignments) {
    const IatPatch patch(nullptr, nullptr, "AdjustTokenPrivileges", reinterpret_cast<const void*>(&AssignNothing));
    for (const bool takeOwnership : {false, true}) {
        PrivilegeContext context(false);
        g_callsTaken = takeOwnership ? 2 : 1;
        EXPECT_TRUE(EnablePrivileges(context));
        EXPECT_EQ(context.administrators != nullptr, takeOwnership);
        EXPECT_TRUE(takeOwnership || !TakeOwnership(context, L"C:\\windows"));
    }
}
