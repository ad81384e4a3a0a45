#include "host/console/resulttable.h"

#include <algorithm>

#include "host/common/actiontext.h"
#include "host/common/sizetext.h"
#include "host/common/texts.h"
#include "host/console/columns.h"

namespace {

struct Row {
    std::wstring name;
    Amount amount;
};
using Rows = std::vector<Row>;

void AddRows(Rows& rows, const std::vector<RunResult>& results, Amount RunResult::*amount, size_t depth) {
    // What was largest when it was found need not be so in what is left of it.
    std::vector<const RunResult*> sorted;
    for (const RunResult& result : results)
        sorted.push_back(&result);
    std::stable_sort(sorted.begin(), sorted.end(), [amount](const RunResult* a, const RunResult* b) {
        return (a->*amount).bytes > (b->*amount).bytes;
    });
    for (const RunResult* result : sorted) {
        if ((result->*amount).items == 0 && (result->*amount).actions == 0) continue;
        rows.push_back({std::wstring(depth * 2, L' ') + result->name, result->*amount});
        AddRows(rows, result->children, amount, depth + 1);
    }
}

void PrintRow(COutput& out, size_t nameColumns, const Row& row) {
    out.Line(L"  " + PadRight(row.name, nameColumns) + L"  " + PadLeft(GroupedNumber(row.amount.items), 9) + L"  "
             + PadLeft(GroupedNumber(row.amount.actions), 9) + L"  " + PadLeft(ReadableSize(row.amount.bytes), 10)
             + L"  " + PadLeft(GroupedNumber(row.amount.bytes), 15));
}

}  // namespace

void PrintTable(COutput& out, std::wstring_view title, const RunResult& result, Amount RunResult::*amount) {
    Rows rows;
    AddRows(rows, result.children, amount, 0);
    rows.push_back({Text(IDS_TOTAL), result.*amount});
    size_t nameColumns = Columns(title);
    for (const Row& row : rows)
        nameColumns = std::max(nameColumns, Columns(row.name));
    out.Line(PadRight(title, nameColumns + 2) + L"  " + PadLeft(Text(IDS_HEAD_ITEMS), 9) + L"  "
             + PadLeft(Text(IDS_HEAD_ACTIONS), 9) + L"  " + PadLeft(Text(IDS_HEAD_SIZE), 10) + L"  "
             + PadLeft(Text(IDS_HEAD_BYTES), 15));
    for (const Row& row : rows)
        PrintRow(out, nameColumns, row);
}

void PrintActions(COutput& out, const RunResult& result, std::wstring_view application) {
    for (const RunResult& child : result.children)
        PrintActions(out, child, result.name);
    if (!result.actions.empty()) out.Line(std::wstring(application) + L": " + result.name);
    for (const Action& action : result.actions)
        out.Line(L"    " + StateText(action.state) + L"  " + ActionText(action));
}

void PrintFound(COutput& out, const RunResult& result, const CWorkList& work, bool listActions) {
    if (listActions) PrintActions(out, result);
    PrintTable(out, Text(IDS_TITLE_FOUND), result, &RunResult::found);
    out.Line(Text(IDS_SUM_FOUND, {ItemCount(result.found.items), FullSize(result.found.bytes)}));
    const std::wstring beside = WorkText({}, work.Actions());
    if (!beside.empty()) out.Line(Text(IDS_SUM_BESIDE, {beside}));
}
