#include "tests/dregsweep/engine.h"
#include "tests/support/iatpatch.h"

namespace {

using Work = std::function<void()>;

struct Visitor final : IGarbageInfo::IVisitor {
    explicit Visitor(Work work) : visit(std::move(work)) {}
    void OnItem(const wchar_t* path, uint64_t, IGarbageInfo*) override {
        const std::wstring before = path;
        visit();
        EXPECT_EQ(path, before) << "valid until here";
    }
    const Work visit;
};

// Toggles every node twice and visits every found item.
template <class Node>
void Enumerate(Node& node, const Work& work) {
    if constexpr (requires { node.Toggle(); }) node.Toggle(), node.Toggle();
    if constexpr (requires { node.EnumFound(nullptr); }) {
        Visitor visitor(work);
        node.EnumFound(&visitor);
    } else {
        for (const auto& child : ChildrenOf(node))
            Enumerate(*child, work);
    }
}

// What a host may do in a notification, on the engine's own thread.
using J = const SmallJob;
struct Act {
    void (*work)(Engine& engine, J& job);
    bool endsRun = false;
};
void PrintTo(const Act&, std::ostream*) {}
const Act kActs[] = {
    {[](Engine& engine, J&) { Enumerate(*engine, [] { throw 1; }); }},
    {[](Engine& engine, J&) { ChildrenOf(*ChildrenOf(*engine).at(0)).at(0)->Discard(), engine->ClearTotals(); }},
    {[](Engine& engine, J& job) { engine->ChangeResID(job.texts.c_str(), nullptr); }},
    {[](Engine& engine, J&) { engine->Gather(nullptr); }},
    {[](Engine& engine, J&) { engine->Clean(nullptr); }},
    {[](Engine& engine, J&) { engine->Uninit(); }, true},
    {[](Engine& engine, J& job) { engine->Uninit(), engine->Init(job.rules.c_str(), job.texts.c_str(), nullptr); },
     true},
    {[](Engine& engine, J&) { engine = {}; }},
    {[](Engine& engine, J&) { engine->Uninit(), engine = {}; }, true},
    {[](Engine& engine, J&) { Enumerate(*engine, [&] { engine->Gather(nullptr); }); }},
    {[](Engine& engine, J&) { Enumerate(*engine, [&] { engine->Clean(nullptr); }); }},
    {[](Engine& engine, J&) { Enumerate(*engine, [&] { engine->Uninit(); }); }},
};

class HostThat : public testing::TestWithParam<Act> {};

// The searches that were begun.
size_t g_searches = 0;
decltype(&FindFirstFileW) g_findFirst;
HANDLE WINAPI CountingFindFirst(const wchar_t* pattern, WIN32_FIND_DATAW* entry) {
    ++g_searches;
    return g_findFirst(pattern, entry);
}

}  // namespace

// At each notification of both runs in turn. What stays behind fails the test, too.
TEST_P(HostThat, LeavesNothingDangling) {
    const SmallJob job;
    const IatPatch patch("FindFirstFileW", &CountingFindFirst);
    g_findFirst = patch.original<decltype(&FindFirstFileW)>();
    for (const bool inClean : {false, true}) {
        for (size_t n = 0; n < SmallJob::Expected(inClean).size(); ++n) {
            job.Seed();
            Engine engine = NewEngine(job);
            RecordingHost host({}, [&](size_t i) {
                EXPECT_TRUE(i <= n || !GetParam().endsRun) << "told of a node that is no longer in the tree";
                if (i == n) GetParam().work(engine, job), g_searches = 0;
                return true;
            });
            EXPECT_TRUE(engine->Gather(inClean ? nullptr : &host));
            EXPECT_TRUE(g_searches == 0 || inClean || !GetParam().endsRun);
            EXPECT_TRUE(!engine || engine->Clean(inClean ? &host : nullptr));
            EXPECT_TRUE(job.HasBystander());
            TakeTraceLines();
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Acts, HostThat, testing::ValuesIn(kActs));

// The one cursor of each node stays where a nested run that was stopped has left it, so that the outer run finds its
// next rule.
TEST(NestedRun, EndsTheScanInHandAndLeavesTheRestToTheOuterRun) {
    const SmallJob job;
    const Engine engine = NewEngine(job.folder, CategoryOf("<GarbageInfo FolderEnvDir='DSW_JOB' Path='a' IsFolder='1'/>"
                                                           "<GarbageInfo FolderEnvDir='DSW_JOB' Path='b\\3.log'/>"));
    const auto isFound = [](const std::wstring& line) { return line[0] == L'f'; };
    RecordingHost inner({}, [&](size_t i) { return !isFound(inner.lines[i]); });
    RecordingHost outer(job.folder.path(), [&](size_t i) {
        return !isFound(outer.lines[i]) || !inner.lines.empty() || !engine->Gather(&inner);
    });
    EXPECT_TRUE(engine->Gather(&outer));
    EXPECT_EQ(outer.Of(L'f'), (Lines{L"found a\\1.tmp 10 G", L"found b\\3.log 5 G"}));
}

TEST(NestedRun, BringsTheOuterCallbackBack) {
    const SmallJob job;
    const Engine engine = NewEngine(job);
    RecordingHost inner(job.folder.path()), outer({}, [&](size_t i) { return i != 0 || engine->Gather(&inner); });
    EXPECT_TRUE(engine->Gather(&outer) && outer.lines.size() > 18);
    EXPECT_EQ(inner.lines, SmallJob::Expected(false));
    EXPECT_TRUE(engine->HostNotify1(1)) << "nobody to ask any more";
}

TEST(EngineLife, EndsBeforeThatOfTheNodesThatTheHostHolds) {
    const SmallJob job;
    Engine engine = NewEngine(job);
    const CReference ofEarlierInit(engine->GetFirstCategory());
    engine->Uninit();
    engine->Init(job.rules.c_str(), job.texts.c_str(), nullptr);
    engine->Gather(nullptr);
    const CReference category(engine->GetFirstCategory());
    const auto rule = std::move(ChildrenOf(*ChildrenOf(*ChildrenOf(*category)[0])[0])[0]);
    engine = {};
    EXPECT_TRUE(!category->GetFirstChild() && category->HostNotify1(0));
    EXPECT_EQ(rule->GetTotalCount(), 2u);
    rule->Toggle();
}
