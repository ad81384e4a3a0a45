#pragma once

#include <string>
#include <vector>

#include "host/check/finding.h"

// "file:line: severity: message [code]", without the line when it is 0.
std::wstring FindingLine(const Finding& finding);

// "1 error, 2 warnings, 0 notes"
std::wstring SummaryLine(const std::vector<Finding>& findings);
// Both as one JSON document in UTF-8; docs/dsw-check.schema.json describes it.
std::string FindingsJson(const std::vector<Finding>& findings);

size_t CountFindings(const std::vector<Finding>& findings, Severity severity);
