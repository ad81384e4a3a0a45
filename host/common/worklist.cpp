#include "host/common/worklist.h"

#include <type_traits>
#include <utility>

#include "host/common/ruledetails.h"
#include "host/common/treewalk.h"
#include "sysservices/registrykey.h"

namespace {

struct RootName {
    std::wstring_view shown;
    HKEY root;
};
const RootName kRoots[] = {{L"HKLM\\", HKEY_LOCAL_MACHINE},
                           {L"HKCU\\", HKEY_CURRENT_USER},
                           {L"HKCR\\", HKEY_CLASSES_ROOT},
                           {L"HKU\\", HKEY_USERS}};

bool HasSubKeys(const std::wstring& path) {
    for (const auto& [shown, root] : kRoots) {
        if (!path.starts_with(shown)) continue;
        const CRegistryKey key(root, path.c_str() + shown.size(), KEY_ENUMERATE_SUB_KEYS);
        wchar_t name[256];
        return key && RegEnumKeyW(key.get(), 0, name, static_cast<DWORD>(std::size(name))) == ERROR_SUCCESS;
    }
    return false;
}

bool IsShellFolder(const Action& action) noexcept {
    return action.kind == ActionEmptyBin || action.kind == ActionLeaveFolder;
}

// What cannot be told holds more than what could.
bool HoldsMore(const std::optional<Amount>& now, const std::optional<Amount>& before) noexcept {
    if (!before) return false;
    return !now || now->items > before->items || now->bytes > before->bytes;
}

// `now` is the same action as the rules tell it after the clean, or null.
ActionState StateAfter(const Action& action, const Action* now, bool reached) {
    if (!action.IsWork()) return ActionState::LeftAlone;
    // The engine forgets shell items whatever became of them, and a procedure is always told.
    const bool canTell = action.kind == ActionDeleteKey || action.kind == ActionDeleteValue
                         || (action.kind == ActionEmptyBin && (!now || now->amount));
    if (canTell && !now) return ActionState::Gone;
    if (!reached) return ActionState::NotTried;
    if (action.kind == ActionProcedure) return ActionState::Run;
    if (!canTell) return ActionState::Tried;
    return action.kind == ActionDeleteKey && HasSubKeys(action.target) ? ActionState::HasSubKeys : ActionState::Refused;
}

}  // namespace

CWorkList::CWorkList(IDregsweep& engine) {
    const IGarbageCatagory* category = nullptr;
    WalkTree(engine, [&](auto& node, size_t) {
        const bool isSelected = node.GetState() != SelectionNone;
        if constexpr (std::is_same_v<decltype(node), IGarbageCatagory&>) category = &node;
        if constexpr (std::is_same_v<decltype(node), IGarbageInfo&>) {
            if (isSelected) Add(node, *category);
        }
        return isSelected;
    });
}

CWorkList::Key CWorkList::KeyOf(const Action& action) {
    return {action.kind, ToLower(action.target), ToLower(action.name)};
}

void CWorkList::Add(IGarbageInfo& rule, const IGarbageCatagory& category) {
    for (Action& action : DetailsOf(rule).actions) {
        if (IsShellFolder(action)) {
            m_foundApart += {rule.GetTotalCount(), rule.GetTotalSize()};
            if (action.amount && action.amount->items == 0 && action.amount->bytes == 0) continue;
        }
        if (m_places.emplace(KeyOf(action), m_entries.size()).second)
            m_entries.push_back({std::move(action), CReference<IGarbageInfo>::Share(&rule), &category});
    }
}

const Action* CWorkList::Find(const Action& action) const {
    const auto place = m_places.find(KeyOf(action));
    return place == m_places.end() ? nullptr : &m_entries[place->second].action;
}

bool CWorkList::MarkNew(const CWorkList& before) {
    bool hasNew = false;
    for (Entry& entry : m_entries) {
        Action& action = entry.action;
        const Action* earlier = before.Find(action);
        if (!action.IsWork() || (earlier && !HoldsMore(action.amount, earlier->amount))) continue;
        action.state = ActionState::New;
        hasNew = true;
    }
    return hasNew;
}

void CWorkList::Settle(const CWorkList& after) {
    for (Entry& entry : m_entries) {
        Action& action = entry.action;
        const Action* now = after.Find(action);
        action.state = StateAfter(action, now, entry.rule->GetExtraCount() >= StageCleaning);
        if (action.kind == ActionEmptyBin) action.left = now ? now->amount : Amount{};
    }
}

std::vector<Action> CWorkList::Actions() const {
    std::vector<Action> actions;
    for (const Entry& entry : m_entries)
        actions.push_back(entry.action);
    return actions;
}

std::vector<Action> CWorkList::ActionsOf(const IGarbageCatagory& category) const {
    std::vector<Action> actions;
    for (const Entry& entry : m_entries)
        if (entry.category == &category) actions.push_back(entry.action);
    return actions;
}
