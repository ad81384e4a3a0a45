#pragma once

#include <string>
#include <vector>

#include "host/common/amount.h"
#include "host/common/engine.h"

// What became of an action, by asking again after the clean.
enum class ActionState { Found, Gone, Left, Done };

// One thing that a clean does beside deleting what was found; see GarbageAction.
struct CleanAction {
    GarbageActionKind kind;
    std::wstring target;
    std::wstring name;
    Amount amount;      // of shell items and bins; kGarbageUnknown where the shell does not tell
    std::wstring path;  // of the garbage category whose rule says it
    std::wstring key;   // the same for two that do the same
    ActionState state = ActionState::Found;
};
using CleanActions = std::vector<CleanAction>;

// What a clean of that which is selected would do now, in its order. What several rules say is told once.
CleanActions CollectActions(const CEngine& engine);

// Those of `now` that `before` does not have, or that have grown since.
CleanActions NewActions(const CleanActions& now, const CleanActions& before);

// Sets the states by what the rules say after the clean. Of a procedure nobody can tell more than that it was run.
void SettleActions(CleanActions& actions, const CleanActions& after);

// The action as one line for people: "delete the value "a" of HKCU\\Software\\Tool".
std::wstring ActionText(const CleanAction& action);
// All of them in one sentence's parts, values and keys by their numbers: "12 registry values and 1 key, empty ...".
// `items`, what was found, comes first. Empty when there is nothing to do.
std::wstring ActionsText(const Amount& items, const CleanActions& actions);
