#pragma once

#include <cstdint>
#include <type_traits>

class TiXmlElement;

// The selection state of a node, which hosts show as a check box.
enum SelectionState : uint32_t {
    SelectionNone = 0,
    SelectionPartly = 1,  // some of what is below is selected
    SelectionAll = 2,
};

// The selection of one level of the tree. `Parent` and `Child` are the interfaces above and below `Self`; the top level
// names itself as its parent, the leaf names itself as its child.
//
// Use it from one thread at a time, and not from another thread during a run.
template <class Parent, class Self, class Child>
class CGatherCheckProc {
public:
    explicit CGatherCheckProc(Parent* parent = nullptr) noexcept : m_parent(parent) {}
    virtual ~CGatherCheckProc() = default;
    CGatherCheckProc(const CGatherCheckProc&) = delete;
    CGatherCheckProc& operator=(const CGatherCheckProc&) = delete;

    // Turns none into all, and partly or all into none; gives everything below the same state and recomputes the nodes
    // above. That walks the children of all of them and moves their cursors: do not toggle in the middle of an
    // enumeration, collect the nodes first.
    virtual void Toggle();
    // The state: a SelectionState, or whatever number the rule file gave.
    virtual uint32_t GetState() { return m_state; }
    // Derives the state anew after a child took `state`. Both are the same operation; the tree calls them.
    virtual void RecomputeFromChild(uint32_t state) { DeriveState(state); }
    virtual void Recompute(uint32_t state) { DeriveState(state); }
    // Gives this node and everything below it the state. The nodes above are not told and keep theirs: to change one
    // node, call Toggle.
    virtual void SetState(uint32_t state);
    // Zeroes the totals and restores the selection of the rule file, here and below.
    virtual void ResetAll();
    // Reads the state from the node's element of the rule file. For the engine.
    virtual void LoadSelState(const TiXmlElement* element);

private:
    static constexpr bool kIsTop = std::is_same_v<Parent, Self>;

    Self& Node() noexcept { return static_cast<Self&>(*this); }
    void DeriveState(uint32_t state);
    bool AllChildrenHave(uint32_t state);

    uint32_t m_state = SelectionNone;
    uint32_t m_initialState = SelectionNone;
    Parent* m_parent;  // kept alive by the reference that CVolumeProc holds
};
