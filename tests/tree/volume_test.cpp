#include "dregsweep/dregsweep.h"
#include "tests/tree/treenode.h"

class TreeVolume : public testing::Test {
protected:
    // "TOTAL SIZE/PENDING SIZE TOTAL COUNT/PENDING COUNT" of each level, bottom up; the engine last.
    std::vector<std::string> Totals() const {
        std::vector<std::string> all;
        for (CGarbageVolume* node : std::initializer_list<CGarbageVolume*>{
                 &m_category.Rule(), &m_category.Garbage(), &m_category.App(), &*m_category, m_engine.get()})
            all.push_back(std::to_string(static_cast<int64_t>(node->GetTotalSize())) + "/"
                          + std::to_string(static_cast<int64_t>(node->GetPendingSize())) + " "
                          + std::to_string(node->GetTotalCount()) + "/" + std::to_string(node->GetPendingCount()));
        return all;
    }
    static constexpr const char* kTree =
        "<A Name='A' SelState='2'><AppInfo Name='B'><GarbageCatagory Name='C'><GarbageInfo Path=''/></GarbageCatagory>"
        "</AppInfo></A>";
    const uint64_t m_hundred = 100, m_more = 300;
    const CReference<CDregsweep> m_engine{new CDregsweep(/*upgradeMode=*/false)};
    const Category m_category{kTree, m_engine.get(), m_engine.get()};
};

TEST_F(TreeVolume, GrowsAndShrinksAtEveryLevel) {
    CGarbageInfo& rule = m_category.Rule();
    EXPECT_TRUE(rule.ReportFound(L"x", &m_hundred, 0) && rule.ReportFound(L"x", &m_hundred, 0));
    EXPECT_THAT(Totals(), testing::Each("200/200 2/2"));
    EXPECT_TRUE(rule.ReportEmptied(L"x", &m_more, 0, false, 9) && rule.ReportEmptied(L"x", &m_hundred, 0, true, 1));
    EXPECT_THAT(Totals(), testing::Each("100/100 1/1"));
    EXPECT_TRUE(rule.ReportEmptied(L"x", &m_more, 0, true, 2));
    EXPECT_THAT(Totals(), testing::Each("0/0 0/0"));
    m_category.Garbage().ReportFound(L"x", &m_hundred, 0);
    m_category.Garbage().ResetPending();
    const std::string own = "100/100 1/1", wrapped = "-200/-200 1/1";
    EXPECT_THAT(Totals(), testing::ElementsAre("0/0 0/0", "100/0 1/0", own, own, own));
    m_category.App().SubtractVolume(&m_more);
    EXPECT_THAT(Totals(), testing::ElementsAre("0/0 0/0", "100/0 1/0", wrapped, wrapped, wrapped));
    EXPECT_TRUE(m_category.App().Discard());
    EXPECT_THAT(Totals(), testing::ElementsAre("0/0 0/0", "0/0 0/0", "0/0 0/0", "0/0 1/1", "0/0 1/1"));
}
