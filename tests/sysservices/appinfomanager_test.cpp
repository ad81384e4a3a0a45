#include "sysservices/appinfomanager.h"

#include <windows.h>

#include <gtest/gtest.h>

#include "tests/support/iatpatch.h"

namespace {

int WINAPI RefuseMapping(LPCWSTR, DWORD, LPCWSTR, int, LPWSTR, int, LPNLSVERSIONINFO, LPVOID, LPARAM) {
    return 0;
}

constexpr wchar_t kPath[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\UnInstall\\dswKey";

struct AppInfoManager : testing::Test {
    ~AppInfoManager() override {
        for (const HKEY root : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER})
            RegDeleteKeyW(root, kPath);
        // Or it would count as leaked.
        CAppInfoManager::ReleaseInstance();
    }
    static void Set(const wchar_t* value, const std::wstring& text, HKEY root = HKEY_LOCAL_MACHINE, DWORD type = REG_SZ,
                    size_t withoutBytes = 0) {
        const size_t bytes = (text.size() + 1) * sizeof(wchar_t) - withoutBytes;
        EXPECT_EQ(RegSetKeyValueW(root, kPath, value, type, text.c_str(), static_cast<DWORD>(bytes)), ERROR_SUCCESS);
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
    Set(L"DisplayName", L"Dsw ÄPP");
    Set(L"DisplayVersion", L"1.2 Beta");
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
    Set(L"DisplayName", fits);
    Set(L"DisplayVersion", tooLong);
    EXPECT_EQ(Lookup(fits).displayName + Lookup(fits).displayVersion, fits);
    Set(L"DisplayName", tooLong);
    EXPECT_EQ(Lookup(tooLong).displayName, L"");
    // Whatever the type: without a terminator, with text behind one.
    Set(L"DisplayName", tooLong, HKEY_LOCAL_MACHINE, REG_BINARY, 2);
    EXPECT_EQ(Lookup(tooLong).displayName, tooLong);
    Set(L"DisplayName", std::wstring(L"dsw\0tail", 8));
    EXPECT_EQ(Lookup(L"dsw").displayName, L"dsw");
}

TEST_F(AppInfoManager, FirstViewThatListsANameWinsUntilTheNextLoad) {
    const auto version = [](bool load) { return Lookup(L"dsw one", load).displayVersion; };
    Set(L"DisplayName", L"DSW One", HKEY_CURRENT_USER);
    Set(L"DisplayVersion", L"user", HKEY_CURRENT_USER);
    EXPECT_EQ(version(false), L"");
    EXPECT_EQ(version(true), L"user");
    Set(L"DisplayName", L"Dsw ONE");
    Set(L"DisplayVersion", L"64");
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
