#include <thread>

#include "tests/rules/recordingrule.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const wchar_t* g_hostFile;
DWORD WINAPI HostFile(HMODULE, wchar_t* buffer, DWORD size) {
    wcsncpy(buffer, g_hostFile, size);
    return static_cast<DWORD>(wcslen(g_hostFile));
}

}  // namespace

TEST_F(RuleTest, CleanReportsEachItemAndForgetsIt) {
    for (const wchar_t* name : {L"a.log", L"b.log", L"c.log", L"d.log", L"e.log"})
        m_folder.Write(name, "xx");
    SetFileAttributesW((m_folder / L"c.log").c_str(), FILE_ATTRIBUTE_READONLY);
    RecordingRule rule;
    ASSERT_TRUE(rule.Load(m_files) && rule.Gather());
    DeleteFileW((m_folder / L"d.log").c_str());
    const HANDLE held = CreateFileW((m_folder / L"b.log").c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_TRUE(rule.Clean(1, 2, 3));
    CloseHandle(held);
    EXPECT_THAT(rule.emptied, ElementsAre(L"+a.log", L"-b.log", L"-c.log", L"-d.log", L"+e.log"));
    EXPECT_THAT(Listed(rule), IsEmpty());
    EXPECT_EQ(rule.GetTotalSize(), 6u);
    EXPECT_EQ(rule.GetPendingCount(), 3u);
    EXPECT_TRUE(rule.Gather());
    EXPECT_THAT(Listed(rule), ElementsAre(L"b.log", L"c.log"));
}

TEST_F(RuleTest, CleanStopsAfterTheCurrentItem) {
    for (size_t stopAt = 1; stopAt <= 4; ++stopAt) {
        for (const wchar_t* name : {L"a", L"Dir\\b", L"f"})
            m_folder.Write(name);
        RecordingRule rule;
        ASSERT_TRUE(rule.Load(m_files + "Iteration='1'") && rule.Gather());
        rule.stopAt = stopAt;
        EXPECT_EQ(rule.Clean(0, 0, 0), stopAt > 3);
        const size_t left = stopAt > 3 ? 0 : 3 - stopAt;
        EXPECT_EQ(Listed(rule).size(), left);
        EXPECT_EQ(rule.GetTotalCount(), left);
        EXPECT_EQ(m_folder.Has(L"f"), left > 0);
        EXPECT_TRUE(m_folder.Has(L"Dir"));  // folders are never removed
    }
}

TEST_F(RuleTest, HostFolderStaysListedAndUnreported) {
    const CString hostFile = m_folder / L"APP\\host.exe";
    g_hostFile = hostFile.c_str();
    const IatPatch patch(nullptr, nullptr, "GetModuleFileNameW", reinterpret_cast<const void*>(&HostFile));
    ASSERT_TRUE(patch.ok());
    for (const wchar_t* name : {L"a", L"App\\b", L"App2\\c", L"Other\\App\\d"})
        m_folder.Write(name);
    RecordingRule rule;
    // The process-wide list goes with any engine that ends, also in the middle of the clean.
    rule.onEmptied = [] { CAppInfoManager::ReleaseInstance(); };
    EXPECT_TRUE(rule.Load(m_files + "Iteration='1'") && rule.Gather() && rule.Clean(0, 0, 0));
    EXPECT_THAT(rule.emptied, ElementsAre(L"+a", L"+d"));
    EXPECT_THAT(Listed(rule), ElementsAre(L"App\\b", L"App2\\c"));  // a part of the path, not a folder of it
    EXPECT_TRUE(m_folder.Has(L"App\\b") && m_folder.Has(L"App2\\c") && !m_folder.Has(L"a"));
}

// Enumerated, emptied, scanned and cleaned from each kind of notification.
TEST_F(RuleTest, NotificationsMayWorkOnTheRule) {
    const std::function<void(RecordingRule&)> kActions[] = {
        [this](RecordingRule& rule) { Listed(rule); },
        [](RecordingRule& rule) { rule.ClearFound(); },
        [](RecordingRule& rule) { rule.Gather(); },
        [](RecordingRule& rule) { rule.Clean(0, 0, 0); },
        [](RecordingRule&) { throw 1; },  // from the visitor; the engine stops others
    };
    for (size_t test = 0; test < 13; ++test) {
        for (const wchar_t* name : {L"first file", L"second file", L"third file"})
            m_folder.Write(name);
        RecordingRule rule;
        ASSERT_TRUE(rule.Load(m_files));
        const bool onFound = test < 4, onEmptied = test >= 4 && test < 8;
        bool inside = false;
        const auto act = [&] {
            if (!std::exchange(inside, true)) kActions[test < 8 ? test % 4 : test - 8](rule);
            inside = false;
        };
        if (onFound) rule.onFound = act;
        if (onEmptied) rule.onEmptied = act;
        EXPECT_TRUE(rule.Gather());
        Visitor visitor([&](const CString&) { act(); });
        if (!onFound && !onEmptied) rule.EnumFound(&visitor);
        EXPECT_TRUE(rule.Clean(0, 0, 0));
        rule.onFound = rule.onEmptied = [] {};
        EXPECT_TRUE(rule.Gather());
        EXPECT_EQ(Listed(rule).size(), rule.GetTotalCount());
        std::thread([&] { EXPECT_TRUE(rule.Clean(0, 0, 0)); }).join();  // every lock was let go
        EXPECT_THAT(Listed(rule), IsEmpty());
        EXPECT_FALSE(m_folder.Has(L"first file") || m_folder.Has(L"third file"));
    }
}
