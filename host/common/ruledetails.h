#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/common/action.h"

// A place that a rule looks at, or what narrows it down; see GarbageScope.
struct Scope {
    uint32_t kind;   // a GarbageScopeKind
    uint32_t flags;  // GarbageScopeFlags
    std::wstring text;
    std::wstring pattern;
};

// All that a rule tells of itself, as copies.
struct RuleDetails {
    std::vector<Scope> scopes;
    std::vector<Action> actions;
};

// Asks the rule. Throws CHostError when it cannot tell all: what acts upon the half of it would act unseen.
RuleDetails DetailsOf(IGarbageInfo& rule);

// Does the rule remove registry values or a key?
bool IsRegistryRule(IGarbageInfo& rule);
