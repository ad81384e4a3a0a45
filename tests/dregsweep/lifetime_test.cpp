#include <tinyxml.h>

#include "sysservices/nothrow.h"
#include "sysservices/xmldocument.h"
#include "tests/dregsweep/engine.h"

namespace {

using Life = void (*)(const SmallJob& job);

void WithUninit(const SmallJob& job) {
    const Engine engine = NewEngine(job);
    EXPECT_TRUE(engine->Gather(nullptr) && engine->Clean(nullptr));
    engine->Uninit();
}

void WithoutUninit(const SmallJob& job) {
    EXPECT_TRUE(NewEngine(job)->Gather(nullptr));
}

void WithAFailingRuleFile(const SmallJob& job) {
    const std::wstring bad = job.folder.Write(
        L"bad.xml",
        "<R><AppCategoryInfo Name='a'><AppInfo Name='b'/></AppCategoryInfo><AppCategoryInfo Name='c'><AppInfo Name='d'>"
        "<GarbageCatagory Name='e'><GarbageInfo Path='x'/></GarbageCatagory><GarbageCatagory/></AppInfo>"
        "</AppCategoryInfo></R>");
    const Engine engine = NewEngine();
    EXPECT_NE(engine->Init(bad.c_str(), L"", nullptr), 0u);
    EXPECT_NE(engine->Init(bad.c_str(), L"", nullptr), 0u);
}

void WithNodesHeldByTheHost(const SmallJob& job) {
    Engine engine = NewEngine(job);
    engine->Gather(nullptr);
    const CReference category(engine->GetFirstCategory());
    const auto rule = std::move(ChildrenOf(*ChildrenOf(*ChildrenOf(*category)[0])[0])[0]);
    CDregsweep* watched = engine.get();
    engine = Engine();
    EXPECT_EQ(watched->GetFirstCategory(), nullptr) << "alive by the category, but no longer ready";
    EXPECT_STREQ(category->GetInfo()->NameText, L"A");
    EXPECT_EQ(category->GetFirstChild(), nullptr);
    EXPECT_TRUE(category->HostNotify1(0));
    EXPECT_EQ(rule->GetTotalCount(), 2u);
    rule->Toggle();
}

void WithACategoryOfAnEarlierInit(const SmallJob& job) {
    Engine engine = NewEngine(job);
    const CReference category(engine->GetFirstCategory());
    engine->Uninit();
    engine->Init(job.rules.c_str(), job.texts.c_str(), nullptr);
    engine = Engine();
}

}  // namespace

TEST(EngineLife, LeavesNothingBehind) {
    const SmallJob job;
    for (const Life live :
         {WithUninit, WithoutUninit, WithAFailingRuleFile, WithNodesHeldByTheHost, WithACategoryOfAnEarlierInit}) {
        long long before = 0;
        for (int round = 0; round < 50; ++round) {
            job.Seed();
            live(job);
            TakeTraceLines();
            if (round == 0) before = alloc_guard::Live();
            ASSERT_EQ(alloc_guard::Live(), before) << round;
        }
    }
}

// Counts without an allocation of its own.
class CountingHost final : public IDregsweepCallback {
public:
    bool StepNotify1(uint64_t) override { return true; }
    bool StepNotify2(uint64_t) override { return true; }
    bool StepNotify3(uint64_t) override { return true; }
    bool Progress(uint32_t, uint32_t) override { return true; }
    bool FoundItem(const wchar_t*, uint64_t, uint64_t) override { return ++found > 0; }
    bool Reserved() override { return true; }
    bool EmptiedItem(const wchar_t*, uint64_t, uint64_t, bool) override { return ++emptied > 0; }
    int found = 0;
    int emptied = 0;
};

class OutOfMemory : public testing::Test {
protected:
    // Calls work(engine, host) with enough memory for n allocations, for every n until the whole job is done.
    template <class Prepare, class Work>
    void Sweep(Prepare prepare, Work work) {
        CountingHost host;
        for (int n = 0; host.emptied < 4 && n < 20'000; ++n) {
            m_job.Seed();
            host = {};
            const Engine engine = prepare();
            alloc_guard::FailAfter(n);
            work(*engine, host);
            alloc_guard::FailAfter(-1);
            EXPECT_LE(host.emptied, host.found);
            EXPECT_TRUE(m_job.HasBystander());
            TakeTraceLines();
        }
        EXPECT_EQ(host.emptied, 4);
    }
    const SmallJob m_job;
};

TEST_F(OutOfMemory, AtEveryPointOfInit) {
    RecordProperty("leaks", "TinyXML loses what it is parsing");
    Sweep([] { return NewEngine(); },
          [&](CDregsweep& engine, CountingHost& host) {
              engine.Init(m_job.rules.c_str(), m_job.texts.c_str(), nullptr);
              alloc_guard::FailAfter(-1);
              engine.Gather(&host);
              engine.Clean(&host);
          });
}

TEST_F(OutOfMemory, AtEveryPointOfALoad) {
    TiXmlDocument document;
    ASSERT_TRUE(LoadXmlDocument(m_job.rules.c_str(), document));
    const long long live = alloc_guard::Live();
    int failures = 0;
    for (int n = 0; n < 200; ++n) {
        auto* category = new CAppCatagory(nullptr, nullptr);
        alloc_guard::FailAfter(n);
        failures += !NoThrow(false, [&] { return category->LoadXml(document.RootElement()->FirstChildElement()); });
        alloc_guard::FailAfter(-1);
        category->ReleaseContent();
        category->Release();
        ASSERT_EQ(alloc_guard::Live(), live) << n;
    }
    EXPECT_GT(failures, 10);
    EXPECT_LT(failures, 190);
}

TEST_F(OutOfMemory, AtEveryPointOfBothRuns) {
    Sweep([&] { return NewEngine(m_job); },
          [](CDregsweep& engine, CountingHost& host) {
              engine.Gather(&host);
              engine.Clean(&host);
          });
}

TEST_F(OutOfMemory, OfTheOtherOperations) {
    for (int n = 0; n < 3; ++n) {
        const Engine engine = NewEngine(m_job);
        alloc_guard::FailAfter(n);
        engine->AddAllowedPath(L"C:\\a path that does not fit into the object itself");
        engine->SetAllChecked(true);
        engine->ClearTotals();
        CReference(engine->GetFirstCategory())->GetInfo();
        engine->ChangeResID(m_job.texts.c_str(), nullptr);
        engine->Uninit();
        alloc_guard::FailAfter(-1);
    }
}
