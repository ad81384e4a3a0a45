#include "sysservices/fileaccess.h"

#include <windows.h>
#include <gmock/gmock.h>
#include <sddl.h>

#include "sysservices/accesscontrollist.h"
#include "sysservices/filedaclproc.h"
#include "tests/support/allocguard.h"
#include "tests/support/iatpatch.h"
#include "tests/support/tempfolder.h"

using Security_Proc::CAccessControlList;
using Security_Proc::CFileDaclProc;
using testing::ElementsAre;
using Log = std::vector<std::wstring>;

namespace {

struct LocalFreer {
    void operator()(void* block) const { LocalFree(block); }
};

std::unique_ptr<void, LocalFreer> FromSddl(const std::wstring& text, ULONG* size = nullptr) {
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    EXPECT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorW(text.c_str(), SDDL_REVISION_1, &descriptor, size));
    return std::unique_ptr<void, LocalFreer>(descriptor);
}

std::wstring ToSddl(PSECURITY_DESCRIPTOR descriptor, SECURITY_INFORMATION which) {
    wchar_t* text = nullptr;
    ConvertSecurityDescriptorToStringSecurityDescriptorW(descriptor, SDDL_REVISION_1, which, &text, nullptr);
    const std::unique_ptr<wchar_t, LocalFreer> owner(text);
    return text ? text : L"no text";
}

// The security of one file, able to hold any DACL, and what was written to it.
struct Store {
    std::wstring sddl = L"D:(D;;FA;;;WD)(D;ID;FW;;;BU)(A;OICI;FR;;;BA)";
    DWORD claimedExtra = 0;
    int failingDaclWrites = 0;
    bool failOwnerWrites = false;
    Log written;
};
Store* g_store;

BOOL WINAPI GetStored(LPCWSTR, SECURITY_INFORMATION, PSECURITY_DESCRIPTOR buffer, DWORD size, LPDWORD needed) {
    ULONG bytes = 0;
    const auto descriptor = FromSddl(g_store->sddl, &bytes);
    *needed = bytes + g_store->claimedExtra;
    if (size < bytes) return FALSE;
    memcpy(buffer, descriptor.get(), bytes);
    return TRUE;
}

BOOL WINAPI SetStored(LPCWSTR, SECURITY_INFORMATION which, PSECURITY_DESCRIPTOR descriptor) {
    if (which != DACL_SECURITY_INFORMATION) {
        g_store->written.push_back(std::to_wstring(which) + L" " + ToSddl(descriptor, OWNER_SECURITY_INFORMATION));
        return !g_store->failOwnerWrites;
    }
    PACL acl = nullptr;
    BOOL present = FALSE, defaulted = FALSE;
    GetSecurityDescriptorDacl(descriptor, &present, &acl, &defaulted);
    g_store->written.push_back(present && !acl ? L"null" : ToSddl(descriptor, which));
    return g_store->failingDaclWrites-- <= 0;
}

BOOL WINAPI Refuse() {
    return FALSE;
}

decltype(&LookupAccountNameW) g_lookUp;
BOOL WINAPI StrictLookUp(LPCWSTR system, LPCWSTR name, PSID sid, LPDWORD sidSize, LPWSTR domain, LPDWORD domainChars,
                         PSID_NAME_USE use) {
    EXPECT_EQ(*domainChars, 520u);
    return g_lookUp(system, name, sid, sidSize, domain, domainChars, use);
}

// A file that everyone may read and nobody may delete.
std::wstring MakeUndeletable(const TempFolder& folder) {
    std::wstring file = folder.Write(L"protected file.log");
    EXPECT_TRUE(SetFileSecurityW(file.c_str(), DACL_SECURITY_INFORMATION, FromSddl(L"D:(A;;FR;;;WD)").get()));
    EXPECT_FALSE(DeleteFileW(file.c_str()));
    return file;
}

}  // namespace

// In a process of its own, and first in the file: the process-wide contexts are not ready yet.
TEST(FileAccessNotReady, GrantsNothing) {
    const TempFolder folder;
    const std::wstring file = MakeUndeletable(folder);
    EXPECT_FALSE(UnlockPath(file));
    EXPECT_FALSE(DeleteFileW(file.c_str()));
}

class FileAccess : public testing::Test {
protected:
    // Before the first test, since what a context holds stays alive after it.
    static void SetUpTestSuite() { ASSERT_TRUE(EnablePrivileges(RestoreContext())); }
};

TEST_F(FileAccess, UnlockedFileCanBeDeletedAndLackOfMemoryUnlocksNothing) {
    const TempFolder folder;
    const std::wstring file = MakeUndeletable(folder);
    EXPECT_FALSE(GrantFullAccess(BackupContext(), file)) << "a context reads through its own buffer";
    long long allocations = -1;
    for (bool unlocked = false; !unlocked;) {
        EXPECT_FALSE(DeleteFileW(file.c_str())) << "unlocked though " << allocations << " allocations do not do";
        alloc_guard::FailAfter(++allocations);
        unlocked = UnlockPath(file);
        alloc_guard::FailAfter(-1);
    }
    EXPECT_GT(allocations, 5);
    EXPECT_TRUE(DeleteFileW(file.c_str()));
    EXPECT_FALSE(GrantFullAccess(RestoreContext(), file)) << "there is no such file any more";
}

class StoredFileAccess : public FileAccess {
protected:
    StoredFileAccess() { g_store = &m_store; }
    void SetUp() override { ASSERT_TRUE(m_get.ok() && m_set.ok()); }

    Store m_store;
    const std::wstring m_path = L"C:\\any";
    const std::wstring m_forEveryone = m_store.sddl + L"(A;OICIID;0x101f0000;;;WD)";
    // The SID is that of a Wine prefix's only user.
    const std::wstring m_forBoth =
        m_store.sddl + L"(A;OICIID;0x101f0000;;;S-1-5-21-0-0-0-1000)(A;OICIID;0x101f0000;;;WD)";
    const IatPatch m_get{nullptr, nullptr, "GetFileSecurityW", reinterpret_cast<const void*>(&GetStored)};
    const IatPatch m_set{nullptr, nullptr, "SetFileSecurityW", reinterpret_cast<const void*>(&SetStored)};
};

TEST_F(StoredFileAccess, AppendsUserAndEveryoneBehindTheOldEntries) {
    const IatPatch strict(nullptr, nullptr, "LookupAccountNameW", reinterpret_cast<const void*>(&StrictLookUp));
    g_lookUp = strict.original<decltype(g_lookUp)>();
    EXPECT_TRUE(UnlockPath(m_path));
    m_store.claimedExtra = 1u << 30;  // far more than the buffer that it was read into
    EXPECT_TRUE(UnlockPath(m_path));
    EXPECT_THAT(m_store.written, ElementsAre(m_forBoth, m_forBoth));
}

TEST_F(StoredFileAccess, FailuresDecideWhatIsWritten) {
    const struct {
        const char* refused;
        bool granted;
        Log written;
    } cases[] = {
        {"GetUserNameW", true, {m_forEveryone}}, {"LookupAccountNameW", true, {m_forEveryone}},
        {"IsValidSid", true, {m_forEveryone}},   {"CreateWellKnownSid", false, {}},
        {"GetAclInformation", true, {L"null"}},  {"GetSecurityDescriptorDacl", false, {}},
    };
    for (const auto& row : cases) {
        m_store.written.clear();
        const IatPatch refuse(nullptr, nullptr, row.refused, reinterpret_cast<const void*>(&Refuse));
        ASSERT_TRUE(refuse.ok());
        EXPECT_EQ(GrantFullAccess(RestoreContext(), m_path), row.granted) << row.refused;
        EXPECT_EQ(m_store.written, row.written) << row.refused;
    }
    m_store.written.clear();
    m_store.sddl = L"O:BA";  // no DACL at all
    EXPECT_FALSE(GrantFullAccess(RestoreContext(), m_path));
    EXPECT_TRUE(m_store.written.empty());
}

TEST_F(StoredFileAccess, TakesOwnershipOnceThenGrantsOnceMore) {
    const struct {
        int failingDaclWrites;
        bool failOwnerWrites;
        bool unlocked;
        Log written;
    } cases[] = {
        {0, false, true, {m_forBoth}},
        {1, false, true, {m_forBoth, L"1 O:BA", m_forBoth}},
        {2, false, false, {m_forBoth, L"1 O:BA", m_forBoth}},
        {1, true, false, {m_forBoth, L"1 O:BA"}},
    };
    for (const auto& row : cases) {
        m_store.written.clear();
        m_store.failingDaclWrites = row.failingDaclWrites;
        m_store.failOwnerWrites = row.failOwnerWrites;
        EXPECT_EQ(UnlockPath(m_path), row.unlocked);
        EXPECT_EQ(m_store.written, row.written);
    }
}

TEST_F(StoredFileAccess, EditorsKeepTheirOddities) {
    m_store.sddl = L"D:(A;;FR;;;BA)(D;;FA;;;BU)";
    CFileDaclProc file(m_path, /*backupContext=*/false, /*readNow=*/true);
    CAccessControlList list(file.GetDacl(), /*addCurrentUser=*/false, /*skipOldDeny=*/true);
    EXPECT_TRUE(list.AddWellKnownSid(GENERIC_READ));
    EXPECT_FALSE(list.AddAccount(L"no such account", GENERIC_ALL, nullptr));
    const DWORD firstSize = list.GetAcl()->AclSize;
    auto administrators = std::make_unique<BYTE[]>(SECURITY_MAX_SID_SIZE);
    CopySid(SECURITY_MAX_SID_SIZE, administrators.get(), RestoreContext().administrators.get());
    using Entry = CAccessControlList::CAccessEntry;
    list.AddEntry(std::make_unique<Entry>(GENERIC_WRITE, std::move(administrators), Entry::Kind::Deny));
    EXPECT_EQ(list.GetAcl()->AclSize, firstSize + 24) << "the old ACL counts once";
    EXPECT_EQ(list.GetAcl()->AclRevision, ACL_REVISION_DS);
    EXPECT_TRUE(file.SetDacl(list.GetAcl()));
    EXPECT_TRUE(file.SetOwner(RestoreContext().administrators.get(), /*groupToo=*/true));
    EXPECT_THAT(m_store.written, ElementsAre(L"D:(A;;FR;;;BA)(D;;GW;;;BA)(A;OICIID;GR;;;WD)", L"2 O:BA"));

    CAccessControlList fresh(nullptr, /*addCurrentUser=*/false, /*skipOldDeny=*/false);
    EXPECT_EQ(fresh.GetAcl(), nullptr);
    EXPECT_TRUE(fresh.AddWellKnownSid(GENERIC_READ) && fresh.AddWellKnownSid(GENERIC_WRITE));
    EXPECT_EQ(fresh.GetAcl()->AceCount, 1) << "no room for the header, so the last one does not fit";
}
