#include "host/console/detailjson.h"

#include "sysservices/text.h"

namespace {

const char* KindOf(const Action& action) noexcept {
    switch (action.kind) {
        case ActionProcedure:
            return "procedure";
        case ActionDeleteKey:
            return "key";
        case ActionDeleteValue:
            return "value";
        case ActionShellItems:
            return "shell items";
        case ActionEmptyBin:
            return "recycle bin";
        default:
            return "shell folder";
    }
}

const char* NameOf(ActionState state) noexcept {
    constexpr const char* kNames[] = {"planned", "new",          "gone",      "run",       "tried",
                                      "refused", "has sub-keys", "not tried", "left alone"};
    return kNames[static_cast<size_t>(state)];
}

}  // namespace

Json ToJson(const Action& action) {
    Json json = {{"kind", KindOf(action)},
                 {"target", WideToUtf8(action.target)},
                 {"name", WideToUtf8(action.name)},
                 {"state", NameOf(action.state)}};
    if (action.amount) json["count"] = action.amount->items;
    // Of other folders the shell tells no sizes.
    if (action.amount && action.kind == ActionEmptyBin) json["bytes"] = action.amount->bytes;
    if (action.left) json["left"] = {{"count", action.left->items}, {"bytes", action.left->bytes}};
    return json;
}
