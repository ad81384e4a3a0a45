#include "host/common/runobserver.h"

#include <algorithm>
#include <type_traits>
#include <utility>

#include "host/common/treewalk.h"

namespace {

// A node travels through the notifications as a number.
template <class Node>
Node& NodeOf(uint64_t number) {
    return *reinterpret_cast<Node*>(number);
}

}  // namespace

CRunObserver::CRunObserver(IDregsweep& engine, IRunView& view) : m_engine(engine), m_view(view) {
    WalkTree(engine, [this](auto& node, size_t) {
        if constexpr (std::is_same_v<decltype(node), IGarbageInfo&>)
            m_rules.push_back({CReference<IGarbageInfo>::Share(&node), node.GetTotalCount()});
        return true;
    });
}

CRunObserver::Outcome CRunObserver::Run(bool (IDregsweep::*run)(IDregsweepCallback*)) {
    if ((m_engine.*run)(this)) return Outcome::Done;
    return m_view.StopRequested() ? Outcome::Stopped : Outcome::GivenUp;
}

bool CRunObserver::StepNotify1(uint64_t node) {
    m_view.Enter(NodeOf<IGarbageCatagory>(node));
    return GoOn();
}

bool CRunObserver::StepNotify2(uint64_t node) {
    m_view.Enter(NodeOf<IAppGarbageInfo>(node));
    return GoOn();
}

bool CRunObserver::StepNotify3(uint64_t node) {
    m_view.Enter(NodeOf<IAppCatagory>(node));
    return GoOn();
}

bool CRunObserver::Progress(uint32_t begin, uint32_t /*end*/) {
    m_view.Reach(begin);
    return GoOn();
}

bool CRunObserver::FoundItem(const wchar_t* path, uint64_t size, uint64_t category) {
    m_view.Report(path, {1, size}, ItemState::Found, NodeOf<IGarbageCatagory>(category));
    return GoOn();
}

bool CRunObserver::EmptiedItem(const wchar_t* path, uint64_t size, uint64_t category, bool removed) {
    // A recycle bin or another shell folder is reported once for all that was found in it, also for nothing.
    const Amount amount = {*path ? 1 : ItemsOfRule(), size};
    if (amount.items == 0) return GoOn();
    auto& node = NodeOf<IGarbageCatagory>(category);
    const ItemState state = removed ? ItemState::Deleted : WhyNotDeleted(path);
    m_reported[&node].push_back({path, amount, state});
    m_view.Report(path, amount, state, node);
    return GoOn();
}

// A report names the category only. Of all rules the one that is being cleaned has that stage.
uint64_t CRunObserver::ItemsOfRule() const noexcept {
    const auto current = std::find_if(m_rules.begin(), m_rules.end(), [](const CountedRule& rule) {
        return rule.node->GetExtraCount() == StageCleaning;
    });
    return current == m_rules.end() ? 0 : current->items;
}

std::vector<ItemResult> CRunObserver::Take(IGarbageCatagory& category) {
    return std::exchange(m_reported[&category], {});
}
