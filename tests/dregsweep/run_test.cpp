#include <atomic>
#include <stdexcept>
#include <thread>

#include "tests/dregsweep/engine.h"

using testing::ElementsAreArray;
using testing::IsEmpty;

namespace {

using RunOf = bool (CDregsweep::*)(IDregsweepCallback*);

// Of the items in "found PATH SIZE ..." lines.
uint64_t SumOf(const Lines& lines) {
    uint64_t sum = 0;
    for (const std::wstring& line : lines)
        sum += std::stoull(line.substr(line.find(L' ', line.find(L' ') + 1)));
    return sum;
}

Lines FirstOf(const Lines& lines, size_t count) {
    return {lines.begin(), lines.begin() + static_cast<ptrdiff_t>(count)};
}

std::wstring CancelTrace(const std::wstring& line) {
    const wchar_t* where = iswdigit(line[0])        ? L"process step notify"
                           : line.starts_with(L"p") ? L"process notify"
                           : line.starts_with(L"f") ? L"gather proc"
                                                    : L"empty proc";
    return std::wstring(L"[Dregsweep]User cancel in ") + where + L"!,dregsweep.cpp,#";
}

const Lines kCleanTraces = {L"[Dregsweep] ------ start garbage clear proc ------",
                            L"[Dregsweep] ------ end garbage clear proc ------"};

std::string CategoriesXml(const std::string& states, const std::string& content = "") {
    std::string xml = "<R>";
    for (const char state : states)
        xml += std::string("<AppCategoryInfo Name='c' SelState='") + state + "'>" + content + "</AppCategoryInfo>";
    return xml + "</R>";
}

Engine EngineOf(const TempFolder& folder, const std::string& xml) {
    Engine engine = NewEngine();
    EXPECT_EQ(engine->Init(folder.Write(L"rules.xml", xml).c_str(), L"", nullptr), 0u);
    TakeTraces();
    return engine;
}

}  // namespace

TEST(Run, NotifiesInOrderAndKeepsTotals) {
    const SmallJob job;
    const Engine engine = NewEngine(job);
    EXPECT_TRUE(engine->Clean(nullptr)) << "nothing is marked yet";
    EXPECT_TRUE(job.HasRegistryValue());
    TakeTraces();
    for (int round = 0; round < 2; ++round) {
        RecordingHost gather(job.folder.path());
        EXPECT_TRUE(engine->Gather(&gather));
        EXPECT_THAT(gather.lines, ElementsAreArray(SmallJob::Expected(false)));
        EXPECT_EQ(engine->GetTotalSize(), SmallJob::kTotalSize);
        EXPECT_EQ(engine->GetPendingCount(), 4u);
    }
    EXPECT_THAT(TakeTraces(), IsEmpty());
    EXPECT_EQ(job.FilesLeft(), 4u);
    RecordingHost clean(job.folder.path());
    EXPECT_TRUE(engine->Clean(&clean));
    EXPECT_THAT(clean.lines, ElementsAreArray(SmallJob::Expected(true)));
    EXPECT_EQ(TakeTraces(), kCleanTraces);
    EXPECT_EQ(engine->GetTotalSize() + engine->GetPendingSize() + engine->GetTotalCount(), 0u);
    EXPECT_EQ(job.FilesLeft(), 0u);
    EXPECT_FALSE(job.HasRegistryValue());
    EXPECT_TRUE(job.HasBystander());
}

TEST(Run, SplitsTheScaleAmongTheSelectedCategories) {
    const struct {
        const char* states;
        Lines ranges;
    } kCases[] = {
        {"2", {L"0-100"}},
        {"22", {L"0-50", L"50-100"}},
        {"222", {L"0-33", L"33-100", L"66-100"}},
        {"1022", {L"0-33", L"33-100", L"66-100"}},
        {"2222", {L"0-25", L"25-50", L"50-75", L"75-100"}},
        {"222222", {L"0-16", L"16-33", L"33-50", L"50-66", L"66-100", L"83-100"}},
        {"2222222", {L"0-14", L"14-28", L"28-42", L"42-57", L"57-71", L"71-100", L"85-100"}},
        {"2222222222",
         {L"0-10", L"10-20", L"20-30", L"30-40", L"40-50", L"50-60", L"60-70", L"70-80", L"80-90", L"90-100"}},
    };
    const TempFolder folder;
    for (const auto& test : kCases) {
        Lines expected;
        for (const std::wstring& range : test.ranges) {
            expected.push_back(L"progress " + range);
            expected.push_back(L"3 c");
        }
        const Engine engine = EngineOf(folder, CategoriesXml(test.states));
        for (const RunOf run : {&CDregsweep::Gather, &CDregsweep::Clean}) {
            RecordingHost host;
            EXPECT_TRUE((engine.get()->*run)(&host));
            EXPECT_THAT(host.lines, ElementsAreArray(expected)) << test.states;
        }
    }
}

TEST(Run, SplitsANodesRangeWithoutRoundingIt) {
    std::string apps = "<AppInfo Name='a'/><AppInfo Name='off' SelState='0'/><AppInfo Name='a'/><AppInfo Name='a'>";
    for (int i = 0; i < 5; ++i)
        apps += "<GarbageCatagory Name='g'/>";
    const TempFolder folder;
    const Engine engine = EngineOf(folder, CategoriesXml("2", apps + "</AppInfo>"));
    RecordingHost host;
    EXPECT_TRUE(engine->Gather(&host));
    // 66.67 + 100/15 is 73.33; from a range begun at 66 it would be 72.8.
    EXPECT_THAT(host.With(L"progress"),
                testing::ElementsAre(L"progress 0-100", L"progress 0-33", L"progress 33-100", L"progress 66-100",
                                     L"progress 66-73", L"progress 73-80", testing::_, testing::_, testing::_));
}

TEST(Run, ClearsAndPreparesAlsoWhenNothingIsSelected) {
    const SmallJob job;
    const Engine engine = NewEngine(job);
    RecordingHost host(job.folder.path());
    ASSERT_TRUE(engine->Gather(&host));
    const CReference first(engine->GetFirstCategory());
    engine->SetAllChecked(false);
    host.lines.clear();
    EXPECT_TRUE(engine->Clean(&host));
    EXPECT_EQ(first->GetExtraCount(), 3u);
    EXPECT_EQ(engine->GetTotalSize(), SmallJob::kTotalSize);
    EXPECT_TRUE(engine->Gather(&host));
    EXPECT_EQ(first->GetExtraCount(), 0u);
    EXPECT_EQ(engine->GetTotalSize() + first->GetTotalSize(), 0u);
    EXPECT_THAT(host.lines, IsEmpty());
    EXPECT_EQ(job.FilesLeft(), 4u);
    // What was found for it is forgotten: selected again, it has nothing to clean.
    engine->SetAllChecked(true);
    EXPECT_TRUE(engine->Clean(&host));
    EXPECT_EQ(job.FilesLeft(), 4u);
}

TEST(Run, OnAnEngineThatIsNotReadyTouchesNothing) {
    const Engine engine = NewEngine();
    engine->AddFound(5);
    RecordingHost host;
    EXPECT_TRUE(engine->Gather(&host));
    EXPECT_THAT(TakeTraces(), IsEmpty());
    EXPECT_TRUE(engine->Clean(&host));
    EXPECT_EQ(TakeTraces(), kCleanTraces);
    EXPECT_TRUE(engine->HostNotify1(1) && engine->HostNotify2(1) && engine->HostNotify3(1));
    EXPECT_TRUE(engine->ReportProgress(1, 2));
    EXPECT_THAT(host.lines, IsEmpty());
    EXPECT_EQ(engine->GetTotalSize(), 5u);
    EXPECT_TRUE(engine->ResetForGather() && engine->PrepareForClean());
    EXPECT_EQ(engine->SetAllChecked(true) + engine->ClearTotals(), 0u);
}

TEST(Run, SelectsAllThroughToggles) {
    const TempFolder folder;
    const Engine engine = EngineOf(folder, CategoriesXml("012"));
    const auto states = [&] {
        std::vector<uint32_t> all;
        for (const auto& category : ChildrenOf(*engine))
            all.push_back(category->GetState());
        return all;
    };
    engine->SetAllChecked(true);
    EXPECT_THAT(states(), testing::Each(2u));
    engine->AddFound(5);
    engine->ClearTotals();
    EXPECT_THAT(states(), testing::ElementsAre(0u, 1u, 2u)) << "as loaded";
    EXPECT_EQ(engine->GetTotalSize(), 0u);
    engine->SetAllChecked(false);
    EXPECT_THAT(states(), testing::Each(0u));
}

class StoppedRun : public testing::TestWithParam<bool (*)()> {};

TEST_P(StoppedRun, EndsAtThatNotification) {
    const SmallJob job;
    const Lines allGather = SmallJob::Expected(false), allClean = SmallJob::Expected(true);
    for (size_t n = 0; n < allGather.size(); ++n) {
        job.Seed();
        const auto stopAtN = [n](size_t i) { return i != n || GetParam()(); };
        RecordingHost gather(job.folder.path(), stopAtN);
        const Engine engine = NewEngine(job);
        TakeTraces();
        EXPECT_FALSE(engine->Gather(&gather)) << n;
        EXPECT_THAT(gather.lines, ElementsAreArray(FirstOf(allGather, n + 1)));
        EXPECT_EQ(TakeTraces(), Lines{CancelTrace(allGather[n])});
        EXPECT_EQ(engine->GetTotalSize(), SumOf(gather.With(L"found")));
        EXPECT_EQ(engine->GetTotalCount(), gather.With(L"found").size());
        // What the gather did not reach is not cleaned.
        EXPECT_TRUE(engine->Clean(nullptr));
        EXPECT_EQ(job.FilesLeft(), 4 - gather.With(L"found").size());
        EXPECT_EQ(job.HasRegistryValue(), n < SmallJob::kFirstOfLastCategory) << n;

        job.Seed();
        RecordingHost clean(job.folder.path(), stopAtN);
        EXPECT_TRUE(engine->Gather(nullptr));
        TakeTraces();
        EXPECT_FALSE(engine->Clean(&clean)) << n;
        EXPECT_THAT(clean.lines, ElementsAreArray(FirstOf(allClean, n + 1)));
        EXPECT_EQ(TakeTraces(), (Lines{kCleanTraces[0], CancelTrace(allClean[n]), kCleanTraces[1]}));
        EXPECT_EQ(engine->GetTotalSize(), SmallJob::kTotalSize - SumOf(clean.With(L"emptied")));
        EXPECT_EQ(job.FilesLeft(), 4 - clean.With(L"emptied").size());
        EXPECT_TRUE(job.HasRegistryValue());
        EXPECT_TRUE(engine->Gather(nullptr)) << "the next run is whole again";
        EXPECT_TRUE(job.HasBystander());
    }
}

INSTANTIATE_TEST_SUITE_P(Host, StoppedRun,
                         testing::Values([] { return false; }, []() -> bool { throw std::runtime_error("host"); },
                                         []() -> bool { throw 1; }));

TEST(StoppedRunStages, StayAsFarAsTheyGot) {
    const SmallJob job;
    const Lines all = SmallJob::Expected(false);
    const struct {
        const wchar_t* stopAt;
        std::vector<uint32_t> stages;  // of the category, its application, its garbage category, its rule
    } kCases[] = {
        {L"3 A", {1, 0, 0, 0}},  {L"progress 0-25", {2, 1, 0, 0}},        {L"2 A1", {2, 1, 0, 0}},
        {L"1 G1", {2, 2, 1, 0}}, {L"found a\\1.tmp 10 G1", {2, 2, 2, 2}},
    };
    for (const auto& test : kCases) {
        RecordingHost host(job.folder.path(), [&](size_t i) { return all[i] != test.stopAt; });
        const Engine engine = NewEngine(job);
        EXPECT_FALSE(engine->Gather(&host));
        const auto app = std::move(ChildrenOf(*ChildrenOf(*engine)[0])[0]);
        const auto garbage = std::move(ChildrenOf(*app)[0]);
        EXPECT_EQ((std::vector{CReference(engine->GetFirstCategory())->GetExtraCount(), app->GetExtraCount(),
                               garbage->GetExtraCount(), ChildrenOf(*garbage)[0]->GetExtraCount()}),
                  test.stages)
            << WideToUtf8(test.stopAt);
    }
}

TEST(Run, MakesASecondThreadWait) {
    const SmallJob job;
    const Engine engine = NewEngine(job);
    std::atomic<int> entered{0};
    RecordingHost second(job.folder.path(), [&](size_t) { return ++entered > 0; });
    std::thread runner, enumerator;
    RecordingHost first(job.folder.path(), [&](size_t i) {
        if (i == 0) {
            runner = std::thread([&] { EXPECT_TRUE(engine->Gather(&second)); });
            enumerator = std::thread([&] { CReference(engine->GetFirstCategory()), ++entered; });
            Sleep(100);
        }
        EXPECT_EQ(entered, 0) << i;
        return true;
    });
    EXPECT_TRUE(engine->Gather(&first));
    runner.join();
    enumerator.join();
    EXPECT_THAT(first.lines, ElementsAreArray(SmallJob::Expected(false)));
    EXPECT_THAT(second.lines, ElementsAreArray(SmallJob::Expected(false)));
    EXPECT_EQ(engine->GetTotalSize(), SmallJob::kTotalSize);
}
