#pragma once

#include <map>
#include <string>

#include "host/check/finding.h"
#include "host/check/rule.h"

// What is said of one rule beside the schema, one kind each.

// Rules that would delete what nobody means to delete.
void CheckDanger(const CheckedRule& rule, CFindings& findings);
// The key and the values of a registry rule: that they can be there, and that no system needs them.
void CheckRegistry(const CheckedRule& rule, CFindings& findings);
// Can the location of a file rule be resolved, on any Windows? Decided without a look at this machine.
void CheckLocation(const CheckedRule& rule, CFindings& findings);
// Attributes that a rule of this kind does not read, and rules that find nothing.
void CheckEffect(const CheckedRule& rule, CFindings& findings);
// The loop steps and folder exclusions of a rule: that they are read at all, and can match.
void CheckChildren(const CheckedRule& rule, CFindings& findings);
// The tokens of "ExcludeFilter": which of them the order of the engine's set hides.
void CheckTokens(const CheckedRule& rule, CFindings& findings);

// Rules of one file that do the same: what the second finds counts twice, and its deletion is reported as failed.
class CDuplicateCheck {
public:
    // Rules for old systems ("XP") are compared with each other only: they replace others.
    void Add(const CheckedRule& rule, bool isForXp, CFindings& findings);

private:
    std::map<std::wstring, int> m_lines;  // by what the rule says
};
