#pragma once

#include <string_view>

#include "host/common/runresult.h"
#include "host/console/console.h"

// Prints a table with a line for every node that has any of the amount, such as &RunResult::found, and the total.
void PrintTable(COutput& out, std::wstring_view title, const RunResult& result, Amount RunResult::*amount);

// Prints the actions line by line, each under its garbage category and that one's application.
void PrintActions(COutput& out, const RunResult& result, std::wstring_view application = {});

// The table of a gather, and in a line each its total and what a clean would do beside. `listActions` puts the actions
// line by line before the table.
void PrintFound(COutput& out, const RunResult& result, const CWorkList& work, bool listActions);
