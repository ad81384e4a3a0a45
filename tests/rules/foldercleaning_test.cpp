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

// Fails the first allocation that reaches the C library.
bool g_failed = false;
decltype(&malloc) g_malloc;
void* FailOnce(size_t size) {
    return std::exchange(g_failed, true) ? g_malloc(size) : nullptr;
}

enum Place { FromFound, FromEmptied, FromVisitor };
enum Action { Enumerate, Clear, Gather, Clean };
class ReentrancyTest : public RuleTest, public testing::WithParamInterface<std::tuple<Place, Action>> {};

}  // namespace

TEST_F(RuleTest, CleanReportsEachItemAndForgetsIt) {
    for (const wchar_t* name : {L"a.log", L"b.log", L"c.log", L"d.log", L"e.log"})
        m_folder.Write(name, "xx");
    SetFileAttributesW((m_folder / L"c.log").c_str(), FILE_ATTRIBUTE_READONLY);
    RecordingRule rule;
    ASSERT_TRUE(rule.Load(m_files));
    ASSERT_TRUE(rule.Gather());
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
        ASSERT_TRUE(rule.Load(m_files + "Iteration='1'"));
        ASSERT_TRUE(rule.Gather());
        rule.stopAt = stopAt;
        EXPECT_EQ(rule.Clean(0, 0, 0), stopAt > 3);
        const size_t left = stopAt > 3 ? 0 : 3 - stopAt;
        EXPECT_EQ(Listed(rule).size(), left);
        EXPECT_EQ(rule.GetTotalCount(), left);
        EXPECT_EQ(rule.GetPendingSize(), left);
        EXPECT_EQ(m_folder.Has(L"f"), left > 0);
        EXPECT_TRUE(m_folder.Has(L"Dir"));  // folders are never removed
    }
}

TEST_F(RuleTest, NothingIsDeletedThroughAWildcard) {
    m_folder.Write(L"a.log");
    RecordingRule rule;
    ASSERT_TRUE(rule.Load("FolderEnvDir='DSW_BASE' Path='*.log'"));
    EXPECT_TRUE(rule.Gather() && rule.Clean(0, 0, 0));
    EXPECT_THAT(rule.emptied, ElementsAre(L"-*.log"));
    EXPECT_TRUE(m_folder.Has(L"a.log"));
}

TEST_F(RuleTest, HostFolderStaysListedAndUnreported) {
    const CString hostFile = m_folder / L"APP\\host.exe";
    g_hostFile = hostFile.c_str();
    const IatPatch patch(nullptr, nullptr, "GetModuleFileNameW", reinterpret_cast<const void*>(&HostFile));
    ASSERT_TRUE(patch.ok());
    for (const wchar_t* name : {L"a", L"App\\b", L"App2\\c", L"Other\\App\\d"})
        m_folder.Write(name);
    RecordingRule rule;
    ASSERT_TRUE(rule.Load(m_files + "Iteration='1'"));
    EXPECT_TRUE(rule.Gather() && rule.Clean(0, 0, 0));
    EXPECT_THAT(rule.emptied, ElementsAre(L"+a", L"+d"));
    EXPECT_THAT(Listed(rule), ElementsAre(L"App\\b", L"App2\\c"));  // a part of the path, not a folder of it
    EXPECT_EQ(rule.GetTotalCount(), 2u);
    EXPECT_TRUE(m_folder.Has(L"App\\b") && m_folder.Has(L"App2\\c") && !m_folder.Has(L"a"));
}

TEST_F(RuleTest, NothingIsDeletedWhileTheHostFolderCannotBeKnown) {
    m_folder.Write(L"a");
    RecordingRule rule;
    ASSERT_TRUE(rule.Load(m_files));
    EXPECT_TRUE(rule.Gather());
    const IatPatch patch(nullptr, "msvcrt.dll", "malloc", reinterpret_cast<const void*>(&FailOnce));
    g_malloc = patch.original<decltype(&malloc)>();
    ASSERT_TRUE(g_malloc);
    EXPECT_TRUE(rule.Clean(0, 0, 0));
    EXPECT_TRUE(g_failed && m_folder.Has(L"a"));
}

TEST_F(RuleTest, VisitorThatThrowsEndsTheEnumeration) {
    m_folder.Write(L"a");
    m_folder.Write(L"b");
    RecordingRule rule;
    ASSERT_TRUE(rule.Load(m_files));
    EXPECT_TRUE(rule.Gather());
    int calls = 0;
    Visitor throwing([&](const CString&) { throw ++calls; });
    rule.EnumFound(&throwing);
    rule.EnumFound(nullptr);
    EXPECT_EQ(calls, 1);
    size_t listed = 0;
    std::thread([&] { listed = Listed(rule).size(); }).join();  // the lock was let go
    EXPECT_EQ(listed, 2u);
}

TEST_P(ReentrancyTest, LeavesTheRuleWhole) {
    const auto [place, action] = GetParam();
    for (const wchar_t* name : {L"first file", L"second file", L"third file"})
        m_folder.Write(name);
    RecordingRule rule;
    ASSERT_TRUE(rule.Load(m_files));
    int depth = 0;
    const auto callBack = [&, action = action] {
        if (depth++ == 0) {
            if (action == Enumerate) Listed(rule);
            if (action == Clear) rule.ClearFound();
            if (action == Gather) rule.Gather();
            if (action == Clean) rule.Clean(0, 0, 0);
        }
        --depth;
    };
    if (place == FromFound) rule.onFound = callBack;
    if (place == FromEmptied) rule.onEmptied = callBack;
    EXPECT_TRUE(rule.Gather());
    Visitor visitor([&](const CString&) { callBack(); });
    if (place == FromVisitor) rule.EnumFound(&visitor);
    EXPECT_TRUE(rule.Clean(0, 0, 0));
    rule.onFound = rule.onEmptied = nullptr;
    EXPECT_TRUE(rule.Gather());
    EXPECT_EQ(Listed(rule).size(), rule.GetTotalCount());
    EXPECT_TRUE(rule.Clean(0, 0, 0));
    EXPECT_THAT(Listed(rule), IsEmpty());
    EXPECT_FALSE(m_folder.Has(L"first file") || m_folder.Has(L"third file"));
}

INSTANTIATE_TEST_SUITE_P(Notifications, ReentrancyTest,
                         testing::Combine(testing::Values(FromFound, FromEmptied, FromVisitor),
                                          testing::Values(Enumerate, Clear, Gather, Clean)));
