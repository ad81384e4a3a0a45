#pragma once

#include "host/command.h"

// "dsw list": the tree with its check boxes and names.
void AddListCommand(CLI::App& app, CommandAction& action);
