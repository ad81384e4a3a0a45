#include <process.h>

#include <functional>
#include <optional>

#include "rules/systemversion.h"
#include "tests/dregsweep/engine.h"

using testing::IsEmpty;

namespace {

constexpr uint64_t kNoTable = 0xB80006;
constexpr uint64_t kTextsAnswer = 0xAC0006;
constexpr uint64_t kConfigFailed = 0x990006;
const Lines kLoadFailed = {L"[Dregsweep] LoadConfig fail"};

// Only a ready engine looks into the text file.
bool IsReady(CDregsweep& engine, const TempFolder& folder) {
    return engine.ChangeResID(folder.Write(L"no table.xml", "<R/>").c_str(), nullptr) == kNoTable;
}

std::string Repeat(const std::string& text, size_t count) {
    std::string all;
    all.reserve(text.size() * count);
    while (count-- > 0)
        all += text;
    return all;
}

std::string Utf16(const std::string& ascii) {
    std::string wide = "\xFF\xFE";
    for (const char c : ascii)
        wide += {c, '\0'};
    return wide;
}

const std::string kGood = "<R><AppCategoryInfo Name='a'/></R>";

// Each attribute that a rule file may have, of the wrong type.
const std::string kMistyped = [] {
    const auto node = [](const std::string& tag, const std::wstring& names) {
        std::string xml = "<" + tag;
        for (const std::wstring& name : Split(names, L" "))
            xml += " " + WideToUtf8(name) + "='nan'";
        return xml + ">";
    };
    return "<R>" + node("AppCategoryInfo", L"Name ResID SelState CatagoryType LargeIcon Icon")
           + node("AppInfo", L"Name ResID SelState LargeIcon Icon ProductName InBuildProgram LockFile")
           + node("GarbageCatagory", L"Name ResID SelState CatagoryID")
           + node("GarbageInfo",
                  L"SelState Registry Path GetByReg IsFolder Iteration FolderIndex Filter ExcludeFilter "
                  L"EmptyProc LoopPath ExcludePath SelfExclude UseShellBrowse RootKey KeyPath DelKey")
           + "</GarbageInfo>" + node("GarbageInfo", L"Path FolderX86EnvDir FolderEnvDir")
           + "</GarbageInfo></GarbageCatagory></AppInfo></AppCategoryInfo></R>";
}();

}  // namespace

TEST(Init, AnswersTheCodeAndDeletesNothingWhateverTheRuleFileHolds) {
    const struct {
        const char* what;
        std::optional<std::string> content;
        uint64_t code;
        const wchar_t* names;
    } kCases[] = {
        {"missing", std::nullopt, 0, L""},
        {"empty", "", 0, L""},
        {"blank", " \r\n", 0, L""},
        {"no element", "<?xml version='1.0'?><!-- none -->", kConfigFailed, L""},
        {"truncated", kGood.substr(0, kGood.size() - 3), 0, L""},
        {"binary", std::string("MZ\0\xFF<\x01", 6), 0, L""},
        {"UTF-16", Utf16(kGood), 0, L""},
        {"nested", Repeat("<a>", 100'000), 0, L""},
        {"nested and closed", Repeat("<a>", 100'000) + Repeat("</a>", 100'000), 0, L""},
        {"large", "<R><!--" + std::string(50'000'000, 'x') + "--><AppCategoryInfo Name='a'/></R>", 0, L"a;"},
        {"mistyped", kMistyped, 0, L"nan;"},
        {"with BOM", "\xEF\xBB\xBF" + kGood, 0, L"a;"},
        {"root without a child", "<R>text<!-- --></R>", kConfigFailed, L""},
        {"foreign children", "<R><appcategoryinfo/><AppCatagoryInfo/><x/></R>", 0, L""},
        {"bad category", "<R><AppCategoryInfo Name='a'/><AppCategoryInfo/><AppCategoryInfo Name='c'/></R>",
         kConfigFailed, L"a;"},
    };
    const SmallJob job;
    for (const auto& test : kCases) {
        const std::wstring missing = job.folder / L"missing.xml";
        const std::wstring rules = test.content ? job.folder.Write(L"case.xml", *test.content) : missing;
        const Engine engine = NewEngine();
        EXPECT_EQ(engine->Init(rules.c_str(), missing.c_str(), nullptr), test.code) << test.what;
        EXPECT_EQ(TakeTraces(), test.code ? kLoadFailed : Lines{L"[Dregsweep] ChangeResID fail 0xac0006,#"})
            << test.what;
        EXPECT_EQ(IsReady(*engine, job.folder), test.code == 0) << test.what;
        EXPECT_EQ(engine->SetAllChecked(true), 0u);
        RecordingHost host;
        EXPECT_TRUE(engine->Gather(&host) && engine->Clean(&host)) << test.what;
        EXPECT_THAT(host.With(L"found"), IsEmpty()) << test.what;
        // A failed engine keeps what came before the failure, and a later attempt adds to it.
        if (test.code) {
            EXPECT_EQ(NamesOf(*engine), L"");
            EXPECT_EQ(engine->Init(job.folder.Write(L"good.xml", kGood).c_str(), L"", nullptr), 0u);
            EXPECT_EQ(NamesOf(*engine), test.names + std::wstring(L"a;")) << test.what;
        } else {
            EXPECT_EQ(NamesOf(*engine), test.names) << test.what;
        }
        TakeTraceLines();
    }
    EXPECT_EQ(job.FilesLeft(), 4u);
}

TEST(Init, DoesNothingWithoutPathsOrWhenReady) {
    const SmallJob job;
    const Engine engine = NewEngine();
    EXPECT_EQ(engine->Init(nullptr, L"", nullptr), 0u);
    EXPECT_EQ(engine->Init(job.rules.c_str(), nullptr, nullptr), 0u);
    EXPECT_THAT(TakeTraces(), IsEmpty());
    EXPECT_FALSE(IsReady(*engine, job.folder));
    EXPECT_EQ(engine->GetFirstCategory(), nullptr);
    EXPECT_EQ(engine->Init(job.rules.c_str(), job.texts.c_str(), nullptr), 0u);
    EXPECT_EQ(NamesOf(*engine), L"A;U;B;");
    EXPECT_EQ(engine->Init((job.folder / L"x").c_str(), L"", nullptr), 0u);
    EXPECT_EQ(NamesOf(*engine), L"A;U;B;");
    engine->AddAllowedPath(L"Q:");
    EXPECT_EQ(engine->Uninit() + engine->Uninit(), 0u);
    EXPECT_FALSE(engine->IsPathAllowed(L"C:\\")) << "the allowed paths stay";
    EXPECT_EQ(engine->GetFirstCategory(), nullptr);
    EXPECT_EQ(engine->Init(job.rules.c_str(), job.texts.c_str(), nullptr), 0u);
    EXPECT_EQ(NamesOf(*engine), L"A;U;B;");
}

TEST(ChangeResID, NeverAnswersZero) {
    const SmallJob job;
    const std::wstring fail = L"[Dregsweep] ChangeResID fail ";
    const struct {
        const char* content;  // null for a missing file
        uint64_t code;
        const wchar_t* trace;
        const wchar_t* names;
    } kCases[] = {
        {nullptr, kTextsAnswer, L"0xac0006,#", L"A;U;B;"},
        {"<R/>", kNoTable, L"0xb80006,#", L"A;U;B;"},
        {"<!-- -->", kNoTable, L"0xb80006,#", L"A;U;B;"},
        {"<Dregsweep><KeyOfA>x</KeyOfA></Dregsweep>", kNoTable, L"0xb80006,#", L"A;U;B;"},
        {"<R><x/><Dregsweep/><Dregsweep><KeyOfA>x</KeyOfA></Dregsweep></R>", kTextsAnswer, L"0xac0006,#", L"A;U;B;"},
        {"<R><Dregsweep><KeyOfA>Neu</KeyOfA></Dregsweep></R>", kTextsAnswer, L"0xac0006,#", L"Neu;U;B;"},
    };
    const Engine engine = NewEngine(job);
    TakeTraces();
    for (const auto& test : kCases) {
        const std::wstring file = test.content ? job.folder.Write(L"t.xml", test.content) : job.folder / L"missing";
        EXPECT_EQ(engine->ChangeResID(file.c_str(), nullptr), test.code);
        EXPECT_EQ(TakeTraces(), Lines{fail + test.trace});
        EXPECT_EQ(NamesOf(*engine), test.names);
    }
    EXPECT_EQ(engine->ChangeResID(nullptr, nullptr), kTextsAnswer);
    EXPECT_THAT(TakeTraces(), IsEmpty());
    engine->Uninit();
    EXPECT_EQ(engine->ChangeResID(job.texts.c_str(), nullptr), kTextsAnswer);
    EXPECT_EQ(TakeTraces(), Lines{fail + L"0xac0006,#"});
}

// A host whose selector does anything but select.
class Selector final : public ITextSelector {
public:
    explicit Selector(std::function<void()> action) : m_action(std::move(action)) {}
    const wchar_t* Select(const wchar_t*) override { return m_action(), nullptr; }

private:
    const std::function<void()> m_action;
};

TEST(ChangeResID, SurvivesASelectorThatMisbehaves) {
    const SmallJob job;
    const Engine engine = NewEngine();
    Selector throws([] { throw 1; });
    EXPECT_EQ(engine->Init(job.rules.c_str(), job.texts.c_str(), &throws), 0u);
    EXPECT_EQ(engine->ChangeResID(job.texts.c_str(), &throws), kTextsAnswer);
    EXPECT_EQ(NamesOf(*engine), L"A;U;B;");
    Selector enumerates([&] { EXPECT_EQ(NamesOf(*engine), L"A;U;B;"); });
    engine->ChangeResID(job.texts.c_str(), &enumerates);
    Selector uninitialises([&] { engine->Uninit(); });
    engine->ChangeResID(job.texts.c_str(), &uninitialises);
    EXPECT_EQ(engine->GetFirstCategory(), nullptr);
}

TEST(AllowedPaths, ArePlainPrefixesThatFoldAToZ) {
    const struct {
        Lines prefixes;
        const wchar_t* path;
        bool allowed;
    } kCases[] = {
        {{}, L"", true},
        {{}, L"Q:\\x", true},
        {{L"C:\\Temp"}, L"c:\\temp\\x", true},
        {{L"C:\\Temp"}, L"C:\\TempFiles", true},
        {{L"C:\\Temp"}, L"C:\\Tem", false},
        {{L"C:\\Temp\\"}, L"C:\\Temp", false},
        {{L"C:\\Temp"}, L"D:\\Temp", false},
        {{L"C:\\Ä"}, L"c:\\Äb", true},
        {{L"C:\\Ä"}, L"C:\\äb", false},
        {{L"C:\\["}, L"C:\\{", false},
        {{L"C:\\Temp", L"D:"}, L"d:\\", true},
        {{L""}, L"Q:\\", true},
    };
    const Engine engine = NewEngine();
    for (const auto& test : kCases) {
        engine->ClearAllowedPaths();
        for (const std::wstring& prefix : test.prefixes)
            engine->AddAllowedPath(prefix.c_str());
        EXPECT_EQ(engine->IsPathAllowed(test.path), test.allowed) << test.path;
    }
    engine->ClearAllowedPaths();
    engine->AddAllowedPath(nullptr);
    EXPECT_TRUE(engine->IsPathAllowed(L"Q:\\"));
}

// Run by the test below in a process whose name the system has on record as one for Windows XP.
TEST(OldSystem, DISABLED_LoadsItsRules) {
    EXPECT_EQ(GetBuildNumber(), 2600u);
    const SmallJob job;
    const Engine engine = NewEngine();
    const std::string xml =
        "<R><AppCategoryInfo Name='a'><AppInfo Name='b'><GarbageCatagory Name='c'><GarbageInfo Path='new'/>"
        "<XP><GarbageInfo Path='old'/><GarbageInfo "
        "Path='older'/></XP></GarbageCatagory></AppInfo></AppCategoryInfo></R>";
    EXPECT_EQ(engine->Init(job.folder.Write(L"xp.xml", xml).c_str(), L"", nullptr), 0u);
    const auto rules = ChildrenOf(*ChildrenOf(*ChildrenOf(*ChildrenOf(*engine)[0])[0])[0]);
    EXPECT_EQ(rules.size(), 2u);
}

TEST(OldSystem, LoadsItsRulesOnBuild2600) {
    const TempFolder folder;
    const std::wstring name = L"dswxp" + std::to_wstring(GetCurrentProcessId()) + L".exe", copy = folder / name;
    const std::wstring key = L"Software\\Wine\\AppDefaults\\" + name;
    wchar_t self[MAX_PATH];
    GetModuleFileNameW(nullptr, self, MAX_PATH);
    ASSERT_TRUE(CopyFileW(self, copy.c_str(), FALSE));
    ASSERT_EQ(RegSetKeyValueW(HKEY_CURRENT_USER, key.c_str(), L"Version", REG_SZ, L"winxp", 12), ERROR_SUCCESS);
    EXPECT_EQ(_wspawnl(_P_WAIT, copy.c_str(), name.c_str(), L"--gtest_also_run_disabled_tests",
                       L"--gtest_filter=OldSystem.DISABLED_*", nullptr),
              0);
    RegDeleteKeyW(HKEY_CURRENT_USER, key.c_str());
}
