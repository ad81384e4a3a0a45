#include "host/common/selection.h"

#include <type_traits>
#include <utility>

#include "host/common/hosterror.h"
#include "host/common/nodepaths.h"
#include "host/common/ruledetails.h"
#include "host/common/texts.h"
#include "host/common/treewalk.h"

namespace {

using Kind = SelectionStep::Kind;

// What stands below a deselected node is off, whatever the rule file says of it. Make the states say so, too: the
// engine derives the state of the node from them when one of them is selected, and the others would come on with it.
void SwitchOffBelowDeselected(IDregsweep& engine) {
    WalkTree(engine, [](auto& node, size_t) {
        if (node.GetState() != SelectionNone) return true;
        node.SetState(SelectionNone);
        return false;
    });
}

// When the engine derives the state of a category, applications that are not present do not count: one of them that is
// still selected would be lost with the last of the others.
void KeepAbsentSelected(IDregsweep& engine) {
    for (const auto& category : Children(engine))
        for (const auto& app : Children(*category))
            if (category->GetState() == SelectionNone && app->GetState() != SelectionNone)
                category->Recompute(app->GetState());
}

template <class Node>
void Set(Node& node, bool selected) {
    // A rule file may give a node a full check box and switch off what is below: toggled twice, all of it is on.
    if (selected) node.Toggle();
    while (node.GetState() != (selected ? SelectionAll : SelectionNone))
        node.Toggle();
}

void SetAll(IDregsweep& engine, bool selected) {
    engine.SetAllChecked(false);
    if (selected) engine.SetAllChecked(true);
}

// Selects or deselects the uppermost nodes that `matches` says yes to, with all that is below; false when there is
// none.
template <class Matches>
bool SetMatching(IDregsweep& engine, bool selected, const Matches& matches) {
    bool found = false;
    SwitchOffBelowDeselected(engine);
    WalkTree(engine, [&](auto& node, size_t) {
        if (!matches(node)) return true;
        found = true;
        Set(node, selected);
        return false;
    });
    KeepAbsentSelected(engine);
    return found;
}

// Not PathMatchSpec, to which "*.*" is everything and ";" an end: what matches more than it says is deleted.
bool Matches(std::wstring_view path, std::wstring_view pattern) noexcept {
    constexpr size_t kNone = std::wstring_view::npos;
    size_t at = 0, next = 0;
    size_t lastStar = kNone, endOfStar = 0;  // of the pattern and of the path
    while (at < path.size()) {
        const wchar_t wanted = next < pattern.size() ? pattern[next] : L'\0';
        if (wanted == L'*') {
            lastStar = next++;
            endOfStar = at;
        } else if (wanted == L'?' || wanted == path[at]) {
            ++next;
            ++at;
        } else if (lastStar != kNone) {
            next = lastStar + 1;
            at = ++endOfStar;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of(L'*', next) == kNone;
}

}  // namespace

void ApplySelection(IDregsweep& engine, const std::vector<SelectionStep>& steps, const CNodePaths& original,
                    const CNodePaths& localised) {
    bool isFirstOnly = true;
    for (const auto& [kind, pattern] : steps) {
        if (kind == Kind::All || kind == Kind::None) {
            SetAll(engine, kind == Kind::All);
            continue;
        }
        if (kind == Kind::Only && std::exchange(isFirstOnly, false)) SetAll(engine, false);
        const CString wanted = ToLower(pattern);
        const auto matches = [&](const IEUObject& node) {
            return Matches(ToLower(original.Of(node)), wanted) || Matches(ToLower(localised.Of(node)), wanted);
        };
        if (!SetMatching(engine, kind != Kind::Deselect, matches)) throw CUsageError(Text(IDS_NO_MATCH, {pattern}));
    }
}

void DeselectRegistryRules(IDregsweep& engine) {
    SetMatching(engine, /*selected=*/false, [](auto& node) {
        if constexpr (std::is_same_v<decltype(node), IGarbageInfo&>)
            return IsRegistryRule(node);
        else
            return false;
    });
}

void DeselectAbsent(IDregsweep& engine) {
    SetMatching(engine, /*selected=*/false, [](auto& node) {
        if constexpr (std::is_same_v<decltype(node), IAppGarbageInfo&>)
            return !node.IsAppPresent();
        else
            return false;
    });
}

bool IsAnythingSelected(IDregsweep& engine) {
    bool isAnything = false;
    WalkTree(engine, [&isAnything](auto& node, size_t) {
        isAnything = isAnything || node.GetState() != SelectionNone;
        return false;
    });
    return isAnything;
}
