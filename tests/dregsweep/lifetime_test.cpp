#include "tests/dregsweep/engine.h"

namespace {

using Life = void (*)(const SmallJob& job);
const Life kLives[] = {
    [](const SmallJob& job) {
        const Engine engine = NewEngine(job);
        EXPECT_TRUE(engine->Gather(nullptr) && engine->Clean(nullptr));
        engine->Uninit();
    },
    [](const SmallJob& job) {
        const std::string xml =
            "<R><AppCategoryInfo Name='a'><AppInfo Name='b'/></AppCategoryInfo><AppCategoryInfo Name='c'><AppInfo "
            "Name='d'><GarbageCatagory Name='e'><GarbageInfo Path='x'/></GarbageCatagory><GarbageCatagory/></AppInfo>"
            "</AppCategoryInfo></R>";
        const std::wstring bad = job.folder.Write(L"bad.xml", xml);
        const Engine engine = NewEngine();
        EXPECT_TRUE(engine->Init(bad.c_str(), L"", nullptr) && engine->Init(bad.c_str(), L"", nullptr));
    },
    // The host holds nodes longer than the engine.
    [](const SmallJob& job) {
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
    },
};

}  // namespace

TEST(EngineLife, LeavesNothingBehind) {
    const SmallJob job;
    for (const Life live : kLives) {
        for (int round = 0; round < 50; ++round) {
            const long long before = alloc_guard::Live();
            job.Seed();
            live(job);
            TakeTraceLines();
            ASSERT_EQ(alloc_guard::Live(), before) << round;
        }
    }
}
