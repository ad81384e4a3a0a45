#pragma once

#include <cstdint>

// How far a node has come in a job. A run advances it by one when it starts and by one when it ends, up to the last.
enum GarbageStage : uint32_t {
    StageReset = 0,
    StageGathering = 1,
    StageGathered = 2,
    StageReadyToClean = 3,
    StageCleaning = 4,
    StageCleaned = 5,
};

// What a node and everything below it has found: sizes in bytes, counts in items. Hosts read it through the getters;
// only the thread of a running gather or clean changes it, without a lock, so read it between runs or from a
// notification.
class CGarbageVolume {
public:
    virtual ~CGarbageVolume() = default;
    // Bytes found, less the bytes reported as deleted.
    virtual uint64_t GetTotalSize() noexcept { return TotalSize; }
    // Bytes found and still to be cleaned.
    virtual uint64_t GetPendingSize() noexcept { return PendingSize; }
    // The node's GarbageStage; 0 for the engine.
    virtual uint32_t GetExtraCount() noexcept { return ExtraCount; }
    // Items found, less the items reported as deleted.
    virtual uint32_t GetTotalCount() noexcept { return TotalCount; }
    // Items found and still to be cleaned.
    virtual uint32_t GetPendingCount() noexcept { return PendingCount; }
    // Forgets what is pending; the totals stay as they are.
    virtual void ResetPending() noexcept {
        PendingSize = 0;
        PendingCount = 0;
    }
    // Told of a selection change of the node: whether anything is selected, the new state, null, and true. A hook that
    // does nothing; it keeps its place in the table.
    virtual void OnSelection(bool /*selected*/, uint32_t /*state*/, void* /*reserved*/, bool /*alwaysTrue*/) noexcept {}

    // The engine's own operations on the counters. Hosts do not call these.

    // Zeroes sizes and counts; the stage stays, and the levels above keep theirs.
    void ZeroVolume() noexcept {
        TotalSize = PendingSize = 0;
        TotalCount = PendingCount = 0;
    }
    void AddFound(uint64_t size) noexcept {
        TotalCount += 1;
        TotalSize += size;
        PendingSize += size;
        PendingCount += 1;
    }
    // Never goes below zero: a removal may exceed what was found.
    void TakeEmptied(uint64_t size, uint32_t count) noexcept {
        TotalSize -= size < TotalSize ? size : TotalSize;
        PendingSize -= size < PendingSize ? size : PendingSize;
        TotalCount -= count < TotalCount ? count : TotalCount;
        PendingCount -= count < PendingCount ? count : PendingCount;
    }
    // Wraps below zero and leaves the counts alone, unlike TakeEmptied.
    void SubtractSize(uint64_t size) noexcept {
        TotalSize -= size;
        PendingSize -= size;
    }
    // A stage of 5 or more stays as it is.
    void AdvanceStage() noexcept {
        if (ExtraCount < StageCleaned) ++ExtraCount;
    }
    void StoreStage(uint32_t stage) noexcept { ExtraCount = stage; }

protected:
    uint64_t TotalSize = 0;
    uint64_t PendingSize = 0;
    uint32_t TotalCount = 0;
    uint32_t PendingCount = 0;
    uint32_t ExtraCount = StageReset;
};
