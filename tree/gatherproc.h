#pragma once

#include <cstdint>
#include <type_traits>

// The two passes of a cleaning job, gather and clean, over one level of the tree. `Self` and `Child` are node classes;
// the leaf names itself as its child. Driven by the engine on the thread of the run.
template <class Self, class Child>
class CGatherProc {
public:
    CGatherProc() = default;
    virtual ~CGatherProc() = default;
    CGatherProc(const CGatherProc&) = delete;
    CGatherProc& operator=(const CGatherProc&) = delete;

    // Zeroes the totals, the stage kept, and makes the node and what is selected below it part of the job. `value` is
    // the run's, opaque. Always true.
    virtual bool Mark(uint64_t value);
    // Scan, and delete what the scan found. False: the host asked to stop. A node that is not part of the job, or not
    // selected, answers true and calls nothing.
    virtual bool RunGather() { return Run(Pass::Gather); }
    virtual bool RunClean() { return Run(Pass::Clean); }
    // Forgets what was found, here and below; stage 0.
    virtual void Reset();
    // Sets the stage (see CGarbageVolume), here and below.
    virtual void SetStage(uint32_t stage);
    // This node's share of the progress scale from 0 to 100.
    virtual void SetRange(double begin, double end) {
        m_rangeBegin = begin;
        m_rangeEnd = end;
    }
    // The leaf's own work; above the leaf these do nothing.
    virtual bool Gather() { return true; }
    virtual bool Clean(uint64_t /*a*/, uint64_t /*b*/, uint64_t /*c*/) { return true; }
    virtual void ClearFound() {}

private:
    enum class Pass { Gather, Clean };
    static constexpr bool kIsLeaf = std::is_same_v<Self, Child>;

    Self& Node() noexcept { return static_cast<Self&>(*this); }
    template <class Visit>
    void EachChild(Visit visit);
    bool Run(Pass pass);
    bool ReportRange();
    bool RunChildren(Pass pass);

    bool m_marked = false;  // never cleared: once marked, a node runs whenever it is selected
    double m_rangeBegin = 0;
    double m_rangeEnd = 0;
};
