#pragma once

#include "host/command.h"

// "dsw clean": scans, asks, and deletes what was found.
void AddCleanCommand(CLI::App& app, CommandAction& action);
