#include <windows.h>

#include "tests/tree/treenode.h"

// A saved tree is for display: what the host has not named or shown is lost. What was loaded before a bad application
// stays; a bad rule costs itself only.
TEST(TreeLoad, KeepsWhatIsSaved) {
    const struct {
        const char* xml;
        bool loaded;
        const char* saved;
    } kCases[] = {
        {"<A Name='Спам' CatagoryType='1' LargeIcon='9999999999' Icon='i' SelState='2' ResID='k'><AppInfo Name='p' "
         "LargeIcon='-8' "
         "Icon='i'><GarbageCatagory Name='g' CatagoryID='9'><GarbageInfo Path='x'/><XP><GarbageInfo Path='old'/></XP>"
         "<GarbageInfo/><GarbageInfo Path='y'/></GarbageCatagory></AppInfo><appinfo Name='q'/></A>",
         true,
         "<T Name='Спам' CatagoryType='1' LargeIcon='2147483647' Icon='i'><AppInfo Name='p' LargeIcon='-8' Icon='i'>"
         "<GarbageCatagory Name='g'><GarbageInfo Path='x' IsFolder='0' FolderIndex='-1' /><GarbageInfo Path='y' "
         "IsFolder='0' FolderIndex='-1' /></GarbageCatagory></AppInfo></T>"},
        {"<A><AppInfo Name='p'/></A>", false,
         "<T CatagoryType='3' LargeIcon='0'><AppInfo Name='p' LargeIcon='0' /></T>"},
        {"<A Name='A'><AppInfo Name='p'><GarbageCatagory/></AppInfo></A>", false,
         "<T Name='A' CatagoryType='3' LargeIcon='0' />"},
    };
    for (const auto& test : kCases) {
        const Category category(test.xml);
        EXPECT_EQ(category.loaded, test.loaded) << test.xml;
        TiXmlElement target("T");
        EXPECT_TRUE(category->SaveXml(&target));
        TiXmlPrinter printer;
        printer.SetStreamPrinting();
        target.Accept(&printer);
        std::string saved = printer.CStr();
        std::replace(saved.begin(), saved.end(), '"', '\'');
        EXPECT_EQ(saved, test.saved);
    }
}

TEST(TreeLoad, SettlesPresenceAfterTheChildren) {
    const std::wstring key = L"Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\DswTreeTest";
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
    };
    SetEnvironmentVariableW(L"DSW_HERE", L"C:\\");
    for (const auto& test : kCases) {
        RegSetKeyValueW(HKEY_LOCAL_MACHINE, key.c_str(), L"DisplayName", REG_SZ, L"Dsw Größe", 20);
        const auto bytes = static_cast<DWORD>(wcslen(test.icon) * 2 + 2);
        RegSetKeyValueW(HKEY_LOCAL_MACHINE, key.c_str(), L"DisplayIcon", REG_SZ, test.icon, bytes);
        // The rule resolves and says so; the application's own computation overwrites it.
        const Category category(std::string("<A Name='' ") + test.type + "><AppInfo Name='' " + test.app
                                + "><GarbageCatagory Name=''><GarbageInfo FolderEnvDir='DSW_HERE' Path=''/>"
                                  "</GarbageCatagory></AppInfo></A>");
        EXPECT_EQ(category.App().IsAppPresent(), test.present) << test.type << test.app;
        EXPECT_EQ(category.App().GetAppIcon() != nullptr, test.hasIcon);
        category.Garbage().SetAppPresent(!test.present);
        EXPECT_EQ(category.App().IsAppPresent(), !test.present);
    }
    RegDeleteKeyW(HKEY_LOCAL_MACHINE, key.c_str());
}

TEST(TreeEnumeration, HasOneCursorForAllWhoEnumerate) {
    const Category category("<A Name='A'><AppInfo Name='p'/><AppInfo Name='q'/><AppInfo Name='r'/></A>");
    const auto next = [&](const auto& previous) { return CReference(category->GetNextChild(previous.get())); };
    CReference first(category->GetFirstChild());
    const auto second = next(first);
    EXPECT_EQ(second->GetInfo()->NameText, std::wstring(L"q"));
    EXPECT_FALSE(next(first)) << "not the current child any more";
    EXPECT_FALSE(category->GetNextChild(nullptr));
    EXPECT_EQ(next(second)->GetInfo()->NameText, std::wstring(L"r")) << "neither has moved the cursor";

    first = CReference(category->GetFirstChild());
    EXPECT_EQ(ChildrenOf(*category).size(), 3u) << "another enumeration, to its end";
    EXPECT_FALSE(next(first)) << "which ends this one early";
}
