#include "rules/registryrule.h"

#include "rules/rootkeyname.h"

#include "tests/rules/recordingrule.h"
#include "tests/support/recordingexplanation.h"

namespace {

void Set(const CString& key, const CString& name, DWORD type = REG_SZ, const CString& data = L"v", DWORD bytes = 4) {
    EXPECT_EQ(0, RegSetKeyValueW(HKEY_CURRENT_USER, key.c_str(), name.c_str(), type, data.data(), bytes));
}

bool Has(const CString& key, const CString& name) {
    return !RegGetValueW(HKEY_CURRENT_USER, key.c_str(), name.c_str(), RRF_RT_ANY, nullptr, nullptr, nullptr);
}

}  // namespace

TEST_F(Rules, LeaveValuesThatCannotBeReadAndDoNotShowThem) {
    const CString key = L"Software\\DswUnread", fits(259, L'M'), tooLong(260, L'N');
    for (const CString& name : {fits, tooLong, CString(L"Z")})
        Set(key, name);
    RecordingRule rule;
    EXPECT_TRUE(rule.Load("Registry='1' RootKey='HKCU' KeyPath='Software\\DswUnread'"));
    RecordingExplanation shown, after;
    EXPECT_TRUE(rule.Gather() && rule.Explain(&shown) && Has(key, fits));
    EXPECT_EQ(shown.lines.back(), L"action 3 HKCU\\Software\\DswUnread|" + fits);
    EXPECT_TRUE(rule.Clean(1, 2, 3) && rule.found.empty() && rule.emptied.empty() && rule.Explain(&after));
    EXPECT_TRUE(shown.lines.size() == 2 && after.lines.size() == 1) << "all that was shown is gone";
    // The name that does not fit hides the one behind it.
    EXPECT_TRUE(!Has(key, fits) && Has(key, tooLong) && Has(key, L"Z"));
}

TEST_F(Rules, TakeTheLocationFromAValue) {
    const CString key = L"Software\\DswLocation", longest(259, L'y');
    Set(key, L"expand", REG_EXPAND_SZ, L"%TEMP%", 14);
    Set(key, L"unterminated", REG_BINARY, L"abcdef", 6);
    Set(key, L"nul", REG_SZ, CString(L"C:\\from\0behind", 14), 28);
    Set(key, L"full", REG_BINARY, longest + L"yy", 520);
    Set(key, L"toolong", REG_SZ, longest + L"y", 522);
    const std::pair<const char*, CString> rows[] = {
        {"Value='expand' RootKey='HKCU'", L"%TEMP%"},
        {"Value='expand' RootKey='HKLM'", L""},  // no such key
        {"Value='unterminated' RootKey='HKCU'", L"abc"},
        {"Value='nul' RootKey='HKCU'", L"C:\\from"},
        {"Value='full' RootKey='HKCU'", longest + L"y"},
        {"Value='toolong' RootKey='HKCU'", L""},
        {"Value='expand' RootKey='HKCU' FolderEnvDir='DSW_BASE'", m_folder / L"%TEMP%"},
    };
    for (const auto& [attributes, path] : rows) {
        RecordingRule rule;
        EXPECT_TRUE(rule.Load("GetByReg='1' Path='Software\\DswLocation' " + std::string(attributes)));
        EXPECT_EQ(rule.Path, path) << attributes;
    }
    EXPECT_TRUE(RootKeyByName("HKUR") == HKEY_USERS && RootKeyByName("HKCR") == HKEY_CLASSES_ROOT);
}
