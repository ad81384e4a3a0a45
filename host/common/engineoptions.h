#pragma once

#include <string>
#include <vector>

#include "host/common/selection.h"

// What an engine loads, and what of it is selected.
struct EngineOptions {
    bool upgradeMode = false;  // the rule and text file are those beside the executable
    std::wstring rules;
    std::wstring text;  // empty: the names of the rule file
    std::vector<std::wstring> allowed;
    std::vector<SelectionStep> selection;
};
