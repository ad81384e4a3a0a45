#pragma once

#include <utility>
#include <vector>

#include "sysservices/reference.h"
#include "tree/gatheriteratorproc.h"

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
