#include "host/common/actiontext.h"

#include <algorithm>

#include "host/common/sizetext.h"
#include "host/common/texts.h"

namespace {

std::wstring Counted(uint64_t number, unsigned one, unsigned many) {
    return Text(number == 1 ? one : many, {GroupedNumber(number)});
}

std::wstring AmountText(const Amount& amount) {
    return Text(IDS_ITEMS_AND_SIZE, {ItemCount(amount.items), ReadableSize(amount.bytes)});
}

std::wstring BinText(const Action& action) {
    const std::wstring bin = action.amount ? Text(IDS_BIN_WITH, {AmountText(*action.amount)}) : Text(IDS_BIN);
    const bool isLeft = action.left && action.left->items > 0;
    return isLeft ? Text(IDS_BIN_NOT_EMPTIED, {bin, AmountText(*action.left)}) : bin;
}

// a, b and c
std::wstring Joined(const std::vector<std::wstring>& parts) {
    std::wstring text;
    for (size_t i = 0; i < parts.size(); ++i) {
        if (i > 0 && i + 1 == parts.size()) return Text(IDS_LAST_OF_LIST, {text, parts[i]});
        if (i > 0) text += Text(IDS_LIST_SEPARATOR);
        text += parts[i];
    }
    return text;
}

uint64_t CountOf(const std::vector<Action>& actions, GarbageActionKind kind) {
    return static_cast<uint64_t>(
        std::count_if(actions.begin(), actions.end(), [kind](const Action& action) { return action.kind == kind; }));
}

std::wstring DeletedText(const Amount& items, const std::vector<Action>& actions) {
    std::vector<std::wstring> parts;
    if (items.items > 0) parts.push_back(Text(IDS_SIZED_ITEMS, {ItemCount(items.items), ReadableSize(items.bytes)}));
    const uint64_t values = CountOf(actions, ActionDeleteValue), keys = CountOf(actions, ActionDeleteKey);
    if (values > 0) parts.push_back(Counted(values, IDS_VALUES_ONE, IDS_VALUES_MANY));
    // Beside values of the registry a key is one of it, too.
    if (keys > 0) {
        parts.push_back(values > 0 ? Counted(keys, IDS_KEYS_ONE, IDS_KEYS_MANY)
                                   : Counted(keys, IDS_REGISTRY_KEYS_ONE, IDS_REGISTRY_KEYS_MANY));
    }
    for (const Action& action : actions)
        if (action.kind == ActionShellItems) parts.push_back(ActionText(action));
    return Joined(parts);
}

std::wstring ProceduresText(const std::vector<Action>& actions) {
    std::vector<std::wstring> names;
    for (const Action& action : actions)
        if (action.kind == ActionProcedure) names.push_back(action.name);
    return Joined(names);
}

}  // namespace

std::wstring StateText(ActionState state) {
    return Text(IDS_ACTION_PLANNED + static_cast<unsigned>(state));
}

std::wstring ActionText(const Action& action) {
    const uint64_t items = action.amount ? action.amount->items : 0;
    switch (action.kind) {
        case ActionProcedure:
            return Text(IDS_PROCEDURE, {action.name});
        case ActionDeleteKey:
            return Text(IDS_KEY, {action.target});
        case ActionDeleteValue:
            return Text(action.name.empty() ? IDS_UNNAMED_VALUE : IDS_VALUE, {action.target, action.name});
        case ActionShellItems:
            return Text(items == 1 ? IDS_SHELL_ITEMS_ONE : IDS_SHELL_ITEMS_MANY, {action.target, GroupedNumber(items)});
        case ActionEmptyBin:
            return BinText(action);
        default:
            return Text(IDS_SHELL_FOLDER_WITH, {action.target, ItemCount(items)});
    }
}

std::wstring WorkText(const Amount& items, const std::vector<Action>& actions) {
    std::vector<std::wstring> parts;
    const std::wstring deleted = DeletedText(items, actions), procedures = ProceduresText(actions);
    if (!deleted.empty()) parts.push_back(Text(IDS_WORK_DELETE, {deleted}));
    for (const Action& action : actions)
        if (action.kind == ActionEmptyBin) parts.push_back(Text(IDS_WORK_EMPTY, {BinText(action)}));
    if (!procedures.empty()) parts.push_back(Text(IDS_WORK_RUN, {procedures}));
    std::wstring text;
    for (const std::wstring& part : parts)
        text += text.empty() ? part : Text(IDS_LIST_SEPARATOR) + part;
    return text;
}
