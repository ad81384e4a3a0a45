#include "rules/rootkeyname.h"

#include <algorithm>
#include <cstring>
#include <iterator>

HKEY RootKeyByName(const char* name) noexcept {
    if (!name) return nullptr;
    for (const RootKeyName& known : kRootKeyNames) {
        if (std::strcmp(name, known.name) == 0) return known.root;
    }
    return nullptr;
}

CString KeyText(HKEY root, const CString& path) {
    const auto known = std::find_if(std::begin(kRootKeyNames), std::end(kRootKeyNames),
                                    [root](const RootKeyName& name) { return name.root == root; });
    return known == std::end(kRootKeyNames) ? path : JoinPath(known->shown, path);
}
