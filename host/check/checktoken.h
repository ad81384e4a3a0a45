#pragma once

#include "host/check/checkrule.h"

// The tokens of "ExcludeFilter": which of them the order of the engine's set hides.
void CheckTokens(const CheckedRule& rule, CCheckFindings& findings);
