#include <optional>

#include "tests/dregsweep/engine.h"
#include "tests/support/iatpatch.h"

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
        {"<R><AppCategoryInfo Name='a'/><AppCategoryInfo Name='c'><AppInfo Name='d'><GarbageCatagory Name='e'>"
         "<GarbageInfo Path='x'/></GarbageCatagory><GarbageCatagory/></AppInfo></AppCategoryInfo></R>",
         kConfigFailed, L"a;"},
    };
    const SmallJob job;
    const std::wstring missing = job.folder / L"missing.xml", noTable = job.folder.Write(L"none.xml", "<R/>");
    for (const auto& test : kCases) {
        const std::wstring rules = test.content ? job.folder.Write(L"case.xml", *test.content) : missing;
        const Engine engine = NewEngine();
        EXPECT_EQ(engine->Init(rules.c_str(), missing.c_str(), nullptr), test.code);
        const Lines traces = TakeTraceLines();
        EXPECT_EQ(traces.back().find(test.code ? L"[Dregsweep] LoadConfig fail" : kTextsFail + L"ac0006,"), 0u);
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
    EXPECT_TRUE(TakeTraceLines().empty());
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
    EXPECT_EQ(engine->ChangeResID(nullptr, nullptr), kTextsAnswer);
    for (const auto& test : kCases) {
        const std::wstring file = test.content ? job.folder.Write(L"t.xml", test.content) : job.folder / L"missing";
        EXPECT_EQ(engine->ChangeResID(file.c_str(), nullptr), test.code);
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

BOOL WINAPI TellXp(OSVERSIONINFOW* version) {
    version->dwBuildNumber = 2600;
    return TRUE;
}

TEST(OldSystem, LoadsItsRulesOnBuild2600) {
    const TempFolder folder;
    const IatPatch patch("GetVersionExW", &TellXp);
    const Engine engine = NewEngine(
        folder, CategoryOf("<GarbageInfo Path='new'/><XP><GarbageInfo Path='1'/><GarbageInfo Path='2'/></XP>"));
    EXPECT_EQ(ChildrenOf(*ChildrenOf(*ChildrenOf(*ChildrenOf(*engine)[0])[0])[0]).size(), 2u);
}
