#pragma once

#include <string>
#include <vector>

#include "host/common/selection.h"
#include "host/common/textid.h"

// What an engine loads, and what of it is selected.
struct EngineOptions {
    bool upgradeMode = false;  // the rule and text file are those beside the executable
    std::wstring rules;
    std::wstring text;  // empty: the names of the rule file
    // Ids of what to do when these files are missing, for the end of the message.
    unsigned rulesRemedy = IDS_CHECK_PATH;
    unsigned textRemedy = IDS_CHECK_PATH;
    std::vector<std::wstring> allowed;
    std::vector<SelectionStep> selection;
    bool noRegistry = false;   // deselect the registry rules, whatever the steps say
    bool presentOnly = false;  // likewise the applications that are not present
};
