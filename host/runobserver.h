#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "dregsweep/idregsweep.h"
#include "host/cancel.h"
#include "host/exitstatus.h"
#include "host/itemresult.h"
#include "host/progressline.h"
#include "sysservices/reference.h"

// What the host does with the notifications of one run: shows progress, lists items, keeps what a clean reports, and
// passes on the user's wish to stop.
class CRunObserver final : public IDregsweepCallback {
public:
    // Items go to the standard output, each under its category, as they are reported; they take the place of the
    // progress line where both would share a terminal.
    CRunObserver(IDregsweep& engine, CConsole& console, const CCancel& cancel, bool listItems);

    // Does the run, IDregsweep::Gather or Clean, and tells on the error output when it did not go to its end.
    ExitStatus Run(bool (IDregsweep::*run)(IDregsweepCallback*));

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

    bool GoOn() const noexcept { return !m_cancel.Requested(); }
    uint64_t ItemsOfRule() const noexcept;
    void List(const ItemResult& item, uint64_t category);

    IDregsweep& m_engine;
    CConsole& m_console;
    const CCancel& m_cancel;
    const bool m_listItems;
    CProgressLine m_progress;
    std::wstring m_application;
    uint64_t m_listedCategory = 0;
    std::vector<CountedRule> m_rules;
    std::unordered_map<uint64_t, std::vector<ItemResult>> m_reported;  // by the category's pointer
};
