#pragma once

#include "host/command.h"

// "dsw clean": scans, asks, and deletes what was found. With `upgradeMode` it is that of "dsw upgrade-leftovers".
void AddCleanCommand(CLI::App& parent, CommandAction& action, bool upgradeMode);
