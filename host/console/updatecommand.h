#pragma once

#include "host/console/command.h"

struct UpdateOptions {
    std::string list;
    std::string folder;
    std::string versionUrl;  // empty: fetch whatever is installed
};

ExitStatus RunUpdate(const UpdateOptions& options, CConsole& console);
