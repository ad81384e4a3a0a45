#include "host/console/treeview.h"

#include <algorithm>
#include <type_traits>
#include <vector>

#include "host/common/actiontext.h"
#include "host/common/ruledetails.h"
#include "host/common/scopetext.h"
#include "host/common/texts.h"
#include "host/common/treewalk.h"
#include "host/console/columns.h"

namespace {

// A rule file may give numbers that are no state; they count as partly.
const wchar_t* CheckBox(uint32_t state) noexcept {
    if (state == SelectionNone) return L"[ ] ";
    return state == SelectionAll ? L"[x] " : L"[-] ";
}

template <class Node>
std::wstring Label(Node& node, const std::wstring& /*path*/) {
    return node.GetInfo()->NameText;
}

std::wstring Label(IAppGarbageInfo& app, const std::wstring& /*path*/) {
    return Text(app.IsAppPresent() ? IDS_PRESENT : IDS_NOT_PRESENT, {app.GetInfo()->NameText});
}

std::wstring Label(IGarbageInfo& /*rule*/, const std::wstring& path) {
    return Text(IDS_RULE_NUMBER, {path.substr(path.rfind(L'/') + 1)});
}

struct Row {
    std::wstring label;
    std::wstring path;
    std::vector<std::wstring> details;
};

template <class Node>
std::vector<std::wstring> Details(Node& node) {
    std::vector<std::wstring> lines;
    if constexpr (std::is_same_v<Node, IGarbageInfo>) {
        const RuleDetails details = DetailsOf(node);
        for (const Scope& scope : details.scopes)
            lines.push_back(ScopeText(scope));
        for (const Action& action : details.actions)
            lines.push_back(Text(action.IsWork() ? IDS_NOW_DOES : IDS_NOW_LEAVES, {ActionText(action)}));
    }
    return lines;
}

template <class Node>
constexpr bool kIsRule = std::is_same_v<Node, IGarbageInfo&>;

}  // namespace

void PrintTree(COutput& out, const CEngine& engine, bool explain) {
    std::vector<Row> rows;
    size_t columns = 0;
    WalkTree(*engine, [&](auto& node, size_t depth) {
        if (kIsRule<decltype(node)> && !explain) return false;
        const std::wstring& path = engine.Paths().Of(node);
        rows.push_back(
            {std::wstring(depth * 4, L' ') + CheckBox(node.GetState()) + Label(node, path), path, Details(node)});
        columns = std::max(columns, Columns(rows.back().label));
        return true;
    });
    for (const Row& row : rows) {
        out.Line(PadRight(row.label, columns) + L"  " + row.path);
        for (const std::wstring& line : row.details)
            out.Line(std::wstring(16, L' ') + line);
    }
}
