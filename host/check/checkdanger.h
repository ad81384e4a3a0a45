#pragma once

#include "host/check/checkrule.h"

// Rules that would delete what nobody means to delete.
void CheckDanger(const CheckedRule& rule, CCheckFindings& findings);
