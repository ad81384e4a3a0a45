#include <windows.h>
#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "host/common/enginemodule.h"
#include "host/console/command.h"
#include "sysservices/handle.h"
#include "sysservices/registrykey.h"
#include "tests/support/iatpatch.h"
#include "tests/support/tempfolder.h"

using testing::HasSubstr;
using testing::Not;

namespace {

// Every test has a process and a key of its own.
const std::wstring kKey = L"Software\\DswActions" + std::to_wstring(GetCurrentProcessId());

void Set(const wchar_t* name, const std::wstring& key = kKey) {
    EXPECT_EQ(0, RegSetKeyValueW(HKEY_CURRENT_USER, key.c_str(), name, REG_SZ, L"v", 4));
}
bool Has(const wchar_t* name, const std::wstring& key = kKey) {
    return CRegistryKey(HKEY_CURRENT_USER, key.c_str(), KEY_READ).HasValue(name);
}

// A program that makes a value as soon as somebody has seen all of them.
LSTATUS WINAPI EnumAndAdd(HKEY key, DWORD index, LPWSTR name, LPDWORD length, LPDWORD reserved, LPDWORD type,
                          LPBYTE data, LPDWORD bytes) {
    const LSTATUS status = RegEnumValueW(key, index, name, length, reserved, type, data, bytes);
    if (status == ERROR_NO_MORE_ITEMS) RegSetValueExW(key, L"New", 0, REG_DWORD, nullptr, 0);
    return status;
}

class Actions : public testing::Test {
protected:
    Actions() { SetEnvironmentVariableW(L"DSW_TEST", m_folder.path().c_str()); }
    ~Actions() override { RegDeleteTreeW(HKEY_CURRENT_USER, kKey.c_str()); }

    // The job runs in this process, where its platform can be patched.
    ExitStatus Run(std::vector<std::string> arguments, std::string_view input = "") {
        const std::string key = WideToUtf8(kKey), registry = "<GarbageInfo Registry='1' RootKey='HKCU' KeyPath='" + key;
        m_folder.Write(L"rules.xml",
                       "<R><AppCategoryInfo Name='C' SelState='2'><AppInfo Name='A' InBuildProgram='1'>"
                       "<GarbageCatagory Name='G'>" + registry + "'/>" + registry + "' Value='last'/>"
                       + registry + "\\Sub' DelKey='1'/>" + registry + "\\Full' DelKey='1'/>"
                       "<GarbageInfo FolderEnvDir='DSW_TEST' Path='junk' IsFolder='1'/></GarbageCatagory></AppInfo>"
                       "<AppInfo Name='B' ProductName='none such'><GarbageCatagory Name='G'><GarbageInfo "
                       "FolderEnvDir='DSW_NONE' Path='x' EmptyProc='NT_ClearHistory'/><GarbageInfo Path='DSW_NONE' "
                       "EmptyProc='NT_ClearHistory'/></GarbageCatagory></AppInfo></AppCategoryInfo></R>");
        m_folder.Write(L"in", input);
        const CHandle in = Open(L"in", OPEN_EXISTING), out = Open(L"out", CREATE_ALWAYS),
                      err = Open(L"err", CREATE_ALWAYS);
        SetStdHandle(STD_INPUT_HANDLE, in.get());
        SetStdHandle(STD_OUTPUT_HANDLE, out.get());
        SetStdHandle(STD_ERROR_HANDLE, err.get());
        CConsole console;
        CLI::App app;
        CommandAction action;
        AddListCommand(app, action);
        AddGatherCommand(app, action, /*upgradeMode=*/false);
        AddCleanCommand(app, action, /*upgradeMode=*/false);
        arguments.insert(arguments.end(), {"--rules", WideToUtf8(m_folder / L"rules.xml")});
        app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
        const ExitStatus status = action(console);
        console.out.Flush();
        console.err.Flush();
        m_out = ReadFileBytes(m_folder / L"out");
        m_err = ReadFileBytes(m_folder / L"err");
        return status;
    }
    CHandle Open(const wchar_t* name, DWORD disposition) const {
        return CHandle(CreateFileW((m_folder / name).c_str(), GENERIC_READ | GENERIC_WRITE,
                                   FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, disposition, 0, nullptr));
    }
    // State, kind and name of each action of the first garbage category.
    std::string ActionsOfJson() const {
        std::string text;
        const auto json = nlohmann::json::parse(m_out);
        for (const auto& action : json["categories"][0]["applications"][0]["garbageCategories"][0]["actions"])
            text += action["state"].get<std::string>() + ' ' + action["kind"].get<std::string>() + ' '
                    + action["name"].get<std::string>() + ';';
        return text;
    }

    TempFolder m_folder;
    std::string m_out, m_err;
};

}  // namespace

TEST_F(Actions, AreShownAskedForAndToldByWhatBecameOfThem) {
    Set(L"Last");
    Set(L"x", kKey + L"\\Sub");
    Set(L"x", kKey + L"\\Full\\Neighbour");
    Set(L"x", kKey + L"2");
    m_folder.Write(L"junk\\a", "123");
    EXPECT_EQ(Run({"gather", "--items"}), ExitStatus::Done);
    const std::string key = "HKCU\\" + WideToUtf8(kKey), list = "A: G\n    to do  the value \"Last\" of the key " + key
                                                                + "\n    to do  the key " + key
                                                                + "\\Sub\n    to do  the key " + key + "\\Full\nB: G\n";
    EXPECT_THAT(m_out, HasSubstr(list)) << "once, though two rules tell it";
    EXPECT_EQ(Run({"gather", "--json"}), ExitStatus::Done);
    EXPECT_EQ(ActionsOfJson(), "planned value Last;planned key ;planned key ;");

    EXPECT_EQ(Run({"clean"}, "n\n"), ExitStatus::Stopped);
    EXPECT_TRUE(Has(L"Last") && m_folder.Has(L"junk\\a"));
    EXPECT_EQ(Run({"clean"}, "y\n"), ExitStatus::Done);
    EXPECT_THAT(m_out, HasSubstr("Delete 1 item (3 bytes), 1 registry value and 2 keys, run NT_ClearHistory? [y/N] "));
    EXPECT_THAT(m_out, HasSubstr("    gone  the value \"Last\" of the key " + key + "\n    gone  the key " + key
                                 + "\\Sub\n    has sub-keys  the key " + key + "\\Full\n"));
    EXPECT_THAT(m_out, HasSubstr("    run  the procedure NT_ClearHistory\n"));
    EXPECT_TRUE(!Has(L"Last") && !Has(L"x", kKey + L"\\Sub") && !m_folder.Has(L"junk\\a"));
    EXPECT_TRUE(Has(L"x", kKey + L"\\Full\\Neighbour") && Has(L"x", kKey + L"2"));
    RegDeleteTreeW(HKEY_CURRENT_USER, (kKey + L"2").c_str());
}

TEST_F(Actions, AreLeftOutOnWishAndAskForNothingWhenThereAreNone) {
    Set(L"Last");
    EXPECT_EQ(Run({"clean", "--no-registry", "--present-only", "--all"}, ""), ExitStatus::Done);
    EXPECT_THAT(m_out, testing::AllOf(HasSubstr("There is nothing to do.\n"), Not(HasSubstr("y/N"))));
    EXPECT_EQ(Run({"clean", "--no-registry", "--yes"}), ExitStatus::Done);
    EXPECT_THAT(m_out, HasSubstr("run  the procedure"));
    EXPECT_TRUE(Has(L"Last"));
}

TEST_F(Actions, ThatCameUpMeanwhileAreNotDoneUnasked) {
    Set(L"Last");
    const CEngineModule module;
    const IatPatch patch(GetModuleHandleW(L"Dregsweep.dll"), nullptr, "RegEnumValueW",
                         reinterpret_cast<const void*>(EnumAndAdd));
    ASSERT_TRUE(patch.ok());
    EXPECT_EQ(Run({"clean", "--yes", "--json"}), ExitStatus::Failed);
    EXPECT_THAT(m_err, HasSubstr("there is more to do, delete 1 registry value\n"));
    EXPECT_EQ(ActionsOfJson(), "planned value Last;new value New;");
    EXPECT_FALSE(nlohmann::json::parse(m_out)["cleaned"].get<bool>());
    RegDeleteKeyValueW(HKEY_CURRENT_USER, kKey.c_str(), L"New");
    EXPECT_EQ(Run({"clean"}, "y\nn\n"), ExitStatus::Stopped);
    EXPECT_THAT(m_out, HasSubstr("New since it was shown:\n    the value \"New\" of the key HKCU\\" + WideToUtf8(kKey)
                                 + "\nDelete 2 registry values, run"));
    EXPECT_TRUE(Has(L"Last") && Has(L"New"));
}

TEST_F(Actions, AreExplainedByTheList) {
    Set(L"Last");
    EXPECT_EQ(Run({"list", "--explain"}), ExitStatus::Done);
    EXPECT_THAT(m_out, HasSubstr("            [x] rule 2   C/A/G/2\n                the values of the key HKCU\\"
                                 + WideToUtf8(kKey) + "\n                only values with the name \"last\"\n"));
    EXPECT_EQ(Run({"list", "--json"}), ExitStatus::Done);
    const auto rules =
        nlohmann::json::parse(m_out)["categories"][0]["applications"][0]["garbageCategories"][0]["rules"];
    EXPECT_EQ(rules[2]["scopes"][0]["flags"], nlohmann::json{"deletes key"});
    EXPECT_EQ(rules[0]["actions"][0]["name"], "Last");
}
