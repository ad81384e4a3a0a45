#include "host/console/treeview.h"

#include <algorithm>
#include <vector>

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

}  // namespace

void PrintTree(COutput& out, const CEngine& engine) {
    std::vector<std::pair<std::wstring, std::wstring>> rows;
    size_t columns = 0;
    WalkTree(*engine, [&](auto& node, size_t depth) {
        const std::wstring& path = engine.Paths().Of(node);
        rows.emplace_back(std::wstring(depth * 4, L' ') + CheckBox(node.GetState()) + Label(node, path), path);
        columns = std::max(columns, Columns(rows.back().first));
        return true;
    });
    for (const auto& [label, path] : rows)
        out.Line(PadRight(label, columns) + L"  " + path);
}
