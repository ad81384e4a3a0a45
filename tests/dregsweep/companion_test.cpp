#include "dregsweep/companion.h"

#include <gtest/gtest.h>

#include "sysservices/reference.h"
#include "tests/dregsweep/builtfiles.h"
#include "tests/dregsweep/fakecompanion.h"

namespace {

const FakeCompanionRecord& RecordOf(const std::wstring& library) {
    static const FakeCompanionRecord nothing = {};
    const auto recorded = ExportOf<FakeCompanionRecord* (*)()>(GetModuleHandleW(library.c_str()), "Recorded");
    return recorded ? *recorded() : nothing;
}

TEST(Companion, UsageEventsReachTheLibraryBesideTheModule) {
    struct Row {
        const wchar_t* present;
        const wchar_t* alsoPresent;  // but not to be used
    };
    for (const Row& row : {Row{nullptr, nullptr}, Row{L"kxaide64.dll", nullptr}, Row{L"kxaide.dll", nullptr},
                           Row{L"kxaide64.dll", L"kxaide.dll"}}) {
        const TempFolder folder;
        for (const wchar_t* name : {row.present, row.alsoPresent})
            ASSERT_TRUE(!name || !CopyBuilt(L"fake_companion.dll", folder, name).empty());
        const std::wstring probePath = CopyBuilt(L"environment_probe.dll", folder, L"probe.dll");
        const HMODULE probe = LoadLibraryW(probePath.c_str());
        const auto send = ExportOf<void (*)(uint32_t)>(probe, "Send");
        ASSERT_TRUE(send) << GetLastError();

        send(0x11003);  // there is no object yet
        send(0x11003);  // the factory throws
        send(0x11003);
        send(kEventThatThrows);
        send(0x11004);
        if (!row.present) continue;
        const FakeCompanionRecord& record = RecordOf(folder / row.present);
        EXPECT_EQ(record.factoryCalls, 3u);
        EXPECT_EQ(record.eventCount, 3u);
        EXPECT_EQ(record.lastEvent, 0x11004u);
        EXPECT_EQ(record.strayCalls, 0u);
        EXPECT_FALSE(row.alsoPresent && GetModuleHandleW((folder / row.alsoPresent).c_str()));
    }
}

TEST(Companion, FactoryExportOfALibraryInTheSearchPath) {
    EXPECT_FALSE(LoadFactoryExport(kTallyhostLibrary, nullptr));
    const TempFolder folder;
    const std::wstring library = CopyBuilt(L"fake_companion.dll", folder, L"Tallyhost.dll");
    ASSERT_TRUE(SetCurrentDirectoryW(folder.path().c_str()));
    const CReference<ICompanionObject> companion(LoadFactoryExport(kTallyhostLibrary, nullptr));
    EXPECT_FALSE(LoadFactoryExport(kTallyhostLibrary, "Missing"));
    EXPECT_FALSE(LoadFactoryExport(kTallyhostLibrary, "GetThrowing"));
    SetCurrentDirectoryW(L"C:\\");

    ASSERT_TRUE(companion);
    EXPECT_EQ(companion->Start(), kStartCode);
    companion->BeginRun();
    EXPECT_EQ(RecordOf(library).runs, 1u);
    EXPECT_EQ(companion->AddRef(), 2u);
    EXPECT_EQ(companion->Release(), 1u);
}

}  // namespace
