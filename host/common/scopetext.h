#pragma once

#include <string>

#include "host/common/ruledetails.h"

// What the scope means, to a person: the files "*.log" in C:\Logs and below. What narrows a location down reads on from
// the text before.
std::wstring ScopeText(const Scope& scope);
