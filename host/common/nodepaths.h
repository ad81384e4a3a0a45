#pragma once

#include <string>
#include <unordered_map>

#include "dregsweep/idregsweep.h"

// A path for every node of a tree: the names from the top level down with "/" between them, as they stand when the
// object is made. A rule, which has no name, goes by its number among its neighbours. Within a name "/", "*" and "?"
// become "-", and of several neighbours of one name (letters' case apart) the second gets "#2" behind it, so that no
// two paths are equal.
class CNodePaths {
public:
    explicit CNodePaths(IDregsweep& engine);

    const std::wstring& Of(const IEUObject& node) const { return m_paths.at(&node); }

private:
    std::unordered_map<const IEUObject*, std::wstring> m_paths;
};
