#pragma once

#include "host/cancel.h"
#include "host/command.h"
#include "host/engine.h"

// "dsw gather": scans what the selected rules describe and shows the totals. Deletes nothing.
void AddGatherCommand(CLI::App& app, CommandAction& action);

// Scans and shows the totals, also those of a scan that the user stopped. Throws CHostError when the engine gave up.
ExitStatus RunGather(CEngine& engine, CConsole& console, const CCancel& cancel, bool listItems);
