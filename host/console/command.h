#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <memory>
#include <string>

#include "host/console/console.h"
#include "host/console/exitstatus.h"

// What the command line asks for, ready to run.
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

// Each adds a command and its options to the parser; when the user chose that command, its action is stored.

// "dsw list": the tree with its check boxes and names.
void AddListCommand(CLI::App& app, CommandAction& action);
// "dsw gather": scans what the selected rules describe and shows the totals. Deletes nothing. With `upgradeMode` it
// is that of "dsw upgrade-leftovers".
void AddGatherCommand(CLI::App& parent, CommandAction& action, bool upgradeMode);
// "dsw clean": scans, asks, and deletes what was found. With `upgradeMode` likewise.
void AddCleanCommand(CLI::App& parent, CommandAction& action, bool upgradeMode);
// "dsw check": tells rule authors what is wrong with their files. Needs no engine and reads nothing but the files.
void AddCheckCommand(CLI::App& app, CommandAction& action);
// "dsw update": fetches the rule files that a list on a server names, when a newer version is published.
void AddUpdateCommand(CLI::App& app, CommandAction& action);
// "dsw upgrade-leftovers gather|clean": the same two commands for what an upgrade of Windows left behind.
void AddUpgradeLeftoversCommand(CLI::App& app, CommandAction& action);
