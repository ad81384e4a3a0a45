#include <process.h>

#include <optional>

#include "tests/dregsweep/engine.h"

namespace {

constexpr uint64_t kNoTable = 0xB80006, kTextsAnswer = 0xAC0006, kConfigFailed = 0x990006;
const std::wstring kTextsFail = L"[Dregsweep] ChangeResID fail 0x";
const std::string kGood = "<R><AppCategoryInfo Name='a'/></R>";

}  // namespace

TEST(Init, AnswersTheCodeAndDeletesNothingWhateverTheRuleFileHolds) {
    std::string nested;
    while (nested.size() < 300'000)
        nested += "<a>";
    const struct {
        std::optional<std::string> content;
        uint64_t code;
        const wchar_t* names;
    } kCases[] = {
        {std::nullopt, 0, L""},
        {"", 0, L""},
        {kGood.substr(0, kGood.size() - 3), 0, L""},
        {std::string("MZ\0\xFF<\x01", 6), 0, L""},
        {std::string("\xFF\xFE<\0R\0/\0>\0", 10), 0, L""},
        {nested, 0, L""},
        {"<R><!--" + std::string(50'000'000, 'x') + "--><AppCategoryInfo Name='a'/></R>", 0, L"a;"},
        {"<R><AppCategoryInfo Name='x' SelState='x' CatagoryType='x' LargeIcon='x'/></R>", 0, L"x;"},
        {"<R>text<!-- --></R>", kConfigFailed, L""},
        {"<R><appcategoryinfo/><AppCatagoryInfo/><x/></R>", 0, L""},
        {"<R><AppCategoryInfo Name='a'/><AppCategoryInfo/><AppCategoryInfo Name='c'/></R>", kConfigFailed, L"a;"},
    };
    const SmallJob job;
    const std::wstring missing = job.folder / L"missing.xml", noTable = job.folder.Write(L"none.xml", "<R/>");
    for (const auto& test : kCases) {
        const std::wstring rules = test.content ? job.folder.Write(L"case.xml", *test.content) : missing;
        const Engine engine = NewEngine();
        EXPECT_EQ(engine->Init(rules.c_str(), missing.c_str(), nullptr), test.code);
        EXPECT_EQ(TakeTraces(), test.code
                                    ? Lines{L"[Dregsweep] LoadConfig fail"}
                                    : (Lines{L"[Dregsweep] EnableRestorePrivilege 1,#", kTextsFail + L"ac0006,#"}));
        // Only a ready engine looks into the text file.
        EXPECT_EQ(engine->ChangeResID(noTable.c_str(), nullptr), test.code ? kTextsAnswer : kNoTable);
        EXPECT_TRUE(!engine->SetAllChecked(true) && engine->Gather(nullptr) && engine->Clean(nullptr));
        EXPECT_EQ(NamesOf(*engine), test.code ? L"" : test.names);
        // A failed engine keeps what came before the failure, and a later attempt adds to it.
        EXPECT_EQ(engine->Init(job.folder.Write(L"good.xml", kGood).c_str(), L"", nullptr), 0u);
        EXPECT_EQ(NamesOf(*engine), test.names + std::wstring(test.code ? L"a;" : L""));
        TakeTraceLines();
    }
    EXPECT_EQ(job.FilesLeft(), 4);
}

TEST(Init, DoesNothingWithoutPathsOrWhenReady) {
    const SmallJob job;
    const Engine engine = NewEngine();
    EXPECT_EQ(engine->Init(nullptr, L"", nullptr) + engine->Init(job.rules.c_str(), nullptr, nullptr), 0u);
    EXPECT_EQ(TakeTraces(), Lines{});
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(NamesOf(*engine), L"");
        for (const std::wstring& rules : {job.rules, job.folder / L"not read when ready"})
            EXPECT_EQ(engine->Init(rules.c_str(), job.texts.c_str(), nullptr), 0u);
        EXPECT_EQ(NamesOf(*engine), L"A;U;B;");
        EXPECT_EQ(engine->Uninit() + engine->Uninit(), 0u);
    }
}

TEST(ChangeResID, NeverAnswersZero) {
    const struct {
        const char* content;  // null for a missing file
        uint64_t code;
        const wchar_t* names;
    } kCases[] = {
        {nullptr, kTextsAnswer, L"A;U;B;"},
        {"<R/>", kNoTable, L"A;U;B;"},
        {"<Dregsweep><KeyOfA>x</KeyOfA></Dregsweep>", kNoTable, L"A;U;B;"},
        {"<R><x/><Dregsweep/><Dregsweep><KeyOfA>x</KeyOfA></Dregsweep></R>", kTextsAnswer, L"A;U;B;"},
        {"<R><Dregsweep><KeyOfA>Neu</KeyOfA></Dregsweep></R>", kTextsAnswer, L"Neu;U;B;"},
    };
    const SmallJob job;
    const Engine engine = NewEngine(job);
    TakeTraces();
    EXPECT_EQ(engine->ChangeResID(nullptr, nullptr), kTextsAnswer);
    EXPECT_EQ(TakeTraces(), Lines{});
    for (const auto& test : kCases) {
        const std::wstring file = test.content ? job.folder.Write(L"t.xml", test.content) : job.folder / L"missing";
        EXPECT_EQ(engine->ChangeResID(file.c_str(), nullptr), test.code);
        EXPECT_EQ(TakeTraces(), Lines{kTextsFail + (test.code == kNoTable ? L"b80006,#" : L"ac0006,#")});
        EXPECT_EQ(NamesOf(*engine), test.names);
    }
}

TEST(AllowedPaths, ArePlainPrefixesThatFoldAToZ) {
    const Engine engine = NewEngine();
    engine->AddAllowedPath(nullptr);
    EXPECT_TRUE(engine->IsPathAllowed(L"") && engine->IsPathAllowed(L"Q:\\x"));
    for (const wchar_t* prefix : {L"C:\\Temp", L"D:", L"E:\\Ä\\", L"E:\\["})
        engine->AddAllowedPath(prefix);
    for (const wchar_t* path : {L"c:\\temp\\x", L"C:\\TempFiles", L"d:\\", L"e:\\Ä\\b", L"e:\\["})
        EXPECT_TRUE(engine->IsPathAllowed(path)) << path;
    for (const wchar_t* path : {L"C:\\Tem", L"F:\\Temp", L"E:\\Ä", L"E:\\ä\\", L"E:\\{", L""})
        EXPECT_FALSE(engine->IsPathAllowed(path)) << path;
    engine->ClearAllowedPaths();
    EXPECT_TRUE(engine->IsPathAllowed(L""));

    // The only prefix that there is no memory for must not allow everything.
    alloc_guard::FailAfter(0);
    engine->AddAllowedPath(L"C:\\Temp");
    alloc_guard::FailAfter(-1);
    engine->AddAllowedPath(L"D:");
    EXPECT_FALSE(engine->IsPathAllowed(L"Q:\\x") || engine->IsPathAllowed(L"D:\\x"));
    engine->ClearAllowedPaths();
    EXPECT_TRUE(engine->IsPathAllowed(L"Q:\\x"));
}

// Run by the test below in a process whose name the system has on record as one for Windows XP.
TEST(OldSystem, DISABLED_LoadsItsRules) {
    const SmallJob job;
    const Engine engine = NewEngine();
    const std::string xml =
        "<R><AppCategoryInfo Name='a'><AppInfo Name='b'><GarbageCatagory Name='c'><GarbageInfo Path='new'/><XP>"
        "<GarbageInfo Path='1'/><GarbageInfo Path='2'/></XP></GarbageCatagory></AppInfo></AppCategoryInfo></R>";
    engine->Init(job.folder.Write(L"xp.xml", xml).c_str(), L"", nullptr);
    EXPECT_EQ(ChildrenOf(*ChildrenOf(*ChildrenOf(*ChildrenOf(*engine)[0])[0])[0]).size(), 2u);
}

TEST(OldSystem, LoadsItsRulesOnBuild2600) {
    const TempFolder folder;
    const std::wstring name = L"dswxp" + std::to_wstring(GetCurrentProcessId()) + L".exe", copy = folder / name;
    const std::wstring key = L"Software\\Wine\\AppDefaults\\" + name;
    wchar_t self[MAX_PATH];
    GetModuleFileNameW(nullptr, self, MAX_PATH);
    ASSERT_TRUE(CopyFileW(self, copy.c_str(), FALSE));
    ASSERT_EQ(RegSetKeyValueW(HKEY_CURRENT_USER, key.c_str(), L"Version", REG_SZ, L"winxp", 12), ERROR_SUCCESS);
    const wchar_t *disabled = L"--gtest_also_run_disabled_tests", *filter = L"--gtest_filter=OldSystem.DISABLED_*";
    EXPECT_EQ(_wspawnl(_P_WAIT, copy.c_str(), name.c_str(), disabled, filter, nullptr), 0);
    RegDeleteKeyW(HKEY_CURRENT_USER, key.c_str());
}
