#include <windows.h>

#include "tests/tree/treenode.h"

namespace {

constexpr const char* kFull = R"(<AppCategoryInfo Name="Спам" CatagoryType="1" LargeIcon="7" Icon="i.dll,1" ResID="k"
    SelState="2" Foreign="1"><Other/>
  <AppInfo Name="App" LargeIcon="-8" Icon="a.ico" ProductName="P" InBuildProgram="1" LockFile="l" ResID="k" SelState="1">
    <GarbageCatagory Name="G" CatagoryID="9" ResID="k" SelState="0">
      <GarbageInfo Path="C:\x" IsFolder="1"/><XP><GarbageInfo Path="old"/></XP>
    </GarbageCatagory>
  </AppInfo><appinfo Name="other case is another name"/><AppInfo Name=""/></AppCategoryInfo>)";

// "Category App(Garbage1)": what a load has kept, with the number of rules.
std::wstring Names(CAppCatagory& category) {
    std::wstring names = category.GetInfo()->NameText;
    for (const auto& app : ChildrenOf(category)) {
        names += std::wstring(L" ") + app->GetInfo()->NameText + L"(";
        for (const auto& garbage : ChildrenOf(*app))
            names += garbage->GetInfo()->NameText + std::to_wstring(ChildrenOf(*garbage).size());
        names += L")";
    }
    return names;
}

}  // namespace

// A saved tree is for display: six attributes are lost.
TEST(TreeLoad, ReadsWhatIsSavedAndMore) {
    const Category category(kFull);
    EXPECT_TRUE(category.loaded && category.App().IsAppPresent());
    EXPECT_EQ(Names(*category), L"Спам App(G1) ()");
    EXPECT_STREQ(category->GetInfo()->IconText, L"i.dll,1");
    EXPECT_STREQ(category.App().GetInfo()->IconText, L"a.ico");
    EXPECT_EQ(category.Garbage().GetInfo()->CatagoryID, 9);
    TiXmlElement target("T");
    EXPECT_TRUE(category->SaveXml(&target));
    TiXmlPrinter printer;
    printer.SetStreamPrinting();
    target.Accept(&printer);
    EXPECT_STREQ(printer.CStr(),
                 "<T Name=\"Спам\" CatagoryType=\"1\" LargeIcon=\"7\" Icon=\"i.dll,1\">"
                 "<AppInfo Name=\"App\" LargeIcon=\"-8\" Icon=\"a.ico\"><GarbageCatagory Name=\"G\">"
                 "<GarbageInfo Path=\"C:\\x\" IsFolder=\"1\" FolderIndex=\"-1\" /></GarbageCatagory></AppInfo>"
                 "<AppInfo LargeIcon=\"0\" /></T>");
}

TEST(TreeLoad, StopsAtABadApplicationOrCategoryButNotAtABadRule) {
    const struct {
        const char* xml;
        bool loaded;
        const wchar_t* names;
    } kCases[] = {
        {"<A Name='A' CatagoryType='x' SelState='x'/>", true, L"A"},
        {"<A><AppInfo Name='p'/></A>", false, L" p()"},
        {"<A Name='A'><AppInfo Name='p'/><AppInfo/><AppInfo Name='q'/></A>", false, L"A p()"},
        {"<A Name='A'><AppInfo Name='p'><GarbageCatagory Name='g'/><GarbageCatagory/></AppInfo></A>", false, L"A"},
        {"<A Name='A'><AppInfo Name='p'><GarbageCatagory Name='g'><GarbageInfo Path=''/><GarbageInfo/>"
         "<GarbageInfo FolderEnvDir='DSW_NOT_SET' Path=''/><GarbageInfo Registry='1'/></GarbageCatagory></AppInfo></A>",
         true, L"A p(g2)"},
    };
    for (const auto& test : kCases) {
        const Category category(test.xml);
        EXPECT_EQ(category.loaded, test.loaded) << test.xml;
        EXPECT_EQ(Names(*category), test.names) << test.xml;
        EXPECT_EQ(category->GetInfo()->CatagoryType, 3u);
    }
}

TEST(TreeLoad, SettlesPresenceAfterTheChildren) {
    const wchar_t* key = L"Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\DswTreeTest";
    const auto set = [key](const wchar_t* name, const std::wstring& value) {
        RegSetKeyValueW(HKEY_LOCAL_MACHINE, key, name, REG_SZ, value.c_str(), static_cast<DWORD>(value.size() * 2 + 2));
    };
    const struct {
        const char *type, *app;
        bool present;
        const wchar_t* icon = L"";
        bool hasIcon = false;
    } kCases[] = {
        {"", "", false},
        {"CatagoryType='3'", "InBuildProgram='1'", true},
        {"CatagoryType='3'", "InBuildProgram='2'", false},
        {"CatagoryType='1'", "ProductName='no such product'", false},
        {"CatagoryType='0'", "ProductName='no such product'", true},
        {"CatagoryType='2'", "InBuildProgram='0'", true},
        {"", "ProductName='DSW grÖße'", true, L"C:\\windows\\notepad.exe,0", true},
        {"", "ProductName='DSW grÖße'", true, L"C:\\no such file.exe"},
    };
    SetEnvironmentVariableW(L"DSW_HERE", L"C:\\");
    for (const auto& test : kCases) {
        set(L"DisplayName", L"Dsw Größe");
        set(L"DisplayIcon", test.icon);
        // The rule resolves and says so; the application's own computation overwrites it.
        const Category category(std::string("<A Name='' ") + test.type + "><AppInfo Name='' " + test.app
                                + "><GarbageCatagory Name=''><GarbageInfo FolderEnvDir='DSW_HERE' Path=''/>"
                                  "</GarbageCatagory></AppInfo></A>");
        EXPECT_EQ(category.App().IsAppPresent(), test.present) << test.type << test.app;
        EXPECT_EQ(category.App().GetAppIcon() != nullptr, test.hasIcon);
        category.Garbage().SetAppPresent(!test.present);
        EXPECT_EQ(category.App().IsAppPresent(), !test.present);
    }
    RegDeleteKeyW(HKEY_LOCAL_MACHINE, key);
}

TEST(TreeEnumeration, HasOneCursorPerNode) {
    const Category category("<A Name=''><AppInfo Name='1'/><AppInfo Name='2'/><AppInfo Name='3'/></A>");
    const auto apps = ChildrenOf(*category);
    const auto next = [&](IAppGarbageInfo* previous) { return CReference(category->GetNextChild(previous)).get(); };
    EXPECT_EQ(next(apps.at(2).get()), nullptr) << "the cursor stands behind the last child";
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(CReference(category->GetFirstChild()).get(), apps[0].get()) << "ends an earlier enumeration";
        EXPECT_TRUE(!next(apps[1].get()) && !next(nullptr));
        EXPECT_EQ(next(apps[0].get()), apps[1].get());
    }
}
