#include "host/treeview.h"

#include "host/children.h"

namespace {

// A rule file may give numbers that are no state; they count as partly.
const wchar_t* CheckBox(uint32_t state) noexcept {
    if (state == SelectionNone) return L"[ ] ";
    return state == SelectionAll ? L"[x] " : L"[-] ";
}

void PrintNode(COutput& out, size_t depth, uint32_t state, const std::wstring& name) {
    out.Line(std::wstring(depth * 4, L' ') + CheckBox(state) + name);
}

void PrintGarbageCategory(COutput& out, IGarbageCatagory& category) {
    PrintNode(out, 2, category.GetState(), category.GetInfo()->NameText);
    unsigned number = 0;
    for (const auto& rule : Children(category))
        PrintNode(out, 3, rule->GetState(), L"rule " + std::to_wstring(++number));
}

void PrintApplication(COutput& out, IAppGarbageInfo& app) {
    PrintNode(out, 1, app.GetState(),
              app.GetInfo()->NameText + std::wstring(app.IsAppPresent() ? L" (present)" : L" (not present)"));
    for (const auto& category : Children(app))
        PrintGarbageCategory(out, *category);
}

}  // namespace

void PrintTree(COutput& out, IDregsweep& engine) {
    for (const auto& category : Children(engine)) {
        PrintNode(out, 0, category->GetState(), category->GetInfo()->NameText);
        for (const auto& app : Children(*category))
            PrintApplication(out, *app);
    }
}
