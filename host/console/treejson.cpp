#include <type_traits>

#include "host/common/treewalk.h"
#include "host/console/detailjson.h"
#include "host/console/treeview.h"

namespace {

// Numbers of a rule file that are no state count as partly.
const char* Selected(uint32_t state) noexcept {
    if (state == SelectionNone) return "none";
    return state == SelectionAll ? "all" : "partly";
}

template <class Node>
Json NodeJson(Node& node, const CEngine& engine) {
    Json json = {{"name", WideToUtf8(node.GetInfo()->NameText)},
                 {"path", WideToUtf8(engine.Paths().Of(node))},
                 {"selected", Selected(node.GetState())}};
    if constexpr (std::is_same_v<Node, IAppGarbageInfo>) json["present"] = node.IsAppPresent();
    return json;
}

Json NodeJson(IGarbageInfo& rule, const CEngine& engine) {
    Json json = {{"path", WideToUtf8(engine.Paths().Of(rule))}, {"selected", Selected(rule.GetState())}};
    json.update(ToJson(DetailsOf(rule)));
    return json;
}

// `levels` are the names of the lists of children, the next one first.
template <class I>
void AddChildren(Json& json, CGatherIteratorProc<I>& node, const CEngine& engine, const char* const* levels) {
    Json& list = json[*levels] = Json::array();
    for (const auto& child : Children(node)) {
        list.push_back(NodeJson(*child, engine));
        if constexpr (!std::is_same_v<I, IGarbageInfo>) AddChildren(list.back(), *child, engine, levels + 1);
    }
}

}  // namespace

void PrintTreeJson(COutput& out, const CEngine& engine) {
    constexpr const char* kLevels[] = {"categories", "applications", "garbageCategories", "rules"};
    Json json = {{"command", "list"}};
    AddChildren(json, *engine, engine, kLevels);
    out.Write(Utf8ToWide(json.dump(2) + '\n'));
}
