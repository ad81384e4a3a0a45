#pragma once

#include <string>
#include <vector>

// The trace lines recorded since the last call, in order and with their arguments filled in.
std::vector<std::wstring> TakeTraceLines();
