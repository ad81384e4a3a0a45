#include "tests/dregsweep/engine.h"
#include "tests/support/iatpatch.h"

namespace {

using VisitorAction = std::function<void()>;

class Visitor final : public IGarbageInfo::IVisitor {
public:
    explicit Visitor(VisitorAction action) : m_action(std::move(action)) {}
    void OnItem(const wchar_t* path, uint64_t, IGarbageInfo*) override {
        m_seen += path;
        if (m_action) m_action();
        m_seen += path;  // valid until here
    }

private:
    const VisitorAction m_action;
    std::wstring m_seen;
};

// Calls visit(node) for every node below the engine.
template <class Visit>
void EachNode(CDregsweep& engine, Visit visit) {
    for (const auto& category : ChildrenOf(engine)) {
        visit(*category);
        for (const auto& app : ChildrenOf(*category)) {
            visit(*app);
            for (const auto& garbage : ChildrenOf(*app)) {
                visit(*garbage);
                for (const auto& rule : ChildrenOf(*garbage))
                    visit(*rule);
            }
        }
    }
}

void EnumerateFound(CDregsweep& engine, const VisitorAction& action = {}) {
    EachNode(engine, [&action](auto& node) {
        if constexpr (requires { node.EnumFound(nullptr); }) {
            Visitor visitor(action);
            node.EnumFound(nullptr);
            node.EnumFound(&visitor);
        }
    });
}

// What a host may do in a notification, on the engine's own thread.
using E = CDregsweep;
using J = const SmallJob;
const struct Action {
    const char* name;
    void (*act)(E& engine, J& job);
} kActions[] = {
    {"Enumerates", [](E& engine, J&) { EnumerateFound(engine); }},
    {"TogglesTwice", [](E& engine, J&) { EachNode(engine, [](auto& node) { node.Toggle(), node.Toggle(); }); }},
    {"Discards", [](E& engine, J&) { ChildrenOf(*ChildrenOf(engine).at(0)).at(0)->Discard(); }},
    {"ClearsTotals", [](E& engine, J&) { engine.ClearTotals(); }},
    {"ChangesNames", [](E& engine, J& job) { engine.ChangeResID(job.texts.c_str(), nullptr); }},
    {"GathersAnew", [](E& engine, J&) { engine.Gather(nullptr); }},
    {"Cleans", [](E& engine, J&) { engine.Clean(nullptr); }},
    {"GathersAndCleans", [](E& engine, J&) { engine.Gather(nullptr), engine.Clean(nullptr); }},
    {"Uninitialises", [](E& engine, J&) { engine.Uninit(); }},
    {"InitialisesAnew",
     [](E& engine, J& job) { engine.Uninit(), engine.Init(job.rules.c_str(), job.texts.c_str(), nullptr); }},
    {"GathersFromTheEnumeration", [](E& engine, J&) { EnumerateFound(engine, [&] { engine.Gather(nullptr); }); }},
    {"CleansFromTheEnumeration", [](E& engine, J&) { EnumerateFound(engine, [&] { engine.Clean(nullptr); }); }},
    {"UninitialisesFromTheEnumeration", [](E& engine, J&) { EnumerateFound(engine, [&] { engine.Uninit(); }); }},
    {"ThrowsFromTheEnumeration", [](E& engine, J&) { EnumerateFound(engine, [] { throw 1; }); }},
};

}  // namespace

class HostThat : public testing::TestWithParam<Action> {};

// At each notification of both runs in turn.
TEST_P(HostThat, LeavesNothingDangling) {
    const SmallJob job;
    for (const bool inClean : {false, true}) {
        for (size_t n = 0; n < SmallJob::kNotifications; ++n) {
            job.Seed();
            const Engine engine = NewEngine(job);
            RecordingHost host({}, [&](size_t i) {
                if (i == n) GetParam().act(*engine, job);
                return true;
            });
            EXPECT_TRUE(engine->Gather(inClean ? nullptr : &host));
            EXPECT_TRUE(engine->Clean(inClean ? &host : nullptr));
            EXPECT_TRUE(job.HasBystander());
            TakeTraceLines();
        }
    }
}

INSTANTIATE_TEST_SUITE_P(InANotification, HostThat, testing::ValuesIn(kActions),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(HostThatReleasesTheEngine, InANotificationSeesTheRunThrough) {
    const SmallJob job;
    const long long live = alloc_guard::Live();
    for (const bool clean : {false, true}) {
        for (const bool uninit : {false, true}) {
            for (size_t n = 0; n < SmallJob::kNotifications; ++n) {
                job.Seed();
                auto* engine = new CDregsweep(false);
                ASSERT_EQ(engine->Init(job.rules.c_str(), job.texts.c_str(), nullptr), 0u);
                RecordingHost host({}, [&](size_t i) {
                    if (i == n && uninit) engine->Uninit();
                    if (i == n) engine->Release();
                    return true;
                });
                if (clean) engine->Gather(nullptr);
                EXPECT_TRUE(clean ? engine->Clean(&host) : engine->Gather(&host));
                TakeTraceLines();
            }
        }
    }
    EXPECT_EQ(alloc_guard::Live(), live);
}

// As the notifications' header says: the run ends at the next node, at the latest after the rule in hand.
TEST(HostThatUninitialises, EndsTheRunAtTheNextNode) {
    const SmallJob job;
    for (size_t n = 0; n < SmallJob::kNotifications; ++n) {
        const Engine engine = NewEngine(job);
        RecordingHost host(job.folder.path(), [&](size_t i) {
            if (i == n) engine->Uninit();
            return true;
        });
        EXPECT_TRUE(engine->Gather(&host));
        EXPECT_LE(host.lines.size(), n + 3) << n << ", last " << WideToUtf8(host.lines.back());
        TakeTraceLines();
    }
}

TEST(NestedRun, BringsTheOuterCallbackBack) {
    const SmallJob job;
    const Engine engine = NewEngine(job);
    RecordingHost inner(job.folder.path());
    RecordingHost outer(job.folder.path(), [&](size_t i) { return i != 0 || engine->Gather(&inner); });
    EXPECT_TRUE(engine->Gather(&outer));
    EXPECT_EQ(inner.lines, SmallJob::Expected(false));
    EXPECT_GT(outer.lines.size(), SmallJob::kFirstOfLastCategory);
    EXPECT_TRUE(engine->HostNotify1(1)) << "nobody to ask any more";
}

// The process-wide list of programs goes with any engine; the host's own files stay protected.
TEST(HostThatReleasesAnotherEngine, KeepsItsOwnFiles) {
    static std::wstring hostFile;
    const SmallJob job;
    hostFile = job.folder / L"b\\host.exe";
    const auto tellHostFile = [](HMODULE, LPWSTR buffer, DWORD) {
        return static_cast<DWORD>(hostFile.copy(buffer, hostFile.size()));
    };
    using Function = DWORD(WINAPI*)(HMODULE, LPWSTR, DWORD);
    const IatPatch patch(nullptr, "kernel32.dll", "GetModuleFileNameW",
                         reinterpret_cast<const void*>(static_cast<Function>(tellHostFile)));
    ASSERT_TRUE(patch.ok());
    const char* xml =
        "<R><AppCategoryInfo Name='a' SelState='2'><AppInfo Name='b'><GarbageCatagory Name='c'><GarbageInfo "
        "FolderEnvDir='DSW_JOB' Path='' IsFolder='1' Iteration='1'/></GarbageCatagory></AppInfo></AppCategoryInfo></R>";
    for (const bool releases : {false, true}) {
        job.Seed();
        const Engine engine = NewEngine();
        ASSERT_EQ(engine->Init(job.folder.Write(L"host.xml", xml).c_str(), L"", nullptr), 0u);
        RecordingHost host(job.folder.path(), [releases](size_t) { return !releases || NewEngine(); });
        EXPECT_TRUE(engine->Gather(&host) && engine->Clean(&host));
        EXPECT_EQ(host.With(L"emptied a\\").size(), 2u) << releases;
        EXPECT_EQ(host.With(L"emptied b\\").size(), 0u) << releases;
        EXPECT_TRUE(job.folder.Has(L"b\\3.log"));
    }
    std::wstring().swap(hostFile);  // no allocation stays
}
