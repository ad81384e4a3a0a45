#include "tests/rules/recordingrule.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const wchar_t* g_hostFile;
DWORD WINAPI HostFile(HMODULE, wchar_t* buffer, DWORD size) {
    wcsncpy(buffer, g_hostFile, size);
    return static_cast<DWORD>(wcslen(g_hostFile));
}

}  // namespace

TEST_F(RuleTest, CleanReportsEachItemAndForgetsIt) {
    for (const wchar_t* name : {L"a.log", L"b.log", L"c.log", L"d.log", L"e.log"})
        m_folder.Write(name, "xx");
    SetFileAttributesW((m_folder / L"c.log").c_str(), FILE_ATTRIBUTE_READONLY);
    RecordingRule rule;
    ASSERT_TRUE(rule.Load(m_files) && rule.Gather());
    DeleteFileW((m_folder / L"d.log").c_str());
    const HANDLE held = CreateFileW((m_folder / L"b.log").c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_TRUE(rule.Clean(1, 2, 3));
    CloseHandle(held);
    EXPECT_THAT(rule.emptied, ElementsAre(L"+a.log", L"-b.log", L"-c.log", L"-d.log", L"+e.log"));
    EXPECT_THAT(Listed(rule), IsEmpty());
    EXPECT_EQ(rule.GetTotalSize(), 6u);
    EXPECT_EQ(rule.GetPendingCount(), 3u);
    EXPECT_TRUE(rule.Gather());
    EXPECT_THAT(Listed(rule), ElementsAre(L"b.log", L"c.log"));
}

TEST_F(RuleTest, HostFolderStaysListedAndUnreported) {
    const CString hostFile = m_folder / L"APP\\host.exe";
    g_hostFile = hostFile.c_str();
    const IatPatch patch(nullptr, nullptr, "GetModuleFileNameW", reinterpret_cast<const void*>(&HostFile));
    ASSERT_TRUE(patch.ok());
    for (const wchar_t* name : {L"a", L"App\\b", L"App2\\c", L"Other\\App\\d"})
        m_folder.Write(name);
    RecordingRule rule;
    // The process-wide list goes with any engine that ends, also in the middle of the clean.
    rule.onEmptied = [] { CAppInfoManager::ReleaseInstance(); };
    EXPECT_TRUE(rule.Load(m_files + "Iteration='1'") && rule.Gather() && rule.Clean(0, 0, 0));
    EXPECT_THAT(rule.emptied, ElementsAre(L"+a", L"+d"));
    EXPECT_THAT(Listed(rule), ElementsAre(L"App\\b", L"App2\\c"));  // a part of the path, not a folder of it
    EXPECT_TRUE(m_folder.Has(L"App\\b") && m_folder.Has(L"App2\\c") && !m_folder.Has(L"a"));
}
