#include "dregsweep/dregsweep.h"
#include "sysservices/privilegecontext.h"
#include "tests/tree/treenode.h"

class TreeVolume : public testing::Test {
protected:
    // An engine in upgrade mode sets this up for the life of the process.
    static void SetUpTestSuite() { EnablePrivileges(RestoreContext()); }

    // "TOTAL SIZE/PENDING SIZE TOTAL COUNT/PENDING COUNT" of the rule, ... , the category, the engine.
    std::vector<std::string> Totals() const {
        std::vector<std::string> all;
        for (CGarbageVolume* node :
             {static_cast<CGarbageVolume*>(&m_category.Rule()), static_cast<CGarbageVolume*>(&m_category.Garbage()),
              static_cast<CGarbageVolume*>(&m_category.App()), static_cast<CGarbageVolume*>(&*m_category),
              static_cast<CGarbageVolume*>(m_engine.get())})
            all.push_back(std::to_string(static_cast<int64_t>(node->GetTotalSize())) + "/"
                          + std::to_string(static_cast<int64_t>(node->GetPendingSize())) + " "
                          + std::to_string(node->GetTotalCount()) + "/" + std::to_string(node->GetPendingCount()));
        return all;
    }
    std::vector<uint32_t> Stages() const {
        return {m_category.Rule().GetExtraCount(), m_category.Garbage().GetExtraCount(),
                m_category.App().GetExtraCount(), m_category->GetExtraCount()};
    }

    static constexpr const char* kTree =
        "<A Name='A' SelState='2'><AppInfo Name='B'><GarbageCatagory Name='C'><GarbageInfo Path=''/></GarbageCatagory>"
        "</AppInfo></A>";
    const uint64_t m_hundred = 100, m_more = 300;
    const CReference<CDregsweep> m_engine{new CDregsweep(/*upgradeMode=*/true)};
    const Category m_category{kTree, m_engine.get(), m_engine.get()};
};

TEST_F(TreeVolume, GrowsAndShrinksAtEveryLevel) {
    CGarbageInfo& rule = m_category.Rule();
    EXPECT_TRUE(rule.ReportFound(L"x", &m_hundred, 0) && rule.ReportFound(L"x", &m_hundred, 0));
    EXPECT_THAT(Totals(), testing::Each("200/200 2/2"));
    EXPECT_TRUE(rule.ReportEmptied(L"x", &m_more, 0, false, 9));
    EXPECT_THAT(Totals(), testing::Each("200/200 2/2"));
    EXPECT_TRUE(rule.ReportEmptied(L"x", &m_hundred, 0, true, 1));
    EXPECT_THAT(Totals(), testing::Each("100/100 1/1"));
    EXPECT_TRUE(rule.ReportEmptied(L"x", &m_more, 0, true, 2));
    EXPECT_THAT(Totals(), testing::Each("0/0 0/0"));
    m_category.Garbage().ReportFound(L"x", &m_hundred, 0);
    m_category.Garbage().ResetPending();
    const std::string own = "100/100 1/1", wrapped = "-200/-200 1/1";
    EXPECT_THAT(Totals(), testing::ElementsAre("0/0 0/0", "100/0 1/0", own, own, own));
    m_category.App().SubtractVolume(&m_more);
    EXPECT_THAT(Totals(), testing::ElementsAre("0/0 0/0", "100/0 1/0", wrapped, wrapped, wrapped));
    m_category.App().ResetAll();
    EXPECT_THAT(Totals(), testing::ElementsAre("0/0 0/0", "0/0 0/0", "0/0 0/0", wrapped, wrapped));
}

TEST_F(TreeVolume, DiscardTakesAnApplicationOutOfTheJob) {
    m_category.Rule().ReportFound(L"x", &m_hundred, 0);
    m_category->ReportFound(L"of another application", &m_hundred, 0);
    EXPECT_TRUE(m_category.App().Discard());
    EXPECT_THAT(Totals(), testing::ElementsAre("0/0 0/0", "0/0 0/0", "0/0 0/0", "100/100 2/2", "100/100 2/2"));
}

TEST_F(TreeVolume, QuestionsReachTheTop) {
    m_engine->AddAllowedPath(L"C:\\Temp");
    EXPECT_TRUE(m_category.Rule().QueryPathAllowed(L"c:\\tEMPfiles", true));
    EXPECT_FALSE(m_category.Rule().QueryPathAllowed(L"C:\\", false));
    EXPECT_TRUE(m_category.Rule().QueryUpgradeMode());
    const Category alone(kTree);
    EXPECT_FALSE(alone.Rule().QueryUpgradeMode());
    EXPECT_TRUE(alone.Rule().QueryPathAllowed(L"Q:\\", true) && alone.Rule().ReportFound(L"x", &m_more, 0));
    EXPECT_TRUE(alone.Rule().ReportProgress(0, 1) && alone.Garbage().HostNotify1(1) && alone->HostNotify3(1));
}

TEST_F(TreeVolume, StageAdvancesByTwoPerRunUpToFive) {
    EXPECT_TRUE(m_category->RunGather());
    EXPECT_THAT(Stages(), testing::Each(0u)) << "nobody is marked";
    m_category->Mark(1);
    for (const uint32_t stage : {2u, 4u, 5u, 5u}) {
        EXPECT_TRUE(m_category->RunGather());
        EXPECT_THAT(Stages(), testing::Each(stage));
    }
    m_category->SetStage(3);
    m_category->Mark(1);
    EXPECT_THAT(Stages(), testing::Each(3u)) << "a mark keeps the stage";
    EXPECT_TRUE(m_category->RunClean());
    EXPECT_THAT(Stages(), testing::Each(5u));
    m_category->Reset();
    EXPECT_THAT(Stages(), testing::Each(0u));
    m_category.App().SetState(0);
    EXPECT_TRUE(m_category.App().RunGather() && m_category.App().RunClean());
    EXPECT_THAT(Stages(), testing::Each(0u)) << "marked, but not selected any more";
}
