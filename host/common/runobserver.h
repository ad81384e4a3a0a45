#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "dregsweep/idregsweep.h"
#include "host/common/irunview.h"
#include "host/common/itemresult.h"
#include "sysservices/reference.h"

// What every host does with the notifications of one run: keeps what a clean reports, finds out why an item was left,
// and passes the rest on to what the host shows.
class CRunObserver final : public IDregsweepCallback {
public:
    // How a run ended: stopped by the user, or given up when memory ran out.
    enum class Outcome { Done, Stopped, GivenUp };

    CRunObserver(IDregsweep& engine, IRunView& view);

    // Does the run, IDregsweep::Gather or Clean.
    Outcome Run(bool (IDregsweep::*run)(IDregsweepCallback*));

    bool StepNotify1(uint64_t node) override;
    bool StepNotify2(uint64_t node) override;
    bool StepNotify3(uint64_t node) override;
    bool Progress(uint32_t begin, uint32_t end) override;
    bool FoundItem(const wchar_t* path, uint64_t size, uint64_t category) override;
    bool Reserved() override { return GoOn(); }
    bool EmptiedItem(const wchar_t* path, uint64_t size, uint64_t category, bool removed) override;

    // Hands over what a clean reported of one garbage category, in order.
    std::vector<ItemResult> Take(IGarbageCatagory& category);

private:
    struct CountedRule {
        CReference<IGarbageInfo> node;
        uint64_t items;  // in its totals before the run
    };

    bool GoOn() const noexcept { return !m_view.StopRequested(); }
    uint64_t ItemsOfRule() const noexcept;

    IDregsweep& m_engine;
    IRunView& m_view;
    std::vector<CountedRule> m_rules;
    std::unordered_map<const IGarbageCatagory*, std::vector<ItemResult>> m_reported;
};
