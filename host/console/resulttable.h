#pragma once

#include <string_view>

#include "host/common/runresult.h"
#include "host/console/console.h"

// Prints a table with a line for every node that has any of the amount, such as &RunResult::found, and the total.
void PrintTable(COutput& out, std::wstring_view title, const RunResult& result, Amount RunResult::*amount);

// The table of a gather, and its total in one line.
void PrintFound(COutput& out, const RunResult& result);
