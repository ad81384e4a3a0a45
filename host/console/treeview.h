#pragma once

#include "host/common/engine.h"
#include "host/console/console.h"

// Prints the four levels with their check boxes: [x] all selected, [-] partly, [ ] none. Behind each node stands its
// path, for selecting.
void PrintTree(COutput& out, const CEngine& engine);
