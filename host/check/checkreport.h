#pragma once

#include "host/check/checkfinding.h"
#include "host/console.h"

// "file:line: severity: message [code]", without the line when it is 0.
std::wstring FindingLine(const CheckFinding& finding);

// One line for each finding, and one with their numbers.
void PrintFindings(COutput& out, const std::vector<CheckFinding>& findings);
// The same as one JSON document; docs/dsw-check.schema.json describes it.
void PrintFindingsJson(COutput& out, const std::vector<CheckFinding>& findings);

size_t CountFindings(const std::vector<CheckFinding>& findings, CheckSeverity severity);
