#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <memory>
#include <string>

#include "host/console.h"
#include "host/exitstatus.h"

// What the command line asks for, ready to run. Each command has one function that adds its name and options to the
// parser and, when the user chose that command, stores its action.
using CommandAction = std::function<ExitStatus(CConsole&)>;

template <class Options>
void SetAction(CLI::App& command, CommandAction& action, const std::shared_ptr<Options>& options,
               ExitStatus (*run)(const Options&, CConsole&)) {
    command.callback(
        [&action, options, run] { action = [options, run](CConsole& console) { return run(*options, console); }; });
}

// What stands at the end of a command's help: `text`, which holds the examples, and the exit statuses.
inline void AddHelp(CLI::App& command, const std::string& text) {
    command.footer(text + "\n\nExit status: 0 done, 1 failed, 2 wrong usage, 3 stopped by the user.");
}
