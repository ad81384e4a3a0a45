#pragma once

#include "host/check/checkrule.h"

// Attributes that a rule of this kind does not read, and rules that find nothing.
void CheckEffect(const CheckedRule& rule, CCheckFindings& findings);
