#pragma once

#include "dregsweep/idregsweep.h"
#include "host/console.h"

// Prints the four levels with their check boxes: [x] all selected, [-] partly, [ ] none. Rules have no names of their
// own and are numbered.
void PrintTree(COutput& out, IDregsweep& engine);
