#pragma once

#include <cstdint>

// What fake_companion.dll, under whatever name it was loaded, was asked for; its export Recorded answers it.
struct FakeCompanionRecord {
    uint32_t factoryCalls;  // of GetTolvane: the first answers null, the second throws
    uint32_t strayCalls;    // of reserved operations
    uint32_t eventCount;
    uint32_t lastEvent;
    uint32_t runs;
};

inline constexpr uint32_t kEventThatThrows = 0xDEAD;
inline constexpr uint64_t kStartCode = 0x123456789A;
