#pragma once

#include <string>
#include <string_view>
#include <vector>

// The end of a message about an unknown name: ", did you mean "X"?" with the known name that takes the fewest single
// changes, case aside, or nothing when none is near.
std::wstring NearestHint(std::wstring_view name, const std::vector<std::wstring>& known);
