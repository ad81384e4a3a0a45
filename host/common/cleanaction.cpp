#include "host/common/cleanaction.h"

#include <algorithm>
#include <iterator>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "host/common/sizetext.h"
#include "host/common/texts.h"
#include "host/common/treewalk.h"
#include "sysservices/text.h"

namespace {

class CActionCollector final : public IGarbageInfo::IExplanationVisitor {
public:
    CActionCollector(CleanActions& actions, const std::wstring& path) noexcept : m_actions(actions), m_path(path) {}

    bool OnScope(const GarbageScope*) override { return true; }
    bool OnAction(const GarbageAction* action) override {
        std::wstring key =
            std::to_wstring(action->Kind) + L'|' + ToLower(action->Target) + L'|' + ToLower(action->Name);
        if (!m_keys.insert(key).second) return true;
        m_actions.push_back({.kind = static_cast<GarbageActionKind>(action->Kind),
                             .target = action->Target,
                             .name = action->Name,
                             .amount = {action->Items, action->Bytes},
                             .path = m_path,
                             .key = std::move(key)});
        return true;
    }

private:
    CleanActions& m_actions;
    std::unordered_set<std::wstring> m_keys;
    const std::wstring& m_path;
};

// How many items each stands for, by its key.
std::unordered_map<std::wstring_view, uint64_t> ItemsByKey(const CleanActions& actions) {
    std::unordered_map<std::wstring_view, uint64_t> items;
    for (const CleanAction& action : actions)
        items.emplace(action.key, action.amount.items);
    return items;
}

ActionState StateOf(const CleanAction& action, const std::unordered_map<std::wstring_view, uint64_t>& after) {
    if (action.kind == ActionProcedure) return ActionState::Done;
    if (action.kind == ActionLeaveFolder) return ActionState::Left;
    const auto left = after.find(action.key);
    if (left == after.end()) return ActionState::Gone;
    // A bin is always there.
    return action.kind == ActionEmptyBin && left->second == 0 ? ActionState::Gone : ActionState::Left;
}

uint64_t Count(const CleanActions& actions, GarbageActionKind kind) {
    return static_cast<uint64_t>(std::count_if(actions.begin(), actions.end(),
                                               [kind](const CleanAction& action) { return action.kind == kind; }));
}

std::wstring BinText(const Amount& amount) {
    if (amount.items == kGarbageUnknown) return Text(IDS_ACTION_EMPTY_BIN_UNKNOWN);
    return Text(IDS_ACTION_EMPTY_BIN, {ItemCount(amount.items), ReadableSize(amount.bytes)});
}

void Append(std::wstring& list, const std::wstring& part, unsigned separator = IDS_LIST_SEPARATOR) {
    if (part.empty()) return;
    if (!list.empty()) list += Text(separator);
    list += part;
}

// What is deleted: items, values, keys.
std::wstring DeletedText(const Amount& items, const CleanActions& actions) {
    std::wstring list;
    if (items.items > 0) list = Text(IDS_ITEMS_OF_SIZE, {ItemCount(items.items), ReadableSize(items.bytes)});
    const uint64_t values = Count(actions, ActionDeleteValue), keys = Count(actions, ActionDeleteKey);
    std::wstring registry;
    if (values > 0) registry = Counted(values, IDS_VALUES_ONE, IDS_VALUES_MANY);
    if (keys > 0)
        Append(registry,
               values > 0 ? Counted(keys, IDS_KEYS_ONE, IDS_KEYS_MANY)
                          : Counted(keys, IDS_REGISTRY_KEYS_ONE, IDS_REGISTRY_KEYS_MANY),
               IDS_LAST_SEPARATOR);
    Append(list, registry);
    return list.empty() ? list : Text(IDS_DELETE_THESE, {list});
}

}  // namespace

CleanActions CollectActions(const CEngine& engine) {
    CleanActions actions;
    std::wstring path;
    CActionCollector collector(actions, path);
    WalkTree(*engine, [&](auto& node, size_t) {
        if (node.GetState() == SelectionNone) return false;
        if constexpr (requires { node.Explain(&collector); })
            (void)node.Explain(&collector);
        else
            path = engine.Paths().Of(node);
        return true;
    });
    return actions;
}

CleanActions NewActions(const CleanActions& now, const CleanActions& before) {
    const auto known = ItemsByKey(before);
    CleanActions added;
    std::copy_if(now.begin(), now.end(), std::back_inserter(added), [&](const CleanAction& action) {
        const auto at = known.find(action.key);
        return at == known.end() || action.amount.items > at->second;
    });
    return added;
}

void SettleActions(CleanActions& actions, const CleanActions& after) {
    const auto left = ItemsByKey(after);
    for (CleanAction& action : actions)
        action.state = StateOf(action, left);
}

std::wstring ActionText(const CleanAction& action) {
    switch (action.kind) {
        case ActionProcedure:
            return Text(IDS_ACTION_PROCEDURE, {action.name});
        case ActionDeleteKey:
            return Text(IDS_ACTION_DELETE_KEY, {action.target});
        case ActionDeleteValue:
            return Text(IDS_ACTION_DELETE_VALUE, {action.name, action.target});
        case ActionShellItems:
            return Text(IDS_ACTION_SHELL_ITEMS, {ItemCount(action.amount.items), action.target});
        case ActionEmptyBin:
            return BinText(action.amount);
        case ActionLeaveFolder:
            return Text(IDS_ACTION_LEAVE_FOLDER, {action.target});
    }
    return {};
}

std::wstring ActionsText(const Amount& items, const CleanActions& actions) {
    std::wstring list = DeletedText(items, actions);
    for (const CleanAction& action : actions) {
        const bool isBinWithItems = action.kind == ActionEmptyBin && action.amount.items > 0;
        if (action.kind == ActionShellItems || action.kind == ActionProcedure || isBinWithItems)
            Append(list, ActionText(action));
    }
    return list;
}
