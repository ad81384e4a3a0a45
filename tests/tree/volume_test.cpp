#include "dregsweep/dregsweep.h"
#include "tests/tree/treenode.h"

namespace {

constexpr const char* kTree =
    "<A Name='A' SelState='2'><AppInfo Name='B' InBuildProgram='1'><GarbageCatagory Name='C'>"
    "<GarbageInfo Path=''/></GarbageCatagory></AppInfo></A>";

struct Totals {
    uint64_t size, pendingSize;
    uint32_t count, pendingCount;
    bool operator==(const Totals&) const = default;
};

void PrintTo(const Totals& totals, std::ostream* out) {
    *out << totals.size << "/" << totals.pendingSize << " bytes " << totals.count << "/" << totals.pendingCount;
}

Totals TotalsOf(CGarbageVolume& node) {
    return {node.GetTotalSize(), node.GetPendingSize(), node.GetTotalCount(), node.GetPendingCount()};
}

}  // namespace

class TreeVolume : public testing::Test {
protected:
    // Bottom up, the engine last.
    std::vector<CGarbageVolume*> Levels() {
        return {&m_category.Rule(), &m_category.Garbage(), &m_category.App(), &*m_category, m_engine.get()};
    }
    void ExpectAll(const Totals& totals) {
        for (CGarbageVolume* level : Levels())
            EXPECT_EQ(TotalsOf(*level), totals);
    }

    CReference<CDregsweep> m_engine{new CDregsweep(false)};
    Category m_category{kTree, m_engine.get(), m_engine.get()};
};

TEST_F(TreeVolume, GrowsAndShrinksAtEveryLevel) {
    const uint64_t size[] = {100, 7};  // the second element is never looked at
    EXPECT_TRUE(m_category.Rule().ReportFound(L"x", size, 0));
    EXPECT_TRUE(m_category.Rule().ReportFound(L"x", size, 0));
    ExpectAll({200, 200, 2, 2});
    const uint64_t more = 300;
    EXPECT_TRUE(m_category.Rule().ReportEmptied(L"x", &more, 0, false, 9));
    ExpectAll({200, 200, 2, 2});
    EXPECT_TRUE(m_category.Rule().ReportEmptied(L"x", size, 0, true, 1));
    ExpectAll({100, 100, 1, 1});
    EXPECT_TRUE(m_category.Rule().ReportEmptied(L"x", &more, 0, true, 2));
    ExpectAll({0, 0, 0, 0});
    m_category.Garbage().ReportFound(L"x", size, 0);
    EXPECT_EQ(TotalsOf(m_category.Rule()), (Totals{0, 0, 0, 0}));
    m_category.Garbage().ResetPending();
    EXPECT_EQ(TotalsOf(m_category.Garbage()), (Totals{100, 0, 1, 0}));
    EXPECT_EQ(TotalsOf(m_category.App()), (Totals{100, 100, 1, 1}));
}

TEST_F(TreeVolume, SubtractWrapsAndKeepsTheCounts) {
    const uint64_t found = 100, more = 150;
    m_category.Rule().ReportFound(L"x", &found, 0);
    m_category.App().SubtractVolume(&more);
    for (CGarbageVolume* above : {Levels()[2], Levels()[3], Levels()[4]})
        EXPECT_EQ(TotalsOf(*above), (Totals{found - more, found - more, 1, 1}));
    EXPECT_EQ(TotalsOf(*Levels()[1]), (Totals{100, 100, 1, 1})) << "below";
}

TEST_F(TreeVolume, DiscardTakesAnApplicationOutOfTheJob) {
    const uint64_t size = 100;
    m_category.Rule().ReportFound(L"x", &size, 0);
    m_category->ReportFound(L"of another application", &size, 0);
    EXPECT_TRUE(m_category.App().Discard());
    for (CGarbageVolume* own : {Levels()[0], Levels()[1], Levels()[2]})
        EXPECT_EQ(TotalsOf(*own), (Totals{0, 0, 0, 0}));
    for (CGarbageVolume* above : {Levels()[3], Levels()[4]})
        EXPECT_EQ(TotalsOf(*above), (Totals{100, 100, 2, 2}));
}

TEST_F(TreeVolume, QuestionsReachTheTop) {
    m_engine->AddAllowedPath(L"C:\\Temp");
    EXPECT_TRUE(m_category.Rule().QueryPathAllowed(L"c:\\tEMPfiles", true));
    EXPECT_FALSE(m_category.Rule().QueryPathAllowed(L"C:\\", false));
    EXPECT_FALSE(m_category.Rule().QueryUpgradeMode());
    const CReference upgrade(new CDregsweep(true));
    EXPECT_TRUE(Category(kTree, upgrade.get(), upgrade.get()).Rule().QueryUpgradeMode());
}

TEST(TreeVolumeAlone, AnswersItself) {
    const Category category(kTree);
    const uint64_t size = 5;
    EXPECT_FALSE(category.Rule().QueryUpgradeMode());
    EXPECT_TRUE(category.Rule().QueryPathAllowed(L"Q:\\", true));
    EXPECT_TRUE(category.Rule().ReportProgress(0, 1));
    EXPECT_TRUE(category.Rule().ReportFound(L"x", &size, 0));
    EXPECT_TRUE(category.Rule().ReportEmptied(L"x", &size, 0, true, 1));
    EXPECT_TRUE(category.Garbage().HostNotify1(1) && category.App().HostNotify2(1) && category->HostNotify3(1));
}

TEST(TreeStage, AdvancesByTwoPerRunUpToFive) {
    const Category category(kTree);
    const auto stages = [&] {
        return std::vector<uint32_t>{category.Rule().GetExtraCount(), category.Garbage().GetExtraCount(),
                                     category.App().GetExtraCount(), category->GetExtraCount()};
    };
    EXPECT_TRUE(category->RunGather());
    EXPECT_THAT(stages(), testing::Each(0u)) << "nobody is marked";
    category->Mark(1);
    for (const uint32_t stage : {2u, 4u, 5u, 5u}) {
        EXPECT_TRUE(category->RunGather());
        EXPECT_THAT(stages(), testing::Each(stage));
    }
    category->SetStage(3);
    category->Mark(1);
    EXPECT_THAT(stages(), testing::Each(3u)) << "a mark keeps the stage";
    EXPECT_TRUE(category->RunClean());
    EXPECT_THAT(stages(), testing::Each(5u));
    category->Reset();
    EXPECT_THAT(stages(), testing::Each(0u));
    category.App().SetState(0);
    EXPECT_TRUE(category.App().RunGather() && category.App().RunClean());
    EXPECT_THAT(stages(), testing::Each(0u)) << "marked, but not selected any more";
}
