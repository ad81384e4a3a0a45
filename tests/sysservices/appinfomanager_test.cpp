#include "sysservices/appinfomanager.h"

#include <windows.h>

#include <gtest/gtest.h>

#include "tests/support/iatpatch.h"

namespace {

int WINAPI RefuseMapping(LPCWSTR, DWORD, LPCWSTR, int, LPWSTR, int, LPNLSVERSIONINFO, LPVOID, LPARAM) {
    return 0;
}

// Uninstall entries: of the machine, of the user.
constexpr wchar_t kPath[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\UnInstall\\dswKey";
using Entry = std::pair<HKEY, const wchar_t*>;
const Entry kWide(HKEY_LOCAL_MACHINE, kPath), kUser(HKEY_CURRENT_USER, kPath);

struct AppInfoManager : testing::Test {
    ~AppInfoManager() override {
        for (const auto& [root, path] : {kWide, kUser})
            RegDeleteKeyW(root, path);
        // Or it would count as leaked.
        CAppInfoManager::ReleaseInstance();
    }
    static void Set(const wchar_t* value, const std::wstring& text, const Entry& entry = kWide, DWORD type = REG_SZ,
                    DWORD withoutBytes = 0) {
        const auto bytes = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)) - withoutBytes;
        EXPECT_EQ(RegSetKeyValueW(entry.first, entry.second, value, type, text.c_str(), bytes), ERROR_SUCCESS);
    }
    static void Add(const std::wstring& name, const std::wstring& version, const Entry& entry = kWide) {
        Set(L"DisplayName", name, entry);
        Set(L"DisplayVersion", version, entry);
    }
    // The record in the list as it stands; with `load` the list is read anew before.
    static InstalledApp Lookup(std::wstring_view name, bool load = true) {
        const auto manager = CAppInfoManager::GetInstance();
        if (load) manager->Clear();
        if (load) manager->Load();
        InstalledApp app;
        manager->Find(name, app);
        return app;
    }
};

}  // namespace

TEST_F(AppInfoManager, GivesTheRecordWithItsIconFile) {
    Add(L"Dsw ÄPP", L"1.2 Beta");
    const std::pair<const wchar_t*, const wchar_t*> icons[] = {
        {L"C:\\Dsw\\App.EXE,-3", L"C:\\Dsw\\App.EXE"}, {L"a,b,1", L"a"}, {L",a,1", L",a,1"}, {L"a.exe", L"a.exe"}};
    for (const auto& [value, file] : icons) {
        Set(L"DisplayIcon", value);
        EXPECT_EQ(Lookup(L"DSW äpp").displayIcon, file);
    }
    InstalledApp app = Lookup(L"DSW äpp");
    EXPECT_EQ(app.displayName + L"|" + app.displayVersion + L"|" + app.keyPath,
              L"dsw äpp|1.2 Beta|" + std::wstring(kPath));
    EXPECT_FALSE(CAppInfoManager::GetInstance()->Find(L"dsw", app));
    EXPECT_EQ(app.displayName + app.keyPath + app.displayVersion + app.displayIcon, L"");
}

TEST_F(AppInfoManager, ReadsValuesOfAtMost260Bytes) {
    const std::wstring fits(129, L'n'), tooLong(130, L'm');
    Add(fits, tooLong);
    EXPECT_EQ(Lookup(fits).displayName + Lookup(fits).displayVersion, fits);
    Set(L"DisplayName", tooLong);
    EXPECT_EQ(Lookup(tooLong).displayName, L"");
    // Whatever the type: without a terminator, with text behind one.
    Set(L"DisplayName", tooLong, kWide, REG_BINARY, 2);
    EXPECT_EQ(Lookup(tooLong).displayName, tooLong);
    Set(L"DisplayName", std::wstring(L"dsw\0tail", 8));
    EXPECT_EQ(Lookup(L"dsw").displayName, L"dsw");
}

TEST_F(AppInfoManager, FirstViewThatListsANameWinsUntilTheNextLoad) {
    const auto version = [](bool load) { return Lookup(L"dsw one", load).displayVersion; };
    Add(L"DSW One", L"user", kUser);
    EXPECT_EQ(version(false), L"");
    EXPECT_EQ(version(true), L"user");
    Add(L"Dsw ONE", L"64");
    CAppInfoManager::GetInstance()->Load();
    EXPECT_EQ(version(false), L"user");
    EXPECT_EQ(version(true), L"64");
    Set(L"DisplayVersion", L"");
    EXPECT_EQ(version(true), L"") << "a winner's missing values are not filled from the others";
    CAppInfoManager::ReleaseInstance();
    EXPECT_EQ(Lookup(L"dsw one", false).displayName, L"");
}

TEST_F(AppInfoManager, KnowsTheHostFolderAnywhereInAPath) {
    wchar_t self[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, self, MAX_PATH);
    *wcsrchr(self, L'\\') = L'\0';
    const std::wstring folder = self, upper = CharUpperW(self), cut = folder.substr(0, folder.size() - 1);
    const auto protects = [](const std::wstring& path) { return CAppInfoManager::GetInstance()->IsInHostFolder(path); };
    for (const std::wstring& path :
         {folder, upper + L"\\A.TMP", folder + L"Other\\a.tmp", L"\\\\?\\" + folder,
          folder + std::wstring(30'000, L'ä'), std::wstring(512 - folder.size(), L'x') + upper,
          std::wstring(513 - folder.size(), L'x') + upper})
        EXPECT_TRUE(protects(path)) << path.size();
    for (const std::wstring& path : {cut, cut + L"_\\a.tmp", std::wstring(30'000, L'x'), std::wstring()})
        EXPECT_FALSE(protects(path)) << path.size();
    const IatPatch patch("LCMapStringEx", RefuseMapping);
    for (const size_t length : {500U, 30'000U})
        EXPECT_TRUE(protects(std::wstring(length, L'ä'))) << "may be one of the host's files";
}
