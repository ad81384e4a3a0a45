#pragma once

// The bodies of CGatherProc. Included by the file that instantiates a level, where node and child are complete.

#include <algorithm>

#include "tree/gathercheckproc.h"
#include "tree/gatherproc.h"
#include "tree/walkchildren.h"

template <class Self, class Child>
template <class Visit>
void CGatherProc<Self, Child>::EachChild(Visit visit) {
    WalkChildren(Node(), [&](auto& child) { return visit(static_cast<Child&>(child)); });
}

template <class Self, class Child>
bool CGatherProc<Self, Child>::Mark(uint64_t value) {
    // An unselected node loses its totals too.
    Node().ZeroVolume();
    if (Node().GetState() == SelectionNone) return true;
    m_marked = true;
    if constexpr (!kIsLeaf) {
        EachChild([value](Child& child) { return child.Mark(value); });
    }
    return true;
}

template <class Self, class Child>
void CGatherProc<Self, Child>::Reset() {
    if constexpr (kIsLeaf) {
        ClearFound();
    } else {
        EachChild([](Child& child) {
            child.Reset();
            return true;
        });
    }
    Node().ZeroVolume();
    Node().StoreStage(StageReset);
}

template <class Self, class Child>
void CGatherProc<Self, Child>::SetStage(uint32_t stage) {
    if constexpr (!kIsLeaf) {
        EachChild([stage](Child& child) {
            child.SetStage(stage);
            return true;
        });
    }
    Node().StoreStage(stage);
}

template <class Self, class Child>
bool CGatherProc<Self, Child>::Run(Pass pass) {
    if (!m_marked || Node().GetState() == SelectionNone) return true;
    Node().AdvanceStage();
    // A clean keeps the totals of the gather: each deleted item lowers them.
    if (pass == Pass::Gather) Node().ZeroVolume();
    bool goOn = false;
    if constexpr (kIsLeaf) {
        // In a clean the host's progress moves by garbage categories: rules report no range.
        if (pass == Pass::Gather && !ReportRange()) return false;
        goOn = pass == Pass::Gather ? Gather() : Clean(0, 0, 0);
    } else {
        if (!ReportRange() || !Node().AskHostToGoOn()) return false;
        goOn = RunChildren(pass);
    }
    // A run that was stopped below still ends the stage: 2 and 5 say visited, not complete.
    Node().AdvanceStage();
    return goOn;
}

template <class Self, class Child>
bool CGatherProc<Self, Child>::ReportRange() {
    // A selection that changes during the run can push a range off the scale.
    const auto onScale = [](double value) { return static_cast<uint32_t>(std::clamp(value, 0.0, 100.0)); };
    return Node().ReportProgress(onScale(m_rangeBegin), onScale(m_rangeEnd));
}

// The first false ends it: later children get neither a range nor a run. A clean also visits children whose gather
// found nothing, as that of a registry rule always does.
template <class Self, class Child>
bool CGatherProc<Self, Child>::RunChildren(Pass pass) {
    uint32_t selected = 0;
    EachChild([&](Child& child) {
        selected += child.GetState() != SelectionNone;
        return true;
    });
    const double step = selected > 0 ? (m_rangeEnd - m_rangeBegin) / selected : 0;
    double position = m_rangeBegin;
    bool goOn = true;
    EachChild([&](Child& child) {
        if (child.GetState() == SelectionNone) return true;
        // The steps add up with rounding, so the last child but one often takes all that is left as well.
        const bool takesAllThatIsLeft = step * 2 > m_rangeEnd - position;
        child.SetRange(position, takesAllThatIsLeft ? m_rangeEnd : position + step);
        position += step;
        goOn = pass == Pass::Gather ? child.RunGather() : child.RunClean();
        return goOn;
    });
    return goOn;
}
