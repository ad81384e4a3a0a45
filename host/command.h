#pragma once

#include <CLI/CLI.hpp>
#include <functional>

#include "host/console.h"
#include "host/exitstatus.h"

// What the command line asks for, ready to run. Each command has one function that adds its name and options to the
// parser and, when the user chose that command, stores its action.
using CommandAction = std::function<ExitStatus(CConsole&)>;
