#include "host/totals.h"

#include <algorithm>
#include <vector>

#include "host/children.h"
#include "host/columns.h"

namespace {

struct Row {
    std::wstring name;
    Amount amount;
};
using Rows = std::vector<Row>;

// The row of a node stands before those of its children, which its amount is the sum of.
template <class Node, class MeasureChildren>
Amount AddRow(Rows& rows, size_t depth, Node& node, MeasureChildren measureChildren) {
    const size_t at = rows.size();
    rows.push_back({std::wstring(depth * 2, L' ') + node.GetInfo()->NameText, {}});
    const Amount amount = measureChildren();
    rows[at].amount = amount;
    if (amount.items == 0) rows.resize(at);
    return amount;
}

template <class I, class MeasureChild>
Amount Sum(CGatherIteratorProc<I>& node, MeasureChild measureChild) {
    Amount sum;
    for (const auto& child : Children(node))
        sum += measureChild(*child);
    return sum;
}

Amount Collect(Rows& rows, IDregsweep& engine, const Measure& measure) {
    const auto garbage = [&](IGarbageCatagory& node) { return AddRow(rows, 2, node, [&] { return measure(node); }); };
    const auto app = [&](IAppGarbageInfo& node) { return AddRow(rows, 1, node, [&] { return Sum(node, garbage); }); };
    const auto category = [&](IAppCatagory& node) { return AddRow(rows, 0, node, [&] { return Sum(node, app); }); };
    return Sum(engine, category);
}

void PrintRow(COutput& out, size_t nameColumns, const Row& row) {
    out.Line(L"  " + PadRight(row.name, nameColumns) + L"  " + PadLeft(GroupedNumber(row.amount.items), 9) + L"  "
             + PadLeft(ReadableSize(row.amount.bytes), 10) + L"  " + PadLeft(GroupedNumber(row.amount.bytes), 15));
}

}  // namespace

Amount EngineAmount(IGarbageCatagory& category) {
    return {category.GetTotalCount(), category.GetTotalSize()};
}

Amount PrintTotals(COutput& out, std::wstring_view title, IDregsweep& engine, const Measure& measure) {
    Rows rows;
    const Amount total = Collect(rows, engine, measure);
    rows.push_back({L"Total", total});
    size_t nameColumns = Columns(title);
    for (const Row& row : rows)
        nameColumns = std::max(nameColumns, Columns(row.name));
    out.Line(PadRight(title, nameColumns + 2) + L"  " + PadLeft(L"items", 9) + L"  " + PadLeft(L"size", 10) + L"  "
             + PadLeft(L"bytes", 15));
    for (const Row& row : rows)
        PrintRow(out, nameColumns, row);
    return total;
}
