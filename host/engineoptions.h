#pragma once

#include <CLI/CLI.hpp>
#include <string>

// The options of every command that loads rules. Paths are UTF-8, as the parser hands them.
struct EngineOptions {
    std::string rules;
    std::string text;  // empty: the names of the rule file
};

// Adds --rules and --text; `options` must outlive the parsing.
void AddEngineOptions(CLI::App& command, EngineOptions& options);
