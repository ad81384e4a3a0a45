#pragma once

#include <functional>
#include <string_view>

#include "dregsweep/idregsweep.h"
#include "host/console.h"
#include "host/sizetext.h"

// What to count for one garbage category; the levels above are the sums.
using Measure = std::function<Amount(IGarbageCatagory&)>;

// What the engine itself has counted for the category: found, less what was reported as deleted.
Amount EngineAmount(IGarbageCatagory& category);

// Prints a table with a line for every node of the upper three levels that has anything, and the sum, which it returns.
Amount PrintTotals(COutput& out, std::wstring_view title, IDregsweep& engine, const Measure& measure);
