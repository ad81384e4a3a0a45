#pragma once

#include "host/common/engine.h"
#include "host/console/cancel.h"
#include "host/console/command.h"
#include "host/console/ruleoptions.h"

// What "gather" and "clean" have in common.

struct GatherOptions : EngineOptions {
    bool items = false;
    bool json = false;
};

// Adds those of rules and selection, --items and --json.
void AddGatherOptions(CLI::App& command, GatherOptions& options);

// Gathers and shows how it goes, with the items when they shall be listed.
ExitStatus Gather(const CEngine& engine, CConsole& console, const CCancel& cancel, bool listItems);
