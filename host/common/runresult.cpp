#include "host/common/runresult.h"

#include <algorithm>

#include "host/common/treewalk.h"

namespace {

class CItemCollector final : public IGarbageInfo::IVisitor {
public:
    CItemCollector(std::vector<ItemResult>& items, ItemState state) noexcept : m_items(items), m_state(state) {}

    void OnItem(const wchar_t* path, uint64_t size, IGarbageInfo* /*rule*/) override {
        m_items.push_back({path, {1, size}, m_state});
    }

private:
    std::vector<ItemResult>& m_items;
    const ItemState m_state;
};

class CCollector {
public:
    CCollector(const CEngine& engine, const CWorkList& work, CRunObserver* clean, bool withItems) noexcept
        : m_paths(engine.Paths()),
          m_work(work),
          m_clean(clean),
          m_withItems(withItems) {}

    // Only the garbage categories count for themselves; the levels above are their sums.
    template <class I>
    void AddChildren(RunResult& result, CGatherIteratorProc<I>& node) const {
        for (const auto& child : Children(node))
            AddChild(result, *child);
        std::stable_sort(result.children.begin(), result.children.end(),
                         [](const RunResult& a, const RunResult& b) { return a.found.bytes > b.found.bytes; });
    }

private:
    template <class Node>
    void AddChild(RunResult& result, Node& node) const {
        RunResult child;
        child.name = node.GetInfo()->NameText;
        child.path = m_paths.Of(node);
        Fill(child, node);
        if (child.found.items == 0 && child.found.actions == 0) return;
        result.found += child.found;
        result.deleted += child.deleted;
        result.left += child.left;
        result.children.push_back(std::move(child));
    }

    template <class Node>
    void Fill(RunResult& result, Node& node) const {
        AddChildren(result, node);
    }

    void Fill(RunResult& result, IGarbageCatagory& category) const {
        // The engine's own count is what was found less what was reported as deleted.
        result.left = {category.GetTotalCount(), category.GetTotalSize()};
        if (m_clean) AddReported(result, category);
        AddActions(result, category);
        result.found = result.left;
        result.found += result.deleted;
        if (!m_withItems) return;
        CItemCollector rest(result.items, m_clean ? ItemState::NotTried : ItemState::Found);
        for (const auto& rule : Children(category))
            rule->EnumFound(&rest);
    }

    void AddActions(RunResult& result, IGarbageCatagory& category) const {
        result.actions = m_work.ActionsOf(category);
        for (const Action& action : result.actions)
            if (action.IsWork()) ++(action.IsDone() ? result.deleted : result.left).actions;
    }

    void AddReported(RunResult& result, IGarbageCatagory& category) const {
        std::vector<ItemResult> reported = m_clean->Take(category);
        for (const ItemResult& item : reported)
            if (item.state == ItemState::Deleted) result.deleted += item.amount;
        if (m_withItems) result.items = std::move(reported);
    }

    const CNodePaths& m_paths;
    const CWorkList& m_work;
    CRunObserver* const m_clean;
    const bool m_withItems;
};

}  // namespace

RunResult CollectResult(const CEngine& engine, const CWorkList& work, CRunObserver* clean, bool withItems) {
    RunResult result;
    CCollector(engine, work, clean, withItems).AddChildren(result, *engine);
    return result;
}
