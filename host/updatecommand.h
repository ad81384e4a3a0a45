#pragma once

#include "host/command.h"

struct UpdateOptions {
    std::string list;
    std::string folder;
    std::string versionUrl;  // empty: fetch whatever is installed
};

// "dsw update": fetches the rule files that a list on a server names, when a newer version is published.
void AddUpdateCommand(CLI::App& app, CommandAction& action);

ExitStatus RunUpdate(const UpdateOptions& options, CConsole& console);
