#include <windows.h>

#include <cstddef>

#include "rules/systemversion.h"
#include "sysservices/appinfomanager.h"
#include "tests/support/iatpatch.h"
#include "tests/tree/treenode.h"

namespace {

constexpr const char* kFull = R"(<AppCategoryInfo Name="Спам" CatagoryType="1" LargeIcon="7" Icon="i.dll,1" ResID="k"
    SelState="2" Foreign="1"><Other/>
  <AppInfo Name="App" LargeIcon="-8" Icon="a.ico" ProductName="P" InBuildProgram="1" LockFile="l" ResID="k" SelState="1">
    <GarbageCatagory Name="G" CatagoryID="9" ResID="k" SelState="0">
      <GarbageInfo Path="C:\x" IsFolder="1"/>
    </GarbageCatagory>
  </AppInfo>
  <appinfo Name="other case is another name"/>
  <AppInfo Name=""/>
</AppCategoryInfo>)";

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
    EXPECT_TRUE(category.loaded);
    EXPECT_EQ(Names(*category), L"Спам App(G1) ()");
    EXPECT_STREQ(category->GetInfo()->IconText, L"i.dll,1");
    EXPECT_STREQ(category.App().GetInfo()->IconText, L"a.ico");
    EXPECT_TRUE(category.App().IsAppPresent());
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

TEST(TreeLoad, KeepsDefaultsWhereAttributesAreMissingOrMistyped) {
    for (const char* xml :
         {"<A Name=''><AppInfo Name=''><GarbageCatagory Name=''/></AppInfo></A>",
          "<A Name='' CatagoryType='x' LargeIcon='' SelState='x'><AppInfo Name='' LargeIcon='x' InBuildProgram='x' "
          "SelState=''><GarbageCatagory Name='' CatagoryID='x' SelState='-'/></AppInfo></A>"}) {
        const Category category(xml);
        EXPECT_TRUE(category.loaded);
        EXPECT_EQ(category->GetInfo()->CatagoryType, 3u);
        EXPECT_EQ(category->GetInfo()->LargeIcon, 0);
        EXPECT_STREQ(category->GetInfo()->IconText, L"");
        EXPECT_EQ(category.App().GetInfo()->LargeIcon, 0);
        EXPECT_STREQ(category.App().GetInfo()->IconText, L"");
        EXPECT_FALSE(category.App().IsAppPresent() || category.App().GetAppIcon());
        EXPECT_EQ(category.Garbage().GetInfo()->CatagoryID, 0);
        EXPECT_EQ(category->GetState() + category.App().GetState() + category.Garbage().GetState(), 0u);
    }
}

TEST(TreeLoad, StopsAtABadApplicationOrCategoryButNotAtABadRule) {
    const struct {
        const char* xml;
        bool loaded;
        const wchar_t* names;
    } kCases[] = {
        {"<A Name='A'/>", true, L"A"},
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
    }
}

TEST(TreeLoad, SettlesPresenceAfterTheChildren) {
    const struct {
        const char* type;
        const char* app;
        bool present;
    } kCases[] = {
        {"", "", false},
        {"CatagoryType='3'", "InBuildProgram='1'", true},
        {"CatagoryType='3'", "InBuildProgram='2'", false},
        {"CatagoryType='1'", "ProductName='no such product'", false},
        {"CatagoryType='0'", "ProductName='no such product'", true},
        {"CatagoryType='2'", "InBuildProgram='0'", true},
    };
    SetEnvironmentVariableW(L"DSW_HERE", L"C:\\");
    for (const auto& test : kCases) {
        // The rule resolves and says so; the application's own computation overwrites it.
        const Category category(std::string("<A Name='' ") + test.type + "><AppInfo Name='' " + test.app
                                + "><GarbageCatagory Name=''><GarbageInfo FolderEnvDir='DSW_HERE' Path=''/>"
                                  "</GarbageCatagory></AppInfo></A>");
        EXPECT_EQ(category.App().IsAppPresent(), test.present) << test.type << test.app;
        category.Garbage().SetAppPresent(!test.present);
        EXPECT_EQ(category.App().IsAppPresent(), !test.present);
    }
    // Also when a child failed.
    CAppGarbageInfo* app = new CAppGarbageInfo(nullptr);
    TiXmlDocument document;
    document.Parse("<AppInfo Name='' InBuildProgram='1'><GarbageCatagory/></AppInfo>");
    EXPECT_FALSE(app->LoadXml(document.RootElement()));
    EXPECT_TRUE(app->IsAppPresent());
    app->Release();
}

TEST(TreeLoad, FindsAnInstalledProductAndItsIcon) {
    const wchar_t* key = L"Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\DswTreeTest";
    const auto set = [key](const wchar_t* name, const std::wstring& value) {
        const auto bytes = static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t));
        ASSERT_EQ(RegSetKeyValueW(HKEY_LOCAL_MACHINE, key, name, REG_SZ, value.c_str(), bytes), ERROR_SUCCESS);
    };
    const struct {
        const wchar_t* icon;
        bool hasIcon;
    } kCases[] = {{L"C:\\windows\\notepad.exe,0", true}, {L"C:\\no such file.exe", false}, {L"", false}};
    for (const auto& test : kCases) {
        set(L"DisplayName", L"Dsw Größe");
        set(L"DisplayIcon", test.icon);
        CAppInfoManager::GetInstance()->Load();
        const Category category("<A Name=''><AppInfo Name='' ProductName='DSW grÖße'/></A>");
        EXPECT_TRUE(category.App().IsAppPresent());
        EXPECT_EQ(category.App().GetAppIcon() != nullptr, test.hasIcon) << test.icon;
    }
    RegDeleteKeyW(HKEY_LOCAL_MACHINE, key);
}

class TreeLoadOnBuild : public testing::TestWithParam<DWORD> {
protected:
    static BOOL WINAPI TellBuild(LPOSVERSIONINFOW version) {
        version->dwBuildNumber = GetParam();
        return GetParam() != 0;
    }
};

TEST_P(TreeLoadOnBuild, ReadsTheRulesForOldSystemsInsteadOfTheOthers) {
    const IatPatch patch(nullptr, "kernel32.dll", "GetVersionExW", reinterpret_cast<const void*>(&TellBuild));
    ASSERT_TRUE(patch.ok());
    const Category category(
        "<A Name='A'><AppInfo Name='p'><GarbageCatagory Name='g'><GarbageInfo Path='new'/>"
        "<XP><GarbageInfo Path='old'/><GarbageInfo Path='older'/></XP><XP/></GarbageCatagory>"
        "<GarbageCatagory Name='h'><GarbageInfo Path='both'/></GarbageCatagory></AppInfo></A>");
    EXPECT_EQ(Names(*category), GetParam() < 2601 ? L"A p(g2h1)" : L"A p(g1h1)");
}

INSTANTIATE_TEST_SUITE_P(Builds, TreeLoadOnBuild, testing::Values(0, 2600, 2601, 19045));

TEST(TreeRecords, ArePackedToFourBytes) {
    EXPECT_EQ(offsetof(_DSW_AppCatagory_Info_, Name), 4u);
    EXPECT_EQ(offsetof(_DSW_AppCatagory_Info_, NameText), 12u);
    EXPECT_EQ(offsetof(_DSW_AppCatagory_Info_, LargeIcon), 20u);
    EXPECT_EQ(offsetof(_DSW_AppCatagory_Info_, IconText), 32u);
    EXPECT_EQ(offsetof(_DSW_App_Info_, NameText), 8u);
    EXPECT_EQ(offsetof(_DSW_App_Info_, IconText), 28u);
    EXPECT_EQ(offsetof(_DSW_Garbage_Catagory_, CatagoryID), 16u);
}

TEST(TreeEnumeration, HasOneCursorPerNode) {
    const Category category("<A Name=''><AppInfo Name='1'/><AppInfo Name='2'/><AppInfo Name='3'/></A>");
    const auto apps = ChildrenOf(*category);
    ASSERT_EQ(apps.size(), 3u);
    const auto next = [&](IAppGarbageInfo* previous) { return CReference(category->GetNextChild(previous)).get(); };
    const auto first = [&] { return CReference(category->GetFirstChild()).get(); };
    EXPECT_EQ(next(apps[2].get()), nullptr) << "the cursor stands behind the last child";
    EXPECT_EQ(first(), apps[0].get());
    EXPECT_EQ(next(apps[1].get()), nullptr);
    EXPECT_EQ(next(nullptr), nullptr);
    EXPECT_EQ(next(apps[0].get()), apps[1].get());
    EXPECT_EQ(first(), apps[0].get()) << "a second enumeration begins";
    EXPECT_EQ(next(apps[1].get()), nullptr) << "and ends the first";
    EXPECT_EQ(next(apps[0].get()), apps[1].get());
}
