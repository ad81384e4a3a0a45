#include <gmock/gmock.h>

#include "tests/support/allocguard.h"
#include "tests/support/tracerecorder.h"

namespace {

// Fails every test that ends with more allocations alive than it began with.
class LeakListener : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo&) override {
        TakeTraceLines();
        m_liveAtStart = alloc_guard::Live();
    }
    void OnTestEnd(const testing::TestInfo& info) override {
        TakeTraceLines();
        // The recorded failure or skip itself keeps allocations alive.
        if (info.result()->Failed() || info.result()->Skipped()) return;
        // A test that runs out of memory inside a library which leaks then says so with RecordProperty.
        if (info.result()->test_property_count() > 0) return;
        const long long leaked = alloc_guard::Live() - m_liveAtStart;
        if (leaked > 0) ADD_FAILURE() << leaked << " allocations leaked";
    }
    long long m_liveAtStart = 0;
};

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    testing::UnitTest::GetInstance()->listeners().Append(new LeakListener);
    return RUN_ALL_TESTS();
}
