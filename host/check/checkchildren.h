#pragma once

#include "host/check/checkrule.h"

// The loop steps and folder exclusions of a rule: that they are read at all, and can match.
void CheckChildren(const CheckedRule& rule, CCheckFindings& findings);
