#pragma once

#include "host/common/engine.h"
#include "host/console/console.h"

// Prints the three named levels with their check boxes: [x] all selected, [-] partly, [ ] none. Behind each node stands
// its path, for selecting. With `explain` also the rules, and below each what it does.
void PrintTree(COutput& out, const CEngine& engine, bool explain);
