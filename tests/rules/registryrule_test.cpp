#include "rules/registryrule.h"

#include <sddl.h>

#include "sysservices/registrykey.h"
#include "tests/rules/recordingrule.h"

namespace {

// A key of the current user for one test. Tests run at the same time, so each has its own.
class TestKey {
public:
    explicit TestKey(const wchar_t* path) : m_path(path) { RegDeleteTreeW(HKEY_CURRENT_USER, path); }
    ~TestKey() { RegDeleteTreeW(HKEY_CURRENT_USER, m_path.c_str()); }
    TestKey(const TestKey&) = delete;
    TestKey& operator=(const TestKey&) = delete;

    // `name` may begin with the path of a sub-key.
    void Set(const CString& name, DWORD type = REG_SZ, const CString& data = L"v", DWORD bytes = 4) const {
        const CString path = m_path + L"\\" + name;
        const size_t last = path.rfind(L'\\');
        EXPECT_EQ(0, RegSetKeyValueW(HKEY_CURRENT_USER, path.substr(0, last).c_str(), path.substr(last + 1).c_str(),
                                     type, data.data(), bytes));
    }
    void Seed() const {
        for (const wchar_t* name :
             {L"", L"A", L"B", L"S1\\", L"S1\\A", L"S1\\F\\A", L"S1\\F\\B", L"S2\\A", L"S3\\F\\A"})
            Set(name);
    }
    // Values ("@" is the unnamed one), then sub-keys in brackets.
    CString Content(const CString& subKey = {}) const {
        const CRegistryKey key(HKEY_CURRENT_USER, (m_path + subKey).c_str(), KEY_READ);
        wchar_t name[400];
        CString text;
        for (DWORD i = 0, n = 400; !RegEnumValueW(key.get(), i, name, &n, nullptr, nullptr, nullptr, nullptr);
             ++i, n = 400)
            text += n > 9 ? L"(long) " : n ? CString(name) + L" " : L"@ ";
        for (DWORD i = 0; !RegEnumKeyW(key.get(), i, name, 400); ++i) {
            const CString child = name;
            text += L"[" + child + L": " + Content(subKey + L"\\" + child) + L"]";
        }
        return text;
    }

private:
    CString m_path;
};

}  // namespace

TEST_F(RuleTest, CleansTheRegistryInSilence) {
    constexpr auto kUntouched = L"@ A B [S1: @ A [F: A B ]][S2: A ][S3: [F: A ]]";
    constexpr auto kNoValues = L"[S1: @ A [F: A B ]][S2: A ][S3: [F: A ]]";
    struct Case {
        const char *root, *subKey, *attributes;
        const wchar_t* left;
    } const cases[] = {
        {"HKCU", "", "", kNoValues},
        {"HKCU", "", "Value='|'", kNoValues},
        {"HKCU", "", "Value='|none||b|'", L"@ A [S1: @ A [F: A B ]][S2: A ][S3: [F: A ]]"},
        {"HKCU", "", "Iteration='1'", L"@ A B [S1: [F: A B ]][S2: ][S3: [F: A ]]"},
        {"HKCU", "", "Iteration='1' Filter='F'", L"@ A B [S1: @ A [F: ]][S2: A ][S3: [F: ]]"},
        {"HKCU", "", "DelKey='1'", kUntouched},  // it has sub-keys
        {"HKCU", "\\S2", "DelKey='1' Value='none'", L"@ A B [S1: @ A [F: A B ]][S3: [F: A ]]"},
        {"HKCU", "\\S2", "DelKey='2'", L"@ A B [S1: @ A [F: A B ]][S2: ][S3: [F: A ]]"},
        {"HKCU", "\\None", "Iteration='1'", kUntouched},
        {"hkcu", "", "", kUntouched},
        {"HKLM", "", "DelKey='1'", kUntouched},
    };
    for (const Case& c : cases) {
        const TestKey key(L"Software\\DswRuleClean");
        key.Seed();
        RecordingRule rule;
        EXPECT_TRUE(rule.Load(std::string("Registry='1' RootKey='") + c.root + "' KeyPath='Software\\DswRuleClean"
                              + c.subKey + "' " + c.attributes));
        EXPECT_TRUE(rule.Gather());
        EXPECT_EQ(key.Content(), kUntouched);
        EXPECT_TRUE(rule.Clean(1, 2, 3));
        EXPECT_EQ(key.Content(), c.left) << c.root << c.subKey << ' ' << c.attributes;
        EXPECT_TRUE(rule.found.empty() && rule.emptied.empty());
    }
}

TEST_F(RuleTest, RegistryThatCannotBeReadOrOpenedStays) {
    const TestKey key(L"Software\\DswRuleRefused");
    for (const CString& name :
         {CString(259, L'M'), CString(260, L'N'), CString(L"Z"), CString(L"S1\\A"), CString(L"S2\\A")})
        key.Set(name);
    PSECURITY_DESCRIPTOR readOnly = nullptr;
    ASSERT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorW(L"D:P(A;;KR;;;WD)(A;;SDRCWD;;;WD)",
                                                                     SDDL_REVISION_1, &readOnly, nullptr));
    RegSetKeySecurity(CRegistryKey(HKEY_CURRENT_USER, L"Software\\DswRuleRefused\\S1", KEY_ALL_ACCESS).get(),
                      DACL_SECURITY_INFORMATION, readOnly);
    LocalFree(readOnly);
    for (const char* iteration : {"0", "1"}) {
        RecordingRule rule;
        ASSERT_TRUE(rule.Load(std::string("Registry='1' RootKey='HKCU' KeyPath='Software\\DswRuleRefused' Iteration='")
                              + iteration + "'"));
        EXPECT_TRUE(rule.Clean(0, 0, 0));
    }
    EXPECT_EQ(key.Content(), L"(long) Z [S1: A ][S2: ]");  // the name that does not fit hides the one behind it
}

TEST_F(RuleTest, TakesTheLocationFromTheRegistry) {
    const TestKey key(L"Software\\DswRuleLocation");
    const CString longest(259, L'y');
    key.Set(L"expand", REG_EXPAND_SZ, L"%TEMP%", 14);
    key.Set(L"unterminated", REG_BINARY, L"abcdef", 6);
    key.Set(L"nul", REG_SZ, CString(L"C:\\from\0behind", 14), 28);
    key.Set(L"fits", REG_SZ, longest, 520);
    key.Set(L"full", REG_BINARY, longest + L"yy", 520);
    key.Set(L"toolong", REG_SZ, longest + L"y", 522);
    struct Case {
        const char* attributes;
        CString path;
    } const cases[] = {
        {"Value='expand' RootKey='HKCU'", L"%TEMP%"},
        {"Value='expand' RootKey='hkcu'", L""},
        {"Value='expand'", L""},
        {"Value='none' RootKey='HKCU'", L""},
        {"Value='expand' RootKey='HKLM'", L""},  // no such key
        {"Value='unterminated' RootKey='HKCU'", L"abc"},
        {"Value='nul' RootKey='HKCU'", L"C:\\from"},
        {"Value='fits' RootKey='HKCU'", longest},
        {"Value='full' RootKey='HKCU'", longest + L"y"},
        {"Value='toolong' RootKey='HKCU'", L""},
        {"Value='expand' RootKey='HKCU' FolderEnvDir='DSW_BASE'", m_folder / L"%TEMP%"},
    };
    for (const Case& c : cases) {
        RecordingRule rule;
        EXPECT_TRUE(rule.Load(std::string("GetByReg='1' Path='Software\\DswRuleLocation' ") + c.attributes));
        EXPECT_EQ(rule.Path, c.path) << c.attributes;
        EXPECT_TRUE(rule.Gather() && rule.found.empty());
    }
    EXPECT_EQ(RootKeyByName("HKUR"), HKEY_USERS);
    EXPECT_EQ(RootKeyByName("HKCR"), HKEY_CLASSES_ROOT);
}
