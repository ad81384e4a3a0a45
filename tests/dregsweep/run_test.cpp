#include <algorithm>
#include <array>
#include <atomic>
#include <set>
#include <thread>

#include "tests/dregsweep/engine.h"

TEST(Run, SplitsTheScale) {
    const struct {
        std::string states;
        const wchar_t* ranges;
        const char* content = "";
    } kCases[] = {
        {"22", L" 0-50 50-100"},
        {"1022", L" 0-33 33-100 66-100"},
        {"2222", L" 0-25 25-50 50-75 75-100"},
        {"222222", L" 0-16 16-33 33-50 50-66 66-100 83-100"},
        {"2222222", L" 0-14 14-28 28-42 42-57 57-71 71-100 85-100"},
        {"2222222222", L" 0-10 10-20 20-30 30-40 40-50 50-60 60-70 70-80 80-90 90-100"},
        // Below the top nothing is rounded: 66.67 + 100/15 is 73.33; from a range begun at 66 it would be 72.8.
        {"2", L" 0-100 0-33 33-100 66-100 66-73 73-80 80-86 86-100 93-100",
         "<AppInfo Name='c'/><AppInfo Name='off' SelState='0'/><AppInfo Name='c'/><AppInfo Name='c'><GarbageCatagory "
         "Name='1'/><GarbageCatagory Name='2'/><GarbageCatagory Name='3'/><GarbageCatagory Name='4'/><GarbageCatagory "
         "Name='5'/></AppInfo>"},
    };
    const TempFolder folder;
    for (const auto& test : kCases) {
        std::string xml;
        for (const char state : test.states)
            xml += "<AppCategoryInfo Name='c' SelState='" + std::string(1, state) + "'>" + test.content
                   + "</AppCategoryInfo>";
        const Engine engine = NewEngine(folder, xml);
        RecordingHost gather, clean;
        EXPECT_TRUE(engine->Gather(&gather) && engine->Clean(&clean));
        EXPECT_EQ(gather.lines, clean.lines);
        std::wstring ranges;
        for (const std::wstring& line : gather.Of(L'p'))
            ranges += line.substr(8);
        EXPECT_EQ(ranges, test.ranges);
    }
}

// Shares are dealt out by the selection at the start: what is selected behind them, by a host that holds the nodes,
// runs off the scale, first above it, and below a node that is there, beneath it.
TEST(Run, StaysOnTheScaleWhenTheSelectionGrowsMeanwhile) {
    const TempFolder folder;
    const std::string garbage = "<GarbageCatagory Name='g'/>";
    const Engine engine = NewEngine(folder,
                                    "<AppCategoryInfo Name='c' SelState='2'><AppInfo Name='a'/><AppInfo Name='b'/>"
                                    "<AppInfo Name='c'>"
                                        + garbage + garbage + garbage + garbage + "</AppInfo></AppCategoryInfo>");
    const auto apps = ChildrenOf(*ChildrenOf(*engine)[0]);
    const auto categories = ChildrenOf(*apps[2]);
    ASSERT_TRUE(engine->Gather(nullptr)) << "from now on all of them take part";
    const auto select = [](const auto& nodes, size_t from, uint32_t state) {
        for (size_t i = from; i < nodes.size(); ++i)
            nodes[i]->SetState(state);
    };
    select(apps, 1, SelectionNone);
    RecordingHost host({}, [&](size_t i) {
        if (host.lines[i] == L"2 a") {
            select(apps, 1, SelectionAll);
            select(categories, 1, SelectionNone);
        }
        if (host.lines[i] == L"1 g") select(categories, 1, SelectionAll);
        return true;
    });
    EXPECT_TRUE(engine->Gather(&host));
    EXPECT_EQ(host.Of(L'p'), Split(L"progress 0-100|progress 0-100|progress 100-100|progress 100-100|progress 100-100|"
                                   L"progress 100-0|progress 0-0|progress 0-0",
                                   L"|"));
}

class RunNotifications : public testing::Test {
protected:
    const SmallJob m_job;
    const Engine m_engine = NewEngine(m_job);
};

TEST_F(RunNotifications, ClearsAndPreparesAlsoWhenNothingIsSelected) {
    RecordingHost host;
    EXPECT_TRUE(m_engine->Clean(nullptr) && m_job.HasRegistryValue()) << "nothing is marked yet";
    const CReference first(m_engine->GetFirstCategory());
    ASSERT_TRUE(m_engine->Gather(nullptr));
    m_engine->SetAllChecked(false);
    EXPECT_EQ(first->GetState(), 0u);
    EXPECT_TRUE(m_engine->Clean(&host));
    EXPECT_EQ(first->GetExtraCount(), 3u);
    EXPECT_EQ(m_engine->GetTotalSize(), SmallJob::kTotalSize);
    EXPECT_TRUE(m_engine->Gather(&host));
    EXPECT_EQ(m_engine->GetTotalSize() + first->GetTotalSize() + first->GetExtraCount() + host.lines.size(), 0u);
    // What was found is forgotten: selected again, there is nothing to clean.
    first->SetState(SelectionPartly);
    m_engine->SetAllChecked(true);
    EXPECT_EQ(first->GetState(), 2u);
    EXPECT_TRUE(m_engine->Clean(nullptr) && m_job.FilesLeft() == 4);
    m_engine->AddFound(5);
    m_engine->ClearTotals();
    EXPECT_EQ(ChildrenOf(*m_engine)[1]->GetState() + m_engine->GetTotalSize(), 0u) << "as loaded";
}

// At every notification of both runs, and at none of them. A host that throws has refused, too.
TEST_F(RunNotifications, EndsAtTheNotificationThatTheHostRefuses) {
    std::set<std::wstring> traces;
    for (const bool inClean : {false, true}) {
        const Lines all = SmallJob::Expected(inClean);
        for (size_t n = 0; n <= all.size(); ++n) {
            m_job.Seed();
            const Engine engine = NewEngine(m_job);
            EXPECT_TRUE(!inClean || (engine->Gather(nullptr) && engine->Gather(nullptr)));
            TakeTraceLines();
            RecordingHost host(m_job.folder.path(), [n](size_t i) { return i != n || (n % 2 ? throw n : false); });
            EXPECT_EQ(inClean ? engine->Clean(&host) : engine->Gather(&host), n == all.size());
            for (const std::wstring& line : TakeTraceLines())
                traces.insert(line.substr(0, line.find(L",")));
            Lines expected = all;
            expected.resize(std::min(n + 1, all.size()));
            EXPECT_EQ(host.lines, expected) << n;
            const auto count = static_cast<uint32_t>(host.Of(inClean ? L'e' : L'f').size());
            const uint64_t size = std::array{0u, 10u, 30u, 35u, 42u}[count];
            EXPECT_EQ(engine->GetTotalSize(), inClean ? SmallJob::kTotalSize - size : size);
            EXPECT_EQ(engine->GetPendingCount(), inClean ? 4 - count : count);
            // What the gather did not reach is not cleaned.
            EXPECT_TRUE(inClean || engine->Clean(nullptr));
            EXPECT_EQ(m_job.FilesLeft(), 4 - count) << n;
            EXPECT_EQ(m_job.HasRegistryValue(), n < (inClean ? all.size() : 18));
            EXPECT_TRUE(m_job.HasBystander());
        }
    }
    const std::wstring cancel = L"[Dregsweep]User cancel in ", clear = L" garbage clear proc ------";
    EXPECT_THAT(traces,
                testing::UnorderedElementsAre(cancel + L"process notify!", cancel + L"gather proc!",
                                              cancel + L"empty proc!", cancel + L"process step notify!",
                                              L"[Dregsweep] ------ start" + clear, L"[Dregsweep] ------ end" + clear));
}

TEST_F(RunNotifications, MakesASecondThreadWait) {
    std::atomic<int> entered{0};
    RecordingHost second(m_job.folder.path(), [&](size_t) { return ++entered > 0; });
    std::thread runner;
    RecordingHost first(m_job.folder.path(), [&](size_t i) {
        if (i == 0) runner = std::thread([&] { EXPECT_TRUE(m_engine->Gather(&second)); });
        if (i == 0) Sleep(100);
        return entered == 0;
    });
    EXPECT_TRUE(m_engine->Gather(&first));
    runner.join();
    EXPECT_EQ(first.lines, SmallJob::Expected(false));
    EXPECT_EQ(second.lines, SmallJob::Expected(false));
    EXPECT_EQ(m_engine->GetTotalSize(), SmallJob::kTotalSize);
}
