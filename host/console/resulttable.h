#pragma once

#include <string_view>

#include "host/common/cleanaction.h"
#include "host/common/runresult.h"
#include "host/console/console.h"

// Prints a table with a line for every node that has any of the amount, such as &RunResult::found, and the total.
void PrintTable(COutput& out, std::wstring_view title, const RunResult& result, Amount RunResult::*amount);

// The table of a gather, its total in one line, and what else a clean would do, line by line with `listActions`.
void PrintFound(COutput& out, const RunResult& result, const CleanActions& actions, bool listActions);
// What became of the actions.
void PrintActionsDone(COutput& out, const CleanActions& actions);
// Under a title, one line for each.
void PrintActions(COutput& out, std::wstring_view title, const CleanActions& actions);
