#pragma once

#include "host/check/finding.h"

// Checks rule files and, unless its path is empty, the text file that they share. Nothing but these files is read. The
// findings come file by file in the order of the arguments, the text file last, and by line within each.
std::vector<Finding> CheckPack(const std::vector<std::wstring>& ruleFiles, const std::wstring& textFile);
