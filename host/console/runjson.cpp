#include "host/console/runjson.h"

#include "host/console/detailjson.h"

namespace {

const char* Outcome(ExitStatus status) noexcept {
    if (status == ExitStatus::Done) return "done";
    return status == ExitStatus::Stopped ? "stopped" : "failed";
}

// The same in every language: scripts know them.
const char* NameOf(ItemState state) noexcept {
    constexpr const char* kNames[] = {"found", "deleted", "in use", "refused", "gone", "not tried"};
    return kNames[static_cast<size_t>(state)];
}

Json ToJson(const Amount& amount) {
    return {{"count", amount.items}, {"bytes", amount.bytes}};
}

Json ToJson(const ItemResult& item) {
    Json json = {{"path", WideToUtf8(item.path)}, {"state", NameOf(item.state)}};
    json.update(ToJson(item.amount));
    return json;
}

void AddAmounts(Json& json, const RunResult& result) {
    json["found"] = ToJson(result.found);
    json["deleted"] = ToJson(result.deleted);
    json["left"] = ToJson(result.left);
}

// `levels` are the names of the lists of children, the next one first; the items are on the lowest level, the actions
// beside them.
Json ToJson(const RunResult& result, const char* const* levels) {
    Json json = {{"name", WideToUtf8(result.name)}, {"path", WideToUtf8(result.path)}};
    AddAmounts(json, result);
    Json& list = json[*levels] = Json::array();
    for (const RunResult& child : result.children)
        list.push_back(ToJson(child, levels + 1));
    for (const ItemResult& item : result.items)
        list.push_back(ToJson(item));
    if (levels[1]) return json;
    Json& actions = json["actions"] = Json::array();
    for (const Action& action : result.actions)
        actions.push_back(ToJson(action));
    return json;
}

}  // namespace

void PrintRunJson(COutput& out, const char* command, ExitStatus status, bool cleaned, const RunResult& result) {
    constexpr const char* kLevels[] = {"applications", "garbageCategories", "items", nullptr};
    Json json = {{"command", command}, {"outcome", Outcome(status)}, {"cleaned", cleaned}};
    AddAmounts(json, result);
    Json& categories = json["categories"] = Json::array();
    for (const RunResult& category : result.children)
        categories.push_back(ToJson(category, kLevels));
    out.Write(Utf8ToWide(json.dump(2) + '\n'));
}
