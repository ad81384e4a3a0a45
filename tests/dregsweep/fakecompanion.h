#pragma once

#include <cstdint>

// What fake_companion.dll, under whatever name it was loaded, was asked for; exported as g_record.
struct FakeCompanionRecord {
    uint32_t factoryCalls;  // of GetTolvane: the first answers null, the second throws
    uint32_t events[8];
    uint32_t eventCount;
    uint32_t starts;          // the first answers kStartCode, the others throw, which counts as ready
    uint32_t runs;            // told by BeginRun: the first throws
    uint32_t alive;           // companion objects
    void (*onLastRelease)();  // may be null; then the release throws
};

inline constexpr uint64_t kStartCode = 0x123456789A;
