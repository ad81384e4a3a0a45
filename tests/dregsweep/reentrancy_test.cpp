#include "tests/dregsweep/engine.h"

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
using Act = void (*)(Engine& engine, J& job);
const Act kActs[] = {
    [](Engine& engine, J&) { Enumerate(*engine, [] { throw 1; }); },
    [](Engine& engine, J&) { ChildrenOf(*ChildrenOf(*engine).at(0)).at(0)->Discard(), engine->ClearTotals(); },
    [](Engine& engine, J& job) { engine->ChangeResID(job.texts.c_str(), nullptr); },
    [](Engine& engine, J&) { engine->Gather(nullptr); },
    [](Engine& engine, J&) { engine->Clean(nullptr); },
    [](Engine& engine, J&) { engine->Uninit(); },
    [](Engine& engine, J& job) { engine->Uninit(), engine->Init(job.rules.c_str(), job.texts.c_str(), nullptr); },
    [](Engine& engine, J&) { engine = {}; },
    [](Engine& engine, J&) { engine->Uninit(), engine = {}; },
    [](Engine& engine, J&) { Enumerate(*engine, [&] { engine->Gather(nullptr); }); },
    [](Engine& engine, J&) { Enumerate(*engine, [&] { engine->Clean(nullptr); }); },
    [](Engine& engine, J&) { Enumerate(*engine, [&] { engine->Uninit(); }); },
};

class HostThat : public testing::TestWithParam<Act> {};

}  // namespace

// At each notification of both runs in turn. What stays behind fails the test, too.
TEST_P(HostThat, LeavesNothingDangling) {
    const SmallJob job;
    for (const bool inClean : {false, true}) {
        for (size_t n = 0; n < SmallJob::Expected(inClean).size(); ++n) {
            job.Seed();
            Engine engine = NewEngine(job);
            RecordingHost host({}, [&](size_t i) {
                if (i == n) GetParam()(engine, job);
                // The run of an engine without categories ends at the next node, at the latest after the rule in hand.
                EXPECT_TRUE(i < n + 3 || !engine || CReference(engine->GetFirstCategory()));
                return true;
            });
            EXPECT_TRUE(engine->Gather(inClean ? nullptr : &host));
            EXPECT_TRUE(!engine || engine->Clean(inClean ? &host : nullptr));
            EXPECT_TRUE(job.HasBystander());
            TakeTraceLines();
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Acts, HostThat, testing::ValuesIn(kActs));

TEST(NestedRun, BringsTheOuterCallbackBack) {
    const SmallJob job;
    const Engine engine = NewEngine(job);
    RecordingHost inner(job.folder.path()), outer({}, [&](size_t i) { return i != 0 || engine->Gather(&inner); });
    EXPECT_TRUE(engine->Gather(&outer) && outer.lines.size() > 18);
    EXPECT_EQ(inner.lines, SmallJob::Expected(false));
    EXPECT_TRUE(engine->HostNotify1(1)) << "nobody to ask any more";
}
