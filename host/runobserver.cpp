#include "host/runobserver.h"

#include <algorithm>
#include <type_traits>
#include <utility>

#include "host/sizetext.h"
#include "host/treewalk.h"

namespace {

// A node travels through the notifications as a number.
template <class Node>
std::wstring NameOf(uint64_t node) {
    return reinterpret_cast<Node*>(node)->GetInfo()->NameText;
}

}  // namespace

CRunObserver::CRunObserver(IDregsweep& engine, CConsole& console, const CCancel& cancel, bool listItems)
    : m_engine(engine),
      m_console(console),
      m_cancel(cancel),
      m_listItems(listItems),
      m_progress(console.err, /*hidden=*/listItems && console.out.IsTerminal()) {
    WalkTree(engine, [this](auto& node, size_t) {
        if constexpr (std::is_same_v<decltype(node), IGarbageInfo&>)
            m_rules.push_back({CReference<IGarbageInfo>::Share(&node), node.GetTotalCount()});
        return true;
    });
}

ExitStatus CRunObserver::Run(bool (IDregsweep::*run)(IDregsweepCallback*)) {
    const bool finished = (m_engine.*run)(this);
    m_progress.Remove();
    if (finished) return ExitStatus::Done;
    const bool stopped = m_cancel.Requested();
    m_console.err.Line(stopped
                           ? L"dsw: stopped, the result is that of the part that was done"
                           : L"dsw: the engine gave up, memory ran out: the result is that of the part that was done");
    return stopped ? ExitStatus::Stopped : ExitStatus::Failed;
}

bool CRunObserver::StepNotify1(uint64_t node) {
    m_progress.Enter(m_application + L": " + NameOf<IGarbageCatagory>(node));
    return GoOn();
}

bool CRunObserver::StepNotify2(uint64_t node) {
    m_application = NameOf<IAppGarbageInfo>(node);
    m_progress.Enter(m_application);
    return GoOn();
}

bool CRunObserver::StepNotify3(uint64_t node) {
    m_progress.Enter(NameOf<IAppCatagory>(node));
    return GoOn();
}

bool CRunObserver::Progress(uint32_t begin, uint32_t /*end*/) {
    m_progress.Reach(begin);
    return GoOn();
}

bool CRunObserver::FoundItem(const wchar_t* path, uint64_t size, uint64_t category) {
    const Amount amount = {1, size};
    m_progress.Count(amount);
    if (m_listItems) List({path, amount, ItemState::Found}, category);
    return GoOn();
}

bool CRunObserver::EmptiedItem(const wchar_t* path, uint64_t size, uint64_t category, bool removed) {
    // A recycle bin or another shell folder is reported once for all that was found in it, also for nothing.
    const Amount amount = {*path ? 1 : ItemsOfRule(), size};
    if (amount.items == 0) return GoOn();
    const ItemResult item = {path, amount, removed ? ItemState::Deleted : WhyNotDeleted(path)};
    m_progress.Count(amount);
    if (m_listItems) List(item, category);
    m_reported[category].push_back(item);
    return GoOn();
}

// A report names the category only. Of all rules the one that is being cleaned has that stage.
uint64_t CRunObserver::ItemsOfRule() const noexcept {
    const auto current = std::find_if(m_rules.begin(), m_rules.end(), [](const CountedRule& rule) {
        return rule.node->GetExtraCount() == StageCleaning;
    });
    return current == m_rules.end() ? 0 : current->items;
}

void CRunObserver::List(const ItemResult& item, uint64_t category) {
    if (category != m_listedCategory) m_console.out.Line(m_application + L": " + NameOf<IGarbageCatagory>(category));
    m_listedCategory = category;
    const std::wstring path = item.path.empty() ? L"(all of it, " + ItemCount(item.amount.items) + L")" : item.path;
    m_console.out.Line(L"    " + std::wstring(Text(item.state)) + L"  " + path + L"  "
                       + std::to_wstring(item.amount.bytes));
}

std::vector<ItemResult> CRunObserver::Take(IGarbageCatagory& category) {
    return std::exchange(m_reported[reinterpret_cast<uint64_t>(&category)], {});
}
