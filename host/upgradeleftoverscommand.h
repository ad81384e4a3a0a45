#pragma once

#include "host/command.h"

// "dsw upgrade-leftovers gather|clean": the same two commands for what an upgrade of Windows left behind.
void AddUpgradeLeftoversCommand(CLI::App& app, CommandAction& action);
