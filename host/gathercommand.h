#pragma once

#include "host/command.h"
#include "host/ruleoptions.h"

struct GatherOptions : EngineOptions {
    bool items = false;
    bool json = false;
};

// "dsw gather": scans what the selected rules describe and shows the totals. Deletes nothing. With `upgradeMode` it
// is that of "dsw upgrade-leftovers".
void AddGatherCommand(CLI::App& parent, CommandAction& action, bool upgradeMode);

// What "gather" and "clean" have in common: rules, selection, --items and --json.
void AddGatherOptions(CLI::App& command, GatherOptions& options);
// Says on the error output that nothing is going to be found.
void WarnWhenNothingIsSelected(IDregsweep& engine, CConsole& console);
