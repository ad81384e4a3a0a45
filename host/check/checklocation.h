#pragma once

#include "host/check/checkrule.h"

// Can the location of a file rule be resolved, on any Windows? Decided without a look at this machine.
void CheckLocation(const CheckedRule& rule, CCheckFindings& findings);
