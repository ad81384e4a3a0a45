#include "host/console/treeview.h"

#include <algorithm>
#include <vector>

#include "host/common/ruletext.h"
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

constexpr size_t kNamedLevels = 3;

struct Row {
    std::wstring label;
    std::wstring path;  // empty: a line about the rule above
};

}  // namespace

void PrintTree(COutput& out, const CEngine& engine, bool explain) {
    std::vector<Row> rows;
    WalkTree(*engine, [&](auto& node, size_t depth) {
        const std::wstring& path = engine.Paths().Of(node);
        const std::wstring indent(depth * 4, L' ');
        rows.push_back({indent + CheckBox(node.GetState()) + Label(node, path), path});
        if constexpr (requires { RuleText(node); }) {
            for (const std::wstring& line : RuleText(node))
                rows.push_back({indent + L"        " + line, {}});
        }
        return explain || depth < kNamedLevels - 1;
    });
    size_t columns = 0;
    for (const Row& row : rows)
        if (!row.path.empty()) columns = std::max(columns, Columns(row.label));
    for (const Row& row : rows)
        out.Line(row.path.empty() ? row.label : PadRight(row.label, columns) + L"  " + row.path);
}
