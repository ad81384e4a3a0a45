#pragma once

#include <type_traits>
#include <utility>
#include <vector>

#include "dregsweep/idregsweep.h"
#include "sysservices/reference.h"

// A node's children, collected before any of them is used: a node has one cursor, so that nothing may come between the
// steps of an enumeration.
template <class I>
std::vector<CReference<I>> Children(CGatherIteratorProc<I>& node) {
    std::vector<CReference<I>> children;
    for (CReference<I> child(node.GetFirstChild()); child;) {
        CReference<I> next(node.GetNextChild(child.get()));
        children.push_back(std::move(child));
        child = std::move(next);
    }
    return children;
}

// Visits every node below `node`, each before its own children. `visit` takes the node, by its own interface, and its
// depth, `depth` for the first level, and tells whether to go below. It may toggle: the children of a node are
// collected before the first of them is visited.
template <class I, class Visit>
void WalkTree(CGatherIteratorProc<I>& node, const Visit& visit, size_t depth = 0) {
    for (const auto& child : Children(node)) {
        const bool goBelow = visit(*child, depth);
        if constexpr (!std::is_same_v<I, IGarbageInfo>) {
            if (goBelow) WalkTree(*child, visit, depth + 1);
        }
    }
}
