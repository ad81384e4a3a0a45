#include <gmock/gmock.h>

#include "dregsweep/idregsweep.h"
#include "tests/support/smalljob.h"

namespace {

class Module : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(m_module) << GetLastError(); }
    void TearDown() override { FreeLibrary(m_module); }

    template <class T>
    const T* At(DWORD rva) const {
        return reinterpret_cast<const T*>(reinterpret_cast<const BYTE*>(m_module) + rva);
    }
    template <class T>
    const T* Directory(size_t index) const {
        const auto* headers = At<IMAGE_NT_HEADERS>(static_cast<DWORD>(At<IMAGE_DOS_HEADER>(0)->e_lfanew));
        return At<T>(headers->OptionalHeader.DataDirectory[index].VirtualAddress);
    }
    template <class F>
    F Function(const char* name) const {
        return reinterpret_cast<F>(reinterpret_cast<void*>(GetProcAddress(m_module, name)));
    }
    DregsweepFactory Factory(const char* name) const { return Function<DregsweepFactory>(name); }

    const HMODULE m_module = LoadLibraryW(L"Dregsweep.dll");
};

}  // namespace

TEST_F(Module, ExportsTheFactoriesOnly) {
    const auto* exports = Directory<IMAGE_EXPORT_DIRECTORY>(IMAGE_DIRECTORY_ENTRY_EXPORT);
    std::vector<std::string> names;
    for (DWORD i = 0; i < exports->NumberOfNames; ++i)
        names.emplace_back(At<char>(At<DWORD>(exports->AddressOfNames)[i]));
    EXPECT_THAT(names, testing::ElementsAre("EndFunc", "GetImp", "GetInetFileProcImp", "GetPrivacyProcImp",
                                            "GetSysUpgradeClearImp", "StartFunc"));
    EXPECT_EQ(Factory("GetImp"), Factory("GetPrivacyProcImp"));
}

TEST_F(Module, CannotStartAServiceThatIsNotInstalled) {
    EXPECT_FALSE(Function<bool (*)()>("StartFunc")());
    EXPECT_TRUE(Function<bool (*)()>("EndFunc")());
}

TEST_F(Module, ImportsSystemLibrariesOnly) {
    const std::wstring system =
        L"advapi32.dll kernel32.dll msvcrt.dll ole32.dll shell32.dll shlwapi.dll user32.dll wininet.dll";
    const auto* import = Directory<IMAGE_IMPORT_DESCRIPTOR>(IMAGE_DIRECTORY_ENTRY_IMPORT);
    for (; import->Name; ++import)
        EXPECT_TRUE(system.find(ToLower(Utf8ToWide(At<char>(import->Name)))) != system.npos) << At<char>(import->Name);
}

TEST_F(Module, HasAVersionResource) {
    const HRSRC found = FindResourceW(m_module, MAKEINTRESOURCEW(VS_VERSION_INFO), RT_VERSION);
    ASSERT_TRUE(found);
    const auto* text = static_cast<const wchar_t*>(LockResource(LoadResource(m_module, found)));
    const std::wstring all(text, SizeofResource(m_module, found) / sizeof(wchar_t));
    EXPECT_NE(all.find(L"Dregsweep.dll"), std::wstring::npos);
}

TEST_F(Module, DoesAWholeJob) {
    const SmallJob job;
    const CReference engine(Factory("GetPrivacyProcImp")());
    ASSERT_TRUE(engine);
    ASSERT_EQ(engine->Init(job.rules.c_str(), job.texts.c_str(), nullptr), 0u);
    RecordingHost host(job.folder.path());
    EXPECT_TRUE(engine->Gather(nullptr) && engine->Clean(&host));
    EXPECT_EQ(host.lines, SmallJob::Expected(true));
    EXPECT_TRUE(job.FilesLeft() == 0 && job.HasBystander());
}
