#include "host/common/nodepaths.h"

#include <set>

#include "host/common/printable.h"
#include "host/common/treewalk.h"
#include "sysservices/text.h"

namespace {

// Lower-case names of the neighbours that were named so far.
using Taken = std::set<std::wstring>;

template <class Node>
std::wstring Segment(Node& node, const Taken& /*neighbours*/) {
    std::wstring name = Printable(node.GetInfo()->NameText);
    for (size_t at = 0; (at = name.find_first_of(L"/*?", at)) != name.npos;)
        name[at] = L'-';
    return name;
}

std::wstring Segment(IGarbageInfo& /*rule*/, const Taken& neighbours) {
    return std::to_wstring(neighbours.size() + 1);
}

std::wstring MakeUnique(const std::wstring& name, Taken& taken) {
    std::wstring unique = name;
    for (unsigned number = 2; !taken.insert(ToLower(unique)).second; ++number)
        unique = name + L'#' + std::to_wstring(number);
    return unique;
}

}  // namespace

CNodePaths::CNodePaths(IDregsweep& engine) {
    constexpr size_t kLevels = 4;
    std::wstring above[kLevels + 1];  // for each level, the path of the node above with its "/"
    Taken taken[kLevels + 1];
    WalkTree(engine, [&](auto& node, size_t depth) {
        const std::wstring path = above[depth] + MakeUnique(Segment(node, taken[depth]), taken[depth]);
        above[depth + 1] = path + L'/';
        taken[depth + 1].clear();
        m_paths.emplace(&node, path);
        return true;
    });
}
