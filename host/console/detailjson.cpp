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

const char* KindOf(const Scope& scope) noexcept {
    // In the order of GarbageScopeKind.
    constexpr const char* kKinds[] = {"unknown", "folder", "file", "shell items", "shell folder", "key",
                                      "value",   "step",   "end",  "kept files",  "kept folder"};
    return kKinds[scope.kind < std::size(kKinds) ? scope.kind : 0];
}

Json ToJson(const Scope& scope) {
    constexpr std::pair<GarbageScopeFlags, const char*> kFlags[] = {
        {ScopeBelow, "below"}, {ScopeNotItself, "not itself"}, {ScopeExact, "exact"}, {ScopeDeletesKey, "deletes key"}};
    Json flags = Json::array();
    for (const auto& [flag, name] : kFlags)
        if (scope.flags & flag) flags.push_back(name);
    return {{"kind", KindOf(scope)},
            {"text", WideToUtf8(scope.text)},
            {"pattern", WideToUtf8(scope.pattern)},
            {"flags", flags}};
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

Json ToJson(const RuleDetails& details) {
    Json json = {{"scopes", Json::array()}, {"actions", Json::array()}};
    for (const Scope& scope : details.scopes)
        json["scopes"].push_back(ToJson(scope));
    for (const Action& action : details.actions)
        json["actions"].push_back(ToJson(action));
    return json;
}
