#pragma once

#include "host/command.h"

// "dsw check": tells rule authors what is wrong with their files. Needs no engine and reads nothing but the files.
void AddCheckCommand(CLI::App& app, CommandAction& action);
