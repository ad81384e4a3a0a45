#pragma once

#include <map>
#include <string>

#include "host/check/checkrule.h"

// Rules of one file that do the same: what the second finds counts twice, and its deletion is reported as failed.
class CDuplicateCheck {
public:
    // Rules for old systems ("XP") are compared with each other only: they replace others.
    void Add(const CheckedRule& rule, bool isForXp, CCheckFindings& findings);

private:
    std::map<std::wstring, int> m_lines;  // by what the rule says
};
