#include "sysservices/fileaccess.h"

#include <windows.h>
#include <gmock/gmock.h>
#include <sddl.h>

#include "sysservices/privilegecontext.h"
#include "tests/support/iatpatch.h"
#include "tests/support/tempfolder.h"

namespace {

using Descriptor = std::unique_ptr<void, decltype(&LocalFree)>;

Descriptor FromSddl(const std::wstring& text, ULONG* size = nullptr) {
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    EXPECT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorW(text.c_str(), SDDL_REVISION_1, &descriptor, size));
    return {descriptor, LocalFree};
}

// With the security of one file, able to hold any DACL, and what was written to it.
struct FileAccess : testing::Test {
    // Before the first test, since what the context holds stays alive after it.
    static void SetUpTestSuite() {
        const TempFolder folder;
        EXPECT_FALSE(UnlockPath(folder.Write(L"file"))) << "nothing is granted before";
        ASSERT_TRUE(EnablePrivileges(RestoreContext()));
    }
    std::wstring sddl = L"D:(D;;FA;;;WD)(D;ID;FW;;;BU)(A;OICI;FR;;;BA)";
    std::wstring refusals;  // for each write "1" to refuse it, "0" to take it; taken when there is none left
    std::wstring written;
};
FileAccess* g_store;

BOOL WINAPI GetStored(LPCWSTR, SECURITY_INFORMATION, PSECURITY_DESCRIPTOR buffer, DWORD size, LPDWORD needed) {
    ULONG bytes = 0;
    const Descriptor descriptor = FromSddl(g_store->sddl, &bytes);
    *needed = 1u << 30;  // far more than the buffer that it is read into
    return size >= bytes && memcpy(buffer, descriptor.get(), bytes);
}

BOOL WINAPI SetStored(LPCWSTR, SECURITY_INFORMATION which, PSECURITY_DESCRIPTOR descriptor) {
    PACL acl = nullptr;
    BOOL present = FALSE, defaulted = FALSE;
    GetSecurityDescriptorDacl(descriptor, &present, &acl, &defaulted);
    wchar_t* text = nullptr;
    ConvertSecurityDescriptorToStringSecurityDescriptorW(
        descriptor, SDDL_REVISION_1, DACL_SECURITY_INFORMATION | OWNER_SECURITY_INFORMATION, &text, nullptr);
    const Descriptor owner(text, LocalFree);
    g_store->written += std::to_wstring(which) + (present && !acl ? L"null" : text) + L" ";
    const bool refuse = g_store->refusals.starts_with(L"1");
    g_store->refusals.erase(0, 1);
    return !refuse;
}

BOOL WINAPI Refuse() {
    return FALSE;
}

// Takes that many requests, assigning nothing, and refuses the rest; which privileges were to be enabled.
int g_requestsTaken = 0;
std::string g_requested;
BOOL WINAPI Adjust(HANDLE, BOOL, TOKEN_PRIVILEGES* wanted, DWORD, TOKEN_PRIVILEGES*, DWORD*) {
    const auto& [luid, attributes] = wanted->Privileges[0];
    if (attributes == SE_PRIVILEGE_ENABLED) g_requested += std::to_string(luid.LowPart) + " ";
    SetLastError(ERROR_NOT_ALL_ASSIGNED);
    return g_requestsTaken-- > 0;
}

}  // namespace

TEST(PrivilegeContext, EnablesItsPrivilegesAndCountsCallsRatherThanAssignments) {
    const IatPatch adjust("AdjustTokenPrivileges", Adjust);
    const struct {
        bool backup;
        int requestsTaken;
        bool enabled, hasAdministrators;
        const char* requested;
    } rows[] = {{false, 0, false, false, "18 "},
                {false, 1, true, false, "18 9 "},
                {false, 2, true, true, "18 9 "},
                {true, 2, true, false, "17 "}};
    for (const auto& row : rows) {
        PrivilegeContext context(row.backup);
        g_requestsTaken = row.requestsTaken;
        g_requested.clear();
        EXPECT_EQ(EnablePrivileges(context) && context.scratch[3], row.enabled);
        EXPECT_EQ(IsWellKnownSid(context.administrators.get(), WinBuiltinAdministratorsSid), row.hasAdministrators);
        EXPECT_TRUE(!row.enabled || EnablePrivileges(context)) << "a ready context has nothing to ask for";
        EXPECT_EQ(g_requested, row.requested);
        EXPECT_TRUE(row.hasAdministrators || !TakeOwnership(context, L"C:\\windows"));
    }
}

TEST_F(FileAccess, UnlocksAFile) {
    const TempFolder folder;
    const std::wstring file = folder.Write(L"protected file.log");
    ASSERT_TRUE(SetFileSecurityW(file.c_str(), DACL_SECURITY_INFORMATION, FromSddl(L"D:(A;;FR;;;WD)").get()));
    EXPECT_FALSE(GrantFullAccess(BackupContext(), file)) << "a context reads through its own buffer";
    EXPECT_FALSE(DeleteFileW(file.c_str()));
    EXPECT_TRUE(UnlockPath(file) && DeleteFileW(file.c_str()));
}

TEST_F(FileAccess, WritesTheExtendedDaclAndTakesOwnershipOnce) {
    g_store = this;
    const IatPatch get("GetFileSecurityW", GetStored), set("SetFileSecurityW", SetStored);
    const std::wstring everyone = L"(A;OICIID;0x101f0000;;;WD) ", ownership = L"1O:BA ";
    // The SID is that of a Wine prefix's only user.
    const std::wstring both = L"4" + sddl + L"(A;OICIID;0x101f0000;;;S-1-5-21-0-0-0-1000)" + everyone;
    const struct {
        const char* refused;
        const wchar_t* refusals;
        bool unlocked;
        std::wstring written;
    } rows[] = {{"", L"100", true, both + ownership + both},
                {"", L"101", false, both + ownership + both},
                {"", L"11", false, both + ownership},
                {"LookupAccountNameW", L"", true, L"4" + sddl + everyone},
                {"GetAclInformation", L"", true, L"4null "},
                {"CreateWellKnownSid", L"", false, ownership},
                {"GetSecurityDescriptorDacl", L"", false, ownership}};
    for (const auto& row : rows) {
        written.clear();
        refusals = row.refusals;
        const IatPatch refuse(row.refused, Refuse);
        EXPECT_EQ(UnlockPath(L"C:\\any"), row.unlocked) << row.refused;
        EXPECT_EQ(written, row.written) << row.refused;
    }
    sddl = L"O:BA";
    EXPECT_FALSE(GrantFullAccess(RestoreContext(), L"C:\\any")) << "there is no DACL at all";
}
