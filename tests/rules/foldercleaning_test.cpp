#include "tests/rules/recordingrule.h"

namespace {

using testing::ElementsAre;

const wchar_t* g_hostFile;
DWORD WINAPI HostFile(HMODULE, wchar_t* buffer, DWORD size) {
    wcsncpy(buffer, g_hostFile, size);
    return static_cast<DWORD>(wcslen(g_hostFile));
}

}  // namespace

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
