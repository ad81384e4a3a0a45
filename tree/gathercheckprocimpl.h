#pragma once

// The bodies of CGatherCheckProc. Included by the file that instantiates a level, where the level's interfaces are
// complete.

#include <tinyxml.h>

#include "sysservices/xmlattribute.h"
#include "tree/gathercheckproc.h"
#include "tree/walkchildren.h"

template <class Parent, class Self, class Child>
void CGatherCheckProc<Parent, Self, Child>::Toggle() {
    m_state = m_state == SelectionNone ? SelectionAll : SelectionNone;
    WalkChildren(Node(), [this](Child& child) {
        child.SetState(m_state);
        return true;
    });
    Node().OnSelection(m_state != SelectionNone, m_state, nullptr, true);
    if constexpr (!kIsTop) {
        if (m_parent) m_parent->Recompute(m_state);
    }
}

template <class Parent, class Self, class Child>
void CGatherCheckProc<Parent, Self, Child>::SetState(uint32_t state) {
    m_state = state;
    WalkChildren(Node(), [state](Child& child) {
        child.SetState(state);
        return true;
    });
    Node().OnSelection(state != SelectionNone, state, nullptr, true);
}

template <class Parent, class Self, class Child>
void CGatherCheckProc<Parent, Self, Child>::ResetAll() {
    Node().ZeroVolume();
    m_state = m_initialState;
    WalkChildren(Node(), [](Child& child) {
        child.ResetAll();
        return true;
    });
    // Told that something is selected, whatever the state is.
    Node().OnSelection(true, m_state, nullptr, true);
}

template <class Parent, class Self, class Child>
void CGatherCheckProc<Parent, Self, Child>::LoadSelState(const TiXmlElement* element) {
    if (element->Attribute("SelState")) {
        // Not checked: 7 counts as selected and equals no state that an operation gives. What is no integer leaves the
        // state alone.
        m_state = static_cast<uint32_t>(ReadInteger(*element, "SelState", static_cast<int32_t>(m_state)));
    } else if constexpr (!kIsTop) {
        // A partly selected parent does not select a child that says nothing itself.
        const uint32_t inherited = m_parent ? m_parent->GetState() : m_state;
        m_state = m_parent && inherited == SelectionPartly ? SelectionNone : inherited;
    }
    m_initialState = m_state;
}

template <class Parent, class Self, class Child>
void CGatherCheckProc<Parent, Self, Child>::DeriveState(uint32_t state) {
    // A node that has the state already keeps it even when its children differ, as a rule file can make them.
    if (m_state == state) return;
    const uint32_t derived = AllChildrenHave(state) ? state : SelectionPartly;
    if (m_state == derived) return;
    m_state = derived;
    // The engine above the top level keeps no selection.
    if constexpr (!kIsTop) {
        if (m_parent) m_parent->Recompute(m_state);
    }
}

// True when there is no child to count: a rule takes whatever state it is told.
template <class Parent, class Self, class Child>
bool CGatherCheckProc<Parent, Self, Child>::AllChildrenHave(uint32_t state) {
    bool all = true;
    WalkChildren(Node(), [&](Child& child) {
        if constexpr (kIsTop) {
            // An absent application has no say in the state of its category.
            if (!child.IsAppPresent()) return true;
        }
        all = child.GetState() == state;
        return all;
    });
    return all;
}
