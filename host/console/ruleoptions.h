#pragma once

#include <CLI/CLI.hpp>

#include "host/common/engineoptions.h"

// The options of the commands that load rules; `options` must outlive the parsing.

// Adds --rules and --text.
void AddFileOptions(CLI::App& command, EngineOptions& options);
// Adds --allow, --no-registry, --present-only, and --all, --none, --only, --select and --deselect, which append their
// steps in the order of the command line.
void AddScopeOptions(CLI::App& command, EngineOptions& options);
