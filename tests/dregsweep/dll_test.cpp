#include <gmock/gmock.h>

#include <cstring>
#include <set>

#include "dregsweep/idregsweep.h"
#include "tests/support/smalljob.h"

using testing::ElementsAreArray;

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
    DregsweepFactory Factory(const char* name) const {
        return reinterpret_cast<DregsweepFactory>(reinterpret_cast<void*>(GetProcAddress(m_module, name)));
    }

    const HMODULE m_module = LoadLibraryW(L"Dregsweep.dll");
};

// The place of an operation in its table of virtual functions, as GCC keeps it in a pointer to member.
template <class Operation>
size_t SlotOf(Operation operation) {
    struct {
        size_t offsetPlusOne;
        ptrdiff_t adjustment;
    } raw;
    static_assert(sizeof raw == sizeof operation);
    std::memcpy(&raw, &operation, sizeof raw);
    return (raw.offsetPlusOne - 1) / sizeof(void*);
}

// GCC's destructor takes two slots, which come first in most tables.
template <class... Operations>
bool StandInARow(size_t first, Operations... operations) {
    return ((SlotOf(operations) == first++) && ...);
}

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

TEST_F(Module, ImportsSystemLibrariesOnly) {
    const std::set<std::wstring> system = {L"advapi32.dll", L"kernel32.dll", L"msvcrt.dll", L"ole32.dll",
                                           L"shell32.dll",  L"shlwapi.dll",  L"user32.dll", L"wininet.dll"};
    const auto* import = Directory<IMAGE_IMPORT_DESCRIPTOR>(IMAGE_DIRECTORY_ENTRY_IMPORT);
    for (; import->Name; ++import)
        EXPECT_TRUE(system.contains(ToLower(Utf8ToWide(At<char>(import->Name))))) << At<char>(import->Name);
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
    RecordingHost gather(job.folder.path()), clean(job.folder.path());
    EXPECT_TRUE(engine->Gather(&gather) && engine->Clean(&clean));
    EXPECT_THAT(gather.lines, ElementsAreArray(SmallJob::Expected(false)));
    EXPECT_THAT(clean.lines, ElementsAreArray(SmallJob::Expected(true)));
    EXPECT_EQ(job.FilesLeft(), 0);
    EXPECT_TRUE(job.HasBystander());
}

TEST(Slots, StandInTheirOrder) {
    using E = IDregsweep;
    EXPECT_TRUE(StandInARow(2, &E::GetFirstChild, &E::GetNextChild, &E::Init, &E::Uninit, &E::ChangeResID,
                            &E::AddAllowedPath, &E::ClearAllowedPaths, &E::Gather, &E::Clean, &E::ResetForGather,
                            &E::PrepareForClean, &E::SetAllChecked, &E::ClearTotals, &E::HostNotify1));
    using A = IAppGarbageInfo;
    EXPECT_TRUE(StandInARow(2, &A::GetFirstChild, &A::GetNextChild, &A::GetInfo, &A::GetAppIcon, &A::IsAppPresent,
                            &A::Discard, &A::HostNotify1, &A::HostNotify2));
    using R = IGarbageInfo;
    EXPECT_TRUE(StandInARow(2, &R::GetFirstChild, &R::GetNextChild, &R::EnumFound, &R::HasChildren));
    EXPECT_TRUE(StandInARow(2, &R::Toggle, &R::GetState, &R::RecomputeFromChild, &R::Recompute, &R::SetState));
    using V = CGarbageVolume;
    EXPECT_TRUE(StandInARow(2, &V::GetTotalSize, &V::GetPendingSize, &V::GetExtraCount, &V::GetTotalCount));
    using H = IDregsweepCallback;
    EXPECT_TRUE(StandInARow(0, &H::StepNotify1, &H::StepNotify2, &H::StepNotify3, &H::Progress, &H::FoundItem,
                            &H::Reserved, &H::EmptiedItem));
}
