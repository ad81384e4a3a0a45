#pragma once

#include <string>
#include <vector>

#include "host/common/action.h"

// "gone", in the language of the texts.
std::wstring StateText(ActionState state);

// What the action is about: the value "Last" of the key HKCU\Software\Tool.
std::wstring ActionText(const Action& action);

// What a clean does, for the middle of a sentence: "delete 3 items (15 bytes) and 1 registry key, run NT_ClearHistory".
// `items` are those that it deletes by their paths. Empty when it does nothing.
std::wstring WorkText(const Amount& items, const std::vector<Action>& actions);
