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

TEST_F(RuleTest, DeletesTheFoundFileAndNotTheOneThatWindowsTakesItFor) {
    const auto path = [&](const wchar_t* name) { return L"\\\\?\\" + m_folder / name; };
    for (const wchar_t* name : {L"trail", L"trail.", L"trail "})
        CloseHandle(CreateFileW(path(name).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));
    RecordingRule rule;
    EXPECT_TRUE(rule.Load(m_files + "Filter='trail?'") && rule.Gather() && rule.Clean(0, 0, 0));
    EXPECT_THAT(rule.emptied, testing::UnorderedElementsAre(L"+trail.", L"+trail "));
    for (const auto& [name, stays] : {std::pair(L"trail", true), {L"trail.", false}, {L"trail ", false}})
        EXPECT_EQ(GetFileAttributesW(path(name).c_str()) != INVALID_FILE_ATTRIBUTES, stays) << name;
}
