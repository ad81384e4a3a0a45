#include <thread>

#include "tests/dregsweep/engine.h"

// Two engines on two threads: one is cancelled, the other released and emptied in its own callback, at places that move
// from round to round.
TEST(TwoEngines, AThousandRoundsDoNotDisturbEachOther) {
    const SmallJob job;
    const size_t inGather = SmallJob::Expected(false).size();
    NewEngine(job);
    TakeTraceLines();
    const long long live = alloc_guard::Live();
    for (size_t round = 0; round < 1000; ++round) {
        Engine cancelled = NewEngine(job), released = NewEngine(job);
        RecordingHost canceller(job.folder.path(), [&](size_t i) { return i != round % inGather; });
        RecordingHost releaser(job.folder.path(), [&](size_t i) {
            if (i == round / 7 % inGather) released->Uninit(), released = {};
            return true;
        });
        std::thread other([&] { EXPECT_FALSE(cancelled->Gather(&canceller)); });
        EXPECT_TRUE(released->Gather(&releaser));
        other.join();
        EXPECT_FALSE(released);
        Lines expected = SmallJob::Expected(false);
        expected.resize(round % inGather + 1);
        EXPECT_EQ(canceller.lines, expected);
        // What the cancelled one found, and nothing else, goes when the other's thread cleans.
        if (round % 10 == 0) {
            std::thread([&] { EXPECT_TRUE(cancelled->Clean(nullptr)); }).join();
            EXPECT_EQ(job.FilesLeft(), 4 - static_cast<ptrdiff_t>(canceller.Of(L'f').size()));
            job.Seed();
        }
        EXPECT_TRUE(job.HasBystander() && job.FilesLeft() == 4);
        cancelled = {};
        canceller.lines = releaser.lines = expected = {};
        TakeTraceLines();
        ASSERT_FALSE(HasFailure()) << round;
    }
    EXPECT_EQ(alloc_guard::Live(), live);
}
