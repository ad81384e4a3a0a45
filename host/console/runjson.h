#pragma once

#include "host/common/runresult.h"
#include "host/console/console.h"
#include "host/console/exitstatus.h"

// Prints the result of "gather" or "clean" as one JSON document, which docs/dsw-output.schema.json describes.
// `cleaned` tells whether a clean was begun.
void PrintRunJson(COutput& out, const char* command, ExitStatus status, bool cleaned, const RunResult& result);
