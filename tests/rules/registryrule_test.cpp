#include "rules/registryrule.h"

#include "rules/rootkeyname.h"

#include "sysservices/registrykey.h"
#include "tests/rules/recordingrule.h"
#include "tests/support/recordingexplanation.h"

namespace {

// Every test has a process and a key of its own.
const CString kKey = L"Software\\DswRule" + std::to_wstring(GetCurrentProcessId());

class RegistryRuleTest : public RuleTest {
protected:
    ~RegistryRuleTest() override { RegDeleteTreeW(HKEY_CURRENT_USER, kKey.c_str()); }

    // `name` may begin with the path of a sub-key.
    static void Set(const CString& name, DWORD type = REG_SZ, const CString& data = L"v", DWORD bytes = 4) {
        const CString path = kKey + L"\\" + name, key = path.substr(0, path.rfind(L'\\'));
        EXPECT_EQ(0, RegSetKeyValueW(HKEY_CURRENT_USER, key.c_str(), path.c_str() + key.size() + 1, type, data.data(),
                                     bytes));
    }
    // Values ("@" is the unnamed one), then sub-keys in brackets.
    static CString Content(const CString& path = kKey) {
        const CRegistryKey key(HKEY_CURRENT_USER, path.c_str(), KEY_READ);
        wchar_t name[400];
        CString text;
        for (DWORD i = 0, n = 400; !RegEnumValueW(key.get(), i, name, &n, nullptr, nullptr, nullptr, nullptr);
             ++i, n = 400)
            text += n > 9 ? L"(long) " : n ? CString(name) + L" " : L"@ ";
        for (DWORD i = 0; !RegEnumKeyW(key.get(), i, name, 400); ++i)
            text += L"[" + CString(name) + L": " + Content(path + L"\\" + name) + L"]";
        return text;
    }
    static void Clean(const std::string& root, const std::string& subKey, const std::string& attributes) {
        RecordingRule rule;
        EXPECT_TRUE(
            rule.Load("Registry='1' RootKey='" + root + "' KeyPath='" + WideToUtf8(kKey) + subKey + "' " + attributes));
        const CString before = Content();
        RecordingExplanation shown, after;
        EXPECT_TRUE(rule.Gather() && rule.Explain(&shown));
        EXPECT_EQ(Content(), before);
        EXPECT_TRUE(rule.Clean(1, 2, 3) && rule.found.empty() && rule.emptied.empty());
        EXPECT_TRUE(rule.Explain(&after));
        EXPECT_TRUE(shown.lines.size() > after.lines.size() && after.lines.size() == 1) << "all that was shown is gone";
    }
};

}  // namespace

TEST_F(RegistryRuleTest, WhatCannotBeReadStays) {
    for (const CString& name :
         {CString(259, L'M'), CString(260, L'N'), CString(L"Z"), CString(L"S1\\A"), CString(L"S2\\A")})
        Set(name);
    Clean("HKCU", "", "");
    Clean("HKCU", "", "Iteration='1'");
    EXPECT_EQ(Content(), L"(long) Z [S1: ][S2: ]");  // the name that does not fit hides the one behind it
}

TEST_F(RegistryRuleTest, TakesTheLocationFromAValue) {
    const CString longest(259, L'y');
    Set(L"expand", REG_EXPAND_SZ, L"%TEMP%", 14);
    Set(L"unterminated", REG_BINARY, L"abcdef", 6);
    Set(L"nul", REG_SZ, CString(L"C:\\from\0behind", 14), 28);
    Set(L"full", REG_BINARY, longest + L"yy", 520);
    Set(L"toolong", REG_SZ, longest + L"y", 522);
    const struct {
        const char* attributes;
        CString path;
    } kCases[] = {
        {"Value='expand' RootKey='HKCU'", L"%TEMP%"},
        {"Value='expand' RootKey='HKLM'", L""},  // no such key
        {"Value='unterminated' RootKey='HKCU'", L"abc"},
        {"Value='nul' RootKey='HKCU'", L"C:\\from"},
        {"Value='full' RootKey='HKCU'", longest + L"y"},
        {"Value='toolong' RootKey='HKCU'", L""},
        {"Value='expand' RootKey='HKCU' FolderEnvDir='DSW_BASE'", m_folder / L"%TEMP%"},
    };
    for (const auto& test : kCases) {
        RecordingRule rule;
        EXPECT_TRUE(rule.Load("GetByReg='1' Path='" + WideToUtf8(kKey) + "' " + test.attributes));
        EXPECT_EQ(rule.Path, test.path) << test.attributes;
    }
    EXPECT_EQ(RootKeyByName("HKUR"), HKEY_USERS);
    EXPECT_EQ(RootKeyByName("HKCR"), HKEY_CLASSES_ROOT);
}
