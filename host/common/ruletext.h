#pragma once

#include <string>
#include <vector>

#include "dregsweep/idregsweep.h"

// A rule in words, a line each: what it looks at, and what else than deleting items a clean would do for it now.
std::vector<std::wstring> RuleText(IGarbageInfo& rule);
