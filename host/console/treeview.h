#pragma once

#include "host/common/engine.h"
#include "host/console/console.h"

// Prints the three levels that have names with their check boxes: [x] all selected, [-] partly, [ ] none. Behind each
// node stands its path, for selecting. `explain` adds the rules, below each what it looks at and what else it does.
void PrintTree(COutput& out, const CEngine& engine, bool explain);

// The same as one JSON document, which docs/dsw-output.schema.json describes, always with the rules.
void PrintTreeJson(COutput& out, const CEngine& engine);
