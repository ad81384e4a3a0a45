#include <gmock/gmock.h>

#include "dregsweep/idregsweep.h"
#include "tests/dregsweep/builtfiles.h"
#include "tests/support/iatpatch.h"
#include "tests/support/smalljob.h"

namespace {

struct Module : testing::Test {
    ~Module() override { FreeLibrary(module); }
    const HMODULE module = LoadLibraryW(L"Dregsweep.dll");
};

std::wstring g_executable;
DWORD WINAPI TellExecutable(HMODULE, wchar_t* buffer, DWORD size) {
    return static_cast<DWORD>(g_executable.copy(buffer, size));
}

}  // namespace

TEST_F(Module, ExportsTheFactoriesOnly) {
    WORD ordinal = 0;
    for (const char* name :
         {"EndFunc", "GetImp", "GetInetFileProcImp", "GetPrivacyProcImp", "GetSysUpgradeClearImp", "StartFunc"})
        EXPECT_EQ(GetProcAddress(module, name), GetProcAddress(module, MAKEINTRESOURCEA(++ordinal))) << name;
    EXPECT_TRUE(GetProcAddress(module, MAKEINTRESOURCEA(ordinal)));
    EXPECT_FALSE(GetProcAddress(module, MAKEINTRESOURCEA(ordinal + 1)));
    EXPECT_EQ(GetProcAddress(module, "GetImp"), GetProcAddress(module, "GetPrivacyProcImp"));
    EXPECT_FALSE(ExportOf<bool (*)()>(module, "StartFunc")()) << "not installed";
    EXPECT_TRUE(ExportOf<bool (*)()>(module, "EndFunc")());
    EXPECT_TRUE(FindResourceW(module, MAKEINTRESOURCEW(VS_VERSION_INFO), RT_VERSION));
}

TEST_F(Module, TakesTheUpgradeFilesFromBesideTheExecutable) {
    constexpr size_t kNoEngine = 100;
    const TempFolder folder;
    const IatPatch patch(module, nullptr, "GetModuleFileNameW", reinterpret_cast<const void*>(&TellExecutable));
    ASSERT_TRUE(patch.ok());
    g_executable = folder / L"host.exe";
    const auto count = [&](const char* categories) {
        if (*categories) folder.Write(L"SysUpgradeConfig.xml", categories);
        const CReference engine(ExportOf<DregsweepFactory>(module, "GetSysUpgradeClearImp")());
        return engine ? ChildrenOf(*engine).size() : kNoEngine;
    };
    EXPECT_EQ(count(""), 0u);
    EXPECT_EQ(count("<R><AppCategoryInfo Name='a'/><AppCategoryInfo Name='b'/></R>"), 2u);
    EXPECT_EQ(count("<R><AppCategoryInfo Name='a'/><AppCategoryInfo/></R>"), kNoEngine);
    std::wstring().swap(g_executable);
}
