#pragma once

#include <cstdint>

#include "dregsweep/idregsweep.h"
#include "host/common/amount.h"
#include "host/common/itemstate.h"

// What a host shows of a run while it goes on, and its user's wish to stop. Called from the notifications of the run,
// on its thread.
class IRunView {
public:
    // The run has come to this node.
    virtual void Enter(IAppCatagory& category) = 0;
    virtual void Enter(IAppGarbageInfo& app) = 0;
    virtual void Enter(IGarbageCatagory& category) = 0;
    // It has come to `percent` of its way. The engine's ranges overlap: it may be less than before.
    virtual void Reach(uint32_t percent) = 0;
    // Found by a gather, or what became of it in a clean. An empty path: all that one rule had found.
    virtual void Report(const wchar_t* path, const Amount& amount, ItemState state, IGarbageCatagory& category) = 0;
    // Asked at every notification; true ends the run.
    virtual bool StopRequested() const noexcept = 0;

protected:
    ~IRunView() = default;
};
