#pragma once

#include "sysservices/reference.h"

// Calls visit(child) for the children of a node, in list order, until it answers false. Each child is held by a
// reference while it is visited.
template <class Node, class Visit>
void WalkChildren(Node& node, Visit visit) {
    for (CReference child(node.GetFirstChild()); child;) {
        if (!visit(*child)) return;
        child = CReference(node.GetNextChild(child.get()));
    }
}
