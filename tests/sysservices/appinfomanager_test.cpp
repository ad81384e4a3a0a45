#include "sysservices/appinfomanager.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <utility>

#include "sysservices/registrykey.h"
#include "tests/support/allocguard.h"
#include "tests/support/iatpatch.h"

namespace {

const std::wstring kUninstall = L"Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\";

// One uninstall entry, removed at the end of the scope.
class Entry {
public:
    using Value = std::pair<const wchar_t*, std::wstring>;

    Entry(HKEY root, REGSAM view, const std::wstring& name, std::initializer_list<Value> values)
        : m_root(root),
          m_view(view),
          m_path(kUninstall + name) {
        HKEY key = nullptr;
        RegDeleteKeyExW(m_root, m_path.c_str(), m_view, 0);
        EXPECT_EQ(RegCreateKeyExW(root, m_path.c_str(), 0, nullptr, 0, KEY_WRITE | view, nullptr, &key, nullptr), 0);
        RegCloseKey(key);
        for (const auto& [value, text] : values)
            Set(value, REG_SZ, text.c_str(), (text.size() + 1) * sizeof(wchar_t));
    }
    Entry(const std::wstring& name, std::initializer_list<Value> values) : Entry(HKEY_LOCAL_MACHINE, 0, name, values) {}
    ~Entry() { RegDeleteKeyExW(m_root, m_path.c_str(), m_view, 0); }
    Entry(const Entry&) = delete;
    Entry& operator=(const Entry&) = delete;

    void Set(const wchar_t* value, DWORD type, const wchar_t* data, size_t bytes) const {
        const CRegistryKey key(m_root, m_path.c_str(), KEY_SET_VALUE | m_view);
        EXPECT_EQ(
            RegSetValueExW(key.get(), value, 0, type, reinterpret_cast<const BYTE*>(data), static_cast<DWORD>(bytes)),
            ERROR_SUCCESS);
    }

private:
    HKEY m_root;
    REGSAM m_view;
    std::wstring m_path;
};

class AppInfoManager : public testing::Test {
protected:
    ~AppInfoManager() override { CAppInfoManager::ReleaseInstance(); }

    // The record in the list as it is read now.
    static CInstalledApp Lookup(std::wstring_view name) {
        const auto manager = CAppInfoManager::GetInstance();
        manager->Clear();
        manager->Load();
        CInstalledApp app;
        manager->Find(name, app);
        return app;
    }
    static bool Lists(std::wstring_view name) { return !Lookup(name).displayName.empty(); }
};

std::wstring HostFolder() {
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    return std::wstring(path).substr(0, std::wstring(path).rfind(L'\\'));
}

DWORD WINAPI NoModuleFileName(HMODULE, LPWSTR, DWORD) {
    return 0;
}

}  // namespace

TEST_F(AppInfoManager, GivesTheRecordOfAProduct) {
    const Entry entry(
        L"dswKey",
        {{L"DisplayName", L"Dsw ÄPP"}, {L"DisplayVersion", L"1.2 Beta"}, {L"DisplayIcon", L"C:\\Dsw\\App.EXE,-3"}});
    const CInstalledApp app = Lookup(L"DSW äpp");
    EXPECT_EQ(app.displayName, L"dsw äpp");
    EXPECT_EQ(app.keyPath, L"Software\\Microsoft\\Windows\\CurrentVersion\\UnInstall\\dswKey");
    EXPECT_EQ(app.displayVersion, L"1.2 Beta");
    EXPECT_EQ(app.displayIcon, L"C:\\Dsw\\App.EXE");

    CInstalledApp other = app;
    EXPECT_FALSE(CAppInfoManager::GetInstance()->Find(L"dsw", other));
    EXPECT_EQ(other.displayName + other.keyPath + other.displayVersion + other.displayIcon, L"");
}

TEST_F(AppInfoManager, CutsTheIconAtACommaThatIsNotTheFirstCharacter) {
    const Entry entry(L"dswIcon", {{L"DisplayName", L"dsw icon"}});
    const std::pair<std::wstring, std::wstring> rows[] = {
        {L"", L""},         {L"a.exe", L"a.exe"}, {L"a.exe,", L"a.exe"},  {L"a,b,1", L"a"},
        {L",a,1", L",a,1"}, {L",", L","},         {L"\"a\",0", L"\"a\""},
    };
    EXPECT_EQ(Lookup(L"dsw icon").displayIcon, L"");
    for (const auto& [value, icon] : rows) {
        entry.Set(L"DisplayIcon", REG_SZ, value.c_str(), (value.size() + 1) * sizeof(wchar_t));
        EXPECT_EQ(Lookup(L"dsw icon").displayIcon, icon);
    }
}

TEST_F(AppInfoManager, ReadsValuesOfAtMost260Bytes) {
    const std::wstring fits(129, L'n');
    const std::wstring tooLong(130, L'm');
    const Entry a(L"dswFits", {{L"DisplayName", fits}, {L"DisplayVersion", tooLong}, {L"DisplayIcon", fits}});
    const Entry b(L"dswTooLong", {{L"DisplayName", tooLong}});
    EXPECT_EQ(Lookup(fits).displayIcon, fits);
    EXPECT_EQ(Lookup(fits).displayVersion, L"");
    EXPECT_FALSE(Lists(tooLong));

    // Whatever the type: without a terminator, with text behind one, of odd length.
    b.Set(L"DisplayName", REG_BINARY, tooLong.c_str(), tooLong.size() * sizeof(wchar_t));
    EXPECT_TRUE(Lists(tooLong));
    b.Set(L"DisplayName", REG_SZ, L"dsw\0tail", 18);
    EXPECT_TRUE(Lists(L"dsw"));
    b.Set(L"DisplayName", REG_BINARY, L"dswodd", 11);
    EXPECT_TRUE(Lists(L"dswod"));
}

TEST_F(AppInfoManager, FirstViewThatListsANameWins) {
    const Entry user(HKEY_CURRENT_USER, 0, L"dswA", {{L"DisplayName", L"DSW One"}, {L"DisplayVersion", L"user"}});
    EXPECT_EQ(Lookup(L"dsw one").displayVersion, L"user");
    const Entry narrow(HKEY_LOCAL_MACHINE, KEY_WOW64_32KEY, L"dswB",
                       {{L"DisplayName", L"dsw one"}, {L"DisplayVersion", L"32"}});
    // A 64-bit process has no 32-bit default view.
    EXPECT_EQ(Lookup(L"dsw one").displayVersion, L"user");
    const Entry wide(HKEY_LOCAL_MACHINE, KEY_WOW64_64KEY, L"dswC",
                     {{L"DisplayName", L"Dsw ONE"}, {L"DisplayVersion", L"64"}});
    EXPECT_EQ(Lookup(L"dsw one").displayVersion, L"64");
    // A winner's missing values are not filled from the others.
    wide.Set(L"DisplayVersion", REG_SZ, L"", 2);
    EXPECT_EQ(Lookup(L"dsw one").displayVersion, L"");
}

TEST_F(AppInfoManager, KeepsItsListUntilClearedAndLoaded) {
    const auto manager = CAppInfoManager::GetInstance();
    EXPECT_EQ(CAppInfoManager::GetInstance(), manager);
    const Entry first(L"dswFirst", {{L"DisplayName", L"dsw first"}});
    CInstalledApp app;
    EXPECT_FALSE(manager->Find(L"dsw first", app));
    manager->Load();
    EXPECT_TRUE(manager->Find(L"dsw first", app));

    const Entry later(L"dswLater", {{L"DisplayName", L"dsw later"}});
    manager->Load();
    EXPECT_FALSE(manager->Find(L"dsw later", app));
    manager->Clear();
    EXPECT_FALSE(manager->Find(L"dsw first", app));
    manager->Load();
    EXPECT_TRUE(manager->Find(L"dsw later", app));

    CAppInfoManager::ReleaseInstance();
    CAppInfoManager::ReleaseInstance();
    EXPECT_FALSE(CAppInfoManager::GetInstance()->Find(L"dsw later", app));
}

TEST_F(AppInfoManager, KnowsTheHostFolderAnywhereInAPath) {
    const std::wstring folder = HostFolder();
    std::wstring upper = folder;
    CharUpperW(upper.data());
    const std::pair<std::wstring, bool> rows[] = {
        {folder, true},
        {folder + L"\\a.tmp", true},
        {upper + L"\\A.TMP", true},
        {folder + L"Other\\a.tmp", true},
        {L"\\\\?\\" + folder, true},
        {folder + L"\\" + std::wstring(30'000, L'ä'), true},
        {std::wstring(512 - folder.size(), L'x') + upper, true},
        {std::wstring(513 - folder.size(), L'x') + upper, true},
        {folder.substr(0, folder.size() - 1), false},
        {folder.substr(0, folder.size() - 1) + L"_\\a.tmp", false},
        {std::wstring(30'000, L'x'), false},
        {L"", false},
    };
    const auto manager = CAppInfoManager::GetInstance();
    for (const auto& [path, inside] : rows)
        EXPECT_EQ(manager->IsInHostFolder(path), inside) << path.size();
}

TEST_F(AppInfoManager, ProtectsNothingWithoutAHostFolder) {
    const IatPatch patch(nullptr, nullptr, "GetModuleFileNameW", reinterpret_cast<void*>(&NoModuleFileName));
    ASSERT_TRUE(patch.ok());
    EXPECT_FALSE(CAppInfoManager::GetInstance()->IsInHostFolder(L"C:\\a.tmp"));
    EXPECT_FALSE(CAppInfoManager::GetInstance()->IsInHostFolder(L""));
}

TEST_F(AppInfoManager, SurvivesWithoutMemory) {
    const Entry entry(L"dswMemory", {{L"DisplayName", L"dsw product with a name that needs the heap"}});
    alloc_guard::FailAfter(0);
    EXPECT_EQ(CAppInfoManager::GetInstance(), nullptr);
    alloc_guard::FailAfter(-1);

    const auto manager = CAppInfoManager::GetInstance();
    const std::wstring name = L"dsw product with a name that needs the heap";
    CInstalledApp app;
    for (int count = 0; count < 20; ++count) {
        alloc_guard::FailAfter(count);
        manager->Load();
        const bool found = manager->Find(name, app);
        alloc_guard::FailAfter(-1);
        EXPECT_EQ(found, !app.displayName.empty()) << count;
        manager->Clear();
    }
    const std::wstring elsewhere(600, L'x');
    alloc_guard::FailAfter(0);
    EXPECT_TRUE(manager->IsInHostFolder(elsewhere));
    EXPECT_FALSE(manager->IsInHostFolder(std::wstring_view(elsewhere).substr(0, 500)));
    alloc_guard::FailAfter(-1);
    EXPECT_TRUE(Lists(name));
}
