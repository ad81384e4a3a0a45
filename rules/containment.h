#pragma once

#include <set>
#include <string_view>

#include "sysservices/text.h"

// The order of the exclusion tokens. Two texts are equivalent when one contains the other (as written), or when they
// differ only in the case of ASCII letters; otherwise ASCII letters fold to lower case and decide.
//
// This is no strict order: a look-up meets only the tokens on its way through the set, so that of several tokens some
// never exclude anything, and a token may be dropped when it is added.
struct ContainmentLess {
    using is_transparent = void;  // look-ups take a view, without a copy
    bool operator()(std::wstring_view a, std::wstring_view b) const noexcept;
};

using ContainmentSet = std::set<CString, ContainmentLess>;
