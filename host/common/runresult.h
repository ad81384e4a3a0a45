#pragma once

#include <string>
#include <vector>

#include "host/common/amount.h"
#include "host/common/engine.h"
#include "host/common/itemresult.h"
#include "host/common/runobserver.h"
#include "host/common/worklist.h"

// What came of the runs so far, for one node of the upper three levels or, without a name, for the whole tree.
struct RunResult {
    std::wstring name;
    std::wstring path;                // see CNodePaths
    Amount found;                     // all that was found
    Amount deleted;                   // what was reported as deleted, and actions that were done
    Amount left;                      // the rest
    std::vector<RunResult> children;  // those that have anything, largest first
    std::vector<Action> actions;      // of the third level
    std::vector<ItemResult> items;    // of the third level, when asked for: reported ones, then those that were not
};

// `work` has been settled after a clean. `clean` is the observer of the clean, whose items it takes, or null when there
// was none.
RunResult CollectResult(const CEngine& engine, const CWorkList& work, CRunObserver* clean, bool withItems);
