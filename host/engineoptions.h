#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "host/selection.h"

// The options of every command that loads rules. Texts are UTF-8, as the parser hands them.
struct EngineOptions {
    bool upgradeMode = false;  // the rule and text file are those beside the executable
    std::string rules;
    std::string text;  // empty: the names of the rule file
    std::vector<std::string> allowed;
    std::vector<SelectionStep> selection;
};

// Adds --rules and --text; `options` must outlive the parsing.
void AddFileOptions(CLI::App& command, EngineOptions& options);
// Adds --allow and the selecting options.
void AddScopeOptions(CLI::App& command, EngineOptions& options);
