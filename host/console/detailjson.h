#pragma once

#include <nlohmann/json.hpp>

#include "host/common/ruledetails.h"

// What a rule tells of itself, in the JSON documents of docs/dsw-output.schema.json. Its words are the same in every
// language: scripts know them.

using Json = nlohmann::ordered_json;

Json ToJson(const Action& action);
// The lists "scopes" and "actions".
Json ToJson(const RuleDetails& details);
