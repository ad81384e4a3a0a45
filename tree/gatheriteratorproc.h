#pragma once

// The enumeration of a node's children, of interface `I`, in the order of the rule file.
//
//     for (I* child = node->GetFirstChild(); child;) {
//         Use(child);
//         I* next = node->GetNextChild(child);
//         child->Release();
//         child = next;
//     }
//
// Each node has one cursor: two interleaved enumerations of the same node end each other early, and so does an
// enumeration from inside a notification with the walk of the running job (see IDregsweepCallback). Below the top level
// nothing waits for a run of another thread, so do not enumerate there while one lasts: it would cut the run's walk
// short.
template <class I>
class CGatherIteratorProc {
public:
    virtual ~CGatherIteratorProc() = default;

    // The first child with a reference for the caller, or null when there is none.
    virtual I* GetFirstChild() { return nullptr; }
    // The child after `previous` with a reference for the caller. Null after the last one, and when `previous` is not
    // the child that this node returned last.
    virtual I* GetNextChild(I* /*previous*/) { return nullptr; }
};
